// The scanner as the parser holds it: tokens with wide text and locations.
#pragma once

#include "sqllexer/Lexer.h"
#include "sqllexer/Location.h"

#include <velmor/sql/errors/SqlError.h>

#include <memory>
#include <string>
#include <vector>

namespace velmor::sql {

class SqlLexer : public Lexer {
public:
  using ErrorList = std::vector<std::shared_ptr<SqlError>>;

  /// `text` as for Lexer; `errors` is the list of the parser's owner (may be null) and must
  /// outlive the lexer. The trace starts off.
  SqlLexer(const std::string& text, ErrorList* errors);
  ~SqlLexer() override;

  /// The next token's id (0 at the end). For identifiers, numbers and strings their text is
  /// stored in `*semantic` as UTF-16 units; other tokens leave it alone. `location`, when not
  /// null, gets the token's line and column as begin, and as end the same line and the column
  /// plus the byte length of the token's text plus one. Throws as Lexer::next does.
  int lex(std::wstring* semantic, Location* location);

  /// lex() without the wide text: the text of the token is token().text, to be widened by
  /// the caller where it wants it.
  int lexId(Location* location);
  /// lexId(nullptr) with the scanner's automaton inlined: defined in sqllexer/InlineScan.h.
  int lexIdInline();

  /// Adds an UnknownLexeme to the error list. The scanner drops unmatched input silently and
  /// does not call it; it is here for a stricter scanner.
  void unknownLexeme(const std::wstring& lexeme) override;

  /// When on, every token is written to std::cerr as its name, a blank and its text.
  void setTrace(bool on) { mTrace = on; }
  bool trace() const { return mTrace; }

  /// The last token that lex() returned; its text is valid until the next call of lex().
  const Token& token() const { return mToken; }

  /// '(' tokens returned so far that no ')' has closed yet.
  int openParentheses() const { return mOpenParentheses; }

private:
  /// The rest of lexId once the automaton has read a token into mToken, or not (`read`).
  int lexed(bool read, Location* location);
  void endOfText();
  void traceToken() const;

  ErrorList* mErrors;
  Token mToken;
  std::wstring mScratch;   // the wide text when the caller gives no semantic slot
  bool mTrace = false;
  int mOpenParentheses = 0;
};

// Inline: the parser asks for every token through it.
inline int SqlLexer::lexId(Location* location) { return lexed(next(mToken), location); }

inline int SqlLexer::lexed(bool read, Location* location) {
  if (!read) endOfText();

  if (mToken.id == '(') {
    ++mOpenParentheses;
  } else if (mToken.id == ')' && mOpenParentheses > 0) {
    --mOpenParentheses;
  }

  if (mTrace) traceToken();

  if (location) {
    location->begin = Position(mToken.line, mToken.column);
    location->end = Position(mToken.line, mToken.column + static_cast<int>(mToken.text.size()) + 1);
  }
  return static_cast<int>(mToken.id);
}

} // namespace velmor::sql
