// Deep and large texts through every stage on a thread with a 1 MiB stack: up to the nesting
// limit they work, beyond it parse reports one syntax error; nothing crashes either way.
#include "ast/StackThread.h"
#include "support/SampleHost.h"

#include <velmor/sql/ast/Traversal.h>
#include <velmor/sql/builder/RenameTableBuilder.h>
#include <velmor/sql/builder/SqlStringBuilder.h>
#include <velmor/sql/inference/TypeInferer.h>
#include <velmor/sql/parser/SqlParser.h>
#include <velmor/sql/scope/ScopeBuilder.h>
#include <velmor/sql/validation/Validator.h>

#include <gtest/gtest.h>

#include <cctype>
#include <functional>
#include <string>

namespace velmor::sql::test {
namespace {

std::string repeat(const std::string& piece, int count) {
  std::string out;
  out.reserve(piece.size() * static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) out += piece;
  return out;
}

// The shapes of generated and hostile SQL, each as a query over the sample table `cities`.
std::string parentheses(int n) { return "SELECT " + repeat("(", n) + "id" + repeat(")", n) + " FROM cities"; }
std::string minusSigns(int n) { return "SELECT " + repeat("- ", n) + "id FROM cities"; }
std::string plusChain(int n) { return "SELECT id" + repeat(" + id", n - 1) + " FROM cities"; }
std::string orChain(int n) {
  std::string text = "SELECT name FROM cities WHERE id = 0";
  for (int i = 1; i < n; ++i) text += " OR id = " + std::to_string(i);
  return text;
}
std::string inList(int n) {
  std::string text = "SELECT name FROM cities WHERE id IN (0";
  for (int i = 1; i < n; ++i) text += ", " + std::to_string(i);
  return text + ")";
}
std::string subqueries(int n) {
  return repeat("SELECT id FROM (", n) + "SELECT id FROM cities" + repeat(") AS q", n);
}

// Up to the nesting limit a text must work; beyond it the parse stops with a syntax error. The
// walks go on on fresh stack segments when the thread's runs low; AddressSanitizer's frames are
// several times larger than the reserve that switch keeps, so the shapes then get more stack.
#if defined(__SANITIZE_ADDRESS__)
constexpr std::size_t kStack = 8 * kDefaultStack;
#else
constexpr std::size_t kStack = 1u << 20;
#endif

enum class Expect { Works, SyntaxError };

struct Shape {
  const char* name;
  std::function<std::string(int)> text;
  int size;
  Expect expect;
  // False where the sample catalogue has no overload for the operator (unary minus, IN): the
  // stages then answer with a semantic fault, which is an answer too.
  bool typed;
  // The parser's limit; a host may raise it, and the stages still need no more stack.
  int limit = SqlParser::maxNestingDepth;
};

const Shape kShapes[] = {
    {"9,990 nested parentheses", parentheses, 9'990, Expect::Works, true},
    {"100,000 nested parentheses", parentheses, 100'000, Expect::SyntaxError, true},
    {"9,990 unary minus signs", minusSigns, 9'990, Expect::Works, false},
    {"100,000 unary minus signs", minusSigns, 100'000, Expect::SyntaxError, false},
    {"9,990 terms of a + a", plusChain, 9'990, Expect::Works, true},
    {"100,000 terms of a + a", plusChain, 100'000, Expect::SyntaxError, true},
    {"4,990 OR terms", orChain, 4'990, Expect::Works, true},
    {"100,000 OR terms", orChain, 100'000, Expect::SyntaxError, true},
    {"IN list of 100,000 values", inList, 100'000, Expect::Works, false},
    {"subqueries nested 4,990 deep", subqueries, 4'990, Expect::Works, true},
    {"subqueries nested 10,000 deep", subqueries, 10'000, Expect::SyntaxError, true},
    {"49,990 unary minus signs under a limit of 50,000", minusSigns, 49'990, Expect::Works, false, 50'000},
    {"49,990 terms of a + a under a limit of 50,000", plusChain, 49'990, Expect::Works, true, 50'000},
};

// Every stage that reads a whole tree. A semantic fault is an answer; `typed` says whether the
// sample catalogue should give a type instead.
void allStages(const ast::Node& tree, const sample::SampleHost& host, bool typed, int limit) {
  SqlStringBuilder builder(nullptr);
  const std::wstring text = builder.buildString(tree);
  EXPECT_FALSE(text.empty());
  RenameTableBuilder renamer(nullptr, L"cities", L"towns");
  EXPECT_NE(renamer.buildString(tree).find(L"FROM towns"), std::wstring::npos);
  const ParseContext context;
  SqlParser again(context);
  again.nestingLimit = limit;
  EXPECT_TRUE(again.parse(fromWideString(text))) << "the canonical text parses again";

  const auto& query = ast::getNodeValue<ast::QuerySpecification>(tree);
  const auto answer = [typed](auto&& stage) {
    try {
      stage();
    } catch (const SqlError& error) {
      EXPECT_FALSE(typed) << error.what();
    }
  };
  answer([&] { EXPECT_EQ(buildTableInfo(host, host, query, nullptr)->columnCount(), 1u); });
  if (!query.where.isNull()) {
    answer([&] {
      const auto scope = buildScope(host, host, query, nullptr);
      EXPECT_NE(TypeInferer(host, *scope).inferType(query.where), nullptr);
    });
  }
  Validator validator(host, host);
  EXPECT_EQ(validator.validate(query), typed);
}

class DeepInput : public testing::TestWithParam<Shape> {};

TEST_P(DeepInput, NeverCrashesAndWorksWithinTheLimit) {
  const Shape& shape = GetParam();
  const sample::SampleHost host;
  const std::string text = shape.text(shape.size);
  runWithStack(kStack, [&] {
    const ParseContext context;
    SqlParser parser(context);
    parser.nestingLimit = shape.limit;
    const bool parsed = parser.parse(text);
    if (shape.expect == Expect::SyntaxError) {
      ASSERT_FALSE(parsed) << "beyond the nesting limit";
      ASSERT_EQ(parser.errors.size(), 1u);
      EXPECT_NE(std::string(parser.errors.front()->what()).find("nesting too deep (limit 10000)"), std::string::npos)
          << parser.errors.front()->what();
      EXPECT_TRUE(parser.result.isNull());
      return;
    }
    ASSERT_TRUE(parsed) << (parser.errors.empty() ? "" : parser.errors.front()->what());
    allStages(parser.result, host, shape.typed, shape.limit);
    // The tree is released here, on this stack, with the parser.
  });
}

INSTANTIATE_TEST_SUITE_P(Shapes, DeepInput, testing::ValuesIn(kShapes),
                         [](const testing::TestParamInfo<Shape>& info) {
                           std::string name;
                           for (const char* c = info.param.name; *c; ++c)
                             if (std::isalnum(static_cast<unsigned char>(*c))) name += *c;
                           return name;
                         });

} // namespace
} // namespace velmor::sql::test
