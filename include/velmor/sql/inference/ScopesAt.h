// The scopes that standard scoping gives the nodes of a statement: which tables, aliases,
// derived tables and output names a name at that place may mean. For editors.
#pragma once

#include <velmor/sql/Export.h>
#include <velmor/sql/ast/AST.h>
#include <velmor/sql/scope/Scope.h>
#include <velmor/sql/types/Routine.h>
#include <velmor/sql/types/Table.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace velmor::sql {

/// A name that one query level's FROM declares: a table by its name or alias, a derived table
/// by its alias (an empty name for a bare query in a FROM).
struct DeclaredName {
  /// As written (the alias when there is one).
  std::wstring name;
  /// The TablePrimary or DerivedTable node that declares it; for the table of an UPDATE or a
  /// DELETE, the statement.
  ast::Node declaration;
  /// Its columns, qualified by `name`; null when the table is not known.
  std::shared_ptr<ColumnInfoScope> columns;
};

/// One query level as a node inside it sees it.
struct ScopeLevel {
  /// The names of its FROM in the order of the text (for an ON condition: those of its join).
  std::vector<DeclaredName> names;
  /// The level's own output columns, when the clause may name them (ORDER BY, and behind the
  /// FROM's columns WHERE, GROUP BY and HAVING); empty elsewhere.
  std::vector<ColumnInfo> output;
  /// True when the output names come before the FROM's columns (ORDER BY).
  bool outputFirst = false;
};

/// Where a node of a statement stands.
struct ScopeAt {
  /// The nearest level first, then the levels around it.
  std::vector<ScopeLevel> levels;
  /// Resolves names exactly as the analysis did at the node; a TypeInferer over it in standard
  /// scoping types the node as the check does.
  std::shared_ptr<const ColumnInfoScope> scope;
};

/// Analyses `statement` (any kind) in standard scoping over the two contexts and gives, for
/// each node of `targets`, the scopes where it stands: for a node inside an expression that the
/// analysis types, the levels of that expression; for a FROM item (a table or a derived table),
/// the level whose FROM holds it. None for a node the analysis never reaches (a statement, a
/// select item's alias, a node of another tree). Faults of the statement play no part. Never
/// throws but std::bad_alloc and what the contexts throw.
VELMOR_SQL_API std::vector<std::optional<ScopeAt>> scopesAt(const GlobalTypeContext& global,
                                                            const TableInfoContext& tables,
                                                            const ast::Node& statement,
                                                            const std::vector<ast::Node>& targets);

} // namespace velmor::sql
