// One parser reads texts of every size in turn: what it keeps from parse to parse (its stacks,
// lists and notes) never changes a result, and a long text's names come from the text itself.
#include <velmor/sql/ast/Traversal.h>
#include <velmor/sql/ast/TreeShape.h>
#include <velmor/sql/parser/SqlParser.h>
#include <velmor/sql/parser/SourceRanges.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace velmor::sql {
namespace {

std::string repeat(const std::string& piece, int count) {
  std::string text;
  for (int i = 0; i < count; ++i) text += piece;
  return text;
}

std::string parentheses(int depth) { return repeat("(", depth) + "a" + repeat(")", depth); }

std::string inList(int values) {
  std::string text = "x IN (0";
  for (int i = 1; i < values; ++i) text += ", " + std::to_string(i);
  return text + ")";
}

// In this order: stacks beyond the parse function's own 200 entries, grown and reused; lists
// and notes beyond what the parser keeps, then small texts again; failures in between.
const std::vector<std::string> texts = {
    "SELECT a FROM t WHERE b = 1",
    parentheses(300),
    parentheses(9000),
    parentheses(250),
    "SELECT f(a, b, c), 'x''y' AS s FROM t ORDER BY 1 LIMIT 2 OFFSET 3",
    inList(20000),
    "SELECT a FROM t WHERE b IN (1, 2, 3)",
    parentheses(600) + " +",
    repeat("- ", 20000) + "a",
    "CASE WHEN a THEN 1 WHEN b THEN 2 ELSE 3 END",
    "SELECT FROM",
    parentheses(5000),
    "INSERT INTO t (a, b) VALUES (1, 2), (3, 4)",
};

std::string errorsOf(const SqlParser& parser) {
  std::string all;
  for (const auto& error : parser.errors) all += std::string(error->what()) + "\n";
  return all;
}

TEST(ParserReuse, EveryTextReadsAsAFreshParserReadsIt) {
  const ParseContext context;
  for (const bool ranges : {false, true}) {
    SqlParser reused(context);
    reused.keepSourceRanges = ranges;
    for (std::size_t i = 0; i < texts.size(); ++i) {
      SCOPED_TRACE(testing::Message() << "text " << i << (ranges ? " with ranges" : ""));
      SqlParser fresh(context);
      fresh.keepSourceRanges = ranges;
      ASSERT_EQ(reused.parse(texts[i]), fresh.parse(texts[i]));
      EXPECT_EQ(errorsOf(reused), errorsOf(fresh));
      EXPECT_TRUE(ast::sameTree(reused.result, fresh.result));
      if (ranges && fresh.sourceRanges) {
        ASSERT_TRUE(reused.sourceRanges);
        EXPECT_EQ(reused.sourceRanges->size(), fresh.sourceRanges->size());
        const SourceRange* mine = reused.sourceRanges->find(reused.result);
        const SourceRange* theirs = fresh.sourceRanges->find(fresh.result);
        ASSERT_EQ(mine == nullptr, theirs == nullptr);
        if (mine) {
          EXPECT_EQ(rangeText(*mine), rangeText(*theirs));
        }
      }
    }
  }
}

// A text longer than the scanner's window is read through it piece by piece: each name must
// still be the text's own, also one that a rule takes only after the window has moved on (the
// function's name, taken once its last argument is read).
TEST(ParserReuse, NamesOfATextLongerThanTheScannersWindow) {
  constexpr int arguments = 30000;
  std::string text = "SELECT first_function(c0";
  for (int i = 1; i < arguments; ++i) text += ", c" + std::to_string(i);
  text += ") AS after_window FROM t";
  ASSERT_GT(text.size(), 131072u);
  const ParseContext context;
  SqlParser parser(context);
  ASSERT_TRUE(parser.parse(text)) << errorsOf(parser);
  const auto query = ast::getNodeValue<ast::QuerySpecification>(parser.result);
  const auto item = ast::getNodeValue<ast::DerivedColumn>(query.selectList.at(0));
  EXPECT_EQ(item.alias, L"after_window");
  const auto call = ast::getNodeValue<ast::Function>(item.expression);
  EXPECT_EQ(call.name, L"first_function");
  ASSERT_EQ(call.arguments.size(), static_cast<std::size_t>(arguments));
  for (int i = 0; i < arguments; i += 997) {
    EXPECT_EQ(ast::getNodeValue<ast::ColumnReference>(call.arguments[static_cast<std::size_t>(i)]).column,
              L"c" + std::to_wstring(i));
  }
}

} // namespace
} // namespace velmor::sql
