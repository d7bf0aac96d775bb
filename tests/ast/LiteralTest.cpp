// Malformed string literals abort by default; three-valued logic.
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


// The golden cases read malformed literals on under a returning handler; by default they abort.
struct MalformedCase {
  std::wstring raw;
  std::string assertion;
};

class Malformed : public testing::TestWithParam<MalformedCase> {};

TEST_P(Malformed, AbortsByDefault) {
  EXPECT_DEATH(ASTStringValue{GetParam().raw}, quoteRegex(GetParam().assertion) + ".*ASTStringValue");
}

INSTANTIATE_TEST_SUITE_P(
    ASTStringValue, Malformed,
    testing::Values(
        MalformedCase{L"'a''b'x", "i == 0 || std::isspace(value[i], std::locale())"},
        MalformedCase{L"'a'x'b'", "i == 0 || std::isspace(value[i], std::locale())"},
        MalformedCase{L"'a' ", "value[i] == L'\"' || value[i] == L'\\''"},
        MalformedCase{L"x", "value[i] == L'\"' || value[i] == L'\\''"},
        MalformedCase{L"'a\\", "i + 1 < value.length()"}));

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

} // namespace
} // namespace velmor::sql
