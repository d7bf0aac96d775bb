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
  re2c:define:YYFILL = "fill(cur, mar, tok, lim) == 0";
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

[[gnu::always_inline]] inline bool Lexer::scan(Token& token) {
  if (mStatus != Status::Good) return false;

  const unsigned char* cur = mCursor;
  const unsigned char* mar = cur;
  const unsigned char* lim = mLimit;
  const unsigned char* tok = cur;
  std::uint32_t id = T_UNINITIALIZED;

  for (;;) {
    // A lone blank before a printable ASCII character is a whole lexeme, and by far the
    // commonest one; it needs no trip through the automaton. (The sentinel is below ' '.)
    if (cur[0] == ' ' && cur[1] > ' ' && cur[1] < 0x80) {
      ++cur;
      ++mColumn;
    }
    tok = cur;
    /*!re2c
      $ {
        if (mStatus == Status::Good) mStatus = Status::End;
        goto ended;
      }
      * { cur = tok + 1; goto dropped; }
      " " { if (mStatus != Status::Good) goto ended; ++mColumn; continue; }
      WS+ { goto skipped; }

      'all'        { id = T_ALL; goto plain; }
      'and'        { id = T_AND; goto plain; }
      'any'        { id = T_ANY; goto plain; }
      'some'       { id = T_ANY; goto plain; }
      'array'      { id = T_ARRAY; goto plain; }
      'as'         { id = T_AS; goto plain; }
      'asc'        { id = T_ASC; goto plain; }
      'between'    { id = T_BETWEEN; goto plain; }
      'by'         { id = T_BY; goto plain; }
      'case'       { id = T_CASE; goto plain; }
      'cast'       { id = T_CAST; goto plain; }
      'contains'   { id = T_CONTAINS; goto plain; }
      'cross'      { id = T_CROSS; goto plain; }
      'default'    { id = T_DEFAULT; goto plain; }
      'delete'     { id = T_DELETE; goto plain; }
      'desc'       { id = T_DESC; goto plain; }
      'distinct'   { id = T_DISTINCT; goto plain; }
      'else'       { id = T_ELSE; goto plain; }
      'end'        { id = T_END; goto plain; }
      'entire'     { id = T_ENTIRE; goto plain; }
      'entirely'   { id = T_ENTIRELY; goto plain; }
      'except'     { id = T_EXCEPT; goto plain; }
      'exists'     { id = T_EXISTS; goto plain; }
      'false'      { id = T_FALSE; goto plain; }
      'first'      { id = T_FIRST; goto plain; }
      'from'       { id = T_FROM; goto plain; }
      'full'       { id = T_FULL; goto plain; }
      'glob'       { id = T_GLOB; goto plain; }
      'group'      { id = T_GROUP; goto plain; }
      'groupby'    { id = T_GROUPBY; goto plain; }
      'having'     { id = T_HAVING; goto plain; }
      'in'         { id = T_IN; goto plain; }
      'inner'      { id = T_INNER; goto plain; }
      'insert'     { id = T_INSERT; goto plain; }
      'intersect'  { id = T_INTERSECT; goto plain; }
      'intersects' { id = T_INTERSECTS; goto plain; }
      'into'       { id = T_INTO; goto plain; }
      'is'         { id = T_IS; goto plain; }
      'join'       { id = T_JOIN; goto plain; }
      'last'       { id = T_LAST; goto plain; }
      'left'       { id = T_LEFT; goto plain; }
      'like'       { id = T_LIKE; goto plain; }
      'limit'      { id = T_LIMIT; goto plain; }
      'mod'        { id = T_MOD; goto plain; }
      'multiset'   { id = T_MULTISET; goto plain; }
      'natural'    { id = T_NATURAL; goto plain; }
      'noselect'   { id = T_NOSELECT; goto plain; }
      'not'        { id = T_NOT; goto plain; }
      'null'       { id = T_NULL; goto plain; }
      'nulls'      { id = T_NULLS; goto plain; }
      'offset'     { id = T_OFFSET; goto plain; }
      'on'         { id = T_ON; goto plain; }
      'or'         { id = T_OR; goto plain; }
      'order'      { id = T_ORDER; goto plain; }
      'orderby'    { id = T_ORDERBY; goto plain; }
      'outer'      { id = T_OUTER; goto plain; }
      'overriding' { id = T_OVERRIDING; goto plain; }
      'part'       { id = T_PART; goto plain; }
      'partly'     { id = T_PARTLY; goto plain; }
      'regexp'     { id = T_REGEXP; goto plain; }
      'right'      { id = T_RIGHT; goto plain; }
      'row'        { id = T_ROW; goto plain; }
      'select'     { id = T_SELECT; goto plain; }
      'set'        { id = T_SET; goto plain; }
      'system'     { id = T_SYSTEM; goto plain; }
      'table'      { id = T_TABLE; goto plain; }
      'then'       { id = T_THEN; goto plain; }
      'true'       { id = T_TRUE; goto plain; }
      'union'      { id = T_UNION; goto plain; }
      'unique'     { id = T_UNIQUE; goto plain; }
      'unknown'    { id = T_UNKNOWN; goto plain; }
      'update'     { id = T_UPDATE; goto plain; }
      'user'       { id = T_USER; goto plain; }
      'using'      { id = T_USING; goto plain; }
      'value'      { id = T_VALUE; goto plain; }
      'values'     { id = T_VALUES; goto plain; }
      'when'       { id = T_WHEN; goto plain; }
      'where'      { id = T_WHERE; goto plain; }
      'within'     { id = T_WITHIN; goto plain; }
      'xor'        { id = T_XOR; goto plain; }

      // The whitespace inside is part of the token; the match stops right after "not".
      'is' WS+ 'not' { id = T_ISNOT; goto spaced; }

      // The ASCII forms come first only so that their column count is the byte count; any
      // longer match of the general forms still wins.
      [a-zA-Z_] [a-zA-Z0-9_$]*    { id = T_IDENTIFIER; goto asciiWord; }
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
