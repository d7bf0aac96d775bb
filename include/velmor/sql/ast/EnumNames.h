// Enumerator and record-kind names of the tree, for printers, diagnostics and tests.
#pragma once

#include <velmor/sql/Export.h>
#include <velmor/sql/ast/AST.h>
#include <velmor/sql/ast/TernaryLogic.h>

namespace velmor::sql::ast {

/// The enumerator name as spelled in the code ("Plus", "LeftOuter", "Unspecified", ...).
/// The result is a static string and never freed. A number that names no enumerator gives
/// nullptr: for OperationCode that includes every custom operator (numbers above 50), whose
/// name only the host knows.
VELMOR_SQL_API const char* enumName(OperationCode value) noexcept;
VELMOR_SQL_API const char* enumName(Quantifier value) noexcept;
VELMOR_SQL_API const char* enumName(SetQuantifier value) noexcept;
VELMOR_SQL_API const char* enumName(Join value) noexcept;
VELMOR_SQL_API const char* enumName(Value value) noexcept;
VELMOR_SQL_API const char* enumName(QueryOperationCode value) noexcept;
VELMOR_SQL_API const char* enumName(Overriding value) noexcept;
VELMOR_SQL_API const char* enumName(NullOrdering value) noexcept;
VELMOR_SQL_API const char* enumName(NumberKind value) noexcept;
VELMOR_SQL_API const char* enumName(TernaryLogic::Value value) noexcept;

/// The record kind's name ("QuerySpecification") for each record type, at compile time.
template <class T>
constexpr const char* recordName() noexcept = delete;
#define VELMOR_SQL_RECORD(Name, isExpr)                                                            \
  template <>                                                                                      \
  constexpr const char* recordName<Name>() noexcept {                                              \
    return #Name;                                                                                  \
  }
#include <velmor/sql/ast/Records.def>
template <>
constexpr const char* recordName<EmptyNode>() noexcept {
  return "EmptyNode";
}

/// The record kind held by `node`: its name ("Operation"), "EmptyNode" for a node of EmptyNode,
/// nullptr for an empty handle. Never throws; a static string.
VELMOR_SQL_API const char* recordName(const Node& node) noexcept;

} // namespace velmor::sql::ast
