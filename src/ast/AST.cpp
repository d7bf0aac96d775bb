// Node handles, record operations and the base visitor.
#include <velmor/sql/Assert.h>
#include <velmor/sql/ast/AST.h>

#include "common/DeepStack.h"

#include <iostream>
#include <typeinfo>

namespace velmor::sql::ast {

NullNodeException::NullNodeException() : std::runtime_error("Error accessing null node value") {}
BadNodeTypeException::BadNodeTypeException()
    : std::runtime_error("Trying to get value for wrong node type") {}

NodeInterface::~NodeInterface() = default;

bool Node::isNull() const { return !mImpl || mImpl->isNull(); }

bool Node::isExpression() const { return mImpl && mImpl->isExpression(); }

namespace {

// A walk whose stack runs low or whose faults are watched. Apart from the common path, so
// that a plain level of a walk costs a test and a jump.
[[gnu::noinline]] void acceptWithCare(NodeInterface& impl, NodeVisitor& visitor) {
  sql::detail::WalkWatch* const watch = sql::detail::walkWatch();
  if (!watch) {
    sql::detail::withStack([&] { impl.accept(visitor); });
    return;
  }
  // Faults are watched: the innermost node that a fault leaves is the one it is about.
  const void* const outer = watch->current;
  watch->current = &impl;
  try {
    sql::detail::withStack([&] { impl.accept(visitor); });
  } catch (...) {
    sql::detail::noteLeft(*watch, &impl);
    watch->current = outer;
    throw;
  }
  watch->current = outer;
}

} // namespace

void Node::accept(NodeVisitor& visitor) const {
  if (!mImpl) throw NullNodeException();
  // Every walk of a tree recurses through here, once per level: a deep tree goes on on a fresh
  // stack segment rather than overrunning a small thread stack.
  if (!sql::detail::walkNeedsCare()) [[likely]] {
    mImpl->accept(visitor);
    return;
  }
  acceptWithCare(*mImpl, visitor);
}

void Node::check() const { VELMOR_SQL_ASSERT(mImpl, "AST"); }

ExpressionNode Node::toExpression() const {
  // An empty handle is a wrong kind here, not a null access.
  if (!mImpl || !mImpl->isExpression()) throw BadNodeTypeException();
  return ExpressionNode(mImpl);
}

bool FromSource::defaultValues() const { return !source.mImpl || source.isNull(); }

bool IntoClause::isEqual(const IntoClause& other) const {
  return table == other.table && noSelect == other.noSelect;
}

bool Number::isEqual(const Number& other) const { return kind == other.kind && text == other.text; }

bool LimitSpecification::isEqual(const LimitSpecification& other) const {
  return limit.isEqual(other.limit) && offset.isEqual(other.offset);
}

Operation::Operation(OperationCode code, ExpressionNode leftOperand, ExpressionNode rightOperand,
                     Quantifier quant)
    : operation(code), quantifier(quant) {
  // Not a braced list: its elements would be copied, not moved.
  operands.reserve(2);
  operands.push_back(std::move(leftOperand));
  operands.push_back(std::move(rightOperand));
  VELMOR_SQL_ASSERT(operation != OperationCode::Invalid, "AST");
}

Operation::Operation(OperationCode code, std::vector<ExpressionNode> ops, Quantifier quant)
    : operation(code), quantifier(quant), operands(std::move(ops)) {
  VELMOR_SQL_ASSERT(operation != OperationCode::Invalid, "AST");
}

bool Operation::unary() const { return operands.size() == 1; }

ExpressionNode Operation::left() const { return unary() ? ExpressionNode() : operands.at(0); }

ExpressionNode Operation::right() const { return unary() ? operands.at(0) : operands.at(1); }

bool SortSpecification::isEqual(const SortSpecification& other) const {
  return key.mImpl.get() == other.key.mImpl.get() && ascending == other.ascending &&
         nulls == other.nulls;
}

namespace {

template <class H>
bool sameNodes(const std::vector<H>& a, const std::vector<H>& b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i)
    if (a[i].mImpl.get() != b[i].mImpl.get()) return false;
  return true;
}

bool sameNode(const Node& a, const Node& b) { return a.mImpl.get() == b.mImpl.get(); }

} // namespace

bool QuerySpecification::isEqual(const QuerySpecification& other) const {
  if (distinct != other.distinct || !sameNodes(selectList, other.selectList) ||
      !sameNodes(from, other.from) || !sameNodes(groupBy, other.groupBy) ||
      !sameNode(into, other.into) || !sameNode(where, other.where) ||
      !sameNode(having, other.having) || orderBy.size() != other.orderBy.size())
    return false;
  for (std::size_t i = 0; i < orderBy.size(); ++i)
    if (!orderBy[i].isEqual(other.orderBy[i])) return false;
  return limit.isEqual(other.limit);
}

NodeVisitor::~NodeVisitor() = default;

#define VELMOR_SQL_RECORD(Name, isExpr)                                                            \
  void NodeVisitor::visit(const Name&) { faultAction(); }
#include <velmor/sql/ast/Records.def>

void NodeVisitor::faultAction() {
  const char* name = typeid(*this).name();
  if (*name == '*') ++name;
  std::cerr << name << " should never call it's fault action. Something went wrong." << std::endl;
}

void NodeVisitor::doVisit(const Node& node) { node.accept(*this); }

} // namespace velmor::sql::ast
