// Inputs the fuzz targets stopped on, each with what the library does with it now: the canonical
// text settles within a few steps, and the documented exceptions stay the only ways out.
#include <velmor/sql/builder/SqlStringBuilder.h>
#include <velmor/sql/parser/SqlParser.h>

#include <gtest/gtest.h>

#include <optional>
#include <stdexcept>
#include <string>

namespace velmor::sql::test {
namespace {

std::optional<std::wstring> canonical(const std::string& text) {
  const ParseContext context;
  SqlParser parser(context);
  if (!parser.parse(text)) return std::nullopt;
  return SqlStringBuilder(nullptr).buildString(parser.result);
}

enum class Outcome { Settles, OutOfRange };

TEST(FuzzRegression, CanonicalTextOfReproducers) {
  const std::pair<const char*, Outcome> cases[] = {
      // ROW() makes a row without values, which has no text: documented, not a crash.
      {"ROW()", Outcome::OutOfRange},
      {"SELECT a FROM t WHERE ROW() = 1", Outcome::OutOfRange},
      // A unary minus over a comparison loses its parentheses, so the first canonical text
      // reads back as another tree; the text settles one step later.
      {"SELECT a FROM t WHERE ((--(a IS UNKNOWN) OR (b IS NOT TRUE)) OR (c IS UNKNOWN)) OR (d = FALSE)",
       Outcome::Settles},
      {"SELECT -(a = b) FROM t", Outcome::Settles},
  };
  for (const auto& [input, outcome] : cases) {
    SCOPED_TRACE(input);
    if (outcome == Outcome::OutOfRange) {
      EXPECT_THROW(canonical(input), std::out_of_range);
      continue;
    }
    std::optional<std::wstring> text = canonical(input);
    ASSERT_TRUE(text);
    int steps = 0;
    for (std::optional<std::wstring> next; steps < 4; ++steps, text = next) {
      next = canonical(fromWideString(*text));
      ASSERT_TRUE(next);
      if (*next == *text) break;
    }
    EXPECT_LT(steps, 4) << "no fixed point";
  }
}

} // namespace
} // namespace velmor::sql::test
