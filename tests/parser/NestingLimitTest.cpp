// The nesting limit: deep and long texts of each shape just within and just beyond it.
#include <velmor/sql/parser/SqlParser.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>

namespace velmor::sql {
namespace {

constexpr int limit = SqlParser::maxNestingDepth;

std::string repeat(const std::string& piece, int count) {
  std::string text;
  text.reserve(piece.size() * static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) text += piece;
  return text;
}

// Each shape makes a text of `n` repetitions; its tree depth follows from the comment.
struct Shape {
  const char* name;
  std::function<std::string(int)> text;
};

const Shape shapes[] = {
    // One node, however many parentheses; the limit counts open parentheses.
    {"parentheses", [](int n) { return repeat("(", n).append("a").append(repeat(")", n)); }},
    // n + 1 levels.
    {"unary minus", [](int n) { return repeat("- ", n).append("a"); }},
    {"not", [](int n) { return repeat("NOT ", n).append("a"); }},
    // n levels: a left-deep chain of n terms.
    {"plus chain", [](int n) { return std::string("a").append(repeat(" + a", n - 1)); }},
    // n + 1 levels: each term is an equality under the chain of n - 1 ORs.
    {"or chain",
     [](int n) {
       std::string text = "x = 1";
       for (int i = 2; i <= n; ++i) text.append(" OR x = ").append(std::to_string(i));
       return text;
     }},
    // n levels: '^' nests to the right.
    {"power chain", [](int n) { return std::string("a").append(repeat(" ^ a", n - 1)); }},
    // 2n + 3 levels: a derived table and its query per level.
    {"subqueries",
     [](int n) {
       std::string text = "SELECT a FROM t";
       for (int i = 0; i < n; ++i) text = std::string("SELECT a FROM (").append(text).append(") x");
       return text;
     }},
};

struct Case {
  const char* shape;
  int size;
  bool parses;
  // Where the error stands: the token being read when the limit was crossed.
  const char* at;
  // The parser's limit, as a host may set it.
  int limit = SqlParser::maxNestingDepth;
};

const Case cases[] = {
    {"parentheses", limit, true, ""},
    {"parentheses", limit + 1, false, "1:10001"},
    {"parentheses", 100000, false, "1:10001"},
    {"unary minus", limit - 1, true, ""},
    {"unary minus", limit, false, "1:20002"},
    {"unary minus", 100000, false, "1:200002"},
    {"not", limit - 1, true, ""},
    {"not", 100000, false, "1:400002"},
    {"plus chain", limit, true, ""},
    {"plus chain", limit + 1, false, "1:40002"},
    {"plus chain", 100000, false, "1:40003"},
    {"or chain", limit - 1, true, ""},
    {"or chain", limit, false, "1:118891"},
    {"or chain", 100000, false, "1:118892"},
    {"power chain", limit, true, ""},
    {"power chain", limit + 1, false, "1:40002"},
    {"subqueries", (limit - 3) / 2, true, ""},
    {"subqueries", (limit - 3) / 2 + 1, false, "1:89998"},
    {"subqueries", 10000, false, "1:165013"},
    // Limits a host sets, lower and higher; below 1 counts as 1.
    {"unary minus", 99, true, "", 100},
    {"unary minus", 100, false, "1:202", 100},
    {"parentheses", 101, false, "1:101", 100},
    {"plus chain", 50000, true, "", 50000},
    {"parentheses", 50000, true, "", 50000},
    {"unary minus", 0, true, "", 0},
    {"unary minus", 1, false, "1:4", 0},
};

TEST(NestingLimitTest, DeepTextsParseOrFailAtTheLimit) {
  const ParseContext context;
  SqlParser parser(context);
  for (const Case& c : cases) {
    const Shape* shape = nullptr;
    for (const Shape& s : shapes)
      if (std::string(s.name) == c.shape) shape = &s;
    ASSERT_NE(shape, nullptr) << c.shape;
    const std::string text = shape->text(c.size);
    parser.nestingLimit = c.limit;
    ASSERT_NO_THROW(parser.parse(text)) << c.shape << " " << c.size;
    EXPECT_EQ(!parser.result.isNull(), c.parses) << c.shape << " " << c.size;
    if (c.parses) {
      EXPECT_TRUE(parser.errors.empty()) << c.shape << " " << c.size;
      continue;
    }
    ASSERT_EQ(parser.errors.size(), 1u) << c.shape << " " << c.size;
    const auto* error = dynamic_cast<const UnexpectedLexeme*>(parser.errors[0].get());
    ASSERT_NE(error, nullptr);
    EXPECT_EQ(error->text, "syntax error, nesting too deep (limit " + std::to_string(std::max(c.limit, 1)) + ")")
        << c.shape << " " << c.size;
    EXPECT_EQ(std::string(error->what()), error->text + " at " + c.at) << c.shape << " " << c.size;
  }
}

TEST(NestingLimitTest, FlatListsHaveNoLimit) {
  const ParseContext context;
  SqlParser parser(context);
  std::string in = "x IN (1";
  std::string values = "INSERT INTO t VALUES (1)";
  std::string select = "SELECT a1";
  std::string arguments = "f(1";
  for (int i = 2; i <= 100000; ++i) {
    const std::string number = std::to_string(i);
    in.append(", ").append(number);
    values.append(", (").append(number).append(")");
    select.append(", a").append(number);
    arguments.append(", ").append(number);
  }
  for (const std::string& text : {in.append(")"), values, select.append(" FROM t"), arguments.append(")")}) {
    EXPECT_TRUE(parser.parse(text)) << text.substr(0, 30);
  }
}

} // namespace
} // namespace velmor::sql
