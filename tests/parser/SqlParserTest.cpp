// SqlParser's contract around the grammar: results, error lists, reuse, deep and bad input.
#include <velmor/sql/parser/SqlParser.h>

#include <gtest/gtest.h>

#include <random>
#include <stdexcept>
#include <string>

namespace velmor::sql {
namespace {

class SqlParserTest : public ::testing::Test {
protected:
  ParseContext mContext;
  SqlParser mParser{mContext};
};

TEST_F(SqlParserTest, FailedParseLeavesAnEmptyNodeAndOneError) {
  EXPECT_FALSE(mParser.parse("SELECT 1"));
  EXPECT_TRUE(mParser.result.isNull());
  ASSERT_NE(mParser.result.mImpl, nullptr);  // an EmptyNode, not an empty handle
  ASSERT_EQ(mParser.errors.size(), 1u);
  const auto* error = dynamic_cast<const UnexpectedLexeme*>(mParser.errors[0].get());
  ASSERT_NE(error, nullptr);
  EXPECT_EQ(error->line, 1u);
  EXPECT_EQ(error->column, 9u);
  EXPECT_EQ(error->text, "syntax error, unexpected T_TERMINATION, expecting T_FROM or ','");
  EXPECT_EQ(error->type(), SqlErrorType::UnexpectedLexeme);

  EXPECT_TRUE(mParser.parse("SELECT a FROM t"));
  EXPECT_TRUE(mParser.errors.empty());
  EXPECT_FALSE(mParser.result.isNull());
}

TEST_F(SqlParserTest, ClearKeepsHandedOutTrees) {
  ASSERT_TRUE(mParser.parse("a + 1"));
  const ast::Node tree = mParser.result;
  mParser.clear();
  EXPECT_TRUE(mParser.result.isNull());
  EXPECT_FALSE(tree.isNull());
  EXPECT_TRUE(tree.isExpression());
}

TEST_F(SqlParserTest, ErrorPositionsFollowLinesAndTabs) {
  EXPECT_FALSE(mParser.parse("SELECT a\nFROM t\n  WHERE"));
  ASSERT_EQ(mParser.errors.size(), 1u);
  EXPECT_STREQ(mParser.errors[0]->what(), "syntax error, unexpected T_TERMINATION at 3:8");
  EXPECT_FALSE(mParser.parse("SELECT\tFROM t"));
  EXPECT_STREQ(mParser.errors[0]->what(), "syntax error, unexpected T_FROM at 1:9");
}

TEST_F(SqlParserTest, DebugTraceWritesTheTokens) {
  EXPECT_FALSE(mParser.debugTrace);
  mParser.debugTrace = true;
  ::testing::internal::CaptureStderr();
  EXPECT_TRUE(mParser.parse("SELECT a FROM t"));
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "SELECT \nIDENTIFIER a\nFROM \nIDENTIFIER t\n<TERMINATION> \n");
}

TEST_F(SqlParserTest, TextAfterNulIsNotRead) {
  EXPECT_TRUE(mParser.parse(std::string("SELECT a FROM t \0 garbage", 25)));
  // The name under way at the NUL is dropped with it.
  EXPECT_FALSE(mParser.parse(std::string("SELECT a FROM t\0", 16)));
  EXPECT_STREQ(mParser.errors[0]->what(), "syntax error, unexpected T_TERMINATION, expecting T_IDENTIFIER or '(' at 1:15");
}

TEST_F(SqlParserTest, TooLongLexemePassesThrough) {
  const std::string text = "'" + std::string(200000, 'x') + "'";
  EXPECT_THROW(mParser.parse(text), std::runtime_error);
}

TEST_F(SqlParserTest, DeepInputGrowsTheStack) {
  // Unclosed parentheses: a deep stack that ends in an error and is unwound without recursion.
  EXPECT_FALSE(mParser.parse(std::string(9000, '(') + "a"));
  // The list after a default reduction: only the row of the state where the error shows.
  EXPECT_STREQ(mParser.errors[0]->what(), "syntax error, unexpected T_TERMINATION, expecting ',' at 1:9002");
  // Balanced parentheses leave no trace, so the tree stays flat.
  EXPECT_TRUE(mParser.parse(std::string(9000, '(') + "a" + std::string(9000, ')')));
}

TEST_F(SqlParserTest, BadTextsNeverThrow) {
  std::mt19937 random(7);
  const std::string pieces[] = {"SELECT", "FROM", "(", ")", ",", "a", "1", "'s'", "=", "AND", "NOT", "BETWEEN",
                                "IN", "CASE", "WHEN", "END", ".", "*", "-", "\x01", "\xff", ":", "UNION", "JOIN"};
  for (int round = 0; round < 2000; ++round) {
    std::string text;
    const int length = static_cast<int>(random() % 12);
    for (int i = 0; i < length; ++i) text += pieces[random() % std::size(pieces)] + " ";
    EXPECT_NO_THROW(mParser.parse(text)) << text;
    EXPECT_EQ(mParser.errors.empty(), !mParser.result.isNull()) << text;
    EXPECT_LE(mParser.errors.size(), 1u) << text;
  }
}

} // namespace
} // namespace velmor::sql
