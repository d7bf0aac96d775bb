// Splitting documents into statements, one byte at a time so that a document may come in pieces.
#include <velmor/sql/host/document/Statements.h>

namespace velmor::sql::host {
namespace {

bool isBlank(char byte) {
  return byte == ' ' || byte == '\t' || byte == '\n' || byte == '\r' || byte == '\v' || byte == '\f';
}

void advance(DocumentPlace& place, char byte) {
  advancePlace(place.line, place.column, static_cast<unsigned char>(byte));
  ++place.offset;
}

// Bytes that change nothing but the column in code (blanks other than ' ' move to the grid or
// the next line) and in strings: runs of them are taken at once.
struct RunTables {
  bool code[256] = {};
  bool quoted[256] = {};
  constexpr RunTables() {
    for (int byte = 0; byte < 256; ++byte) {
      const bool special = byte == '\n' || byte == '\t' || byte == '\r' || byte == '\v' || byte == '\f';
      quoted[byte] = !special && byte != '\'' && byte != '"' && byte != '\\';
      code[byte] = quoted[byte] && byte != ';' && byte != '-' && byte != '/' && byte != '[';
    }
  }
};
constexpr RunTables runTables;

std::size_t columnsOf(std::string_view run) {
  std::size_t columns = 0;
  for (const char byte : run) columns += (static_cast<unsigned char>(byte) & 0xC0) != 0x80;
  return columns;
}

} // namespace

StatementSplitter::StatementSplitter(SplitOptions options) : mOptions(options) {}

void StatementSplitter::feed(std::string_view bytes, std::vector<DocumentStatement>& out) {
  // Most bytes of a statement are plain: such runs go in with one append; the rest byte by byte.
  for (std::size_t at = 0; at < bytes.size();) {
    const bool inCode = mState == State::Code && mStarted && !mPending;
    const bool inString = (mState == State::SingleQuoted || mState == State::DoubleQuoted) && !mQuoteSeen && !mEscaped;
    if (inCode || inString) {
      const bool* plain = inCode ? runTables.code : runTables.quoted;
      std::size_t end = at;
      while (end < bytes.size() && plain[static_cast<unsigned char>(bytes[end])]) ++end;
      if (end > at) {
        takeRun(bytes.substr(at, end - at));
        at = end;
        continue;
      }
    }
    take(bytes[at++], out);
  }
}

void StatementSplitter::takeRun(std::string_view run) {
  mCurrent.text.append(run);
  mCurrent.source.append(run);
  std::size_t significant = run.size();
  while (significant > 0 && run[significant - 1] == ' ') --significant;
  if (significant > 0) {
    mKept = mCurrent.text.size() - (run.size() - significant);
    mKeptEnd = mPlace;
    mKeptEnd.column += columnsOf(run.substr(0, significant));
    mKeptEnd.offset += significant;
  }
  mPlace.column += columnsOf(run);
  mPlace.offset += run.size();
}

void StatementSplitter::finish(std::vector<DocumentStatement>& out) {
  if (mPending) {
    const char held = mPending;
    mPending = 0;
    append(held, false);
  }
  endStatement(out);
  *this = StatementSplitter(mOptions);
}

// Every byte of a started statement is kept, comments blanked so that the parser never sees
// them; only bytes that are neither blank nor comment move the statement's end.
void StatementSplitter::append(char byte, bool blank) {
  const bool significant = !blank && !isBlank(byte);
  if (!mStarted && significant) {
    mStarted = true;
    mCurrent.begin = mPlace;
  }
  if (mStarted) {
    mCurrent.source += byte;
    mCurrent.text += blank && byte != '\n' && byte != '\t' ? ' ' : byte;
  }
  advance(mPlace, byte);
  if (significant) {
    mKept = mCurrent.text.size();
    mKeptEnd = mPlace;
  }
}

void StatementSplitter::endStatement(std::vector<DocumentStatement>& out) {
  if (!mStarted) return;
  mCurrent.text.resize(mKept);
  mCurrent.source.resize(mKept);
  mCurrent.end = mKeptEnd;
  mCurrent.index = mCount++;
  out.push_back(std::move(mCurrent));
  mCurrent = DocumentStatement();
  mStarted = false;
  mKept = 0;
}

void StatementSplitter::take(char byte, std::vector<DocumentStatement>& out) {
  // A held '-' or '/' opens a comment with this byte, or was code after all.
  if (mPending) {
    const char held = mPending;
    mPending = 0;
    if ((held == '-' && byte == '-') || (held == '/' && byte == '*')) {
      append(held, true);
      append(byte, true);
      mState = held == '-' ? State::LineComment : State::BlockComment;
      mStarSeen = false;
      ++mComments;
      return;
    }
    append(held, false);
  }
  switch (mState) {
  case State::SingleQuoted:
  case State::DoubleQuoted: {
    const char quote = mState == State::SingleQuoted ? '\'' : '"';
    if (mQuoteSeen) {
      mQuoteSeen = false;
      if (byte != quote) {
        // The quote before ended the string; this byte is code.
        mState = State::Code;
        break;
      }
    } else if (mEscaped) {
      mEscaped = false;
    } else if (byte == '\\') {
      mEscaped = true;
    } else if (byte == quote) {
      mQuoteSeen = true;
    }
    append(byte, false);
    return;
  }
  case State::Bracketed:
    // A bracketed name holds no line feed: an open '[' does not swallow the rest of the document.
    if (byte == ']' || byte == '\n') mState = State::Code;
    append(byte, false);
    return;
  case State::LineComment:
    if (byte == '\n') {
      mState = State::Code;
      append(byte, false);
      return;
    }
    append(byte, true);
    return;
  case State::BlockComment:
    if (mStarSeen && byte == '/') mState = State::Code;
    mStarSeen = byte == '*';
    append(byte, true);
    return;
  case State::Code:
    break;
  }
  switch (byte) {
  case '\n':
    if (mOptions.lineEnds) {
      endStatement(out);
      advance(mPlace, byte);
      return;
    }
    break;
  case ';':
    endStatement(out);
    advance(mPlace, byte);
    return;
  case '-':
  case '/':
    if (mOptions.comments) {
      mPending = byte;
      return;
    }
    break;
  case '\'':
    mState = State::SingleQuoted;
    break;
  case '"':
    mState = State::DoubleQuoted;
    break;
  case '[':
    mState = State::Bracketed;
    break;
  default:
    break;
  }
  append(byte, false);
}

std::vector<DocumentStatement> splitStatements(std::string_view document, SplitOptions options) {
  std::vector<DocumentStatement> statements;
  StatementSplitter splitter(options);
  splitter.feed(document, statements);
  splitter.finish(statements);
  return statements;
}

DocumentPlace documentPlace(const DocumentStatement& statement, std::size_t offset) {
  DocumentPlace place = statement.begin;
  const std::size_t end = offset < statement.source.size() ? offset : statement.source.size();
  for (std::size_t i = 0; i < end; ++i) advance(place, statement.source[i]);
  return place;
}

std::size_t statementOffset(const DocumentStatement& statement, std::size_t line, std::size_t column) {
  const std::string& text = statement.text;
  std::size_t atLine = 1, atColumn = 1;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool starts = (static_cast<unsigned char>(text[i]) & 0xC0) != 0x80;
    if (starts && atLine == line && atColumn >= column) return i;
    if (atLine > line) return i;
    advancePlace(atLine, atColumn, static_cast<unsigned char>(text[i]));
  }
  return text.size();
}

SourceRange documentRange(const DocumentStatement& statement, const SourceRange& range) {
  const DocumentPlace begin = documentPlace(statement, range.beginOffset);
  const DocumentPlace end = documentPlace(statement, range.endOffset);
  return {begin.line, begin.column, end.line, end.column, begin.offset, end.offset};
}

} // namespace velmor::sql::host
