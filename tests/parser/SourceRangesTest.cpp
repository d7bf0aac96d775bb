// Source ranges: every node of a parse kept with ranges, with its range and the text under it
// (golden file ranges/nodes.golden), and over the benchmark corpus every expression's text reads
// back as the same expression.
#include "support/Golden.h"

#include <velmor/sql/ast/EnumNames.h>
#include <velmor/sql/ast/Traversal.h>
#include <velmor/sql/ast/TreeShape.h>
#include <velmor/sql/parser/SqlParser.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

namespace velmor::sql::test {
namespace {

const ParseContext noContext;

std::string shown(const std::string& text) {
  std::string out;
  for (const char c : text) out += c == '\n' ? std::string("\\n") : c == '\t' ? std::string("\\t") : std::string(1, c);
  return out;
}

// One line per node, parent first, indented by depth: kind, range and the text it covers.
std::string describe(const std::string& sql) {
  SqlParser parser(noContext);
  parser.keepSourceRanges = true;
  if (!parser.parse(sql)) return parser.errors.front()->what();
  std::string out;
  std::vector<std::pair<ast::Node, int>> pending{{parser.result, 0}};
  while (!pending.empty()) {
    auto [node, depth] = std::move(pending.back());
    pending.pop_back();
    if (!out.empty()) out += '\n';
    out += std::string(static_cast<std::size_t>(depth) * 2, ' ') + ast::recordName(node);
    if (const SourceRange* range = parser.sourceRanges->find(node)) {
      out += ' ' + rangeText(*range) + " @" + std::to_string(range->beginOffset) + "-" +
             std::to_string(range->endOffset) + " `" +
             shown(sql.substr(range->beginOffset, range->endOffset - range->beginOffset)) + '`';
    }
    auto kids = ast::children(node);
    for (auto child = kids.rbegin(); child != kids.rend(); ++child) pending.emplace_back(*child, depth + 1);
  }
  return out;
}

const bool registered = (registerGolden("SourceRanges", "ranges/nodes.golden", describe), true);

TEST(SourceRanges, OnlyWhenAskedAndOnlyForATree) {
  SqlParser parser(noContext);
  ASSERT_TRUE(parser.parse("SELECT a FROM t"));
  EXPECT_EQ(parser.sourceRanges, nullptr);
  parser.keepSourceRanges = true;
  ASSERT_TRUE(parser.parse("SELECT a FROM t"));
  ASSERT_NE(parser.sourceRanges, nullptr);
  const auto kept = parser.sourceRanges;
  EXPECT_FALSE(parser.parse("SELECT FROM"));
  EXPECT_EQ(parser.sourceRanges, nullptr);
  EXPECT_EQ(kept->size(), 4u);  // query, select item, column and table outlive the next parse
}

// A kept map holds its tree: the nodes of later trees on the same thread, made from the blocks
// the first tree would have given back, are never answered for.
TEST(SourceRanges, NeverAnswerForTheNodesOfALaterTree) {
  SqlParser parser(noContext);
  parser.keepSourceRanges = true;
  ASSERT_TRUE(parser.parse("SELECT a + b, f(c) FROM t WHERE d = 1"));
  const auto kept = parser.sourceRanges;
  const std::size_t size = kept->size();
  parser.clear();
  for (int i = 0; i < 20; ++i) {
    ASSERT_TRUE(parser.parse("SELECT x * y, g(z) FROM u WHERE w = " + std::to_string(i)));
    std::vector<ast::Node> nodes{parser.result};
    while (!nodes.empty()) {
      const ast::Node node = nodes.back();
      nodes.pop_back();
      EXPECT_EQ(kept->find(node), nullptr);
      for (const ast::Node& child : ast::children(node)) nodes.push_back(child);
    }
  }
  EXPECT_EQ(kept->size(), size);
}

TEST(SourceRanges, SyntaxErrorsSayTheSameWithRanges) {
  for (const char* text : {"SELECT FROM t", "SELECT a\n\tFROM t WHERE", "SELECT 'é' FROM t t2 t3", "a +", "",
                           "SELECT ((((a FROM t", "UPDATE t SET a = 1,"}) {
    SqlParser plain(noContext), ranged(noContext);
    ranged.keepSourceRanges = true;
    ASSERT_FALSE(plain.parse(text));
    ASSERT_FALSE(ranged.parse(text));
    EXPECT_STREQ(plain.errors.front()->what(), ranged.errors.front()->what()) << text;
  }
}

// Each expression's own text, parsed alone, is the same expression: its range starts and ends
// where its first and last tokens do, across the statement shapes of the corpus.
TEST(SourceRanges, ExpressionTextsOfTheCorpusReadBackAsTheSameExpressions) {
  const char* overridePath = std::getenv("VELMOR_BENCH_CORPUS");
  std::ifstream in(overridePath != nullptr ? overridePath : VELMOR_BENCH_CORPUS);
  ASSERT_TRUE(in) << "no corpus";
  SqlParser parser(noContext), again(noContext);
  parser.keepSourceRanges = true;
  int statements = 0, checked = 0, failures = 0;
  for (std::string line; std::getline(in, line) && statements < 1000;) {
    if (!parser.parse(line)) continue;
    ++statements;
    std::vector<ast::Node> pending{parser.result};
    while (!pending.empty()) {
      const ast::Node node = std::move(pending.back());
      pending.pop_back();
      for (auto& child : ast::children(node)) pending.push_back(std::move(child));
      const SourceRange* range = parser.sourceRanges->find(node);
      // Table references and IN lists do not stand alone as expressions.
      const std::string kind = ast::recordName(node);
      if (!node.isExpression() || range == nullptr || kind == "TablePrimary" || kind == "DerivedTable" ||
          kind == "JoinNode" || kind == "RowValueExpressionList" || kind == "ContextuallyTypedValueSpecification")
        continue;
      ++checked;
      const std::string text = line.substr(range->beginOffset, range->endOffset - range->beginOffset);
      if ((!again.parse(text) || !ast::sameTree(again.result, node)) && ++failures <= 10)
        ADD_FAILURE() << "`" << text << "` in: " << line;
    }
  }
  EXPECT_EQ(failures, 0);
  EXPECT_GT(checked, statements);
}

} // namespace
} // namespace velmor::sql::test
