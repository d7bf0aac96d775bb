// Documents: texts of many statements (SQL files, query logs) split at ';' into the statements
// that the parser reads one at a time, each with its place in the document.
#pragma once

#include <velmor/sql/host/Export.h>
#include <velmor/sql/parser/SourceRanges.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace velmor::sql::host {

/// A place in a document: a byte offset from 0, a line and a column as the scanner counts them
/// (from 1, a column per code point, a tab moves to the next stop of a grid of 4).
struct DocumentPlace {
  std::size_t offset = 0;
  std::size_t line = 1;
  std::size_t column = 1;

  bool operator==(const DocumentPlace&) const = default;
};

/// How a document is read.
struct SplitOptions {
  /// "--" to the end of the line and "/* ... */" are comments: they never split and they are
  /// blanked in the statement's text. Off: they are text as any other.
  bool comments = true;
  /// A line feed outside strings and comments ends a statement too, as in query logs that hold
  /// one statement a line. Off: statements may span lines.
  bool lineEnds = false;
};

/// One statement of a document.
struct DocumentStatement {
  /// Its number among the statements of the document, from 0; skipped empty ones do not count.
  std::size_t index = 0;
  /// The place of its first byte (after white space and comments) and the place right after its
  /// last byte (white space before the ';' or the end is not part of it).
  DocumentPlace begin;
  DocumentPlace end;
  /// The statement as the parser takes it: the document's bytes from `begin` to `end`, with
  /// each byte of a comment replaced by a blank (line feeds kept), so that offsets agree.
  std::string text;
  /// The same bytes as the document has them, comments included.
  std::string source;
};

/// Splits a document given in pieces: bytes go in as they are read, statements come out as soon
/// as their ';' (or the end) is seen, so that only the statement being read is held. A ';' splits
/// outside strings ('...' and "...", with doubled quotes and backslash escapes), bracketed names
/// ([...], which end at a line's end) and comments. Statements with nothing but white space and
/// comments are skipped; a last statement without ';' counts. A CR before a line feed is white
/// space. Not thread-safe; one splitter per document.
class VELMOR_SQL_HOST_API StatementSplitter {
public:
  explicit StatementSplitter(SplitOptions options = {});

  /// Reads the next bytes of the document; the statements they complete are appended to `out`.
  void feed(std::string_view bytes, std::vector<DocumentStatement>& out);
  /// Ends the document: a last statement without ';' is appended to `out`. The splitter is then
  /// ready for a new document.
  void finish(std::vector<DocumentStatement>& out);
  /// Comments opened since the document began (a formatter that drops them can tell).
  std::size_t comments() const noexcept { return mComments; }

private:
  enum class State { Code, SingleQuoted, DoubleQuoted, Bracketed, LineComment, BlockComment };

  void take(char byte, std::vector<DocumentStatement>& out);
  void takeRun(std::string_view run);
  void append(char byte, bool blank);
  void endStatement(std::vector<DocumentStatement>& out);

  SplitOptions mOptions;
  State mState = State::Code;
  // A '-' or '/' that may open a comment with the next byte; 0 for none.
  char mPending = 0;
  DocumentPlace mPendingPlace;
  // A backslash inside a string, a quote that may be the first of a doubled pair, a '*' that may
  // close a block comment.
  bool mEscaped = false;
  bool mQuoteSeen = false;
  bool mStarSeen = false;
  DocumentPlace mPlace;
  DocumentStatement mCurrent;
  bool mStarted = false;
  // Length of `text` up to the last byte that is not white space: the statement's end.
  std::size_t mKept = 0;
  DocumentPlace mKeptEnd;
  std::size_t mCount = 0;
  std::size_t mComments = 0;
};

/// All statements of a whole document at once.
VELMOR_SQL_HOST_API std::vector<DocumentStatement> splitStatements(std::string_view document, SplitOptions options = {});

/// The document place of byte `offset` of `statement.text` (clamped to its end).
VELMOR_SQL_HOST_API DocumentPlace documentPlace(const DocumentStatement& statement, std::size_t offset);

/// The byte offset in `statement.text` of a line and column as the parser counts them in that
/// text (a syntax error's place); the end of the text when it has no such place.
VELMOR_SQL_HOST_API std::size_t statementOffset(const DocumentStatement& statement, std::size_t line, std::size_t column);

/// A range of a parse of `statement.text`, moved to the document.
VELMOR_SQL_HOST_API SourceRange documentRange(const DocumentStatement& statement, const SourceRange& range);

} // namespace velmor::sql::host
