// tokensAcceptedAfter against the parser itself: for beginnings of corpus statements, a token is
// accepted exactly when the beginning followed by that token does not fail at the token.
#include <velmor/sql/parser/Completion.h>
#include <velmor/sql/parser/SqlParser.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

namespace velmor::sql {
namespace {

// One text for each kind of token that may follow, keywords of several roles included.
const std::pair<std::uint32_t, const char*> probes[] = {
    {T_TERMINATION, ""}, {T_IDENTIFIER, "x"}, {T_INTEGER_NUMBER, "1"}, {T_STRING, "'s'"},
    {T_SELECT, "SELECT"}, {T_FROM, "FROM"}, {T_WHERE, "WHERE"}, {T_GROUP, "GROUP"}, {T_BY, "BY"},
    {T_ORDER, "ORDER"}, {T_HAVING, "HAVING"}, {T_LIMIT, "LIMIT"}, {T_OFFSET, "OFFSET"}, {T_AS, "AS"},
    {T_JOIN, "JOIN"}, {T_ON, "ON"}, {T_USING, "USING"}, {T_LEFT, "LEFT"}, {T_AND, "AND"}, {T_OR, "OR"},
    {T_NOT, "NOT"}, {T_IN, "IN"}, {T_IS, "IS"}, {T_ISNOT, "IS NOT"}, {T_NULL, "NULL"}, {T_NULLS, "NULLS"},
    {T_BETWEEN, "BETWEEN"}, {T_LIKE, "LIKE"}, {T_UNION, "UNION"}, {T_ALL, "ALL"}, {T_DISTINCT, "DISTINCT"},
    {T_SET, "SET"}, {T_VALUES, "VALUES"}, {T_DEFAULT, "DEFAULT"}, {T_INTO, "INTO"}, {T_CASE, "CASE"},
    {T_WHEN, "WHEN"}, {T_END, "END"}, {T_ASC, "ASC"}, {T_CONTAINS, "CONTAINS"}, {T_PART, "PART"},
    {T_EQ, "="}, {T_LT_EQ, "<="}, {T_CONCAT, "||"}, {'(', "("}, {')', ")"}, {',', ","}, {'.', "."},
    {'*', "*"}, {'-', "-"}, {'^', "^"},
};

std::vector<std::string> corpusStatements(std::size_t count) {
  std::ifstream in(VELMOR_BENCH_CORPUS);
  std::vector<std::string> statements;
  std::string line;
  while (statements.size() < count && std::getline(in, line)) {
    if (!line.empty() && line.size() < 400) statements.push_back(line);
  }
  return statements;
}

TEST(CompletionTokens, AgreeWithTheParser) {
  const auto statements = corpusStatements(40);
  ASSERT_GE(statements.size(), 20u) << "no corpus at " << VELMOR_BENCH_CORPUS;
  ParseContext context;
  SqlParser parser(context);
  std::size_t checks = 0;
  for (const auto& statement : statements) {
    const auto places = tokenPlaces(statement);
    for (std::size_t cut = 0; cut <= places.size(); ++cut) {
      const std::string prefix = statement.substr(0, cut == 0 ? 0 : places[cut - 1].end);
      const auto accepted = tokensAcceptedAfter(prefix);
      ASSERT_TRUE(accepted) << prefix;
      for (const auto& [id, text] : probes) {
        // Two strings with only blanks between them scan as one.
        if (id == T_STRING && cut > 0 && places[cut - 1].id == T_STRING) continue;
        const std::string probe = prefix + " " + text;
        // The probe's place: the column after the prefix and the blank (ASCII corpus).
        const std::size_t column = prefix.size() + 2;
        bool failsAtProbe = false;
        if (!parser.parse(probe)) {
          const auto* error = dynamic_cast<const UnexpectedLexeme*>(parser.errors.front().get());
          ASSERT_NE(error, nullptr) << probe;
          failsAtProbe = error->line == 1 && error->column == column;
        }
        const bool listed = std::find(accepted->begin(), accepted->end(), id) != accepted->end();
        EXPECT_EQ(listed, !failsAtProbe) << "'" << probe << "'";
        ++checks;
      }
    }
  }
  EXPECT_GT(checks, 10000u);
}

TEST(CompletionTokens, Cases) {
  struct Case {
    const char* prefix;
    std::vector<std::uint32_t> accepted; // nullopt written as {1}
  };
  const Case cases[] = {
      // After a name, bison's default reduction drops '.' and '(' from the error state; the
      // answer keeps them.
      {"DELETE FROM t WHERE a", {}},
      {"SELECT a FROM t WHERE a = = ", {T_UNINITIALIZED}},
      {"UPDATE t SET", {T_IDENTIFIER}},
      {"INSERT INTO t DEFAULT", {T_VALUES}},
      {"SELECT a FROM t ORDER BY a NULLS", {T_FIRST, T_LAST}},
  };
  for (const auto& test : cases) {
    const auto accepted = tokensAcceptedAfter(std::string(test.prefix));
    if (test.accepted == std::vector<std::uint32_t>{T_UNINITIALIZED}) {
      EXPECT_FALSE(accepted) << test.prefix;
    } else if (test.accepted.empty()) {
      ASSERT_TRUE(accepted) << test.prefix;
      for (const std::uint32_t id : {std::uint32_t{'.'}, std::uint32_t{'('}, std::uint32_t{T_TERMINATION}}) {
        EXPECT_NE(std::find(accepted->begin(), accepted->end(), id), accepted->end()) << test.prefix << " " << id;
      }
    } else {
      EXPECT_EQ(accepted, test.accepted) << test.prefix;
    }
  }
  EXPECT_FALSE(tokensAcceptedAfter(std::vector<std::uint32_t>{T_TERMINATION}));
  EXPECT_FALSE(tokensAcceptedAfter(std::vector<std::uint32_t>{T_UNINITIALIZED}));
  EXPECT_FALSE(tokensAcceptedAfter(std::vector<std::uint32_t>{999}));
}

TEST(CompletionTokens, PlacesAreByteRanges) {
  const std::string text = "SELECT\t[näme], 'a''b' 'c'  FROM\nt IS  NOT x";
  const auto places = tokenPlaces(text);
  std::vector<std::string> pieces;
  for (const auto& place : places) pieces.push_back(text.substr(place.begin, place.end - place.begin));
  EXPECT_EQ(pieces, (std::vector<std::string>{"SELECT", "[näme]", ",", "'a''b' 'c'", "FROM", "t", "IS  NOT", "x"}));
}

} // namespace
} // namespace velmor::sql
