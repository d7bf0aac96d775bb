// Context casts and aggregate detection over hand-built statements.
#include <velmor/sql/validation/ContextChecks.h>

#include "ValidationTestSupport.h"

#include <gtest/gtest.h>

#include <functional>

namespace velmor::sql::validation_test {
namespace {

// The sample host, counting its function lookups.
class CountingHost : public sample::SampleHost {
public:
  std::shared_ptr<FunctionInfo> function(const std::wstring& name) const override {
    ++mLookups;
    return SampleHost::function(name);
  }
  mutable int mLookups = 0;
};

ExpressionNode nonsenseCast() { return cast(col(L"a"), col(L"nonsense")); }
Select fromT(std::vector<Node> items) { return Select(std::move(items)).from({tbl(L"t")}); }

struct ContextCase {
  const char* name;
  std::function<Select()> query;
  bool context;
};

const ContextCase contextCases[] = {
    {"cast to a type", [] { return fromT({item(cast(col(L"a"), col(L"integer")))}); }, false},
    {"cast to a sized type", [] { return fromT({item(cast(col(L"a"), fn(L"varchar", {num(L"20")})))}); }, false},
    {"cast to an unknown word", [] { return fromT({item(nonsenseCast())}); }, true},
    {"cast to an unknown sized word", [] { return fromT({item(cast(col(L"a"), fn(L"nonsense", {num(L"1")})))}); }, true},
    {"cast to a qualified name", [] { return fromT({item(col(L"a"))}).where(eq(cast(col(L"a"), col(L"t", L"x")), num(L"1"))); }, true},
    {"cast to a literal", [] { return fromT({item(cast(col(L"a"), num(L"5")))}); }, true},
    {"cast with too many sizes", [] { return fromT({item(cast(col(L"a"), fn(L"date", {num(L"1")})))}); }, true},
    {"cast inside the value of a cast", [] { return fromT({item(cast(nonsenseCast(), col(L"integer")))}); }, true},
    {"opaque function in a select list is looked into", [] { return fromT({item(fn(L"objectinfo", {nonsenseCast()}))}); }, true},
    {"opaque function outside a select list hides its arguments",
     [] { return fromT({item(col(L"a"))}).where(eq(fn(L"ObjectInfo", {nonsenseCast()}), num(L"1"))); }, false},
    {"ordinary function outside a select list", [] { return fromT({item(col(L"a"))}).where(eq(fn(L"upper", {nonsenseCast()}), num(L"1"))); }, true},
    {"aggregate function outside a select list", [] { return fromT({item(col(L"a"))}).having(eq(fn(L"count", {nonsenseCast()}), num(L"1"))); }, true},
    {"function unknown to the host is walked like an ordinary one",
     [] { return fromT({item(col(L"a"))}).where(eq(fn(L"nofunction", {nonsenseCast()}), num(L"1"))); }, true},
    {"subquery in a select list has its own clauses",
     [] { return fromT({item(fromT({item(col(L"a"))}).where(fn(L"objectinfo", {nonsenseCast()})).node())}); }, false},
    {"subquery's own select list",
     [] { return fromT({item(fromT({item(fn(L"objectinfo", {nonsenseCast()}))}).node())}); }, true},
    {"back in the select list after a subquery",
     [] { return fromT({item(fromT({item(col(L"a"))}).node()), item(fn(L"objectinfo", {nonsenseCast()}))}); }, true},
    {"ORDER BY", [] { return fromT({item(col(L"a"))}).orderBy({col(L"a"), nonsenseCast()}); }, true},
    {"GROUP BY", [] { return fromT({item(col(L"a"))}).groupBy({nonsenseCast(), col(L"a")}); }, true},
    {"HAVING", [] { return fromT({item(col(L"a"))}).having(nonsenseCast()); }, true},
    {"derived table in FROM", [] { return Select({star()}).from({fromT({item(nonsenseCast(), L"x")}).derived(L"d")}); }, true},
    {"join condition",
     [] {
       return Select({star()}).from({ast::makeNode<QueryExpressionNode>(ast::JoinNode{
           ast::Join::Inner, tbl(L"t"), tbl(L"u"), ast::makeNode(ast::JoinCondition{eq(nonsenseCast(), num(L"1"))})})});
     },
     true},
    {"natural join without a specification",
     [] { return Select({star()}).from({ast::makeNode<QueryExpressionNode>(ast::JoinNode{ast::Join::Inner, tbl(L"t"), tbl(L"u"), ast::makeEmptyNode()})}); },
     false},
    {"row and list values",
     [] { return fromT({item(col(L"a"))}).where(op(Op::In, {col(L"a"), ast::makeNode<ExpressionNode>(ast::RowValueExpressionList{{num(L"1"), nonsenseCast()}})})); },
     true},
    {"query operation in an expression",
     [] {
       return fromT({item(col(L"a"))}).where(op(Op::Exists, {ast::makeNode<ExpressionNode>(ast::QueryOperation{
           ast::QueryOperationCode::Union, true, ast::makeNode<QueryExpressionNode>(fromT({star()}).q),
           ast::makeNode<QueryExpressionNode>(fromT({item(nonsenseCast())}).q)})}));
     },
     true},
};

class ContextQueries : public testing::TestWithParam<ContextCase> {};

TEST_P(ContextQueries, IsContext) {
  const sample::SampleHost host;
  ContextCheckVisitor visitor(host);
  EXPECT_EQ(visitor.isContext(GetParam().query().q), GetParam().context) << GetParam().name;
  EXPECT_FALSE(visitor.inSelect());
}

INSTANTIATE_TEST_SUITE_P(ContextCheck, ContextQueries, testing::ValuesIn(contextCases),
                         [](const auto& info) { return "case" + std::to_string(info.index); });

TEST(ContextCheck, AnAnswerIsFinalForTheObject) {
  const sample::SampleHost host;
  ContextCheckVisitor visitor(host);
  EXPECT_FALSE(visitor.isContext(fromT({item(col(L"a"))}).q));
  EXPECT_TRUE(visitor.isContext(fromT({item(nonsenseCast())}).q));
  EXPECT_TRUE(visitor.isContext(fromT({item(col(L"a"))}).q));
}

TEST(ContextCheck, StatementsAndTheHostCalls) {
  CountingHost host;
  const auto clean = fromT({item(col(L"a"))}).q;
  {
    // The select list never asks the host; the opaque call outside it does, once.
    ContextCheckVisitor visitor(host);
    visitor.visit(update(L"t", {{L"a", fn(L"upper", {col(L"b")})}}, fn(L"objectinfo", {nonsenseCast()})));
    EXPECT_FALSE(visitor.isContext(fromT({item(fn(L"upper", {col(L"a")}))}).q));
    EXPECT_EQ(host.mLookups, 2);
  }
  {
    // Nothing is looked at once a context cast is found.
    ContextCheckVisitor visitor(host);
    host.mLookups = 0;
    visitor.visit(update(L"t", {{L"a", nonsenseCast()}}, fn(L"upper", {col(L"b")})));
    EXPECT_EQ(host.mLookups, 0);
    EXPECT_TRUE(visitor.isContext(clean));
  }
  {
    ContextCheckVisitor visitor(host);
    visitor.visit(ast::DeleteStatement{L"t", nonsenseCast()});
    EXPECT_TRUE(visitor.isContext(clean));
  }
  {
    ContextCheckVisitor visitor(host);
    visitor.visit(ast::InsertStatement{L"t", ast::FromSource{{}, ast::Overriding::None, fromT({item(nonsenseCast())}).node()}});
    EXPECT_TRUE(visitor.isContext(clean));
  }
  {
    ContextCheckVisitor visitor(host);
    visitor.visit(ast::InsertStatement{L"t", ast::FromSource{{}, ast::Overriding::None, ast::makeEmptyNode()}});
    visitor.visit(ast::DeleteStatement{L"t", ast::makeEmptyNode<ExpressionNode>()});
    EXPECT_FALSE(visitor.isContext(clean));
  }
}

TEST(ContextCheck, ASizeThatIsNoNumberPassesThrough) {
  const sample::SampleHost host;
  ContextCheckVisitor visitor(host);
  EXPECT_THROW(visitor.isContext(fromT({item(cast(col(L"a"), fn(L"varchar", {col(L"b")})))}).q), ast::BadNodeTypeException);
}

struct AggregateCase {
  const char* name;
  std::function<Node()> node;
  bool aggregate;
};

ExpressionNode grouped() { return Select({item(col(L"b"))}).from({tbl(L"u")}).groupBy({col(L"b")}).node(); }

const AggregateCase aggregateCases[] = {
    {"aggregate call", [] { return fn(L"count", {col(L"a")}); }, true},
    {"plain expression", [] { return op(Op::Plus, {col(L"a"), num(L"1")}); }, false},
    {"aggregate below an ordinary call", [] { return fn(L"abs", {fn(L"SUM", {col(L"a")})}); }, true},
    {"unknown function", [] { return fn(L"nofunction", {col(L"a")}); }, false},
    {"opaque function", [] { return fn(L"objectinfo", {col(L"a"), num(L"1")}); }, false},
    {"the query itself is walked", [] { return Select({item(fn(L"max", {col(L"a")}))}).from({tbl(L"t")}).node(); }, true},
    {"a grouped query", [] { return Select({item(col(L"a"))}).from({tbl(L"t")}).groupBy({col(L"a")}).node(); }, true},
    {"aggregate in a nested query", [] { return op(Op::In, {col(L"a"), fromT({item(fn(L"count", {col(L"b")}))}).node()}); }, false},
    {"grouped nested query", [] { return op(Op::In, {col(L"a"), grouped()}); }, true},
    {"nested query in a query's select list", [] { return Select({item(fromT({item(fn(L"count"))}).node())}).from({tbl(L"t")}).node(); }, false},
    {"grouped query in a query's select list", [] { return Select({item(grouped())}).from({tbl(L"t")}).node(); }, true},
    {"aggregate after a nested query", [] { return op(Op::Plus, {fromT({item(col(L"b"))}).node(), fn(L"avg", {col(L"a")})}); }, true},
};

class AggregateQueries : public testing::TestWithParam<AggregateCase> {};

TEST_P(AggregateQueries, IsAggregate) {
  const sample::SampleHost host;
  AggregateQueryDetector detector(host);
  EXPECT_EQ(detector.isAggregate(GetParam().node()), GetParam().aggregate) << GetParam().name;
}

INSTANTIATE_TEST_SUITE_P(AggregateQueryDetector, AggregateQueries, testing::ValuesIn(aggregateCases),
                         [](const auto& info) { return "case" + std::to_string(info.index); });

TEST(AggregateQueryDetector, StopsAtTheFirstAggregateAndThrowsOnAnEmptyHandle) {
  CountingHost host;
  AggregateQueryDetector detector(host);
  EXPECT_TRUE(detector.isAggregate(op(Op::Plus, {fn(L"upper", {col(L"a")}), fn(L"count")})));
  // The walk takes the last operand first and stops there.
  EXPECT_EQ(host.mLookups, 1);
  EXPECT_THROW(detector.isAggregate(Node()), ast::NullNodeException);
}

} // namespace
} // namespace velmor::sql::validation_test
