// The editor services on hostile texts, on a thread with a 1 MiB stack: deep nesting before the
// cursor, beyond the parser's limit and within it, and an over-long lexeme in another statement.
// Each answers (or answers nothing) without crashing, and nothing is written to std::cerr.
#include "ast/StackThread.h"

#include <velmor/sql/host/CatalogueFile.h>
#include <velmor/sql/host/Completion.h>
#include <velmor/sql/host/editor/Editing.h>
#include <velmor/sql/parser/SqlParser.h>

#include <gtest/gtest.h>

#include <string>

namespace velmor::sql::test {
namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr std::size_t kStack = 8 * kDefaultStack;
#else
constexpr std::size_t kStack = 1u << 20;
#endif

struct Text {
  const char* name;
  std::string text;
  std::size_t cursor;
  // What completion at the cursor must offer, or nothing.
  const char* offered;
};

std::string nested(std::size_t depth, const std::string& inner) {
  return std::string(depth, '(') + inner + std::string(depth, ')');
}

std::vector<Text> texts() {
  std::vector<Text> out;
  const std::string open12k = "SELECT " + std::string(12'000, '(');
  out.push_back({"12,000 open parentheses", open12k, open12k.size(), "CASE"});
  const std::string open100k = "SELECT " + std::string(100'000, '(');
  out.push_back({"100 KB of open parentheses", open100k, open100k.size(), "CASE"});
  // Within the nesting limit: the names of the query still reach the cursor.
  const std::string deep = "SELECT " + nested(9'000, "area_sqm") + " FROM parcels";
  out.push_back({"9,000 nested parentheses", deep, 7 + 9'000 + 4, "area_sqm"});
  std::string subqueries;
  for (int i = 0; i < 1'000; ++i) subqueries += "SELECT zone_id FROM (";
  subqueries += "SELECT zone_id FROM zones";
  for (int i = 0; i < 1'000; ++i) subqueries += ") AS q";
  out.push_back({"1,000 nested derived tables", subqueries, subqueries.find("zone_id FROM zones") + 4, "zone_id"});
  // A string longer than the scanner's window in the statement before the cursor's.
  const std::string lexeme = "SELECT '" + std::string(140'000, 'x') + "' FROM parcels; SELECT  FROM owners";
  out.push_back({"an over-long lexeme in another statement", lexeme, lexeme.size() - 12, "full_nm"});
  const std::string inside = "SELECT '" + std::string(140'000, 'x') + "' FROM parcels WHERE ";
  out.push_back({"an over-long lexeme in the cursor's statement", inside, inside.size(), nullptr});
  return out;
}

TEST(EditorDeep, EveryServiceAnswersOnASmallStack) {
  const auto catalogue = host::gisSampleCatalogue();
  for (const Text& test : texts()) {
    SCOPED_TRACE(test.name);
    testing::internal::CaptureStderr();
    runWithStack(kStack, [&] {
      const auto completion = host::complete(test.text, test.cursor, *catalogue);
      bool found = false;
      for (const auto& candidate : completion.candidates) found = found || (test.offered && candidate.text == test.offered);
      EXPECT_EQ(found, test.offered != nullptr) << test.name;
      if (!test.offered) {
        EXPECT_TRUE(completion.candidates.empty());
      }
      for (const std::size_t at : {test.cursor, test.text.size() / 2, std::size_t{9}}) {
        host::hover(test.text, at, *catalogue);
        host::signatureHelp(test.text, at, *catalogue);
        host::definition(test.text, at, *catalogue);
        host::occurrences(test.text, at, *catalogue);
      }
    });
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  }
}

} // namespace
} // namespace velmor::sql::test
