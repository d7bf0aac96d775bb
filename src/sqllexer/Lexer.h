// The scanning engine: a longest-match automaton over the UTF-8 bytes of one text.
#pragma once

#include <velmor/sql/sqllexer/Tokens.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace velmor::sql {

/// One token as the automaton matched it.
struct Token {
  virtual ~Token() = default;

  /// UTF-8 bytes of the token's text: the lexeme of an identifier, number or string (a
  /// bracketed identifier without its brackets); empty for every other token.
  std::string text;
  std::uint32_t id = T_UNINITIALIZED;
  int line = 1;
  int column = 1;
};

/// Reads one text from start to end and hands out its tokens. Unmatched input is dropped a
/// byte at a time; a NUL byte ends the text and drops the lexeme under way.
class Lexer {
public:
  enum class Status { Good, End, Error };

  /// The reading window of the scanner is 131,072 bytes with a sentinel byte at each end, so
  /// one lexeme, together with the bytes the automaton looks at before it settles on it, may
  /// span at most this many bytes. The automaton needing the byte at this offset from the
  /// lexeme's start raises the lexeme-size error (a NUL or the end of the text there is fine).
  static constexpr std::size_t maxLexemeWindow = 131072 - 2;

  /// Scans `text`, which must outlive the lexer unless it is longer than the window, in which
  /// case the lexer keeps a copy of its own. Line and column start at 1, the status at Good.
  explicit Lexer(const std::string& text);
  virtual ~Lexer();
  Lexer(const Lexer&) = delete;
  Lexer& operator=(const Lexer&) = delete;

  /// Called for input that matches no token; the scanner itself never calls it.
  virtual void unknownLexeme(const std::wstring& lexeme) = 0;

  /// Matches the next token into `token`, skipping whitespace and unmatched bytes. Returns
  /// false, leaving `token` alone, once the status is no longer Good (end of text or NUL).
  /// Throws std::runtime_error when a lexeme exceeds maxLexemeWindow.
  bool next(Token& token);

  Status status() const { return mStatus; }
  /// Where the next lexeme starts.
  int line() const { return mLine; }
  int column() const { return mColumn; }

  /// Appends the UTF-16 units of well-formed UTF-8 `bytes` to `out`; lead bytes are taken at
  /// face value and nothing is checked, since the automaton accepted the bytes already.
  static void appendWide(std::string_view bytes, std::wstring& out);

private:
  /// Called by the automaton when it reaches `limit`. At the end of the text it fails, at a
  /// NUL it fails and sets the error status. At the window's cap it moves the cap to the
  /// lexeme's window edge and lets the automaton go on, or throws the lexeme-size error when
  /// the cap is there already.
  int fill(const unsigned char*& limit, const unsigned char* lexemeStart);
  /// Moves line and column over the bytes of an accepted lexeme.
  void advance(const unsigned char* from, const unsigned char* to);
  /// The same for a lexeme without tabs and line breaks: one column per code point.
  void advanceInLine(const unsigned char* from, const unsigned char* to);
  void setToken(Token& token, std::uint32_t id) const {
    token.id = id;
    token.line = mLine;
    token.column = mColumn;
  }
  /// Puts the cap at the edge of the window of a lexeme starting at `lexemeStart`, or takes
  /// it away when the rest of the text fits; updates mWindowLimit.
  void placeCap(const unsigned char* lexemeStart);
  [[noreturn]] void lexemeTooLong();

  std::string mCopy;               // the text, when it is too long to scan without caps
  const unsigned char* mCursor;
  const unsigned char* mLimit;     // the first NUL byte, or the end of the text
  const unsigned char* mEnd;       // the end of the text
  const unsigned char* mWindowLimit; // where the automaton stops: mLimit or mCap
  unsigned char* mCap = nullptr;   // a NUL written over mCopy at the edge of a lexeme's window
  unsigned char mCapSaved = 0;
  int mLine = 1;
  int mColumn = 1;
  Status mStatus = Status::Good;
};

inline void Lexer::advance(const unsigned char* from, const unsigned char* to) {
  int line = mLine;
  int column = mColumn;
  for (; from != to; ++from) {
    const unsigned char c = *from;
    if (c == '\n') {
      ++line;
      column = 1;
    } else if (c == '\t') {
      // Tab stops every four columns: 1..4 go to 5, 5..8 to 9.
      column = ((column - 1) & ~3) + 5;
    } else if ((c & 0xC0) != 0x80) {
      // Continuation bytes belong to the code point that their lead byte counted.
      ++column;
    }
  }
  mLine = line;
  mColumn = column;
}

inline void Lexer::advanceInLine(const unsigned char* from, const unsigned char* to) {
  int column = mColumn;
  for (; from != to; ++from) column += (*from & 0xC0) != 0x80;
  mColumn = column;
}

} // namespace velmor::sql
