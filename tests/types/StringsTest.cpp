// data/types/strings.golden: "fold TEXT" folds with toLowercase, normalized and makeLowercase
// (which must agree), "narrow TEXT" folds the UTF-8 bytes, "escape Q TEXT" quotes with Q, "trim
// TEXT" trims one pair of brackets. \uXXXX stands for a unit both ways.
#include "support/Golden.h"

#include <velmor/sql/types/Strings.h>

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace velmor::sql;

std::string strings(const std::string& input) {
  const std::string mode = input.substr(0, input.find(' '));
  const std::string rest = input.substr(mode.size() + 1);
  const std::wstring text = test::wideOf(rest);
  if (mode == "narrow") {
    std::string inPlace = rest;
    makeLowercase(inPlace);
    return toLowercase(rest) + (inPlace == toLowercase(rest) ? "" : " (in place: " + inPlace + ")");
  }
  if (mode == "escape") {
    const std::wstring quoted = test::wideOf(rest.substr(2));
    std::wstring inPlace = quoted;
    const bool same = &escape(inPlace, rest[0]) == &inPlace && inPlace == escape(std::as_const(quoted), rest[0]);
    return test::shownOf(inPlace) + (same ? "" : " (the forms differ)");
  }
  if (mode == "trim") return test::shownOf(trimSquareBrackets(text));
  std::wstring inPlace = text;
  makeLowercase(inPlace);
  const bool same = inPlace == toLowercase(text) && inPlace == normalized(text);
  return test::shownOf(inPlace) + (same ? "" : " (the forms differ)");
}

const bool registered = (test::registerGolden("Strings", "types/strings.golden", strings), true);

// Properties over every unit: surrogates never change, and folding a folded unit is a no-op
// (a wrong delta or block index would break one of these somewhere).
TEST(Strings, FoldingIsIdempotentAndLeavesSurrogates) {
  for (wchar_t unit = 1; unit <= 0xFFFF; ++unit) {
    const std::wstring once = normalized(std::wstring(1, unit));
    ASSERT_EQ(once.size(), 1u);
    if (unit >= 0xD800 && unit <= 0xDFFF) {
      ASSERT_EQ(once[0], unit);
    }
    ASSERT_EQ(normalized(once), once) << std::hex << static_cast<unsigned>(unit);
  }
}

} // namespace
