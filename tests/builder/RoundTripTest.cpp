// data/builder/roundtrip.golden: a statement, and whether its canonical text (default precedence
// context) reads back as the same tree; where not, the first subtree that differs.
#include <velmor/sql/host/Precedence.h>
#include "support/Golden.h"

#include <velmor/sql/ast/TreeShape.h>
#include <velmor/sql/builder/RoundTrip.h>
#include <velmor/sql/parser/SqlParser.h>

#include <gtest/gtest.h>

namespace velmor::sql {
namespace {

std::string roundTrip(const std::string& input) {
  const ParseContext context;
  SqlParser parser(context);
  if (!parser.parse(input)) return "input does not parse: " + std::string(parser.errors.front()->what());
  static const velmor::sql::host::GrammarPrecedence precedence;
  const RoundTripReport report = checkRoundTrip(parser.result, &precedence);
  const std::string text = test::shownOf(report.text);
  if (report.same) return "same: " + text;
  if (!report.syntaxError.empty()) return "does not parse: " + text + "\n" + report.syntaxError;
  return "differs: " + text + "\nwritten " + test::shownOf(report.written) + "\nread as " + test::shownOf(report.readBack);
}

const bool registered = (test::registerGolden("RoundTrip", "builder/roundtrip.golden", roundTrip), true);

// Two parses of one text share no node, yet have one shape; a changed leaf anywhere is found.
TEST(TreeShape, SameShapeAcrossParsesAndFirstDifference) {
  const ParseContext context;
  SqlParser a(context), b(context);
  ASSERT_TRUE(a.parse("SELECT x, f(y + 1) FROM t WHERE z IN (1, 2) ORDER BY x DESC LIMIT 3"));
  ASSERT_TRUE(b.parse("SELECT x, f(y + 1) FROM t WHERE z IN (1, 2) ORDER BY x DESC LIMIT 3"));
  EXPECT_TRUE(ast::sameTree(a.result, b.result));
  EXPECT_TRUE(ast::sameTree(ast::Node(), ast::makeEmptyNode()));
  const char* variants[] = {
      "SELECT x, f(y + 2) FROM t WHERE z IN (1, 2) ORDER BY x DESC LIMIT 3",
      "SELECT x, f(y + 1) FROM t WHERE z IN (1, 2) ORDER BY x ASC LIMIT 3",
      "SELECT x, f(y + 1) FROM t WHERE z IN (1, 2) ORDER BY x DESC LIMIT 4",
      "SELECT x, f(y + 1) FROM t HAVING z IN (1, 2) ORDER BY x DESC LIMIT 3",
      "SELECT x, g(y + 1) FROM t WHERE z IN (1, 2) ORDER BY x DESC LIMIT 3",
      "SELECT x, f(y + 1) FROM t WHERE z IN (1, 2, 3) ORDER BY x DESC LIMIT 3",
  };
  for (const char* variant : variants) {
    ASSERT_TRUE(b.parse(variant)) << variant;
    EXPECT_FALSE(ast::sameTree(a.result, b.result)) << variant;
  }
}

// Associative grouping opens up chains of one AND or one OR, and nothing else.
TEST(TreeShape, AssociativeGroupingFlattensOnlyChainsOfOneOperator) {
  struct Pair {
    const char* left;
    const char* right;
    bool same;
  };
  const Pair pairs[] = {
      {"a OR (b OR c)", "(a OR b) OR c", true},
      {"(a AND b) AND (c AND d)", "a AND (b AND (c AND d))", true},
      {"f(a OR (b OR c))", "f((a OR b) OR c)", true},
      {"a OR (b AND c)", "(a OR b) AND c", false},
      {"a AND (b OR c)", "(a AND b) OR c", false},
      {"a OR (b OR c)", "a AND (b AND c)", false},
      {"a OR b OR c", "a OR c OR b", false},
      {"a OR b OR c", "a OR b OR c OR d", false},
      {"a OR (b OR c)", "a OR (b OR d)", false},
      {"a - (b - c)", "(a - b) - c", false},
      {"a * (b / c)", "(a * b) / c", false},
  };
  const ParseContext context;
  SqlParser a(context), b(context);
  for (const Pair& pair : pairs) {
    ASSERT_TRUE(a.parse(std::string("SELECT x FROM t WHERE ") + pair.left)) << pair.left;
    ASSERT_TRUE(b.parse(std::string("SELECT x FROM t WHERE ") + pair.right)) << pair.right;
    EXPECT_EQ(!ast::firstDifference(a.result, b.result, ast::Grouping::Associative), pair.same)
        << pair.left << " / " << pair.right;
    if (pair.same) {
      EXPECT_FALSE(ast::sameTree(a.result, b.result)) << pair.left;
    }
  }
}

} // namespace
} // namespace velmor::sql
