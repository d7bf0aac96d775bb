// The scanner's automaton: token patterns over UTF-8 bytes, compiled to a DFA by re2c into a
// header, so that the parser can inline it. Scanner.cpp gives everyone else Lexer::next.
#pragma once

#include "sqllexer/Keywords.h"
#include "sqllexer/Lexer.h"

#include <cstdint>

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
  id = keywords::keywordOf(tok, cur, lim);
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
