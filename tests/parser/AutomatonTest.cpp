// The generated automaton keeps its size, its symbol order and its known conflicts: the order of
// the terminals is the order of the expected tokens in every syntax error message.
#include "SqlGrammar.tab.hpp"

#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <sstream>
#include <string>

namespace velmor::sql {
namespace {

std::string readReport() {
  std::ifstream in(VELMOR_SQL_BISON_REPORT);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

int countMatches(const std::string& text, const std::regex& pattern) {
  return static_cast<int>(std::distance(std::sregex_iterator(text.begin(), text.end(), pattern), std::sregex_iterator()));
}

// The text between two headings of the report.
std::string section(const std::string& report, const std::string& from, const std::string& to) {
  const auto begin = report.find(from);
  const auto end = report.find(to, begin);
  if (begin == std::string::npos || end == std::string::npos) return {};
  return report.substr(begin, end - begin);
}

TEST(Automaton, ReportHasTheDescribedSize) {
  const std::string report = readReport();
  ASSERT_FALSE(report.empty()) << VELMOR_SQL_BISON_REPORT;
  EXPECT_EQ(countMatches(report, std::regex(R"(\nState \d+(?=\n))")), 450);
  // Rules are numbered from 0 ($accept) in the report: 238 rules end with 237.
  const std::string grammar = section(report, "\nGrammar\n", "\nTerminals, with rules");
  EXPECT_EQ(countMatches(grammar, std::regex(R"(\n +\d+ )")), 238);
  EXPECT_NE(grammar.find("\n  236 opt_no_select: T_NOSELECT\n  237 "), std::string::npos);
  const std::string nonterminals = section(report, "\nNonterminals, with rules", "\nState 0\n");
  EXPECT_EQ(countMatches(nonterminals, std::regex(R"(\n    \S+ (<[^\n]*> )?\(\d+\))")), 68);
  EXPECT_EQ(grammar::terminalCount(), 113);
}

TEST(Automaton, OnlyTheOperatorWordConflictsRemain) {
  const std::string report = readReport();
  // Four states, each where CONTAINS PART / CONTAINS ENTIRE (plain or negated) ends its
  // operator: every operator that follows is shifted. Anything else is a new conflict.
  std::regex conflict(R"(\nState (\d+) conflicts: (\d+) shift/reduce(?=\n))");
  int states = 0, total = 0;
  for (auto it = std::sregex_iterator(report.begin(), report.end(), conflict); it != std::sregex_iterator(); ++it) {
    ++states;
    total += std::stoi((*it)[2]);
  }
  EXPECT_EQ(states, 4);
  EXPECT_EQ(total, 128);
  EXPECT_EQ(report.find("reduce/reduce"), std::string::npos);
}

TEST(Automaton, SymbolTableOrder) {
  const char* const expectedHead[] = {"T_TERMINATION", "error", "invalid token", "T_UNINITIALIZED", "T_ALL"};
  for (int i = 0; i < 5; ++i) EXPECT_STREQ(grammar::symbolName(i), expectedHead[i]);
  const char* const expectedTail[] = {"'|'", "'&'", "'+'", "'-'", "'*'", "'/'", "'\\\\'",
                                      "T_MOD", "'^'", "UMINUS", "'('", "')'", "'.'", "','"};
  for (int i = 0; i < 14; ++i) {
    EXPECT_STREQ(grammar::symbolName(113 - 14 + i), expectedTail[i]);
  }
  // The named tokens in the order of their ids, T_ALL (258) to T_RSHIFT (352).
  EXPECT_STREQ(grammar::symbolName(4 + 352 - 258), "T_RSHIFT");
  EXPECT_STREQ(grammar::symbolName(4 + 318 - 258), "T_IDENTIFIER");
}

} // namespace
} // namespace velmor::sql
