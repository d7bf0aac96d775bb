// Yes-or-no questions about a tree: does a statement hold a context cast, and is a query or an
// expression an aggregate one.
#pragma once

#include <velmor/sql/Export.h>
#include <velmor/sql/ast/AST.h>
#include <velmor/sql/ast/Traversal.h>
#include <velmor/sql/types/Routine.h>

#include <vector>

namespace velmor::sql {

/// Finds a context query: one that holds a CAST whose target names no type the library knows
/// (an unknown word, a qualified name, a literal...). Only the parts where values are produced
/// are walked; outside a select list the arguments of a ContextOpaque function are not looked
/// at. A walk stops at the first context cast found.
///
/// The host context is borrowed and must outlive the visitor. An answer is final: a visitor that
/// once found a context cast keeps saying so. Throws what the host throws,
/// ast::BadNodeTypeException for a CAST size that is no number and std::out_of_range for one too
/// large to read. One thread at a time.
class VELMOR_SQL_API ContextCheckVisitor : public ast::NodeVisitor {
public:
  explicit ContextCheckVisitor(const GlobalTypeContext& globalContext);
  explicit ContextCheckVisitor(GlobalTypeContext&& globalContext) = delete; // would dangle

  /// True when `query` is a context query (or an earlier call on this object found one).
  bool isContext(const ast::QuerySpecification& query);
  /// True while a select list is being walked at the innermost query level.
  bool inSelect() const;

  using ast::NodeVisitor::visit;
  void visit(const ast::DeleteStatement& record) override;
  void visit(const ast::DerivedColumn& record) override;
  void visit(const ast::DerivedTable& record) override;
  void visit(const ast::FromSource& record) override;
  void visit(const ast::Function& record) override;
  void visit(const ast::InsertStatement& record) override;
  void visit(const ast::JoinCondition& record) override;
  void visit(const ast::JoinNode& record) override;
  void visit(const ast::Operation& record) override;
  void visit(const ast::QueryOperation& record) override;
  void visit(const ast::QuerySpecification& record) override;
  void visit(const ast::Range& record) override;
  void visit(const ast::RowValueExpression& record) override;
  void visit(const ast::RowValueExpressionList& record) override;
  void visit(const ast::SetClause& record) override;
  void visit(const ast::SortSpecification& record) override;
  void visit(const ast::UpdateStatement& record) override;
  /// Silent: leaves and names end a branch.
  void faultAction() override;

private:
  void walk(const ast::Node& node);
  void walkAll(const std::vector<ast::ExpressionNode>& nodes);

  bool mClean = true;
  std::vector<bool> mSelectStack;
  const GlobalTypeContext& mGlobalContext;
};

/// Finds an aggregate query or expression: one that calls an Aggregate function of the host or
/// holds a GROUP BY. Aggregate calls inside a nested query don't count, while a GROUP BY of a
/// nested query does. A function unknown to the host is no aggregate and no fault.
///
/// The host context is borrowed and must outlive the detector. A true answer is final for the
/// object. Throws NullNodeException for an empty handle, and what the host throws. One thread.
class VELMOR_SQL_API AggregateQueryDetector : public ast::VisitorWithResult<ast::TraversalVisitor, bool> {
public:
  explicit AggregateQueryDetector(const GlobalTypeContext& globalContext);
  explicit AggregateQueryDetector(GlobalTypeContext&& globalContext) = delete; // would dangle

  /// True when `node` (a query or an expression) is an aggregate one.
  bool isAggregate(const ast::Node& node);

  using ast::TraversalVisitor::visit;
  void visit(const ast::Function& record) override;
  void visit(const ast::QuerySpecification& record) override;
  /// Silent: other kinds are walked through.
  void faultAction() override;

private:
  const GlobalTypeContext& mGlobalContext;
  bool mSkipQueries = true;
};

} // namespace velmor::sql
