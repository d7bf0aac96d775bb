// The naming of a result table's columns, shared by both scoping modes.
#pragma once

#include <velmor/sql/types/Table.h>

#include <vector>

namespace velmor::sql::detail {

/// Neither column orders before the other: the same original table and the same names. Copies
/// of one column share their names, which settles most comparisons at once.
inline bool sameColumn(const ColumnInfo& a, const ColumnInfo& b) {
  // Names first: the columns of one list mostly share their table and differ by name.
  return &a.names() == &b.names() || (a.names() == b.names() && a.originalTable() == b.originalTable());
}

/// The columns of a select list in order, each repeat of an equal column renamed from its
/// original name with the next free number (x, x1, x2).
std::vector<ColumnInfo> nameResultColumns(std::vector<ColumnInfo> raw);

} // namespace velmor::sql::detail
