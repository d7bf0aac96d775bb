// The context-cast walk and the aggregate detector.
#include <velmor/sql/validation/ContextChecks.h>
#include <velmor/sql/validation/FaultPlaces.h>

#include <velmor/sql/inference/StringTypeInferer.h>

#include "ast/RecordOf.h"

namespace velmor::sql {

// ---------------------------------------------------------------------------------------------
// ContextCheckVisitor

ContextCheckVisitor::ContextCheckVisitor(const GlobalTypeContext& globalContext)
    : mGlobalContext(globalContext) {}

bool ContextCheckVisitor::isContext(const ast::QuerySpecification& query) {
  // Visiting the record directly is the same walk as visiting a node made from a copy of it,
  // without copying the whole query.
  visit(query);
  return !mClean;
}

bool ContextCheckVisitor::inSelect() const { return !mSelectStack.empty() && mSelectStack.back(); }

void ContextCheckVisitor::faultAction() {}

// Optional parts are skipped when null in either form: an empty handle would throw from
// accept, and a node of EmptyNode visits nothing anyway.
void ContextCheckVisitor::walk(const ast::Node& node) {
  if (mClean && !node.isNull()) node.accept(*this);
}

void ContextCheckVisitor::walkAll(const std::vector<ast::ExpressionNode>& nodes) {
  for (const auto& node : nodes) {
    if (!mClean) return;
    walk(node);
  }
}

void ContextCheckVisitor::visit(const ast::DeleteStatement& record) { walk(record.where); }

void ContextCheckVisitor::visit(const ast::DerivedColumn& record) { walk(record.expression); }

void ContextCheckVisitor::visit(const ast::DerivedTable& record) { walk(record.query); }

void ContextCheckVisitor::visit(const ast::FromSource& record) { walk(record.source); }

void ContextCheckVisitor::visit(const ast::Function& record) {
  if (!mClean) return;
  if (!inSelect()) {
    // A function the host doesn't know is walked like an ordinary one: its arguments are
    // values like any others. Typing has normally rejected it already; the clauses that are
    // not typed (a query in a FROM list) reach here with it.
    const auto info = mGlobalContext.function(record.name);
    if (info && info->kind() == FunctionKind::ContextOpaque) return;
  }
  walkAll(record.arguments);
}

void ContextCheckVisitor::visit(const ast::InsertStatement& record) { visit(record.source); }

void ContextCheckVisitor::visit(const ast::JoinCondition& record) { walk(record.condition); }

void ContextCheckVisitor::visit(const ast::JoinNode& record) {
  walk(record.left);
  walk(record.right);
  walk(record.specification);
}

void ContextCheckVisitor::visit(const ast::Operation& record) {
  if (!mClean) return;
  if (record.operation == OperationCode::Cast && record.operands.size() == 2) {
    walk(record.operands.front());
    if (!mClean) return;
    // The target is a type name, not a value: only whether it names a type counts.
    StringTypeInferer inferer;
    inferer.doVisit(record.operands.back());
    const auto& type = inferer.result();
    if (!type || static_cast<int>(type->plainType()) < 3) {
      mClean = false;
      detail::markFaultPlace();
    }
    return;
  }
  walkAll(record.operands);
}

void ContextCheckVisitor::visit(const ast::QueryOperation& record) {
  walk(record.left);
  walk(record.right);
}

void ContextCheckVisitor::visit(const ast::QuerySpecification& record) {
  if (!mClean) return;
  // The level is popped on every way out, an exception from the host included, so that a
  // caught exception leaves the stack as it was.
  struct Level {
    std::vector<bool>& stack;
    std::size_t depth = stack.size();
    ~Level() { stack.resize(depth); }
  } level{mSelectStack};
  mSelectStack.push_back(false);

  if (!record.selectList.empty()) {
    mSelectStack.push_back(true);
    for (const auto& item : record.selectList) {
      if (!mClean) break;
      walk(item);
    }
    mSelectStack.pop_back();
  }
  if (!mClean) return;

  walk(record.where);
  if (!mClean) return;

  for (const auto& sort : record.orderBy) {
    visit(sort);
    if (!mClean) return;
  }

  // The one loop that does not stop early; mClean is looked at after it.
  for (const auto& key : record.groupBy) walk(key);
  if (!mClean) return;

  for (const auto& reference : record.from) {
    walk(reference);
    if (!mClean) return;
  }

  walk(record.having);
}

void ContextCheckVisitor::visit(const ast::Range& record) {
  walk(record.lower);
  walk(record.upper);
}

void ContextCheckVisitor::visit(const ast::RowValueExpression& record) { walkAll(record.values); }

void ContextCheckVisitor::visit(const ast::RowValueExpressionList& record) { walkAll(record.rows); }

void ContextCheckVisitor::visit(const ast::SetClause& record) { walk(record.value); }

void ContextCheckVisitor::visit(const ast::SortSpecification& record) { walk(record.key); }

void ContextCheckVisitor::visit(const ast::UpdateStatement& record) {
  for (const auto& clause : record.clauses) {
    if (!mClean) return;
    visit(clause);
  }
  walk(record.where);
}

// ---------------------------------------------------------------------------------------------
// AggregateQueryDetector

AggregateQueryDetector::AggregateQueryDetector(const GlobalTypeContext& globalContext)
    : mGlobalContext(globalContext) {}

bool AggregateQueryDetector::isAggregate(const ast::Node& node) {
  mSkipQueries = !ast::detail::holds<ast::QuerySpecification>(node);
  visitAllNodes(node);
  return mResult;
}

void AggregateQueryDetector::faultAction() {}

void AggregateQueryDetector::visit(const ast::Function& record) {
  const auto info = mGlobalContext.function(record.name);
  if (info && info->kind() == FunctionKind::Aggregate) {
    mResult = true;
    stopTraversal();
  }
}

void AggregateQueryDetector::visit(const ast::QuerySpecification& record) {
  // GROUP BY is looked at before nested queries are skipped: a grouped subquery makes the
  // whole aggregate, although the aggregate calls in its select list don't.
  if (!record.groupBy.empty()) {
    mResult = true;
    stopTraversal();
    return;
  }
  if (!mSkipQueries) {
    mSkipQueries = true;
    return;
  }
  skipCurrentNodeChildren();
}

} // namespace velmor::sql
