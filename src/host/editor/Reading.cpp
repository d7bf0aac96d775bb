// Mending a statement until it parses, and mapping places back to the text as written.
#include "Reading.h"

#include <velmor/sql/host/document/Statements.h>
#include <velmor/sql/parser/SqlParser.h>
#include <velmor/sql/sqllexer/Tokens.h>

#include <algorithm>
#include <new>

namespace velmor::sql::host::editor {

namespace {

// Bytes between statements: white space, comments and the ';' that ends the one before. Sets
// `semicolon` to the first ';' outside comments (npos if none) and tells whether `offset` lies in
// a comment.
bool gapComment(const std::string& text, std::size_t begin, std::size_t end, std::size_t offset,
                std::size_t& semicolon) {
  semicolon = std::string::npos;
  bool inComment = false;
  for (std::size_t i = begin; i < end; ++i) {
    if (text[i] == '-' && i + 1 < end && text[i + 1] == '-') {
      const std::size_t stop = std::min(end, text.find('\n', i) == std::string::npos ? end : text.find('\n', i));
      if (offset > i && offset <= stop) inComment = true;
      i = stop;
    } else if (text[i] == '/' && i + 1 < end && text[i + 1] == '*') {
      const std::size_t close = text.find("*/", i + 2);
      const std::size_t stop = close == std::string::npos || close + 2 > end ? end : close + 2;
      if (offset > i && offset < stop) inComment = true;
      i = stop - 1;
    } else if (text[i] == ';' && semicolon == std::string::npos) {
      semicolon = i;
    }
  }
  return inComment;
}

ParseContext& plainContext() {
  static ParseContext context;
  return context;
}

// One parser a thread, so that its automaton is made once.
SqlParser& threadParser() {
  thread_local SqlParser parser(plainContext());
  return parser;
}

} // namespace

Segment segmentAt(const std::string& document, std::size_t offset) {
  offset = std::min(offset, document.size());
  std::vector<DocumentStatement> statements;
  StatementSplitter splitter;
  splitter.feed(document, statements);
  splitter.finish(statements);
  Segment segment;
  std::size_t gapBegin = 0;
  for (std::size_t i = 0; i <= statements.size(); ++i) {
    const std::size_t gapEnd = i < statements.size() ? statements[i].begin.offset : document.size();
    if (offset <= gapEnd || i == statements.size()) {
      // In the gap before statement i: still the one before it up to its ';'.
      std::size_t semicolon = std::string::npos;
      segment.inComment = gapComment(document, gapBegin, gapEnd, offset, semicolon);
      if (i > 0 && (semicolon == std::string::npos || offset <= semicolon)) {
        const DocumentStatement& before = statements[i - 1];
        segment.begin = before.begin.offset;
        segment.text = before.text;
        segment.text.append(offset - before.end.offset, ' ');
        return segment;
      }
      if (offset == gapEnd && i < statements.size()) break; // right at statement i's start
      segment.begin = offset;
      return segment;
    }
    if (offset <= statements[i].end.offset) {
      const DocumentStatement& statement = statements[i];
      segment.begin = statement.begin.offset;
      segment.text = statement.text;
      const std::size_t at = offset - segment.begin;
      // A comment is blanked in the text but not in the source.
      segment.inComment = at > 0 && statement.text[at - 1] != statement.source[at - 1] &&
                          (at == statement.text.size() || statement.text[at] != statement.source[at]);
      return segment;
    }
    gapBegin = statements[i].end.offset;
  }
  // The cursor is right at the start of a statement.
  for (const DocumentStatement& statement : statements) {
    if (statement.begin.offset == offset) {
      segment.begin = statement.begin.offset;
      segment.text = statement.text;
      return segment;
    }
  }
  segment.begin = offset;
  return segment;
}

void Insertions::add(std::size_t before, std::size_t length) {
  if (length == 0) return;
  std::size_t shift = 0;
  if (!mPieces.empty()) {
    Piece& last = mPieces.back();
    if (last.before == before) {
      last.length += length;
      return;
    }
    shift = last.after - last.before + last.length;
  }
  mPieces.push_back({before, before + shift, length});
}

std::size_t Insertions::toBefore(std::size_t after) const {
  auto piece = std::upper_bound(mPieces.begin(), mPieces.end(), after,
                                [](std::size_t value, const Piece& p) { return value < p.after; });
  if (piece == mPieces.begin()) return after;
  --piece;
  if (after < piece->after + piece->length) return piece->before;
  return after - (piece->after - piece->before + piece->length);
}

std::size_t Insertions::toAfter(std::size_t before) const {
  auto piece = std::upper_bound(mPieces.begin(), mPieces.end(), before,
                                [](std::size_t value, const Piece& p) { return value < p.before; });
  if (piece == mPieces.begin()) return before;
  --piece;
  if (piece->before == before) return piece->after;
  return before + (piece->after - piece->before + piece->length);
}

std::string spelling(std::uint32_t id) {
  switch (id) {
  case T_IDENTIFIER: return fillName;
  case T_INTEGER_NUMBER: return "1";
  case T_EXACT_NUMBER: return "1.0";
  case T_APPROX_NUMBER: return "1E0";
  case T_STRING: return "''";
  case T_EQ: return "=";
  case T_NEQ: return "<>";
  case T_LT: return "<";
  case T_GT: return ">";
  case T_LT_EQ: return "<=";
  case T_GT_EQ: return ">=";
  case T_LSHIFT: return "<<";
  case T_RSHIFT: return ">>";
  case T_CONCAT: return "||";
  case T_MOD: return "%";
  case T_ASSIGN: return ":=";
  case T_PARAM_NAME: return ":";
  case T_ISNOT: return "IS NOT";
  default: break;
  }
  if (id < 128) return std::string(1, static_cast<char>(id));
  return tokenName(id);
}

std::optional<Reading> Reading::read(const std::string& text, std::size_t replaceBegin, std::size_t replaceEnd,
                                     const std::string& with) {
  Reading reading;
  std::string given = text;
  if (!with.empty()) {
    given.replace(replaceBegin, replaceEnd - replaceBegin, with);
    reading.mReplaceBegin = replaceBegin;
    reading.mReplaceEnd = replaceEnd;
    reading.mWithLength = with.size();
  }
  SqlParser& parser = threadParser();
  parser.keepSourceRanges = true;
  try {
    auto scanned = tryTokenPlaces(given);
    if (!scanned) return std::nullopt;
    std::vector<TokenPlace> tokens = std::move(*scanned);
    if (given.find('\0') == std::string::npos && parser.parse(given)) {
      reading.mText = std::move(given);
      reading.mTokens = std::move(tokens);
    } else {
      std::vector<std::uint32_t> ids;
      ids.reserve(tokens.size());
      for (const TokenPlace& token : tokens) ids.push_back(token.id);
      const auto fixes = repairTokens(ids);
      if (!fixes) return std::nullopt;
      // Dropped tokens become blanks, so that only insertions move places.
      std::string blanked = given.substr(0, tokens.empty() ? given.size() : tokens.back().end);
      for (const TokenFix& fix : *fixes) {
        if (fix.drop) std::fill(blanked.begin() + static_cast<std::ptrdiff_t>(tokens[fix.index].begin),
                                blanked.begin() + static_cast<std::ptrdiff_t>(tokens[fix.index].end), ' ');
      }
      std::string mended;
      mended.reserve(blanked.size() + 16);
      std::size_t copied = 0;
      for (const TokenFix& fix : *fixes) {
        if (fix.drop) continue;
        const std::size_t at = fix.index < tokens.size() ? tokens[fix.index].begin : blanked.size();
        mended.append(blanked, copied, at - copied);
        copied = at;
        std::string piece(1, ' ');
        piece.append(spelling(fix.id)).push_back(' ');
        mended += piece;
        reading.mInserted.add(at, piece.size());
      }
      mended.append(blanked, copied, std::string::npos);
      if (!parser.parse(mended)) return std::nullopt;
      auto mendedTokens = tryTokenPlaces(mended);
      if (!mendedTokens) return std::nullopt;
      reading.mTokens = std::move(*mendedTokens);
      reading.mText = std::move(mended);
    }
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception&) {
    // A lexeme longer than the scanner's window: no reading.
    return std::nullopt;
  }
  reading.mTree = parser.result;
  reading.mRanges = parser.sourceRanges;
  parser.clear();
  return reading;
}

std::size_t Reading::toGiven(std::size_t offset) const {
  std::size_t at = mInserted.toBefore(offset);
  if (mWithLength == 0 || at < mReplaceBegin) return at;
  if (at < mReplaceBegin + mWithLength) return mReplaceBegin;
  return at - mWithLength + (mReplaceEnd - mReplaceBegin);
}

std::size_t Reading::fromGiven(std::size_t offset) const {
  std::size_t at = offset;
  if (mWithLength != 0 && at >= mReplaceEnd) at = at - (mReplaceEnd - mReplaceBegin) + mWithLength;
  else if (mWithLength != 0 && at > mReplaceBegin) at = mReplaceBegin;
  return mInserted.toAfter(at);
}

ast::Node Reading::innermost(std::size_t begin, std::size_t end) const {
  ast::Node at = mTree;
  for (;;) {
    ast::Node next;
    for (ast::Node& child : ast::children(at)) {
      if (child.isNull()) continue;
      const SourceRange* range = mRanges->find(child);
      if (range && range->beginOffset <= begin && end <= range->endOffset) {
        next = std::move(child);
        break;
      }
    }
    if (next.isNull()) return at;
    at = std::move(next);
  }
}

std::size_t Reading::tokenAt(std::size_t offset) const {
  return static_cast<std::size_t>(
      std::lower_bound(mTokens.begin(), mTokens.end(), offset,
                       [](const TokenPlace& token, std::size_t value) { return token.begin < value; }) -
      mTokens.begin());
}

} // namespace velmor::sql::host::editor
