// Column and table descriptions: the immutable column handle, the abstract table a host
// implements, the library's concrete table, and the host's table catalogue.
#pragma once

#include <velmor/sql/Export.h>
#include <velmor/sql/types/Type.h>

#include <cstddef>
#include <initializer_list>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace velmor::sql {

/// One column: one or more names (the first is canonical), a type that may be empty, and the
/// base table column it came from (both empty for a calculated column). A value handle: copies
/// share the immutable data, so a ColumnInfo may be read from any number of threads.
class VELMOR_SQL_API ColumnInfo {
public:
  struct Private {
    std::vector<std::wstring> names;
    std::shared_ptr<Type> type;
    std::wstring originalName;
    std::wstring originalTable;
  };

  /// The null column. All default-constructed columns share one process-wide data object, made
  /// on first use (thread-safe) and kept to process end.
  ColumnInfo();
  /// names = {name}, originalName = name, originalTable = table.
  ColumnInfo(const std::wstring& name, std::shared_ptr<Type> type, std::wstring table);
  /// names = {name}, the rest as given.
  ColumnInfo(std::wstring name, std::shared_ptr<Type> type, std::wstring originalName,
             std::wstring originalTable);
  /// originalName = names.at(0): an empty `names` throws std::out_of_range. Pass a
  /// std::vector<std::wstring> explicitly (a braced list of literals would also fit a string).
  ColumnInfo(std::vector<std::wstring> names, std::shared_ptr<Type> type, std::wstring table);
  /// Everything as given; `names` may be empty, which makes a null column.
  ColumnInfo(std::vector<std::wstring> names, std::shared_ptr<Type> type, std::wstring originalName,
             std::wstring originalTable);

  /// A column with names = {name} and empty originalName and originalTable.
  static ColumnInfo calculatedColumn(std::wstring name, std::shared_ptr<Type> type);

  /// A new column named only `name`, keeping type, originalName and originalTable.
  ColumnInfo rename(std::wstring name) const;

  const std::vector<std::wstring>& names() const noexcept;
  /// The first name. Meaningless for a null column, where it is the empty string.
  const std::wstring& canonicalName() const noexcept;
  const std::wstring& originalName() const noexcept;
  const std::wstring& originalTable() const noexcept;
  /// May be an empty pointer (type unknown).
  const std::shared_ptr<Type>& type() const noexcept;
  /// True when the column has no names, whoever built it.
  bool isNull() const noexcept;

private:
  std::shared_ptr<const Private> m_data;
};

/// An ordered list of columns. Implemented by hosts over their catalogues and by the library
/// (GenericTableInfo). Held through std::shared_ptr; implementations must be safe to read from
/// several threads if the host shares them so. Names match case-insensitively via normalized().
class VELMOR_SQL_API TableInfo {
public:
  /// What indexByName answers for a name that isn't there.
  static constexpr std::size_t npos = static_cast<std::size_t>(-1);

  virtual ~TableInfo();
  virtual std::size_t columnCount() const = 0;
  /// The column at `index`; implementations give the null column past the end.
  virtual ColumnInfo columnByIndex(std::size_t index) const = 0;
  /// Canonical names of the listed columns in the listed order; empty `indices` means all.
  virtual std::vector<std::wstring> columnsNames(const std::vector<std::size_t>& indices) const;
  /// The types of all columns in order (empty pointers where unknown).
  virtual std::vector<std::shared_ptr<Type>> columnsTypes() const;
  /// The position of the column called `name`, or npos.
  virtual std::size_t indexByName(const std::wstring& name) const = 0;
  /// The column called `name`, or the null column.
  virtual ColumnInfo columnByName(const std::wstring& name) const;
  /// indexByName(name) != npos.
  virtual bool hasColumn(const std::wstring& name) const;
};

