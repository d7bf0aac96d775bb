// The catalogue's own tables: a GenericTableInfo whose lookups by name go through a hash of
// folded names, as the checker asks a table about its columns many times a statement.
#pragma once

#include <velmor/sql/types/Table.h>

#include <cstddef>
#include <string>
#include <vector>

namespace velmor::sql::host {

class CatalogueTable final : public GenericTableInfo {
public:
  explicit CatalogueTable(std::vector<ColumnInfo> columns);

  /// The same answers as GenericTableInfo's index, found without walking a tree of names.
  std::size_t indexByName(const std::wstring& name) const override;

private:
  struct Slot {
    std::wstring key; // normalized; empty for a free slot
    std::size_t position = npos;
  };
  std::vector<Slot> m_slots; // a power of two, at most half full
  std::size_t m_indexed = 0; // the column count the slots were made for
};

} // namespace velmor::sql::host
