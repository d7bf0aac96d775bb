// One builder writing many trees in turn: the one-pass writer keeps its buffer and work lists
// between calls, so each text must be exactly that tree's, whatever came before it (a longer
// text, a tree it gave up on halfway, a text past the buffer it kept).
#include <velmor/sql/host/Precedence.h>

#include <velmor/sql/Assert.h>
#include <velmor/sql/builder/RenameTableBuilder.h>
#include <velmor/sql/builder/SqlStringBuilder.h>
#include <velmor/sql/parser/SqlParser.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace velmor::sql {
namespace {

using namespace ast;

class FragmentBuilder : public SqlStringBuilder {
public:
  using SqlStringBuilder::SqlStringBuilder;
};
class FragmentRenamer : public RenameTableBuilder {
public:
  using RenameTableBuilder::RenameTableBuilder;
};

Node parse(const std::string& text) {
  const ParseContext context;
  SqlParser parser(context);
  EXPECT_TRUE(parser.parse(text)) << text;
  return parser.result;
}

std::string orChain(int terms) {
  std::string text = "SELECT a FROM t WHERE a = 0";
  for (int i = 1; i < terms; ++i) text += " OR a = " + std::to_string(i);
  return text;
}

std::string nested(int depth) {
  std::string text;
  for (int i = 0; i < depth; ++i) text += "SELECT a FROM (";
  text += "SELECT a FROM t WHERE b IN (1, 2)";
  for (int i = 0; i < depth; ++i) text += ") AS q" + std::to_string(i) + " WHERE a > " + std::to_string(i);
  return text;
}

// A chain of ORs whose innermost right operand is a unary operator the writer reports: the
// one-pass writer gives up with links of the chain on its work list.
Node chainWithFault() {
  auto column = makeNode<ExpressionNode>(ColumnReference{L"", L"a"});
  ExpressionNode chain = makeNode<ExpressionNode>(
      Operation(OperationCode::Or, column, makeNode<ExpressionNode>(Operation(OperationCode::Multiply, std::vector<ExpressionNode>{column}))));
  for (int i = 0; i < 3; ++i) chain = makeNode<ExpressionNode>(Operation(OperationCode::Or, chain, column));
  return chain;
}

void ignoreAssertion(const char*, const char*) {}

TEST(OnePassTest, EachTextIsThatTreesWhateverCameBefore) {
  const std::vector<Node> trees = {
      parse(orChain(400)),  // past the buffer kept at first
      parse("SELECT a FROM t"),
      parse(nested(30)),
      chainWithFault(),
      parse("SELECT a FROM t WHERE a = 1 OR b = 2 OR c = 3"),
      parse(nested(2)),
      makeEmptyNode(),
      parse("SELECT b FROM u"),
      parse(orChain(3)),
  };
  const velmor::sql::host::GrammarPrecedence context;
  const auto previous = setAssertionHandler(ignoreAssertion);
  for (const StringBuildContext* ctx : {static_cast<const StringBuildContext*>(&context), static_cast<const StringBuildContext*>(nullptr)}) {
    SqlStringBuilder builder(ctx);
    RenameTableBuilder renamer(ctx, L"t", L"order");
    for (std::size_t i = 0; i < trees.size(); ++i) {
      testing::internal::CaptureStderr();
      const std::wstring text = builder.buildString(trees[i]);
      const std::wstring renamed = renamer.buildString(trees[i]);
      const std::wstring expected = FragmentBuilder(ctx).buildString(trees[i]);
      const std::wstring expectedRenamed = FragmentRenamer(ctx, L"t", L"order").buildString(trees[i]);
      testing::internal::GetCapturedStderr();
      EXPECT_EQ(text, expected) << "tree " << i;
      EXPECT_EQ(renamed, expectedRenamed) << "tree " << i;
    }
  }
  setAssertionHandler(previous);
}

TEST(OnePassTest, FaultsAreReportedOnceAsTheFragmentWalkReportsThem) {
  const auto previous = setAssertionHandler(ignoreAssertion);
  SqlStringBuilder builder(nullptr);
  testing::internal::CaptureStderr();
  const std::wstring text = builder.buildString(chainWithFault());
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Unhandled unary operation: 34\n");
  EXPECT_EQ(text, L"(((a OR ) OR a) OR a) OR a");
  setAssertionHandler(previous);
}

} // namespace
} // namespace velmor::sql