/// The library's concrete table (a query's result; usable by hosts too). Lookup by name goes
/// through an index of normalized names, where the first column to claim a name keeps it. Not
/// synchronised: mutate it (clear, updateSearchIndex) only before sharing it.
class VELMOR_SQL_API GenericTableInfo : public TableInfo {
public:
  /// Copy the columns and build the name index.
  GenericTableInfo(std::initializer_list<ColumnInfo> columns);
  explicit GenericTableInfo(const std::vector<ColumnInfo>& columns);
  /// Take the columns and build the name index.
  explicit GenericTableInfo(std::vector<ColumnInfo>&& columns);

  static std::shared_ptr<GenericTableInfo> create(std::initializer_list<ColumnInfo> columns);
  /// A new empty table every time (nothing shared).
  static std::shared_ptr<GenericTableInfo> null();
  /// Helpers for writing name lists.
  static std::vector<std::wstring> convert(std::initializer_list<std::wstring> names);
  static std::vector<std::wstring> convert(std::initializer_list<const wchar_t*> names);

  /// Empties the columns but deliberately keeps the name index: hasColumn of a former name stays
  /// true while columnByName of it gives the null column. Call updateSearchIndex as well to
  /// forget the names.
  void clear();
  /// Rebuilds the name index from the columns (first claim of a normalized name wins).
  void updateSearchIndex();

  std::size_t columnCount() const override;
  /// At least one column.
  bool isValid() const;
  /// No column.
  bool isNull() const;
  /// The column, or the null column when `index` is not below the size.
  ColumnInfo columnByIndex(std::size_t index) const override;
  /// Empty `indices` means all; an index past the end gives an empty name.
  std::vector<std::wstring> columnsNames(const std::vector<std::size_t>& indices) const override;
  std::vector<std::shared_ptr<Type>> columnsTypes() const override;
  /// Empty `indices` means all; otherwise one entry per index, empty for npos (or past the end).
  std::vector<std::shared_ptr<Type>> columnsTypes(const std::vector<std::size_t>& indices) const;
  /// Empty `names` means all; otherwise one entry per name, empty for a name that isn't there.
  std::vector<std::shared_ptr<Type>> columnsTypes(const std::vector<std::wstring>& names) const;
  /// The type of the named column; empty when not there.
  std::shared_ptr<Type> columnType(const std::wstring& name) const;
  /// The type at `index`; empty for npos (or past the end).
  std::shared_ptr<Type> columnType(std::size_t index) const;
  /// Position by normalized(name), or npos.
  std::size_t indexByName(const std::wstring& name) const override;
  /// One position per name in order, npos for a missing one.
  std::vector<std::size_t> indicesByNames(const std::vector<std::wstring>& names) const;
  /// complementIndices(indicesByNames(names)).
  std::vector<std::size_t> indicesExceptNames(const std::vector<std::wstring>& names) const;
  /// All positions, ascending, except the listed ones; listed values past the end are ignored.
  std::vector<std::size_t> complementIndices(const std::vector<std::size_t>& indices) const;
  /// Empty `indices` means a copy of all columns; otherwise the listed columns in listed order,
  /// duplicates kept, indices past the end left out.
  std::vector<ColumnInfo> subTable(const std::vector<std::size_t>& indices) const;
  /// subTable(complementIndices(indices)): listing every column therefore yields all of them.
  std::vector<ColumnInfo> complementTable(const std::vector<std::size_t>& indices) const;

protected:
  std::vector<ColumnInfo> m_columns;
  std::map<std::wstring, std::size_t> m_index;
};

/// The host's table catalogue. Implemented by the host and borrowed by reference; it must
/// outlive the objects that hold it. Called on the thread of the walk.
class VELMOR_SQL_API TableInfoContext {
public:
  virtual ~TableInfoContext();
  /// The table called `name`, as written in the query (matching case is the host's choice).
  /// An empty pointer: no such table.
  virtual std::shared_ptr<TableInfo> table(const std::wstring& name) const = 0;
};

} // namespace velmor::sql
