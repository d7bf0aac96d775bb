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
  // The end of the text inside a run, or a NUL byte where the scanner ends a text: nothing can
  // come after either.
  EXPECT_FALSE(tokensAcceptedAfter(std::vector<std::uint32_t>{T_SELECT, T_IDENTIFIER, T_TERMINATION}));
  EXPECT_FALSE(tokensAcceptedAfter(std::string("SELECT a\0", 9)));
  EXPECT_FALSE(tokensAcceptedAfter(std::string("SELECT a\0 FROM", 14)));
  EXPECT_TRUE(tokensAcceptedAfter(std::string("SELECT a")));
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

namespace velmor::sql {
namespace {

// The mended run as text: fixes applied to the tokens of `text`, each token written as a word.
std::string mended(const std::string& text, const std::vector<TokenFix>& fixes) {
  const auto places = tokenPlaces(text);
  std::string out;
  std::size_t next = 0;
  auto write = [&](const std::string& piece) { out += (out.empty() ? "" : " ") + piece; };
  auto spell = [](std::uint32_t id) -> std::string {
    if (id == T_IDENTIFIER) return "x";
    if (id == T_EQ) return "=";
    if (id < 128) return std::string(1, static_cast<char>(id));
    std::string name = tokenName(id);
    return name.rfind("T_", 0) == 0 ? name.substr(2) : name;
  };
  for (std::size_t i = 0; i <= places.size(); ++i) {
    bool dropped = false;
    for (; next < fixes.size() && fixes[next].index == i; ++next) {
      if (fixes[next].drop) dropped = true;
      else write(spell(fixes[next].id));
    }
    if (i < places.size() && !dropped) write(text.substr(places[i].begin, places[i].end - places[i].begin));
  }
  return out;
}

TEST(RepairTokens, MendsUnfinishedAndBrokenStatements) {
  struct Case {
    const char* text;
    const char* mended; // nullptr: no repair
  };
  const Case cases[] = {
      {"SELECT a FROM t", "SELECT a FROM t"},
      {"SELECT a FROM t WHERE", "SELECT a FROM t WHERE x"},
      {"SELECT a, FROM t", "SELECT a , x FROM t"},
      {"SELECT f(a, (b FROM t", "SELECT f ( a , ( b ) ) FROM t"},
      {"SELECT CASE WHEN a FROM t", "SELECT CASE WHEN a THEN x END FROM t"},
      {"SELECT a FROM t WHERE a BETWEEN 1", "SELECT a FROM t WHERE a BETWEEN 1 AND x"},
      {"INSERT INTO t", "INSERT INTO t VALUES ( x )"},
      {"UPDATE", "UPDATE x SET x = x"},
      {"SELECT a FROM t ORDER BY a NULLS", "SELECT a FROM t ORDER BY a NULLS FIRST"},
      {"SELECT a FROM t LIMIT", "SELECT a FROM t LIMIT INTEGER_NUMBER"},
      // A token that fits nowhere is dropped; after the fixes run out the rest goes.
      {"SELECT a FROM t ) WHERE b", "SELECT a FROM t WHERE b"},
      // A text may be a lone expression.
      {"", "x"},
  };
  for (const auto& test : cases) {
    std::vector<std::uint32_t> ids;
    for (const auto& place : tokenPlaces(test.text)) ids.push_back(place.id);
    const auto fixes = repairTokens(ids);
    ASSERT_TRUE(fixes) << test.text;
    EXPECT_EQ(mended(test.text, *fixes), test.mended) << test.text;
    if (std::string(test.text) == test.mended) {
      EXPECT_TRUE(fixes->empty());
    }
  }
  // Every fix counts: with none allowed a broken run loses its rest.
  std::vector<std::uint32_t> broken;
  for (const auto& place : tokenPlaces("SELECT a, FROM t")) broken.push_back(place.id);
  const auto cut = repairTokens(broken, 0);
  ASSERT_TRUE(cut);
  EXPECT_EQ(mended("SELECT a, FROM t", *cut), "SELECT a , x x FROM x");
  // Closing is linear in the depth: twenty thousand open parentheses close.
  std::vector<std::uint32_t> deep{T_SELECT};
  deep.insert(deep.end(), 20'000, '(');
  const auto closed = repairTokens(deep);
  ASSERT_TRUE(closed);
  EXPECT_EQ(std::count_if(closed->begin(), closed->end(), [](const TokenFix& fix) { return fix.id == ')'; }), 20'000);
  EXPECT_LT(closed->size(), 20'010u);
}

} // namespace
} // namespace velmor::sql
