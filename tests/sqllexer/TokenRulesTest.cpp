// What the scanner makes of a text: token kinds, texts, fallbacks and dropped input.
#include <velmor/sql/sqllexer/Tokens.h>

#include <gtest/gtest.h>

#include <cctype>
#include <cstdio>
#include <string>

namespace velmor::sql {
namespace {

// "NAME" or "NAME=text" per token, joined by " | ", without the final <TERMINATION>.
// Text units outside ASCII are written as \uXXXX.
std::string describe(const std::string& input) {
  const auto tokens = tokenize(input);
  EXPECT_EQ(tokens.back().id, T_TERMINATION) << input;
  std::string out;
  for (std::size_t i = 0; i + 1 < tokens.size(); ++i) {
    if (!out.empty()) out += " | ";
    out += tokenName(tokens[i].id);
    if (!carriesText(tokens[i].id)) continue;
    out += '=';
    for (wchar_t unit : tokens[i].text) {
      if (unit < 0x80) {
        out += static_cast<char>(unit);
      } else {
        char escape[12];
        std::snprintf(escape, sizeof escape, "\\u%04X", static_cast<unsigned>(unit));
        out += escape;
      }
    }
  }
  return out;
}

struct Case {
  std::string input;
  std::string tokens;
};

class TokenRules : public testing::TestWithParam<Case> {};

TEST_P(TokenRules, Scan) {
  EXPECT_EQ(describe(GetParam().input), GetParam().tokens) << "input: " << GetParam().input;
}

const Case keywordsAndNames[] = {
    {"select SELECT SeLeCt", "SELECT | SELECT | SELECT"},
    {"selectx select1 _select", "IDENTIFIER=selectx | IDENTIFIER=select1 | IDENTIFIER=_select"},
    {"some SOME mod %", "ANY | ANY | MOD | MOD"},
    {"groupby orderby group by order  by", "GROUPBY | ORDERBY | GROUP | BY | ORDER | BY"},
    // Case folding of keywords is ASCII only: a long s does not make "select".
    {"\xC5\xBF" "elect", "IDENTIFIER=\\u017Felect"},
    {"is not", "ISNOT"},
    {"IS\t\r\n NoT", "ISNOT"},
    {"is\xE3\x80\x80not", "ISNOT"},
    {"x is notable", "IDENTIFIER=x | ISNOT | IDENTIFIER=able"},
    {"is no", "IS | IDENTIFIER=no"},
    {"isnot is", "IDENTIFIER=isnot | IS"},
    {"not is", "NOT | IS"},
    {"a$ $a a#", "IDENTIFIER=a$ | IDENTIFIER=a | IDENTIFIER=a"},
    {"a;b", "IDENTIFIER=a | IDENTIFIER=b"},
    {"`select`", "SELECT"},
    {"[select] [a$] [_x1]", "IDENTIFIER=select | IDENTIFIER=a$ | IDENTIFIER=_x1"},
    {"[1a]", "INTEGER_NUMBER=1 | IDENTIFIER=a"},
    {"[a b]", "IDENTIFIER=a | IDENTIFIER=b"},
    {"[] [$a]", "IDENTIFIER=a"},
    {"\xC3\xA9t\xC3\xA9", "IDENTIFIER=\\u00E9t\\u00E9"},
    {"\xE8\xA1\xA8 \xCE\xB1\xCE\xB2", "IDENTIFIER=\\u8868 | IDENTIFIER=\\u03B1\\u03B2"},
    // A combining mark continues a name but cannot begin one.
    {"a\xCC\x81", "IDENTIFIER=a\\u0301"},
    {"\xCC\x81" "a", "IDENTIFIER=a"},
    // Outside the Basic Multilingual Plane: a surrogate pair (MATHEMATICAL BOLD CAPITAL A).
    {"\xF0\x9D\x90\x80x", "IDENTIFIER=\\uD835\\uDC00x"},
    // Letters are those of Unicode 8.0: U+08B6 came in 9.0 and is dropped.
    {"x\xE0\xA2\xB6y", "IDENTIFIER=x | IDENTIFIER=y"},
    // A digit continues a name.
    {"x\xD9\xA1", "IDENTIFIER=x\\u0661"},
};
INSTANTIATE_TEST_SUITE_P(KeywordsAndNames, TokenRules, testing::ValuesIn(keywordsAndNames));

const Case numbers[] = {
    {"1 12 1. .5 1.5 1e5 1E+5 1.e-5 .5e10", "INTEGER_NUMBER=1 | INTEGER_NUMBER=12 | EXACT_NUMBER=1. | EXACT_NUMBER=.5 | "
                                            "EXACT_NUMBER=1.5 | APPROX_NUMBER=1e5 | APPROX_NUMBER=1E+5 | "
                                            "APPROX_NUMBER=1.e-5 | APPROX_NUMBER=.5e10"},
    {"1e", "INTEGER_NUMBER=1 | IDENTIFIER=e"},
    {"1e+", "INTEGER_NUMBER=1 | IDENTIFIER=e | UCS_0x00002B"},
    {"1e-x", "INTEGER_NUMBER=1 | IDENTIFIER=e | UCS_0x00002D | IDENTIFIER=x"},
    {"1e5e5", "APPROX_NUMBER=1e5 | IDENTIFIER=e5"},
    {"1.2.3", "EXACT_NUMBER=1.2 | EXACT_NUMBER=.3"},
    {"1..2", "EXACT_NUMBER=1. | EXACT_NUMBER=.2"},
    {"1.a", "EXACT_NUMBER=1. | IDENTIFIER=a"},
    {"a.1", "IDENTIFIER=a | EXACT_NUMBER=.1"},
    {".e5", "UCS_0x00002E | IDENTIFIER=e5"},
    {"0x1F", "INTEGER_NUMBER=0 | IDENTIFIER=x1F"},
    {"1_000", "INTEGER_NUMBER=1 | IDENTIFIER=_000"},
    {"x'1F'", "IDENTIFIER=x | STRING='1F'"},
    {"-1", "UCS_0x00002D | INTEGER_NUMBER=1"},
    // Arabic-Indic and full-width digits make numbers.
    {"\xD9\xA1\xD9\xA2.\xEF\xBC\x95", "EXACT_NUMBER=\\u0661\\u0662.\\uFF15"},
};
INSTANTIATE_TEST_SUITE_P(Numbers, TokenRules, testing::ValuesIn(numbers));

const Case strings[] = {
    {"'a' 'b'", "STRING='a' 'b'"},
    {"'a'\n\t'b'", "STRING='a'\n\t'b'"},
    {"'a' \"b\"", "STRING='a' \"b\""},
    {"'a''b' 'c'", "STRING='a''b' 'c'"},
    {"'a'\"b\"", "STRING='a' | STRING=\"b\""},
    {"'' \"\"", "STRING='' \"\""},
    {"'it''s' \"say \"\"hi\"\"\"", "STRING='it''s' \"say \"\"hi\"\"\""},
    {"'a\nb'", "STRING='a\nb'"},
    {"'\xC3\xA9'", "STRING='\\u00E9'"},
    {"'\\\\'", "STRING='\\\\'"},
    {"'\\'x'", "STRING='\\'x'"},
    {"\"a\\\"b\"", "STRING=\"a\\\"b\""},
    // A surrogate code point in its three-byte form is taken as it stands.
    {"'\xED\xA0\x80'", "STRING='\\uD800'"},
    // Incomplete pieces: the quote that opens no complete piece is dropped.
    {"'''", "STRING=''"},
    {"''''", "STRING=''''"},
    {"'a''", "STRING='a'"},
    {"'a' 'b", "STRING='a' | IDENTIFIER=b"},
    {"'a' x", "STRING='a' | IDENTIFIER=x"},
    {"'abc", "IDENTIFIER=abc"},
    {"'\\'", "UCS_0x00005C"},
    {"'a\\\nb'", "IDENTIFIER=a | UCS_0x00005C | IDENTIFIER=b"},
    {std::string("'\x01'"), ""},
    {"\"select", "SELECT"},
};
INSTANTIATE_TEST_SUITE_P(Strings, TokenRules, testing::ValuesIn(strings));

const Case operators[] = {
    {"= == <> != ><", "EQ | EQ | NEQ | NEQ | NEQ"},
    {"< > <= >= << >>", "LT | GT | LT_EQ | GT_EQ | LSHIFT | RSHIFT"},
    {"|| & | % ^ ** ! := : @", "CONCAT | CONCAT | UCS_0x00007C | MOD | UCS_0x00005E | UCS_0x00005E | NOT | "
                               "ASSIGN | PARAM_NAME | PARAM_NAME"},
    {"+-*/\\(),.", "UCS_0x00002B | UCS_0x00002D | UCS_0x00002A | UCS_0x00002F | UCS_0x00005C | "
                   "UCS_0x000028 | UCS_0x000029 | UCS_0x00002C | UCS_0x00002E"},
    {"***", "UCS_0x00005E | UCS_0x00002A"},
    {"<=>", "LT_EQ | GT"},
    {"!==", "NEQ | EQ"},
    {"||||", "CONCAT | CONCAT"},
    {"&&", "CONCAT | CONCAT"},
    {"!<", "NOT | LT"},
    {"<<=", "LSHIFT | EQ"},
    {"-- x", "UCS_0x00002D | UCS_0x00002D | IDENTIFIER=x"},
    {"/* */", "UCS_0x00002F | UCS_0x00002A | UCS_0x00002A | UCS_0x00002F"},
    {":name", "PARAM_NAME | IDENTIFIER=name"},
};
INSTANTIATE_TEST_SUITE_P(Operators, TokenRules, testing::ValuesIn(operators));

const Case droppedInput[] = {
    {"", ""},
    {" \t\r\n\x0B\x0C\xC2\x85\xC2\xA0\xE2\x80\xA8\xE3\x80\x80", ""},
    {"# $ ? ; { } ~ ` [ ]", ""},
    {"SELECT ? FROM t", "SELECT | FROM | IDENTIFIER=t"},
    {"\xEF\xBB\xBFselect", "SELECT"},
    {"\x01\x02\x1F\x7F" "a", "IDENTIFIER=a"},
    {"\xC3(", "UCS_0x000028"},
    {"\xFF" "a\x80", "IDENTIFIER=a"},
    {"\xC0\xAF\xE0\x80\xAF" "b", "IDENTIFIER=b"},
    {"\xF0\x9F\x98\x80", ""},
    // A NUL ends the text and drops the lexeme under way.
    {std::string("a\0b", 3), ""},
    {std::string("a \0b", 4), "IDENTIFIER=a"},
    {std::string("a  \0", 4), "IDENTIFIER=a"},
    {std::string("(\0)", 3), "UCS_0x000028"},
    {std::string("x <\0", 4), "IDENTIFIER=x"},
    {std::string("'abc\0'", 6), ""},
    {std::string("'a' \0'b'", 8), ""},
    {std::string("\0select", 7), ""},
};
INSTANTIATE_TEST_SUITE_P(DroppedInput, TokenRules, testing::ValuesIn(droppedInput));

// Every word of the keyword table makes the token of its name, in any ASCII case, and stops
// being a keyword when a name character follows.
TEST(Keywords, EveryWordMakesItsToken) {
  const char* words[] = {
      "all", "and", "any", "array", "as", "asc", "between", "by", "case", "cast", "contains", "cross",
      "default", "delete", "desc", "distinct", "else", "end", "entire", "entirely", "except",
      "exists", "false", "first", "from", "full", "glob", "group", "groupby", "having", "in", "inner",
      "insert", "intersect", "intersects", "into", "is", "join", "last", "left", "like", "limit",
      "multiset", "natural", "noselect", "not", "null", "nulls", "offset", "on", "or", "order",
      "orderby", "outer", "overriding", "part", "partly", "regexp", "right", "row", "select", "set",
      "system", "table", "then", "true", "union", "unique", "unknown", "update", "user", "using",
      "value", "values", "when", "where", "within", "xor"};
  for (const char* word : words) {
    std::string upper = word;
    for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    EXPECT_EQ(describe(word), upper);
    EXPECT_EQ(describe(upper), upper);
    EXPECT_EQ(describe(std::string(word) + "$"), "IDENTIFIER=" + std::string(word) + "$");
  }
}

struct NameCase {
  std::uint32_t id;
  const char* name;
};

TEST(TokenNames, AllRanges) {
  const NameCase cases[] = {
      {0, "<TERMINATION>"}, {1, "<UNINITIALIZED>"}, {38, "UCS_0x000026"},   {40, "UCS_0x000028"},
      {124, "UCS_0x00007C"}, {258, "ALL"},          {317, "PARAM_NAME"},    {318, "IDENTIFIER"},
      {322, "STRING"},       {323, "EXCEPT"},       {347, "ISNOT"},         {353, "MOD"},
      {354, "<UNKNOWN TOKEN-ID: 354>"},             {0xFFFFFFFFu, "<UNKNOWN TOKEN-ID: -1>"},
  };
  for (const NameCase& c : cases) EXPECT_EQ(tokenName(c.id), c.name) << c.id;
  // The named tokens run from 258 to 353 without a gap.
  for (std::uint32_t id = 258; id <= 353; ++id) {
    EXPECT_EQ(tokenName(id).find('<'), std::string::npos) << id;
  }
}

} // namespace
} // namespace velmor::sql
