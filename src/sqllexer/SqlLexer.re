// The scanner's automaton: token patterns over UTF-8 bytes, compiled to a DFA by re2c into a
// header, so that the parser can inline it. Scanner.cpp gives everyone else Lexer::next.
#pragma once

#include "sqllexer/Lexer.h"

namespace velmor::sql {

/*!include:re2c "sqllexer/UnicodeClasses.re.inc" */

/*!re2c
  re2c:define:YYCTYPE = "unsigned char";
  re2c:define:YYCURSOR = cur;
  re2c:define:YYMARKER = mar;
  re2c:define:YYLIMIT = lim;
  re2c:define:YYFILL = "(refilled = fill(cur, mar, tok, lim), cur = refilled.cursor, mar = refilled.marker, tok = refilled.lexemeStart, lim = refilled.limit, refilled.more)";
  re2c:define:YYFILL:naked = 1;
  re2c:eof = 0;
  re2c:indent:top = 2;

  // U+0000 is the sentinel and U+0001 is left out on purpose; surrogate code points in their
  // three-byte form are in.
  ANY = [\U00000002-\U0010FFFF];

  // A quoted piece: doubled quotes and backslash items inside, and a backslash cannot take a
  // line feed.
  SQ_ITEM = (ANY \ ['\\]) | "''" | "\\" (ANY \ [\n]);
  DQ_ITEM = (ANY \ ["\\]) | "\"\"" | "\\" (ANY \ [\n]);
  PIECE = "'" SQ_ITEM* "'" | "\"" DQ_ITEM* "\"";

  INTEGER = DIGIT+;
  EXACT = DIGIT+ "." DIGIT* | "." DIGIT+;
*/

// The keyword that the ASCII name [begin, end) spells, else T_IDENTIFIER. The byte at `end`
// must be readable and no letter, digit, '_' or '$': the automaton stops there at the latest.
[[gnu::always_inline]] inline std::uint32_t keywordOf(const unsigned char* begin, const unsigned char* end) {
  const unsigned char* cur = begin;
  const unsigned char* mar = begin;
  std::uint32_t id = T_IDENTIFIER;
  /*!local:re2c
    re2c:yyfill:enable = 0;
    re2c:eof = -1;
    re2c:indent:top = 1;

    'all'        { id = T_ALL; goto matched; }
    'and'        { id = T_AND; goto matched; }
    'any'        { id = T_ANY; goto matched; }
    'some'       { id = T_ANY; goto matched; }
    'array'      { id = T_ARRAY; goto matched; }
    'as'         { id = T_AS; goto matched; }
    'asc'        { id = T_ASC; goto matched; }
    'between'    { id = T_BETWEEN; goto matched; }
    'by'         { id = T_BY; goto matched; }
    'case'       { id = T_CASE; goto matched; }
    'cast'       { id = T_CAST; goto matched; }
    'contains'   { id = T_CONTAINS; goto matched; }
    'cross'      { id = T_CROSS; goto matched; }
    'default'    { id = T_DEFAULT; goto matched; }
    'delete'     { id = T_DELETE; goto matched; }
    'desc'       { id = T_DESC; goto matched; }
    'distinct'   { id = T_DISTINCT; goto matched; }
    'else'       { id = T_ELSE; goto matched; }
    'end'        { id = T_END; goto matched; }
    'entire'     { id = T_ENTIRE; goto matched; }
    'entirely'   { id = T_ENTIRELY; goto matched; }
    'except'     { id = T_EXCEPT; goto matched; }
    'exists'     { id = T_EXISTS; goto matched; }
    'false'      { id = T_FALSE; goto matched; }
    'first'      { id = T_FIRST; goto matched; }
    'from'       { id = T_FROM; goto matched; }
    'full'       { id = T_FULL; goto matched; }
    'glob'       { id = T_GLOB; goto matched; }
    'group'      { id = T_GROUP; goto matched; }
    'groupby'    { id = T_GROUPBY; goto matched; }
    'having'     { id = T_HAVING; goto matched; }
    'in'         { id = T_IN; goto matched; }
    'inner'      { id = T_INNER; goto matched; }
    'insert'     { id = T_INSERT; goto matched; }
    'intersect'  { id = T_INTERSECT; goto matched; }
    'intersects' { id = T_INTERSECTS; goto matched; }
    'into'       { id = T_INTO; goto matched; }
    'is'         { id = T_IS; goto matched; }
    'join'       { id = T_JOIN; goto matched; }
    'last'       { id = T_LAST; goto matched; }
    'left'       { id = T_LEFT; goto matched; }
    'like'       { id = T_LIKE; goto matched; }
    'limit'      { id = T_LIMIT; goto matched; }
    'mod'        { id = T_MOD; goto matched; }
    'multiset'   { id = T_MULTISET; goto matched; }
    'natural'    { id = T_NATURAL; goto matched; }
    'noselect'   { id = T_NOSELECT; goto matched; }
    'not'        { id = T_NOT; goto matched; }
    'null'       { id = T_NULL; goto matched; }
    'nulls'      { id = T_NULLS; goto matched; }
    'offset'     { id = T_OFFSET; goto matched; }
    'on'         { id = T_ON; goto matched; }
    'or'         { id = T_OR; goto matched; }
    'order'      { id = T_ORDER; goto matched; }
    'orderby'    { id = T_ORDERBY; goto matched; }
    'outer'      { id = T_OUTER; goto matched; }
    'overriding' { id = T_OVERRIDING; goto matched; }
    'part'       { id = T_PART; goto matched; }
    'partly'     { id = T_PARTLY; goto matched; }
    'regexp'     { id = T_REGEXP; goto matched; }
    'right'      { id = T_RIGHT; goto matched; }
    'row'        { id = T_ROW; goto matched; }
    'select'     { id = T_SELECT; goto matched; }
    'set'        { id = T_SET; goto matched; }
    'system'     { id = T_SYSTEM; goto matched; }
    'table'      { id = T_TABLE; goto matched; }
    'then'       { id = T_THEN; goto matched; }
    'true'       { id = T_TRUE; goto matched; }
    'union'      { id = T_UNION; goto matched; }
    'unique'     { id = T_UNIQUE; goto matched; }
    'unknown'    { id = T_UNKNOWN; goto matched; }
    'update'     { id = T_UPDATE; goto matched; }
    'user'       { id = T_USER; goto matched; }
    'using'      { id = T_USING; goto matched; }
    'value'      { id = T_VALUE; goto matched; }
    'values'     { id = T_VALUES; goto matched; }
    'when'       { id = T_WHEN; goto matched; }
    'where'      { id = T_WHERE; goto matched; }
    'within'     { id = T_WITHIN; goto matched; }
    'xor'        { id = T_XOR; goto matched; }

    * { return T_IDENTIFIER; }
  */
matched:
  // A keyword that is only the beginning of the name leaves a longer name.
  return cur == end ? id : T_IDENTIFIER;
}

/// Bytes that may begin and continue an ASCII name, as the automaton's ASCII rule has them.
inline constexpr auto asciiNameBytes = [] {
  struct Classes {
    bool start[256] = {};
    bool part[256] = {};
  } classes;
  for (int c = 0; c < 256; ++c) {
    const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
    classes.start[c] = letter;
    classes.part[c] = letter || (c >= '0' && c <= '9') || c == '$';
  }
  return classes;
}();

[[gnu::always_inline]] inline bool Lexer::scan(Token& token) {
  if (mStatus != Status::Good) return false;

  const unsigned char* cur = mCursor;
  const unsigned char* mar = cur;
  const unsigned char* lim = mLimit;
  const unsigned char* tok = cur;
  std::uint32_t id = T_UNINITIALIZED;
  // Where fill() hands the four pointers back, so that their own addresses are never taken.
  Refill refilled;

  for (;;) {
    // A lone blank before a printable ASCII character is a whole lexeme, and by far the
    // commonest one; it needs no trip through the automaton. (The sentinel is below ' '.)
    if (cur[0] == ' ' && cur[1] > ' ' && cur[1] < 0x80) {
      ++cur;
      ++mColumn;
    }
    tok = cur;
    // An ASCII name or keyword that an ASCII byte other than NUL ends: no rule matches longer
    // from there, so the automaton would find the same lexeme, through many more states. "is"
    // is left to it, for IS NOT; NUL may be the window's end or the text's.
    if (asciiNameBytes.start[cur[0]]) {
      const unsigned char* end = cur + 1;
      while (asciiNameBytes.part[*end]) ++end;
      if (*end != 0 && *end < 0x80 && !(end - cur == 2 && (cur[0] | 0x20) == 'i' && (cur[1] | 0x20) == 's')) {
        cur = end;
        goto asciiName;
      }
    }
    /*!re2c
      $ {
        if (mStatus == Status::Good) mStatus = Status::End;
        goto ended;
      }
      * { cur = tok + 1; goto dropped; }
      " " { if (mStatus != Status::Good) goto ended; ++mColumn; continue; }
      WS+ { goto skipped; }

      // The whitespace inside is part of the token; the match stops right after "not".
      'is' WS+ 'not' { id = T_ISNOT; goto spaced; }

      // The ASCII forms come first only so that their column count is the byte count; any
      // longer match of the general forms still wins.
      [a-zA-Z_] [a-zA-Z0-9_$]*    { goto asciiName; }
      [0-9]+                      { id = T_INTEGER_NUMBER; goto asciiWord; }
      IDSTART IDCONT*             { id = T_IDENTIFIER; goto word; }
      "[" IDSTART IDCONT* "]"     { id = T_IDENTIFIER; goto bracketed; }
      INTEGER                     { id = T_INTEGER_NUMBER; goto word; }
      EXACT                       { id = T_EXACT_NUMBER; goto word; }
      (INTEGER | EXACT) [eE] [+-]? DIGIT+ { id = T_APPROX_NUMBER; goto word; }
      PIECE (WS+ PIECE)*          { id = T_STRING; goto text; }

      "=" | "=="         { id = T_EQ; goto plain; }
      "<>" | "!=" | "><" { id = T_NEQ; goto plain; }
      "<"                { id = T_LT; goto plain; }
      ">"                { id = T_GT; goto plain; }
      "<="               { id = T_LT_EQ; goto plain; }
      ">="               { id = T_GT_EQ; goto plain; }
      "<<"               { id = T_LSHIFT; goto plain; }
      ">>"               { id = T_RSHIFT; goto plain; }
      "||" | "&"         { id = T_CONCAT; goto plain; }
      "|"                { id = '|'; goto plain; }
      "%"                { id = T_MOD; goto plain; }
      "^" | "**"         { id = '^'; goto plain; }
      "!"                { id = T_NOT; goto plain; }
      ":="               { id = T_ASSIGN; goto plain; }
      ":" | "@"          { id = T_PARAM_NAME; goto plain; }
      [-+*/\\(),.]       { id = *tok; goto plain; }
    */

  dropped:
    if (mSkipped && mStatus == Status::Good) noteDropped(tok);
  skipped:
    // Whitespace and dropped bytes make no token. A NUL reached while reading them ends the
    // text here, as it does for every lexeme under way.
    if (mStatus != Status::Good) goto ended;
    advance(tok, cur);
  }

ended:
  if (mSkipped && mStatus == Status::Error) noteNul(tok);
  mCursor = cur;
  return false;

plain:
  // Keywords and operators: ASCII without tabs or line breaks.
  if (mStatus != Status::Good) goto ended;
  token.text = {};
  setToken(token, id, tok);
  mColumn += static_cast<int>(cur - tok);
  mCursor = cur;
  return true;

spaced:
  if (mStatus != Status::Good) goto ended;
  token.text = {};
  setToken(token, id, tok);
  advance(tok, cur);
  mCursor = cur;
  return true;

bracketed:
  if (mStatus != Status::Good) goto ended;
  token.text = std::string_view(reinterpret_cast<const char*>(tok) + 1, static_cast<std::size_t>(cur - tok - 2));
  setToken(token, id, tok);
  advanceInLine(tok, cur);
  mCursor = cur;
  return true;

asciiName:
  id = keywordOf(tok, cur);
  if (id != T_IDENTIFIER) goto plain;
asciiWord:
  if (mStatus != Status::Good) goto ended;
  token.text = std::string_view(reinterpret_cast<const char*>(tok), static_cast<std::size_t>(cur - tok));
  setToken(token, id, tok, true);
  mColumn += static_cast<int>(cur - tok);
  mCursor = cur;
  return true;

word:
  // Names and numbers hold no tabs or line breaks.
  if (mStatus != Status::Good) goto ended;
  token.text = std::string_view(reinterpret_cast<const char*>(tok), static_cast<std::size_t>(cur - tok));
  setToken(token, id, tok);
  advanceInLine(tok, cur);
  mCursor = cur;
  return true;

text:
  if (mStatus != Status::Good) goto ended;
  token.text = std::string_view(reinterpret_cast<const char*>(tok), static_cast<std::size_t>(cur - tok));
  setToken(token, id, tok);
  advance(tok, cur);
  mCursor = cur;
  return true;
}

} // namespace velmor::sql
