// The walk order, its flags, and the children of each record kind.
#include "TreeTestSupport.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

namespace velmor::sql::ast::test {
namespace {

using testing::ElementsAreArray;
using Labels = std::vector<std::string>;

Node plus(ExpressionNode a, ExpressionNode b) {
  return makeNode(Operation(OperationCode::Plus, std::move(a), std::move(b)));
}

// Every clause filled once, so that the order of the clauses shows.
Node fullQuery() {
  QuerySpecification q;
  q.from = {table(L"t1"), table(L"t2")};
  q.selectList = {selected(col(L"a")), selected(col(L"b"))};
  q.into = makeNode<TypeNode<IntoClause>>(IntoClause{L"x", false});
  q.where = col(L"w");
  q.groupBy = {col(L"g")};
  q.having = col(L"h");
  q.orderBy = {SortSpecification{col(L"s"), true, NullOrdering::Unspecified}};
  q.limit.offset = Number{NumberKind::Integer, L"10"};
  return makeNode(std::move(q));
}

Node queryWithoutLimit() {
  QuerySpecification q;
  q.selectList = {selected(col(L"a"))};
  q.where = makeEmptyNode<ExpressionNode>();
  q.having = makeEmptyNode<ExpressionNode>();
  q.into = makeEmptyNode<TypeNode<IntoClause>>();
  return makeNode(std::move(q));
}

// SELECT d FROM t4, (SELECT DISTINCT c FROM t3) dt
Node nestedQuery() {
  QuerySpecification inner;
  inner.distinct = true;
  inner.from = {table(L"t3")};
  inner.selectList = {selected(col(L"c"))};
  QuerySpecification outer;
  outer.from = {table(L"t4"),
                makeNode<QueryExpressionNode>(DerivedTable{makeNode<QueryExpressionNode>(inner), L"dt"})};
  outer.selectList = {selected(col(L"d"))};
  return makeNode(std::move(outer));
}

struct WalkCase {
  const char* name;
  std::function<Node()> tree;
  std::string skipAt;
  std::string stopAt;
  Labels expected;
};

class Walk : public testing::TestWithParam<WalkCase> {};

TEST_P(Walk, VisitsInOrder) {
  const auto& c = GetParam();
  Recorder walker;
  walker.mSkipAt = c.skipAt;
  walker.mStopAt = c.stopAt;
  walker.doVisit(c.tree());
  EXPECT_THAT(walker.mSeen, ElementsAreArray(c.expected));
  EXPECT_EQ(walker.mFaults, 0);
}

INSTANTIATE_TEST_SUITE_P(
    Traversal, Walk,
    testing::Values(
        WalkCase{"PlusRightBeforeLeft", [] { return plus(col(L"a"), col(L"b")); }, "", "",
                 {"Operation", "b", "a"}},
        WalkCase{"SubtreeFinishedBeforeLeftNeighbour",
                 [] { return plus(plus(col(L"a"), col(L"b")).toExpression(), col(L"c")); }, "", "",
                 {"Operation", "c", "Operation", "b", "a"}},
        WalkCase{"QueryClausesReversed", fullQuery, "", "",
                 {"QuerySpecification", "LimitSpecification", "SortSpecification", "s", "h", "g",
                  "w", "IntoClause", "DerivedColumn", "b", "DerivedColumn", "a", "t2", "t1"}},
        WalkCase{"NoLimitChildWithoutLimitOrOffset", queryWithoutLimit, "", "",
                 {"QuerySpecification", "DerivedColumn", "a"}},
        WalkCase{"SkipSparesOnlyTheInnerQuery", nestedQuery, "QuerySpecification distinct", "",
                 {"QuerySpecification", "DerivedColumn", "d", "dt", "QuerySpecification distinct",
                  "t4"}},
        WalkCase{"SkipAtLeafLeavesNextNodeWalked", [] { return plus(col(L"a"), col(L"b")); }, "b",
                 "", {"Operation", "b", "a"}},
        WalkCase{"StopAtRootVisitsNoChild", nestedQuery, "", "QuerySpecification",
                 {"QuerySpecification"}},
        WalkCase{"StopDropsTheRest", nestedQuery, "", "dt",
                 {"QuerySpecification", "DerivedColumn", "d", "dt"}},
        WalkCase{"DeleteWithoutWherePassesEmptyNode",
                 [] { return makeNode(DeleteStatement{L"t", makeEmptyNode<ExpressionNode>()}); }, "",
                 "", {"DeleteStatement"}}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(Traversal, FlagsStartClearOnEveryWalk) {
  Recorder walker;
  walker.mStopAt = "Operation";
  walker.doVisit(plus(col(L"a"), col(L"b")));
  EXPECT_TRUE(walker.inSkip()); // the stop holds until the next walk
  walker.mStopAt.clear();
  walker.mSeen.clear();
  walker.doVisit(plus(col(L"a"), col(L"b")));
  EXPECT_THAT(walker.mSeen, ElementsAreArray(Labels{"Operation", "b", "a"}));
  EXPECT_FALSE(walker.inSkip());
}

// A walker that starts a second walk on itself when it meets "b", or queues an extra node.
class Nested final : public Recorder {
public:
  void seen(const std::string& label) override {
    Recorder::seen(label);
    if (label == "b" && mReenter) doVisit(col(L"z"));
    if (label == "b" && !mReenter) processNode(col(L"extra"));
  }
  bool mReenter = true;
};

// The work list is shared: the inner walk takes over what the outer one still had queued.
TEST(Traversal, WalkFromInsideAVisitTakesOverTheOuterWorkList) {
  Nested walker;
  walker.doVisit(plus(col(L"a"), col(L"b")));
  EXPECT_THAT(walker.mSeen, ElementsAreArray(Labels{"Operation", "b", "z", "a"}));
}

TEST(Traversal, ProcessNodeIsVisitedNext) {
  Nested walker;
  walker.mReenter = false;
  walker.doVisit(plus(col(L"a"), col(L"b")));
  EXPECT_THAT(walker.mSeen, ElementsAreArray(Labels{"Operation", "b", "extra", "a"}));
}

TEST(Traversal, EmptyHandleInTheTreeThrows) {
  Recorder walker;
  EXPECT_THROW(walker.doVisit(makeNode(DeleteStatement{L"t", ExpressionNode()})), NullNodeException);
  EXPECT_THROW(walker.doVisit(Node()), NullNodeException);
}

struct ChildrenCase {
  const char* name;
  std::function<Node()> tree;
  Labels expected;
};

class Children : public testing::TestWithParam<ChildrenCase> {};

TEST_P(Children, InOrder) {
  EXPECT_THAT(labels(children(GetParam().tree())), ElementsAreArray(GetParam().expected));
}

INSTANTIATE_TEST_SUITE_P(
    ChildExtractor, Children,
    testing::Values(
        ChildrenCase{"EmptyNode", [] { return makeEmptyNode(); }, {}},
        ChildrenCase{"QueryClauses", fullQuery,
                     {"t1", "t2", "DerivedColumn", "DerivedColumn", "IntoClause", "w", "g", "h",
                      "SortSpecification", "LimitSpecification"}},
        ChildrenCase{"DeleteKeepsNullWhere",
                     [] { return makeNode(DeleteStatement{L"t", makeEmptyNode<ExpressionNode>()}); },
                     {"null"}},
        ChildrenCase{"InsertSourceAsNewNode",
                     [] { return makeNode(InsertStatement{L"t", FromSource{{}, Overriding::None, col(L"q")}}); },
                     {"FromSource"}},
        ChildrenCase{"FromSourceKeepsNullSource",
                     [] { return makeNode(FromSource{{}, Overriding::None, makeEmptyNode()}); }, {"null"}},
        ChildrenCase{"JoinKeepsNullSpecification",
                     [] {
                       return makeNode(JoinNode{Join::Cross, table(L"l"), table(L"r"), makeEmptyNode()});
                     },
                     {"l", "r", "null"}},
        ChildrenCase{"UpdateClausesThenWhere",
                     [] {
                       return makeNode(UpdateStatement{
                           L"t", {SetClause{L"x", col(L"v1")}, SetClause{L"y", col(L"v2")}}, col(L"w")});
                     },
                     {"SetClause", "SetClause", "w"}},
        ChildrenCase{"UpdateWithoutWhere",
                     [] {
                       return makeNode(UpdateStatement{L"t", {SetClause{L"x", col(L"v")}},
                                                       makeEmptyNode<ExpressionNode>()});
                     },
                     {"SetClause"}}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(ChildExtractor, FreshNodesForRecordsHeldByValue) {
  // A by-value field gets a new node on every call: never the same node by identity.
  const Node insert = makeNode(InsertStatement{L"t", FromSource{}});
  EXPECT_NE(children(insert)[0].mImpl, children(insert)[0].mImpl);
}

} // namespace
} // namespace velmor::sql::ast::test
