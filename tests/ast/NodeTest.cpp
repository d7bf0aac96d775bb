// Handles and their two null forms, one-kind access, Operation, isEqual, the fault message, names.
#include "TreeTestSupport.h"
#include "ast/RecordOf.h"

#include <velmor/sql/Assert.h>

#include <gtest/gtest.h>

#include <functional>
#include <iostream>
#include <sstream>
#include <tuple>
#include <type_traits>
#include <typeinfo>

namespace velmor::sql::ast::test {
namespace {

ExpressionNode num(const wchar_t* text) {
  return makeNode<ExpressionNode>(Number{NumberKind::Integer, text});
}

// Counts every slot it is called through, faultAction included.
class Counter final : public NodeVisitor {
public:
#define VELMOR_SQL_RECORD(Name, isExpr)                                                            \
  void visit(const Name&) override { ++mCalls; }
#include <velmor/sql/ast/Records.def>
  void faultAction() override { ++mCalls; }
  int mCalls = 0;
};

enum class Outcome { Value, Null, BadType };

template <class F>
Outcome outcomeOf(F&& f) {
  try {
    f();
    return Outcome::Value;
  } catch (const NullNodeException&) {
    return Outcome::Null;
  } catch (const BadNodeTypeException&) {
    return Outcome::BadType;
  }
}

TEST(Node, TwoNullForms) {
  // isNull, isExpression, then the outcome of accept, toExpression, nodeIs (false when it
  // answers) and getNodeValue (a default-made record when it answers).
  const std::tuple<const char*, Node, bool, bool, Outcome, Outcome, Outcome, Outcome> cases[] = {
      {"empty handle", Node(), true, false, Outcome::Null, Outcome::BadType, Outcome::Null, Outcome::Null},
      {"EmptyNode", makeEmptyNode(), true, false, Outcome::Value, Outcome::BadType, Outcome::Value,
       Outcome::Value}};
  for (const auto& [name, node, isNull, isExpression, accept, toExpression, is, get] : cases) {
    SCOPED_TRACE(name);
    EXPECT_EQ(node.isNull(), isNull);
    EXPECT_EQ(node.isExpression(), isExpression);
    Counter counter;
    EXPECT_EQ(outcomeOf([&] { node.accept(counter); }), accept);
    EXPECT_EQ(counter.mCalls, 0) << "a null node reaches no slot, not even faultAction";
    EXPECT_EQ(outcomeOf([&] { (void)node.toExpression(); }), toExpression);
    EXPECT_EQ(outcomeOf([&] { EXPECT_FALSE(nodeIs<Number>(node)); }), is);
    EXPECT_EQ(outcomeOf([&] { EXPECT_TRUE(getNodeValue<Number>(node).text.empty()); }), get);
  }
}

TEST(Node, OneKindAccess) {
  const Node number = num(L"7");
  const Node sum = makeNode(Operation(OperationCode::Plus, num(L"1"), num(L"2")));
  std::ostringstream captured;
  auto* previous = std::cerr.rdbuf(captured.rdbuf());
  EXPECT_FALSE(nodeIs<Operation>(number));
  EXPECT_TRUE(nodeIs<Number>(number));
  EXPECT_EQ(getNodeValue<Number>(number).text, L"7");
  EXPECT_EQ(getNodeValue<Operation>(sum).operation, OperationCode::Plus);
  EXPECT_THROW(getNodeValue<Number>(sum), BadNodeTypeException);
  EXPECT_EQ(visitSingle<Number>(number, [](const Number& n) { return n.text.size(); }, std::size_t{99}), 1u);
  EXPECT_EQ(visitSingle<Number>(sum, [](const Number& n) { return n.text.size(); }, std::size_t{99}), 99u);
  std::cerr.rdbuf(previous);
  EXPECT_EQ(captured.str(), "") << "one-kind checks never report a fault";

  // A query stands where an expression is expected; a select-list item does not.
  EXPECT_TRUE(makeNode(QuerySpecification{}).toExpression().isExpression());
  EXPECT_THROW(makeNode(DerivedColumn{}).toExpression(), BadNodeTypeException);
}

class Silent final : public NodeVisitor {};

// A node class of a host's own, holding a number.
class HostNumber final : public NodeInterface {
public:
  bool isNull() const override { return false; }
  void accept(NodeVisitor& visitor) const override { visitor.visit(mValue); }
  bool isExpression() const override { return true; }
  Number mValue{NumberKind::Integer, L"5"};
};

template <class T>
void expectKindAnswersAgree(const Node& node) {
  if constexpr (!std::is_same_v<T, Range>) {
    SCOPED_TRACE(typeid(T).name());
    const bool is = nodeIs<T>(node);
    EXPECT_EQ(detail::holds<T>(node), is);
    EXPECT_EQ(detail::recordOf<T>(node) != nullptr, is);
  }
}

TEST(Node, InternalKindChecksAnswerAsNodeIsDoes) {
  // The library's own nodes are told by their class, a host's by a visit: both as nodeIs says,
  // for every kind asked of every kind of node, the EmptyNode form and a host's node.
  std::vector<Node> nodes = {makeEmptyNode(), Node(std::make_shared<HostNumber>())};
#define VELMOR_SQL_RECORD(Name, isExpr) \
  if constexpr (!std::is_same_v<Name, Range>) nodes.push_back(makeNode(Name{}));
#include <velmor/sql/ast/Records.def>
  for (const Node& node : nodes) {
    SCOPED_TRACE(typeid(*node.mImpl).name());
#define VELMOR_SQL_RECORD(Name, isExpr) expectKindAnswersAgree<Name>(node);
#include <velmor/sql/ast/Records.def>
    EXPECT_EQ((detail::holds<QuerySpecification, QueryOperation>(node)),
              nodeIs<QuerySpecification>(node) || nodeIs<QueryOperation>(node));
  }
  // The host's node gives its own record; an empty handle throws as nodeIs does.
  const Node host(std::make_shared<HostNumber>());
  EXPECT_EQ(detail::recordOf<Number>(host)->text, L"5");
  EXPECT_EQ(detail::recordOf<Number>(Node()), nullptr);
  EXPECT_THROW(detail::holds<Number>(Node()), NullNodeException);
  const Node number = num(L"7");
  EXPECT_EQ(&detail::recordIn<Number>(number), &static_cast<const NodeImpl<Number>&>(*number.mImpl).value());
}

TEST(NodeVisitor, FaultActionNamesTheDynamicVisitorClass) {
  std::ostringstream captured;
  auto* previous = std::cerr.rdbuf(captured.rdbuf());
  Silent visitor;
  visitor.doVisit(makeNode(LimitSpecification{}));
  std::cerr.rdbuf(previous);
  EXPECT_EQ(captured.str(), std::string(typeid(visitor).name()) +
                                " should never call it's fault action. Something went wrong.\n");
  EXPECT_NE(captured.str().front(), '*');
}

std::string describe(const std::function<ExpressionNode()>& get) {
  try {
    const ExpressionNode node = get();
    return node.mImpl ? label(node) : "null";
  } catch (const std::out_of_range&) {
    return "throws";
  }
}

TEST(Operation, AccessorsByOperandCount) {
  // Operand count, unary(), left(), right(); "null" is an empty handle.
  const std::tuple<std::size_t, bool, const char*, const char*> cases[] = {
      {0, false, "throws", "throws"}, {1, true, "null", "x"}, {2, false, "x", "y"}, {3, false, "x", "y"}};
  const wchar_t* names[] = {L"x", L"y", L"z"};
  for (const auto& [count, unary, left, right] : cases) {
    std::vector<ExpressionNode> operands;
    for (std::size_t i = 0; i < count; ++i) operands.push_back(num(names[i]));
    const Operation op(OperationCode::Not, operands);
    EXPECT_EQ(op.unary(), unary) << count;
    EXPECT_EQ(describe([&] { return op.left(); }), left) << count;
    EXPECT_EQ(describe([&] { return op.right(); }), right) << count;
  }
}

TEST(QuerySpecification, EqualOnlyWhenChildrenAreTheSameNodes) {
  QuerySpecification q;
  q.selectList = {selected(num(L"1"))};
  q.where = num(L"2");
  q.orderBy = {SortSpecification{num(L"3"), true, NullOrdering::First}};
  q.limit.limit = Number{NumberKind::Exact, L"1.0"};

  const QuerySpecification copy = q;
  EXPECT_TRUE(q.isEqual(copy));

  const std::vector<std::function<void(QuerySpecification&)>> changes = {
      [](auto& r) { r.where = num(L"2"); },                        // same text, other node
      [](auto& r) { r.selectList = {selected(num(L"1"))}; },
      [](auto& r) { r.orderBy[0].ascending = false; },
      [](auto& r) { r.orderBy[0].key = num(L"3"); },
      [](auto& r) { r.limit.limit.text = L"1.00"; },               // numbers compare as written
      [](auto& r) { r.limit.limit.kind = NumberKind::Approximate; },
      [](auto& r) { r.distinct = true; },
      [](auto& r) { r.into = makeEmptyNode<TypeNode<IntoClause>>(); },
  };
  for (std::size_t i = 0; i < changes.size(); ++i) {
    QuerySpecification changed = q;
    changes[i](changed);
    EXPECT_FALSE(q.isEqual(changed)) << "change " << i;
  }
}

TEST(FromSource, DefaultValuesForBothNullForms) {
  EXPECT_TRUE(FromSource{}.defaultValues());
  EXPECT_TRUE((FromSource{{}, Overriding::None, makeEmptyNode()}.defaultValues()));
  EXPECT_FALSE((FromSource{{}, Overriding::None, num(L"1")}.defaultValues()));
}

TEST(EnumNames, NamesAndGaps) {
  EXPECT_STREQ(enumName(OperationCode::Plus), "Plus");
  EXPECT_STREQ(enumName(Join::LeftOuter), "LeftOuter");
  EXPECT_STREQ(enumName(SetQuantifier::Unspecified), "Unspecified");
  EXPECT_STREQ(recordName(makeEmptyNode()), "EmptyNode");
  EXPECT_STREQ(recordName(makeNode(SetClause{})), "SetClause");
  EXPECT_EQ(recordName(Node()), nullptr);
  EXPECT_EQ(enumName(static_cast<NullOrdering>(3)), nullptr);
  for (int code = 0; code <= 50; ++code)
    EXPECT_NE(enumName(static_cast<OperationCode>(code)), nullptr) << code;
  EXPECT_EQ(enumName(static_cast<OperationCode>(51)), nullptr) << "custom operators have no name";
}

std::vector<std::string> seenAssertions;
void recordAssertion(const char* expression, const char*) { seenAssertions.push_back(expression); }

TEST(AssertionDeathTest, InvalidOperationAndMissingImplementation) {
  EXPECT_DEATH(Operation(OperationCode::Invalid, num(L"1"), num(L"2")),
               "operation != OperationCode::Invalid.*AST");
  EXPECT_DEATH(Operation(OperationCode::Invalid, std::vector<ExpressionNode>{}),
               "operation != OperationCode::Invalid.*AST");
  EXPECT_DEATH(Node().check(), "mImpl.*AST");
}

TEST(Assertion, InvalidOperationIsStillBuilt) {
  seenAssertions.clear();
  auto previous = setAssertionHandler(&recordAssertion);
  const Operation op(OperationCode::Invalid, num(L"1"), num(L"2"));
  setAssertionHandler(previous);
  EXPECT_EQ(seenAssertions, std::vector<std::string>{"operation != OperationCode::Invalid"});
  EXPECT_EQ(op.operands.size(), 2u);
}

} // namespace
} // namespace velmor::sql::ast::test
