// Scope and result-table construction: the FROM list of a query as a scope, a select list as
// the table that the query yields.
#pragma once

#include <velmor/sql/Export.h>
#include <velmor/sql/ast/AST.h>
#include <velmor/sql/scope/Scope.h>
#include <velmor/sql/scope/Scoping.h>
#include <velmor/sql/types/Routine.h>
#include <velmor/sql/types/Table.h>

#include <memory>
#include <vector>

namespace velmor::sql {

// The contexts are borrowed for the call only. The scopes and tables returned share the host's
// TableInfo objects and own everything else. Whatever is thrown leaves nothing behind.

/// The scope of one table reference of a FROM list: a TablePrimary (known by its alias when it
/// has one, else by its name), a JoinNode (both sides, whatever the join), or a DerivedTable
/// whose query is a QuerySpecification (its result table, known by the alias; the subquery sees
/// `external`). An empty pointer for any other kind, including a derived table over a set
/// operation. Throws NonExistentTable for a table the host doesn't know, and whatever building
/// a derived table's result throws.
VELMOR_SQL_API std::shared_ptr<ColumnInfoScope>
buildScopeForTableReference(const GlobalTypeContext& global, const TableInfoContext& tables,
                            const ast::QueryExpressionNode& reference,
                            const std::shared_ptr<ColumnInfoScope>& external);

/// The scope of a query: its FROM list side by side, then `external` behind it (see
/// addExternalScope). An empty pointer for a query without FROM, whatever `external` is.
/// Throws as buildScopeForTableReference, for the references in order.
VELMOR_SQL_API std::shared_ptr<ColumnInfoScope> buildScope(const GlobalTypeContext& global,
                                                           const TableInfoContext& tables,
                                                           const ast::QuerySpecification& query,
                                                           const std::shared_ptr<ColumnInfoScope>& external);

/// The result table of a select list in `scope` (a GenericTableInfo, never empty as a pointer).
/// A column reference keeps the scope's column (renamed to its alias, if any); a calculated item
/// is named by its alias or "column_N", N counting only the unnamed items from 1. A column equal
/// to an earlier one (same original table and names) is renamed to its originalName followed by
/// 1, 2, ... until it is unique. Throws UnknownColumnReference for a plain column no scope knows,
/// AmbiguousColumnReference, and whatever TypeInferer throws for a calculated item. An empty
/// `scope` knows no column: a column reference then throws UnknownColumnReference.
VELMOR_SQL_API std::shared_ptr<TableInfo> buildTableInfo(const GlobalTypeContext& global,
                                                         const std::shared_ptr<ColumnInfoScope>& scope,
                                                         const std::vector<ast::Node>& selectList);

/// buildTableInfo(global, buildScope(global, tables, query, external), query.selectList).
VELMOR_SQL_API std::shared_ptr<TableInfo> buildTableInfo(const GlobalTypeContext& global,
                                                         const TableInfoContext& tables,
                                                         const ast::QuerySpecification& query,
                                                         const std::shared_ptr<ColumnInfoScope>& external);

/// The result columns of `query`, any query expression (a query specification, a set
/// operation with its left part's names, VALUES, TABLE t), with the query checked by `scoping`
/// on the way: Compatible is buildTableInfo of a query specification (other kinds give an empty
/// table); Standard types every clause at every depth in scopes of their own and throws the
/// first fault found. `external` is an enclosing scope or null.
VELMOR_SQL_API std::shared_ptr<TableInfo> buildTableInfo(const GlobalTypeContext& global, const TableInfoContext& tables,
                                                         const ast::Node& query, Scoping scoping,
                                                         const std::shared_ptr<ColumnInfoScope>& external = nullptr);

} // namespace velmor::sql
