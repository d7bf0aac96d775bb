// Locations, wide text hand-over, the trace, the lexeme-size limit, random input.
#include "common/WhiteSpace.h"
#include "sqllexer/SqlLexer.h"

#include <velmor/sql/Assert.h>
#include <velmor/sql/ast/ASTStringValue.h>
#include <velmor/sql/sqllexer/Tokens.h>

#include <gtest/gtest.h>

#include <random>
#include <stdexcept>
#include <string>

namespace velmor::sql {
namespace {

TEST(SqlLexer, LocationsAndSemanticValues) {
  const std::string text = "SELECT [ab]\n 'x\xC3\xA9' 1";
  SqlLexer lexer(text, nullptr);
  std::wstring semantic = L"untouched";
  Location location;

  EXPECT_EQ(lexer.lex(&semantic, &location), T_SELECT);
  // A token without text keeps the semantic slot as it was; its end column is column + 1.
  EXPECT_EQ(semantic, L"untouched");
  EXPECT_EQ(location, Location({1, 1}, {1, 2}));

  EXPECT_EQ(lexer.lex(&semantic, &location), T_IDENTIFIER);
  EXPECT_EQ(semantic, L"ab");
  EXPECT_EQ(location, Location({1, 8}, {1, 11}));

  // The end column counts the bytes of the text, not its characters.
  EXPECT_EQ(lexer.lex(&semantic, &location), T_STRING);
  EXPECT_EQ(semantic, L"'x\u00E9'");
  EXPECT_EQ(location, Location({2, 2}, {2, 8}));

  EXPECT_EQ(lexer.lex(&semantic, nullptr), T_INTEGER_NUMBER);
  EXPECT_EQ(semantic, L"1");

  EXPECT_EQ(lexer.lex(&semantic, &location), T_TERMINATION);
  EXPECT_EQ(location, Location({2, 8}, {2, 9}));
  // The end stays the end.
  EXPECT_EQ(lexer.lex(&semantic, &location), T_TERMINATION);
  EXPECT_EQ(lexer.status(), Lexer::Status::End);
}

TEST(SqlLexer, NulSetsErrorStatus) {
  const std::string text("a\0", 2);
  SqlLexer lexer(text, nullptr);
  std::wstring semantic;
  EXPECT_EQ(lexer.lex(&semantic, nullptr), T_TERMINATION);
  EXPECT_EQ(lexer.status(), Lexer::Status::Error);
}

TEST(SqlLexer, TraceWritesNameAndText) {
  const std::string text = "SELECT x\xC3\xA9";
  SqlLexer lexer(text, nullptr);
  lexer.setTrace(true);
  std::wstring semantic;
  testing::internal::CaptureStderr();
  while (lexer.lex(&semantic, nullptr) != T_TERMINATION) {
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "SELECT \nIDENTIFIER x\xC3\xA9\n<TERMINATION> \n");
}

TEST(SqlLexer, UnknownLexemeHookAddsAnErrorButIsNotCalledByTheScanner) {
  std::vector<std::shared_ptr<SqlError>> errors;
  const std::string text = "# ? ;";
  SqlLexer lexer(text, &errors);
  std::wstring semantic;
  EXPECT_EQ(lexer.lex(&semantic, nullptr), T_TERMINATION);
  EXPECT_TRUE(errors.empty());

  lexer.unknownLexeme(L"#");
  ASSERT_EQ(errors.size(), 1u);
  EXPECT_EQ(errors[0]->type(), SqlErrorType::UnknownLexeme);
  EXPECT_EQ(dynamic_cast<UnknownLexeme&>(*errors[0]).lexeme, L"#");
}

TEST(SqlLexer, NullSemanticIsAnAssertionAndStillScans) {
  static int failures = 0;
  const AssertionHandler previous = setAssertionHandler([](const char*, const char* source) {
    EXPECT_STREQ(source, "SqlLexer");
    ++failures;
  });
  const std::string text = "a";
  SqlLexer lexer(text, nullptr);
  EXPECT_EQ(lexer.lex(nullptr, nullptr), T_IDENTIFIER);
  EXPECT_EQ(failures, 1);
  setAssertionHandler(previous);
}

// The window holds 131,070 bytes of a lexeme and what the automaton reads to settle on it.
constexpr std::size_t window = Lexer::maxLexemeWindow;

struct SizeCase {
  const char* what;
  std::string text;
  bool throws;
};

// The scanner joins string pieces across exactly the units the literal reader skips, so that
// every literal it hands over reads back as one value: checked for every unit of the BMP.
TEST(SqlLexer, StringPiecesJoinAcrossTheReadersWhiteSpace) {
  for (char32_t unit = 1; unit < 0x10000; ++unit) {
    if (unit >= 0xD800 && unit < 0xE000) continue;
    std::string utf8;
    if (unit < 0x80) {
      utf8 = std::string(1, static_cast<char>(unit));
    } else if (unit < 0x800) {
      utf8 = {static_cast<char>(0xC0 | (unit >> 6)), static_cast<char>(0x80 | (unit & 0x3F))};
    } else {
      utf8 = {static_cast<char>(0xE0 | (unit >> 12)), static_cast<char>(0x80 | ((unit >> 6) & 0x3F)),
              static_cast<char>(0x80 | (unit & 0x3F))};
    }
    const auto tokens = tokenize("'a'" + utf8 + "'b'");
    const bool joined = tokens.size() == 2 && tokens[0].id == T_STRING;
    ASSERT_EQ(joined, detail::isWhiteSpace(static_cast<wchar_t>(unit))) << std::hex << static_cast<unsigned>(unit);
    if (joined) {
      EXPECT_EQ(ASTStringValue(tokens[0].text).m_value, L"ab") << std::hex << static_cast<unsigned>(unit);
    }
  }
}

TEST(LexemeSize, BoundaryOfTheWindow) {
  const std::string name(window - 1, 'a');
  std::string openString(window + 5, 'a');
  openString.front() = '\'';
  const SizeCase cases[] = {
      {"name and the blank that ends it fit", name + " x", false},
      {"name needs one byte more to be sure it ends", name + "a x", true},
      {"name that reaches the end of the text", name + "a", false},
      {"name past the window at the end of the text", name + "aa", true},
      {"name that a NUL ends inside the window", name + std::string(1, '\0') + "xx", false},
      {"whitespace is a lexeme too", std::string(window + 5, ' ') + "x", true},
      {"a string attempt runs on until the window is full", openString, true},
  };
  for (const SizeCase& c : cases) {
    testing::internal::CaptureStderr();
    bool threw = false;
    try {
      tokenize(c.text);
    } catch (const std::runtime_error& error) {
      threw = true;
      EXPECT_STREQ(error.what(), "Distance between lexeme start and current pointer exceeds buffer size.");
    }
    const std::string diagnostics = testing::internal::GetCapturedStderr();
    EXPECT_EQ(threw, c.throws) << c.what;
    EXPECT_EQ(!diagnostics.empty(), c.throws) << c.what;
  }
}

TEST(LexemeSize, LongTextsOfShortLexemesScanIntact) {
  // The window moves with each lexeme; the sentinels written into the copy never show.
  std::string text;
  while (text.size() < 3 * window) text += "ab 'c d' 1.5\t";
  const auto tokens = tokenize(text);
  ASSERT_EQ(tokens.size() % 3, 1u);
  for (std::size_t i = 0; i + 1 < tokens.size(); i += 3) {
    ASSERT_EQ(tokens[i].text, L"ab") << i;
    ASSERT_EQ(tokens[i + 1].text, L"'c d'") << i;
    ASSERT_EQ(tokens[i + 2].text, L"1.5") << i;
  }
}

TEST(LexemeSize, LexemesAcrossTheWindowsEdgeScanAsAlone) {
  // A text longer than the window is read through it piece by piece; lexemes that straddle a
  // refill, fallbacks included, must come out as they do in a short text.
  const std::string tail = "1e+5 1e+ 'a' 'b 1.2.3 is \t notable [a b] \xC3\xA9t\xC3\xA9 <=> 'x''y' \"z\" "
                           "selection select intersects abc$_9 SELECT\xC3\xA9";
  const auto expected = tokenize(tail);
  for (std::size_t shift = 0; shift < 24; ++shift) {
    std::string text;
    while (text.size() + 2 <= window - shift) text += "a ";
    text.append(window - shift - text.size(), ' ');
    text += tail;
    const auto tokens = tokenize(text);
    ASSERT_GE(tokens.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
      const ScannedToken& got = tokens[tokens.size() - expected.size() + i];
      EXPECT_EQ(got.id, expected[i].id) << shift << ' ' << i;
      EXPECT_EQ(got.text, expected[i].text) << shift << ' ' << i;
    }
  }
}

// Random bytes, biased towards the ones that steer the automaton, never crash it and always
// end in <TERMINATION> with positions that only move forward.
TEST(RandomInput, NoCrashAndOrderedPositions) {
  const std::string alphabet[] = {"'", "\"", "\\", "\n", "\t", " ", "[", "]", "a", "Z", "_", "$", "1",
                                  ".", "e", "+", "-", "is", "not", "<", ">", "=", "!", "|", "*",
                                  ":", "\xC3", "\xA9", "\xE3\x80\x80", "\xCC\x81", "\xF0\x9D\x90\x80",
                                  "\xED\xA0\x80", "\xEF\xBB\xBF", std::string(1, '\0'), "\x01", "\xFF"};
  std::mt19937 random(20260401);
  for (int round = 0; round < 3000; ++round) {
    std::string text;
    const int length = static_cast<int>(random() % 64);
    for (int i = 0; i < length; ++i) {
      if (random() % 4 == 0) {
        text += static_cast<char>(random() % 256);
      } else {
        text += alphabet[random() % std::size(alphabet)];
      }
    }
    const auto tokens = tokenize(text);
    ASSERT_FALSE(tokens.empty());
    ASSERT_EQ(tokens.back().id, T_TERMINATION);
    for (std::size_t i = 0; i < tokens.size(); ++i) {
      ASSERT_EQ(carriesText(tokens[i].id), !tokens[i].text.empty());
      if (i == 0) continue;
      const bool forward = tokens[i].line > tokens[i - 1].line ||
                           (tokens[i].line == tokens[i - 1].line && tokens[i].column > tokens[i - 1].column);
      ASSERT_TRUE(forward || tokens[i].id == T_TERMINATION) << testing::PrintToString(text);
    }
  }
}

} // namespace
} // namespace velmor::sql
