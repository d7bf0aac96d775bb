// The scanning engine: a longest-match automaton over the UTF-8 bytes of one text.
#pragma once

#include <velmor/sql/sqllexer/Tokens.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace velmor::sql {

/// One token as the automaton matched it.
struct Token {
  virtual ~Token() = default;

  /// UTF-8 bytes of the token's text: the lexeme of an identifier, number or string (a
  /// bracketed identifier without its brackets); empty for every other token. It points into
  /// the scanner's input and stays valid until the scanner is asked for the next token, so
  /// that no token copies its bytes: the wide text that the parser keeps is the only copy.
  std::string_view text;
  std::uint32_t id = T_UNINITIALIZED;
  int line = 1;
  int column = 1;
  /// The text is known to be ASCII (a name or an integer of ASCII characters): it widens a
  /// byte to a unit without looking.
  bool ascii = false;
};

/// Reads one text from start to end and hands out its tokens. Unmatched input is dropped a
/// byte at a time; a NUL byte ends the text and drops the lexeme under way.
class Lexer {
public:
  enum class Status { Good, End, Error };

  /// The scanner reads through a window of 131,072 bytes with a sentinel byte at each end,
  /// so one lexeme, together with the bytes the automaton looks at before it settles on it,
  /// may span at most this many bytes. Needing the byte at this offset from the lexeme's start
  /// raises the lexeme-size error (a NUL or the end of the text there is fine). A text that
  /// fits in the window is scanned in place, which is the same thing.
  static constexpr std::size_t maxLexemeWindow = 131072 - 2;

  /// Scans `text`, which must outlive the lexer and stay unchanged. Line and column start at
  /// 1, the status at Good.
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
  /// The same, inline: defined in the generated header SqlLexer.re.h, for the one caller whose
  /// speed is the scanner's (the parser).
  bool scan(Token& token);

  Status status() const { return mStatus; }
  /// A lexeme too long for the window is then thrown without a line on std::cerr.
  void setQuiet(bool quiet) { mQuiet = quiet; }

  /// From now on, appends what the scanner skips (no token, not white space) to `skipped`,
  /// which must outlive the scanning; null stops it. Off after construction: a parse pays for
  /// nothing but a test in the rare paths that drop bytes.
  void reportSkipped(std::vector<SkippedText>* skipped) { mSkipped = skipped; }
  /// Byte offsets into the text of the last token's whole lexeme (a bracketed name with its
  /// brackets, string pieces with the blanks between them): valid until next() is called again.
  std::size_t lexemeBegin() const { return offsetOf(mLexeme); }
  std::size_t lexemeEnd() const { return offsetOf(mCursor); }
  /// Where the next lexeme starts.
  int line() const { return mLine; }
  int column() const { return mColumn; }

  /// Replaces `out` with the UTF-16 units of well-formed UTF-8 `bytes`; lead bytes are taken
  /// at face value and nothing is checked, since the automaton accepted the bytes already.
  static void assignWide(std::string_view bytes, std::wstring& out);
  /// The same as a new text of exactly the units it needs, written once.
  static std::wstring widen(std::string_view bytes);

  /// The bytes of `piece`, a token's text, in the text itself rather than in the window: they
  /// stay valid for as long as the text, after the scanner has read on.
  std::string_view inText(std::string_view piece) const {
    if (!mWindow) return piece;
    const std::size_t offset = offsetOf(reinterpret_cast<const unsigned char*>(piece.data()));
    return {reinterpret_cast<const char*>(mText) + offset, piece.size()};
  }

private:
  /// The automaton's four pointers, handed to fill() and back by value: were their addresses
  /// taken, the automaton would keep them in memory and load and store them at every byte.
  struct Refill {
    const unsigned char* cursor;
    const unsigned char* marker;
    const unsigned char* lexemeStart;
    const unsigned char* limit;
    bool more;
  };
  /// Called by the automaton when it reaches `limit`. With text left beyond the window, moves
  /// the lexeme under way to the window's start, reads on and succeeds (`more`), or throws the
  /// lexeme-size error when the lexeme fills the window already. Otherwise fails: at the end of
  /// the text the automaton falls back to its last match, at a NUL the status becomes Error and
  /// the lexeme under way is dropped. The pointers come back moved with the window.
  Refill fill(const unsigned char* cursor, const unsigned char* marker, const unsigned char* lexemeStart,
              const unsigned char* limit);
  /// Moves line and column over the bytes of an accepted lexeme.
  void advance(const unsigned char* from, const unsigned char* to);
  /// The same for a lexeme without tabs and line breaks: one column per code point.
  void advanceInLine(const unsigned char* from, const unsigned char* to);
  void setToken(Token& token, std::uint32_t id, const unsigned char* lexeme, bool ascii = false) {
    mLexeme = lexeme;
    token.ascii = ascii;
    token.id = id;
    token.line = mLine;
    token.column = mColumn;
  }
  [[noreturn]] void lexemeTooLong();
  /// Byte offset into the text of a position in the text or the window.
  std::size_t offsetOf(const unsigned char* at) const {
    return static_cast<std::size_t>(mSource - mText) - static_cast<std::size_t>(mLimit - at);
  }
  /// Records the byte at `at`, dropped, joining it to a range that ends there.
  void noteDropped(const unsigned char* at);
  /// Records the lexeme from `at` cut short by the NUL, and the NUL with all after it.
  void noteNul(const unsigned char* at);

  const unsigned char* mCursor;       // where the next lexeme starts (in the text or the window)
  const unsigned char* mLexeme = nullptr; // where the last token's lexeme starts
  const unsigned char* mLimit;        // where the automaton must ask fill() for more
  const unsigned char* mSource;       // text not yet read into the window
  const unsigned char* mSourceLimit;  // the first NUL byte of the text, or its end
  const unsigned char* mText;         // the text's first byte
  std::size_t mTextSize;
  std::vector<SkippedText>* mSkipped = nullptr;
  bool mEndsAtNul = false;
  bool mQuiet = false;
  std::unique_ptr<unsigned char[]> mWindow;  // only for a text longer than the window
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
