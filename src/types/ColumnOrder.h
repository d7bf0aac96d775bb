// The order and the loose equality of columns; internal to the library.
#pragma once

#include <velmor/sql/types/Table.h>

namespace velmor::sql {

/// By originalTable, then by the names vectors, both case-sensitive. Orders the set of result
/// columns when a query's columns are de-duplicated.
bool operator<(const ColumnInfo& left, const ColumnInfo& right);

/// Same originalTable and at least one name in common (exact compare); deliberately loose, so a
/// column with several names equals each column that holds one of them. Columns without names
/// are never equal.
bool operator==(const ColumnInfo& left, const ColumnInfo& right);

} // namespace velmor::sql
