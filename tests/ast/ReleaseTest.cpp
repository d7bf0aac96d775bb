// Releasing trees far deeper than any stack allows, shared subtrees, and release on many threads.
#include "StackThread.h"
#include "TreeTestSupport.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

namespace velmor::sql::ast::test {
namespace {

using velmor::sql::test::runWithStack;

// A small stack: the release must not depend on the stack growing with the depth.
constexpr std::size_t kSmallStack = 256u << 10;
constexpr int kDeep = 1'000'000;

ExpressionNode leaf() { return makeNode<ExpressionNode>(Number{NumberKind::Integer, L"1"}); }

// One level of a chain: a parent whose only dying child is `below`, reached through one of the
// handle fields of the record kinds (plain fields, vectors, records held by value).
using Wrap = std::function<Node(Node)>;

ExpressionNode expr(Node n) { return ExpressionNode(std::move(n.mImpl)); }
QueryExpressionNode query(Node n) { return QueryExpressionNode(std::move(n.mImpl)); }

const std::vector<std::pair<const char*, Wrap>>& wraps() {
  static const std::vector<std::pair<const char*, Wrap>> all = {
      {"unary minus", [](Node n) { return makeNode(Operation(OperationCode::Minus, {expr(std::move(n))})); }},
      {"left-deep plus",
       [](Node n) { return makeNode(Operation(OperationCode::Plus, expr(std::move(n)), leaf())); }},
      {"function argument", [](Node n) { return makeNode(Function{L"f", false, {}, {leaf(), expr(std::move(n))}}); }},
      {"subquery in FROM",
       [](Node n) {
         QuerySpecification q;
         q.from.push_back(query(std::move(n)));
         return makeNode(DerivedTable{makeNode<QueryExpressionNode>(std::move(q)), L"t"});
       }},
      {"ORDER BY key",
       [](Node n) {
         QuerySpecification q;
         q.orderBy.push_back(SortSpecification{expr(std::move(n)), true, NullOrdering::Unspecified});
         return makeNode(q);
       }},
      {"WHERE", [](Node n) {
         QuerySpecification q;
         q.where = expr(std::move(n));
         return makeNode(q);
       }},
      {"join left", [](Node n) { return makeNode(JoinNode{Join::Inner, query(std::move(n)), table(L"t"), makeEmptyNode()}); }},
      {"join condition",
       [](Node n) { return makeNode(JoinNode{Join::Inner, table(L"a"), table(L"b"), makeNode(JoinCondition{expr(std::move(n))})}); }},
      {"union right", [](Node n) { return makeNode(QueryOperation{QueryOperationCode::Union, true, table(L"t"), query(std::move(n))}); }},
      {"row value", [](Node n) { return makeNode(RowValueExpression{{expr(std::move(n))}}); }},
      {"row list", [](Node n) { return makeNode(RowValueExpressionList{{expr(std::move(n))}}); }},
      {"select list", [](Node n) { return makeNode(DerivedColumn{expr(std::move(n)), L""}); }},
      {"INSERT source", [](Node n) { return makeNode(InsertStatement{L"t", FromSource{{}, Overriding::None, std::move(n)}}); }},
      {"UPDATE value", [](Node n) { return makeNode(UpdateStatement{L"t", {SetClause{L"c", expr(std::move(n))}}, {}}); }},
      {"DELETE WHERE", [](Node n) { return makeNode(DeleteStatement{L"t", expr(std::move(n))}); }},
  };
  return all;
}

// A chain of `depth` levels over `bottom`, cycling through the given wraps.
Node chain(Node bottom, int depth, const std::vector<const Wrap*>& levels) {
  for (int i = 0; i < depth; ++i) bottom = (*levels[static_cast<std::size_t>(i) % levels.size()])(std::move(bottom));
  return bottom;
}

TEST(Release, DeepChainsOnASmallStack) {
  // Every kind alone 100,000 deep, far beyond what recursion fits in the stack, then all of
  // them in turn a million deep.
  std::vector<const Wrap*> all;
  for (const auto& [name, wrap] : wraps()) {
    SCOPED_TRACE(name);
    all.push_back(&wrap);
    runWithStack(kSmallStack, [&] {
      Node bottom = leaf();
      std::weak_ptr<NodeInterface> watch = bottom.mImpl;
      Node root = chain(std::move(bottom), kDeep / 10, {&wrap});
      root = Node();
      EXPECT_TRUE(watch.expired()) << "the whole chain is released";
    });
  }
  SCOPED_TRACE("every kind in turn");
  runWithStack(kSmallStack, [&] {
    Node bottom = leaf();
    std::weak_ptr<NodeInterface> watch = bottom.mImpl;
    { Node root = chain(std::move(bottom), kDeep, all); }
    EXPECT_TRUE(watch.expired());
  });
}

TEST(Release, SharedSubtreesOutliveTheTree) {
  runWithStack(kSmallStack, [] {
    const std::vector<const Wrap*> minus = {&wraps()[0].second};
    Node bottom = leaf();
    std::weak_ptr<NodeInterface> watch = bottom.mImpl;
    Node middle = chain(std::move(bottom), kDeep / 2, minus);
    // Two trees over one subtree, and a second handle on the subtree's root.
    Node first = chain(middle, kDeep / 2, minus);
    Node second = chain(middle, 10, minus);
    Node kept = middle;
    middle = Node();
    first = Node();
    EXPECT_EQ(kept.mImpl.use_count(), 2) << "the subtree lost only the count of the first tree";
    second = Node();
    ASSERT_EQ(kept.mImpl.use_count(), 1);
    int depth = 0;
    for (Node n = kept; nodeIs<Operation>(n); n = getNodeValue<Operation>(n).operands[0]) ++depth;
    EXPECT_EQ(depth, kDeep / 2) << "the shared subtree is whole";
    EXPECT_FALSE(watch.expired());
    kept = Node();
    EXPECT_TRUE(watch.expired());
  });
}

TEST(Release, ManyThreadsAtOnce) {
  // Each thread releases a tree of its own over one shared deep subtree; whichever thread drops
  // the last handle releases the subtree, on its own work list.
  const std::vector<const Wrap*> minus = {&wraps()[0].second};
  Node bottom = leaf();
  std::weak_ptr<NodeInterface> watch = bottom.mImpl;
  Node shared;
  runWithStack(kSmallStack, [&] { shared = chain(std::move(bottom), kDeep, minus); });
  constexpr int kThreads = 8;
  std::vector<Node> trees;
  for (int i = 0; i < kThreads; ++i) trees.push_back(chain(shared, 100'000, minus));
  shared = Node();
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i)
    threads.emplace_back([&trees, i] {
      runWithStack(kSmallStack, [&] {
        Node own = chain(leaf(), 100'000, {&wraps()[3].second});
        trees[static_cast<std::size_t>(i)] = Node();
        own = Node();
      });
    });
  for (auto& thread : threads) thread.join();
  EXPECT_TRUE(watch.expired());
}

} // namespace
} // namespace velmor::sql::ast::test
