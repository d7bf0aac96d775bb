// Keywords against the names next to them: every case, every distance from the end of the text
// (the scanner reads a name's first 16 bytes at once only where that many are left), and the
// names that a keyword begins, ends or nearly spells.
#include "sqllexer/Keywords.h"
#include "sqllexer/SqlLexer.h"

#include <velmor/sql/sqllexer/Tokens.h>

#include <gtest/gtest.h>

#include <cctype>
#include <string>
#include <vector>

namespace velmor::sql {
namespace {

std::string upper(std::string text) {
  for (char& c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return text;
}

// The first token of `text`, by name.
std::string firstToken(const std::string& text) {
  SqlLexer lexer(text, nullptr);
  std::wstring semantic;
  return tokenName(static_cast<std::uint32_t>(lexer.lex(&semantic, nullptr)));
}

std::string lowerCase(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

bool isKeyword(const std::string& lower) {
  for (const keywords::Keyword& keyword : keywords::kList) {
    if (keyword.text == lower) return true;
  }
  return false;
}

// The name with blanks after it: 0 to 20 of them moves the text's end across the 16 bytes that
// a whole read needs, for every name length.
std::vector<std::string> placements(const std::string& name) {
  std::vector<std::string> texts;
  for (std::size_t blanks = 0; blanks <= 20; ++blanks) texts.push_back(name + std::string(blanks, ' '));
  texts.push_back(name + "(x)");
  texts.push_back(name + "\t, b");
  return texts;
}

TEST(Keywords, EveryKeywordInEveryCaseAndPlace) {
  for (const keywords::Keyword& keyword : keywords::kList) {
    const std::string lower(keyword.text);
    // Its token is named after it; "some" is another spelling of ANY.
    const std::string expected = lower == "some" ? "ANY" : upper(lower);
    std::string mixed = lower;
    mixed[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(mixed[0])));
    std::string alternating = lower;
    for (std::size_t i = 1; i < alternating.size(); i += 2) {
      alternating[i] = static_cast<char>(std::toupper(static_cast<unsigned char>(alternating[i])));
    }
    for (const std::string& spelling : {lower, upper(lower), mixed, alternating}) {
      for (const std::string& text : placements(spelling)) {
        EXPECT_EQ(firstToken(text), expected) << '"' << text << '"';
      }
    }
  }
}

TEST(Keywords, NamesThatAKeywordBeginsOrEndsOrNearlySpells) {
  for (const keywords::Keyword& keyword : keywords::kList) {
    const std::string lower(keyword.text);
    std::vector<std::string> names = {lower + "_", lower + "1", lower + "$", "_" + lower, "x" + lower,
                                      lower + "abcdefghijklmnop", upper(lower) + "S", lower + "s"};
    if (lower.size() > 1) names.push_back(lower.substr(0, lower.size() - 1));
    std::string changed = lower;  // the last letter changed
    changed.back() = changed.back() == 'z' ? 'a' : static_cast<char>(changed.back() + 1);
    names.push_back(changed);
    // Some of these are keywords too ("intersect" and "s", "nulls" less "s").
    std::erase_if(names, [](const std::string& name) { return isKeyword(lowerCase(name)); });
    for (const std::string& name : names) {
      for (const std::string& text : placements(name)) {
        EXPECT_EQ(firstToken(text), "IDENTIFIER") << '"' << text << '"';
      }
    }
  }
}

TEST(Keywords, LongNamesAndOtherBytes) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      // Sixteen bytes and more: the key holds the first sixteen.
      {"intersectsintersects", "IDENTIFIER"},
      {"selectselectselect", "IDENTIFIER"},
      {"abcdefghijklmnop", "IDENTIFIER"},
      {"abcdefghijklmnopq", "IDENTIFIER"},
      // '_' folds to 0x7F and '@' to '`', neither a letter.
      {"SEL_CT", "IDENTIFIER"},
      {"f_om", "IDENTIFIER"},
      // Non-ASCII right after a keyword's letters makes a longer name.
      {"select\xC3\xA9", "IDENTIFIER"},
      {"from\xC3\xA9 x", "IDENTIFIER"},
      // A keyword's letters before other bytes.
      {"select*", "SELECT"},
      {"from[x]", "FROM"},
      {"null'x'", "NULL"},
      {"in(1)", "IN"},
      {"is not", "ISNOT"},
      {"is", "IS"},
      {"as", "AS"},
      {"a", "IDENTIFIER"},
      {"A", "IDENTIFIER"},
      {"_", "IDENTIFIER"},
  };
  for (const auto& [text, expected] : cases) EXPECT_EQ(firstToken(text), expected) << '"' << text << '"';
}

} // namespace
} // namespace velmor::sql
