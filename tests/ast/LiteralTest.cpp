// String literal values, three-valued logic and numbers read as counts.
#include <velmor/sql/Assert.h>
#include <velmor/sql/ast/AST.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <regex>
#include <stdexcept>
#include <string>
#include <vector>

namespace velmor::sql {
namespace {

using TL = TernaryLogic;

std::vector<std::string> seenAssertions;
void recordAssertion(const char* expression, const char*) { seenAssertions.push_back(expression); }

// Runs `body` with a handler that returns, and gives the assertion texts it saw.
template <class F>
std::vector<std::string> assertionsDuring(F&& body) {
  seenAssertions.clear();
  auto previous = setAssertionHandler(&recordAssertion);
  body();
  setAssertionHandler(previous);
  return seenAssertions;
}

std::string quoteRegex(const std::string& text) {
  return std::regex_replace(text, std::regex(R"([\\^$.|?*+()\[\]{}])"), R"(\$&)");
}

// ---------------------------------------------------------------------------------------------

struct ParseCase {
  std::wstring raw;
  std::wstring value;
};

class Parse : public testing::TestWithParam<ParseCase> {};

TEST_P(Parse, ResolvesQuotesAndEscapes) {
  EXPECT_TRUE(assertionsDuring([&] { EXPECT_EQ(ASTStringValue(GetParam().raw).m_value, GetParam().value); })
                  .empty());
}

const std::wstring nul(1, L'\0');

INSTANTIATE_TEST_SUITE_P(
    ASTStringValue, Parse,
    testing::Values(ParseCase{L"", L""}, ParseCase{L"''", L""}, ParseCase{L"'", L""},
                    ParseCase{L"'it''s'", L"it's"}, ParseCase{L"\"say \"\"hi\"\"\"", L"say \"hi\""},
                    ParseCase{L"'a\"b'", L"a\"b"}, ParseCase{L"\"a'b\"", L"a'b"},
                    ParseCase{L"'a' 'b'", L"ab"}, ParseCase{L"'a'\t\n \"b\"", L"ab"},
                    ParseCase{L"  'a'", L"a"}, ParseCase{L"'a''", L"a'"}, ParseCase{L"'ab", L"ab"},
                    ParseCase{L"'a\\nb'", L"a\nb"}, ParseCase{L"'100\\%'", L"100\\%"},
                    ParseCase{L"'a\\_b'", L"a\\_b"}, ParseCase{L"'\\0'", nul},
                    ParseCase{L"'\\Z\\b\\r\\t'", std::wstring{22, 8, 13, 9}},
                    ParseCase{L"'\\\\'", L"\\"}, ParseCase{L"'\\''", L"'"}, ParseCase{L"'\\\"'", L"\""},
                    ParseCase{L"'\\q'", L"q"},
                    // Only the low byte of the escaped unit counts.
                    ParseCase{L"'\\\x044F'", L"O"}, ParseCase{L"'\\\x016E'", L"\n"},
                    ParseCase{L"'\\\x0125'", L"\\%"}, ParseCase{L"'\\\x00E9'", std::wstring(1, 0xFFE9)}));

struct ToStringCase {
  std::wstring value;
  std::wstring text;
  bool roundTrips; // parse("'" + text + "'") gives the value back
};

class ToString : public testing::TestWithParam<ToStringCase> {};

TEST_P(ToString, EscapesWithoutQuotes) {
  const auto& c = GetParam();
  ASTStringValue value;
  value.m_value = c.value;
  EXPECT_EQ(value.toString(), c.text);
  if (c.roundTrips) {
    EXPECT_EQ(ASTStringValue(L"'" + c.text + L"'").m_value, c.value);
  }
}

INSTANTIATE_TEST_SUITE_P(
    ASTStringValue, ToString,
    testing::Values(ToStringCase{L"a\nb", L"a\\nb", true}, ToStringCase{L"100\\%", L"100\\%", true},
                    ToStringCase{L"\\_", L"\\_", true}, ToStringCase{L"\\", L"\\\\", true},
                    ToStringCase{L"\\a", L"\\\\a", true}, ToStringCase{L"\"", L"\\\"", true},
                    ToStringCase{L"'", L"'", false},
                    ToStringCase{nul + std::wstring{8, 9, 13, 22}, L"\\0\\b\\t\\r\\Z", true},
                    ToStringCase{std::wstring{26}, std::wstring{26}, true}, ToStringCase{L"", L"", true}));

struct MalformedCase {
  std::wstring raw;
  std::string assertion;
  std::wstring value; // read on as if the assertion held
};

class Malformed : public testing::TestWithParam<MalformedCase> {};

TEST_P(Malformed, AssertsThenReadsOn) {
  const auto& c = GetParam();
  ASTStringValue value;
  const auto seen = assertionsDuring([&] { value.parse(c.raw); });
  ASSERT_FALSE(seen.empty());
  EXPECT_EQ(seen.front(), c.assertion);
  EXPECT_EQ(value.m_value, c.value);
}

TEST_P(Malformed, AbortsByDefault) {
  EXPECT_DEATH(ASTStringValue{GetParam().raw}, quoteRegex(GetParam().assertion) + ".*ASTStringValue");
}

INSTANTIATE_TEST_SUITE_P(
    ASTStringValue, Malformed,
    testing::Values(
        MalformedCase{L"'a''b'x", "i == 0 || std::isspace(value[i], std::locale())", L"a'b"},
        MalformedCase{L"'a'x'b'", "i == 0 || std::isspace(value[i], std::locale())", L"a'b'"},
        MalformedCase{L"'a' ", "value[i] == L'\"' || value[i] == L'\\''", L"a"},
        MalformedCase{L"x", "value[i] == L'\"' || value[i] == L'\\''", L""},
        MalformedCase{L"'a\\", "i + 1 < value.length()", L"a" + nul}));

// ---------------------------------------------------------------------------------------------

const TL::Value F = TL::False, U = TL::Unknown, T = TL::True;
const TL::Value operands[] = {F, U, T};
const TL::Value andTable[3][3] = {{F, F, F}, {F, U, U}, {F, U, T}};
const TL::Value orTable[3][3] = {{F, U, T}, {U, U, T}, {T, T, T}};

TEST(TernaryLogic, TruthTables) {
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) {
      EXPECT_EQ((TL(operands[i]) && TL(operands[j])).m_value, andTable[i][j]) << i << " && " << j;
      EXPECT_EQ((TL(operands[i]) || TL(operands[j])).m_value, orTable[i][j]) << i << " || " << j;
    }
}

const TL::Value bad = static_cast<TL::Value>(3);

TEST(TernaryLogic, OutOfRangeOperandFallsBack) {
  struct Case {
    TL::Value left, right;
    bool isAnd;
    TL::Value result;
    std::vector<std::string> assertions;
  };
  const std::vector<std::string> none, ctor{"m_value <= MaxValue"}, fallback{"false"};
  const Case cases[] = {
      {F, bad, true, F, none},         {T, bad, false, T, none}, // never look at the right
      {T, bad, true, bad, ctor},       {F, bad, false, bad, ctor},
      {U, bad, true, U, fallback},     {U, bad, false, U, fallback},
      {bad, T, true, U, fallback},     {bad, F, false, U, fallback},
  };
  for (const auto& c : cases) {
    TL left(F), right(F), result(F);
    left.m_value = c.left; // out-of-range values can only be planted
    right.m_value = c.right;
    EXPECT_EQ(assertionsDuring([&] { result = c.isAnd ? (left && right) : (left || right); }),
              c.assertions) << c.left << (c.isAnd ? " && " : " || ") << c.right;
    EXPECT_EQ(result.m_value, c.result) << c.left << (c.isAnd ? " && " : " || ") << c.right;
  }
}

TEST(TernaryLogicDeathTest, ValueAboveMaxAborts) {
  EXPECT_DEATH(TL{bad}, "m_value <= MaxValue.*TernaryLogic");
  TL stored(F);
  EXPECT_EQ(assertionsDuring([&] { stored = TL(bad); }), std::vector<std::string>{"m_value <= MaxValue"});
  EXPECT_EQ(stored.m_value, bad);
}

// ---------------------------------------------------------------------------------------------

struct CountCase {
  ast::NumberKind kind;
  std::wstring text;
  std::uint64_t expected;
};

TEST(Number, UnsignedInteger) {
  using K = ast::NumberKind;
  const CountCase cases[] = {
      {K::Integer, L"", 0},
      {K::Exact, L"", 0},
      {K::Integer, L"42", 42},
      {K::Integer, L"-5", 5},
      {K::Integer, L"-9223372036854775808", 9223372036854775808ull},
      {K::Integer, L"9223372036854775807", 9223372036854775807ull},
      {K::Exact, L"2.5", 3},
      {K::Exact, L"2.4", 2},
      {K::Exact, L"-2.5", 3},
      {K::Exact, L"0.49", 0},
      {K::Approximate, L"1e3", 1000},
      {K::Approximate, L"9223372036854775808", 9223372036854775808ull},
      {K::Approximate, L"1e19", 10000000000000000000ull},
  };
  for (const auto& c : cases)
    EXPECT_EQ((ast::Number{c.kind, c.text}.unsignedInteger()), c.expected)
        << std::string(c.text.begin(), c.text.end());
}

TEST(Number, UnsignedIntegerLetsStandardExceptionsThrough) {
  using K = ast::NumberKind;
  const auto what = [](K kind, const wchar_t* text) -> std::string {
    try {
      (void)ast::Number{kind, text}.unsignedInteger();
    } catch (const std::invalid_argument& e) {
      return std::string("invalid_argument ") + e.what();
    } catch (const std::out_of_range& e) {
      return std::string("out_of_range ") + e.what();
    }
    return "none";
  };
  EXPECT_EQ(what(K::Integer, L"abc"), "invalid_argument stoll");
  EXPECT_EQ(what(K::Integer, L"99999999999999999999"), "out_of_range stoll");
  EXPECT_EQ(what(K::Exact, L"x"), "invalid_argument stod");
  EXPECT_EQ(what(K::Approximate, L"1e999"), "out_of_range stod");
}

} // namespace
} // namespace velmor::sql
