// How names are scoped in analysis: the library's own rules, or those of standard SQL.
#pragma once

#include <cstdint>

namespace velmor::sql {

/// The rules by which TypeInferer and Validator resolve names and type queries. Compatible is
/// the default of both classes; a host asks for Standard explicitly.
enum class Scoping : std::int32_t {
  /// The library's own rules: a query that stands in an expression is typed in the scope of
  /// the query around it and counts as an array of its rows; a Validator checks a query or an
  /// UPDATE and stops at the first fault that is thrown.
  Compatible = 0,
  /// Standard SQL: a query in an expression has a scope of its own (its FROM first, then the
  /// queries around it) and, with one column, counts as a value of that column's type; every
  /// statement kind and every clause at every depth is checked, and a fault in one part is
  /// recorded while the check goes on with the next.
  Standard = 1,
};

} // namespace velmor::sql
