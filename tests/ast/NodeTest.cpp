// Handles and their two null forms, one-kind access, Operation, isEqual, the fault message, names.
#include "TreeTestSupport.h"

#include <velmor/sql/Assert.h>

#include <gtest/gtest.h>

#include <functional>
#include <iostream>
#include <sstream>
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

struct NullFormCase {
  const char* name;
  Node node;
  bool isNull;
  bool isExpression;
  Outcome accept;       // Value: accepted without exception
  Outcome toExpression; // Value: gives a handle
  Outcome nodeIsNumber; // Value: answers false
  Outcome getNumber;    // Value: a default-made Number
};

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

class NullForms : public testing::TestWithParam<NullFormCase> {};

TEST_P(NullForms, Answer) {
  const auto& c = GetParam();
  EXPECT_EQ(c.node.isNull(), c.isNull);
  EXPECT_EQ(c.node.isExpression(), c.isExpression);
  Counter counter;
  EXPECT_EQ(outcomeOf([&] { c.node.accept(counter); }), c.accept);
  EXPECT_EQ(counter.mCalls, 0) << "a null node reaches no slot, not even faultAction";
  EXPECT_EQ(outcomeOf([&] { (void)c.node.toExpression(); }), c.toExpression);
  EXPECT_EQ(outcomeOf([&] { EXPECT_FALSE(nodeIs<Number>(c.node)); }), c.nodeIsNumber);
  EXPECT_EQ(outcomeOf([&] { EXPECT_TRUE(getNodeValue<Number>(c.node).text.empty()); }), c.getNumber);
}

INSTANTIATE_TEST_SUITE_P(
    Node, NullForms,
    testing::Values(
        NullFormCase{"EmptyHandle", Node(), true, false, Outcome::Null, Outcome::BadType,
                     Outcome::Null, Outcome::Null},
        NullFormCase{"EmptyNodeRecord", makeEmptyNode(), true, false, Outcome::Value,
                     Outcome::BadType, Outcome::Value, Outcome::Value}),
    [](const auto& info) { return std::string(info.param.name); });

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

struct OperationCase {
  const char* name;
  std::size_t operands;
  bool unary;
  const char* left; // "null" for an empty handle, "throws" for std::out_of_range
  const char* right;
};

class Operations : public testing::TestWithParam<OperationCase> {};

std::string describe(const std::function<ExpressionNode()>& get) {
  try {
    const ExpressionNode node = get();
    return node.mImpl ? label(node) : "null";
  } catch (const std::out_of_range&) {
    return "throws";
  }
}

TEST_P(Operations, Accessors) {
  const auto& c = GetParam();
  std::vector<ExpressionNode> operands;
  const wchar_t* names[] = {L"x", L"y", L"z"};
  for (std::size_t i = 0; i < c.operands; ++i) operands.push_back(num(names[i]));
  const Operation op(OperationCode::Not, operands);
  EXPECT_EQ(op.unary(), c.unary);
  EXPECT_EQ(describe([&] { return op.left(); }), c.left);
  EXPECT_EQ(describe([&] { return op.right(); }), c.right);
}

INSTANTIATE_TEST_SUITE_P(Operation, Operations,
                         testing::Values(OperationCase{"None", 0, false, "throws", "throws"},
                                         OperationCase{"One", 1, true, "null", "x"},
                                         OperationCase{"Two", 2, false, "x", "y"},
                                         OperationCase{"Three", 3, false, "x", "y"}),
                         [](const auto& info) { return std::string(info.param.name); });

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

struct NameCase {
  const char* actual;
  const char* expected; // nullptr: no name
};

TEST(EnumNames, NamesAndGaps) {
  const NameCase cases[] = {
      {enumName(OperationCode::Invalid), "Invalid"},
      {enumName(OperationCode::Plus), "Plus"},
      {enumName(OperationCode::NotEntirelyWithin), "NotEntirelyWithin"},
      {enumName(static_cast<OperationCode>(51)), nullptr},
      {enumName(static_cast<OperationCode>(-1)), nullptr},
      {enumName(Join::LeftOuter), "LeftOuter"},
      {enumName(NumberKind::Integer), "Integer"},
      {enumName(SetQuantifier::Unspecified), "Unspecified"},
      {enumName(NullOrdering::Last), "Last"},
      {enumName(static_cast<NullOrdering>(3)), nullptr},
      {enumName(Value::Default), "Default"},
      {enumName(Overriding::System), "System"},
      {enumName(Quantifier::Any), "Any"},
      {enumName(QueryOperationCode::Intersect), "Intersect"},
      {enumName(TernaryLogic::Unknown), "Unknown"},
      {recordName(makeNode(SetClause{})), "SetClause"},
      {recordName(makeEmptyNode()), "EmptyNode"},
      {recordName(Node()), nullptr},
  };
  for (const auto& c : cases) {
    if (c.expected == nullptr)
      EXPECT_EQ(c.actual, nullptr);
    else
      EXPECT_STREQ(c.actual, c.expected);
  }
  for (int code = 0; code <= 50; ++code)
    EXPECT_NE(enumName(static_cast<OperationCode>(code)), nullptr) << code;
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
