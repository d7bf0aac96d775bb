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
  /// Called by the automaton at the limit: fails, and records a NUL as the error status.
  /// At a window cap it throws the lexeme-size error instead.
  int fill(const unsigned char* limit, const unsigned char* lexemeStart);
  /// Moves line and column over the bytes of an accepted lexeme.
  void advance(const unsigned char* from, const unsigned char* to);
  void restoreCap();
  [[noreturn]] void lexemeTooLong(const unsigned char* lexemeStart);

  std::string mCopy;               // the text, when it is too long to scan without caps
  const unsigned char* mCursor;
  const unsigned char* mLimit;     // the first NUL byte, or the end of the text
  const unsigned char* mEnd;       // the end of the text
  unsigned char* mCap = nullptr;   // a NUL written over mCopy to stop the automaton at the window
  unsigned char mCapSaved = 0;
  int mLine = 1;
  int mColumn = 1;
  Status mStatus = Status::Good;
};

} // namespace velmor::sql
