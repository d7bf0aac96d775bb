// The walk order, its flags, and the children of each record kind.
#include "TreeTestSupport.h"
#include "support/Golden.h"

#include <velmor/sql/parser/SqlParser.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

namespace velmor::sql::ast::test {
namespace {

using testing::ElementsAreArray;
using Labels = std::vector<std::string>;

Node plus(ExpressionNode a, ExpressionNode b) {
  return makeNode(Operation(OperationCode::Plus, std::move(a), std::move(b)));
}

// data/ast/walks.golden: "walk [skip=LABEL|stop=LABEL] SQL" gives the labels of a walk over the
// tree of SQL, skipping or stopping at LABEL ('_' for a blank); "children SQL" the labels of the
// root's children.
std::string walked(const std::string& input) {
  std::istringstream in(input);
  std::string mode, word;
  in >> mode;
  Recorder walker;
  std::getline(in >> std::ws, word);
  for (const char* flag : {"skip=", "stop="}) {
    if (word.rfind(flag, 0) != 0) continue;
    std::string label = word.substr(5, word.find(' ') - 5);
    std::replace(label.begin(), label.end(), '_', ' ');
    (flag[1] == 'k' ? walker.mSkipAt : walker.mStopAt) = label;
    word.erase(0, word.find(' ') + 1);
  }
  const ParseContext context;
  SqlParser parser(context);
  if (!parser.parse(word)) return "does not parse";
  if (mode == "walk") walker.doVisit(parser.result);
  const auto seen = mode == "walk" ? walker.mSeen : labels(children(parser.result));
  std::string out = walker.mFaults ? "faults" : "";
  for (const std::string& label : seen) out += (out.empty() ? "" : "\n") + label;
  return out;
}

const bool registered = (sql::test::registerGolden("Walks", "ast/walks.golden", walked), true);

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

// Trees that no SQL text gives.
TEST(ChildExtractor, HandMadeTrees) {
  EXPECT_TRUE(children(makeEmptyNode()).empty());
  EXPECT_EQ(labels(children(makeNode(FromSource{{}, Overriding::None, makeEmptyNode()}))), Labels{"null"});
  EXPECT_EQ(labels(children(makeNode(JoinNode{Join::Cross, table(L"l"), table(L"r"), makeEmptyNode()}))),
            (Labels{"l", "r", "null"}));
}

TEST(ChildExtractor, FreshNodesForRecordsHeldByValue) {
  // A by-value field gets a new node on every call: never the same node by identity.
  const Node insert = makeNode(InsertStatement{L"t", FromSource{}});
  EXPECT_NE(children(insert)[0].mImpl, children(insert)[0].mImpl);
}

} // namespace
} // namespace velmor::sql::ast::test
