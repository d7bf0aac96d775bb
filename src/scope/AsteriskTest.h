// Whether a scope would list any column for `*`, without listing them: name checks ask this of
// every qualifier and every repeated column.
#pragma once

#include <velmor/sql/scope/Scope.h>

#include <string>

namespace velmor::sql::detail {

/// !scope.columnsForAsterisk(table).empty(). The library's own scope kinds answer without
/// making the list (a table lists each of its columns, so it lists some when it has any); any
/// other kind, a host's or a subclass, is asked for its list.
bool hasAsteriskColumns(const ScopeTypeContext& scope, const std::wstring& table);

} // namespace velmor::sql::detail
