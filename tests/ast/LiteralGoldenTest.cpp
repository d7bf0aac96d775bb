// data/ast/literals.golden: "value RAW" gives the value of a string literal (with the assertions
// a malformed one raises), "text VALUE" the escaped text of a value and whether it reads back,
// "count KIND TEXT" a number read as a count. Units outside printable ASCII are \uXXXX both ways.
#include "support/Golden.h"

#include <velmor/sql/Assert.h>
#include <velmor/sql/ast/AST.h>

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace velmor::sql {
namespace {

std::vector<std::string> seenAssertions;

std::string literal(const std::string& input) {
  const std::string mode = input.substr(0, input.find(' '));
  const std::string rest = input.substr(mode.size() + 1);
  if (mode == "count") {
    const std::string kind = rest.substr(0, rest.find(' '));
    const auto number = ast::Number{kind == "Integer" ? ast::NumberKind::Integer
                                    : kind == "Exact" ? ast::NumberKind::Exact
                                                      : ast::NumberKind::Approximate,
                                    test::wideOf(rest.substr(kind.size() + 1))};
    try {
      return std::to_string(number.unsignedInteger());
    } catch (const std::invalid_argument& e) {
      return std::string("invalid_argument ") + e.what();
    } catch (const std::out_of_range& e) {
      return std::string("out_of_range ") + e.what();
    }
  }
  if (mode == "text") {
    ASTStringValue value;
    value.m_value = test::wideOf(rest);
    const std::wstring text = value.toString();
    return test::shownOf(text) + (ASTStringValue(L"'" + text + L"'").m_value == value.m_value ? " (reads back)" : "");
  }
  seenAssertions.clear();
  const AssertionHandler previous =
      setAssertionHandler([](const char* expression, const char*) { seenAssertions.push_back(expression); });
  ASTStringValue value;
  value.parse(test::wideOf(rest));
  setAssertionHandler(previous);
  std::string out = test::shownOf(value.m_value);
  for (const std::string& assertion : seenAssertions) out += "\nassertion: " + assertion;
  return out;
}

const bool registered = (test::registerGolden("Literals", "ast/literals.golden", literal), true);

// The measured length of a written value is what writing it gives: every ASCII unit alone,
// before a wildcard, after a backslash, and units beyond ASCII.
TEST(Literals, MeasuredLengthIsTheWrittenLength) {
  std::vector<wchar_t> units;
  for (wchar_t unit = 0; unit < 0x80; ++unit) units.push_back(unit);
  for (const wchar_t unit : {0xA0, 0x2028, 0xD800, 0xFFFF}) units.push_back(unit);
  for (const wchar_t unit : units) {
    for (const std::wstring& around : {std::wstring(), std::wstring(L"%"), std::wstring(L"\\_")}) {
      ASTStringValue value;
      value.m_value = std::wstring(1, unit) + around;
      EXPECT_EQ(value.toStringLength(), value.toString().size()) << static_cast<unsigned>(unit);
      value.m_value = around + std::wstring(1, unit);
      EXPECT_EQ(value.toStringLength(), value.toString().size()) << static_cast<unsigned>(unit);
    }
  }
}

} // namespace
} // namespace velmor::sql
