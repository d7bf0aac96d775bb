// Case folding, quoting and bracket trimming of names.
#include <velmor/sql/types/Strings.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace velmor::sql;

struct FoldCase {
  std::wstring input;
  std::wstring expected;
};

// Each row folds with toLowercase, normalized and makeLowercase alike.
const std::vector<FoldCase> wideFolds = {
    {L"", L""},
    {L"Cities_2024", L"cities_2024"},
    {L"\u00C0\u00C9\u00CE\u00D5\u00DC\u0178", L"\u00E0\u00E9\u00EE\u00F5\u00FC\u00FF"},  // Latin-1, Ÿ
    {L"\u0100\u0141\u017D\u01C5", L"\u0101\u0142\u017E\u01C6"},  // Latin Extended, title-case Dž
    {L"\u1E9E\u212A\u212B", L"\u00DF\u006B\u00E5"},  // capital sharp s, Kelvin, Ångström (status C/S)
    {L"\u0391\u0392\u0393\u0394 \u03A3\u03A9\u0386", L"\u03B1\u03B2\u03B3\u03B4 \u03C3\u03C9\u03AC"},  // Greek
    {L"\u03C2\u00B5", L"\u03C3\u03BC"},  // final sigma and micro sign fold, unlike plain lowering
    {L"\u041C\u041E\u0421\u041A\u0412\u0410 \u0401\u0407", L"\u043C\u043E\u0441\u043A\u0432\u0430 \u0451\u0457"},  // Cyrillic
    {L"\u0531\u10A0\uFF21", L"\u0561\u2D00\uFF41"},  // Armenian, Georgian, fullwidth
    {L"\uAB70\u13F8", L"\u13A0\u13F0"},  // Cherokee folds to its older, upper forms
    {L"\u0130I", L"\u0130i"},  // dotted capital I has only Turkic and full mappings: it stays
    {L"\xD801\xDC00 \xD801", L"\xD801\xDC00 \xD801"},  // a pair (U+10400) and a lone surrogate stay
    {std::wstring(L"AB\0CD", 5), std::wstring(L"ab\0CD", 5)},  // folding stops at NUL
};

TEST(Strings, WideFoldingTable) {
  for (const auto& [input, expected] : wideFolds) {
    SCOPED_TRACE(testing::PrintToString(input));
    EXPECT_EQ(toLowercase(input), expected);
    EXPECT_EQ(normalized(input), expected);
    std::wstring inPlace = input;
    makeLowercase(inPlace);
    EXPECT_EQ(inPlace, expected);
  }
}

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

TEST(Strings, NarrowFoldingTouchesAsciiLettersOnly) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"", ""},
      {"SELECT Name_1 @[Z]", "select name_1 @[z]"},
      {"\xC3\x84\xC3\x96 Ab", "\xC3\x84\xC3\x96 ab"},  // UTF-8 of Ä and Ö stays byte for byte
      {std::string("A\0B", 3), std::string("a\0B", 3)},
  };
  for (const auto& [input, expected] : cases) {
    EXPECT_EQ(toLowercase(input), expected);
    std::string inPlace = input;
    makeLowercase(inPlace);
    EXPECT_EQ(inPlace, expected);
  }
}

TEST(Strings, Escape) {
  struct Case {
    std::wstring input;
    wchar_t quote;
    std::wstring expected;
  };
  const std::vector<Case> cases = {
      {L"", L'\'', L"''"},
      {L"abc", L'\'', L"'abc'"},
      {L"a'b", L'\'', L"'a''b'"},
      {L"a''b", L'\'', L"'a''''b'"},  // pairs are not recognised
      {L"'", L'\'', L"''''"},
      {L"''", L'\'', L"''''''"},
      {L"a'b", L'"', L"\"a'b\""},  // only the given quote is doubled
      {L"say \"hi\"", L'"', L"\"say \"\"hi\"\"\""},
  };
  for (const auto& [input, quote, expected] : cases) {
    const std::wstring& constInput = input;
    EXPECT_EQ(escape(constInput, quote), expected);
    std::wstring inPlace = input;
    std::wstring& result = escape(inPlace, quote);
    EXPECT_EQ(&result, &inPlace);
    EXPECT_EQ(inPlace, expected);
  }
}

TEST(Strings, TrimSquareBrackets) {
  const std::vector<std::pair<std::wstring, std::wstring>> cases = {
      {L"", L""},        {L"[", L"["},       {L"]", L"]"},       {L"[]", L""},
      {L"[a]", L"a"},    {L"[[a]]", L"[a]"}, {L"[a", L"[a"},     {L"a]", L"a]"},
      {L"a[b]", L"a[b]"}, {L"[a]b", L"[a]b"}, {L"[a b]", L"a b"}, {L"][", L"]["},
  };
  for (const auto& [input, expected] : cases) EXPECT_EQ(trimSquareBrackets(input), expected) << input.size();
}

} // namespace
