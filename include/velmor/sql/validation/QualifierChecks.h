// Checks of table names by themselves: qualifiers that name nothing, and a table brought into a
// FROM list twice under the same name.
#pragma once

#include <velmor/sql/Export.h>
#include <velmor/sql/ast/AST.h>
#include <velmor/sql/types/Table.h>
#include <velmor/sql/validation/Validator.h>

#include <set>
#include <string>
#include <utility>

namespace velmor::sql {

class ColumnInfoScope;

/// Reports UnknownTableReference for each qualifier (of `t.a` or `t.*`) that is neither a table
/// of the host nor a name known to the scope (an alias, a derived table). Every use is reported,
/// as written; unqualified names are not looked at and cost no host call.
///
/// Start it with visitAllNodes on each node to search. The context and the scope are borrowed
/// and must outlive the visitor; the scope may be null, and then only the host's tables count.
/// Errors of the host pass through.
class VELMOR_SQL_API UnknownTableQualifiersVisitor : public ValidatorVisitor {
public:
  UnknownTableQualifiersVisitor(const TableInfoContext& tableContext, const ColumnInfoScope* scope);
  UnknownTableQualifiersVisitor(TableInfoContext&& tableContext, const ColumnInfoScope* scope) = delete; // would dangle

  /// Reports `name` unless it is empty or known.
  void handleTableName(const std::wstring& name);

  using ValidatorVisitor::visit;
  void visit(const ast::ColumnReference& record) override;
  void visit(const ast::QualifiedAsterisk& record) override;

private:
  const TableInfoContext& mTableContext;
  const ColumnInfoScope* mScope;
};

/// Reports AmbiguousTablesReference for a TablePrimary whose table and effective alias (the
/// table itself when no alias is written) were met before, comparing without case and square
/// brackets. The same table under two aliases, or two tables under one alias, pass. The pairs
/// seen last over all walks of the object, nested queries included; the error keeps the table
/// name as written.
class VELMOR_SQL_API AmbiguousTableQualifiersVisitor : public ValidatorVisitor {
public:
  using ValidatorVisitor::visit;
  void visit(const ast::TablePrimary& record) override;

private:
  std::set<std::pair<std::wstring, std::wstring>> mSeen;
};

} // namespace velmor::sql
