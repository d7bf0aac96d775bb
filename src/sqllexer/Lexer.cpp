// The scanning engine's bookkeeping: text window, positions, wide text.
#include "sqllexer/Lexer.h"

#include "common/WhiteSpace.h"

#include <algorithm>
#include <cstring>
#include <iostream>
#include <stdexcept>

namespace velmor::sql {

namespace {
constexpr std::size_t windowSize = Lexer::maxLexemeWindow + 2;

// Bytes of the UTF-8 sequence that `lead` starts; 1 for a stray byte.
std::size_t utf8Length(unsigned char lead) { return lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC0 ? 2 : 1; }

// The code point at `p`, or 0xFFFF (no white space) for a sequence cut short or malformed.
char32_t decodeUtf8(const unsigned char* p, const unsigned char* end) {
  const std::size_t length = utf8Length(*p);
  if (length == 1) return *p < 0x80 ? *p : 0xFFFF;
  if (static_cast<std::size_t>(end - p) < length) return 0xFFFF;
  char32_t cp = *p & (0x7F >> length);
  for (std::size_t i = 1; i < length; ++i) {
    if ((p[i] & 0xC0) != 0x80) return 0xFFFF;
    cp = (cp << 6) | (p[i] & 0x3F);
  }
  return cp > 0xFFFF ? 0xFFFF : cp;
}
} // namespace

Lexer::Lexer(const std::string& text) {
  const auto* data = reinterpret_cast<const unsigned char*>(text.c_str());
  const std::size_t length = std::strlen(text.c_str());
  mText = data;
  mTextSize = text.size();
  mSourceLimit = data + length;
  mEndsAtNul = length != text.size();
  if (length <= maxLexemeWindow) {
    // No lexeme can outgrow the window, and std::string ends in a NUL that stops the
    // automaton: scan in place.
    mCursor = data;
    mLimit = mSourceLimit;
    mSource = mSourceLimit;
  } else {
    mWindow = std::make_unique<unsigned char[]>(windowSize);
    mCursor = mLimit = mWindow.get() + 1;
    mSource = data;
  }
}

Lexer::~Lexer() = default;

Lexer::Refill Lexer::fill(const unsigned char* cursor, const unsigned char* marker, const unsigned char* lexemeStart,
                          const unsigned char* limit) {
  if (mSource == mSourceLimit) {
    if (mEndsAtNul) mStatus = Status::Error;
    return {cursor, marker, lexemeStart, limit, false};
  }
  const auto kept = static_cast<std::size_t>(limit - lexemeStart);
  if (kept >= maxLexemeWindow) lexemeTooLong();

  unsigned char* start = mWindow.get() + 1;
  std::memmove(start, lexemeStart, kept);
  const std::size_t added = std::min(maxLexemeWindow - kept, static_cast<std::size_t>(mSourceLimit - mSource));
  std::memcpy(start + kept, mSource, added);
  mSource += added;

  const std::ptrdiff_t shift = lexemeStart - start;
  cursor -= shift;
  // The marker is stale until the automaton sets it within this lexeme.
  if (marker >= lexemeStart) marker -= shift;
  mLimit = start + kept + added;
  start[kept + added] = 0;
  return {cursor, marker, start, mLimit, true};
}

void Lexer::noteDropped(const unsigned char* at) {
  const std::size_t offset = offsetOf(at);
  if (!mSkipped->empty()) {
    SkippedText& last = mSkipped->back();
    if (last.kind == SkippedText::Kind::Dropped && last.offset + last.length == offset) {
      ++last.length;
      return;
    }
  }
  mSkipped->push_back({SkippedText::Kind::Dropped, offset, 1, mLine, mColumn});
}

void Lexer::noteNul(const unsigned char* at) {
  const std::size_t nul = static_cast<std::size_t>(mSourceLimit - mText);
  const unsigned char* end = at + (nul - offsetOf(at));
  // The lexeme under way is dropped with the NUL, unless it is only white space.
  for (const unsigned char* p = at; p < end; p += utf8Length(*p)) {
    if (!detail::isWhiteSpace(static_cast<wchar_t>(decodeUtf8(p, end)))) {
      for (const unsigned char* q = at; q != end; ++q) noteDropped(q);
      break;
    }
  }
  const int line = mLine;
  const int column = mColumn;
  advance(at, end);
  mSkipped->push_back({SkippedText::Kind::AfterNul, nul, mTextSize - nul, mLine, mColumn});
  mLine = line;
  mColumn = column;
}

void Lexer::lexemeTooLong() {
  mStatus = Status::Error;
  if (!mQuiet)
    std::cerr << "SqlLexer: lexeme starting at line " << mLine << ", column " << mColumn
            << " is longer than the scanner's window of " << maxLexemeWindow << " bytes\n";
  throw std::runtime_error("Distance between lexeme start and current pointer exceeds buffer size.");
}

std::wstring Lexer::widen(std::string_view bytes) {
  const auto* p = reinterpret_cast<const unsigned char*>(bytes.data());
  const std::size_t size = bytes.size();
  const auto* end = p + size;
  // The high bits of every byte, gathered by whole words; the last word may overlap the one
  // before, and nothing is read outside the bytes.
  std::uint64_t high = 0;
  if (size >= 8) {
    for (const auto* q = p; end - q > 8; q += 8) {
      std::uint64_t word;
      std::memcpy(&word, q, sizeof word);
      high |= word;
    }
    std::uint64_t word;
    std::memcpy(&word, end - 8, sizeof word);
    high |= word;
  } else if (size >= 4) {
    std::uint32_t first, last;
    std::memcpy(&first, p, sizeof first);
    std::memcpy(&last, end - 4, sizeof last);
    high = first | last;
  } else {
    for (const auto* q = p; q != end; ++q) high |= *q;
  }
  // ASCII through and through, as nearly every name and number is: a unit per byte.
  if (!(high & 0x8080808080808080u)) return std::wstring(p, end);
  std::wstring out;
  assignWide(bytes, out);
  out.shrink_to_fit();
  return out;
}

void Lexer::assignWide(std::string_view bytes, std::wstring& out) {
  const auto* p = reinterpret_cast<const unsigned char*>(bytes.data());
  const auto* end = p + bytes.size();
  // Never more units than bytes; the surplus is cut off below. Resizing in place keeps the
  // capacity of a string that the caller reuses.
  out.resize(bytes.size());
  wchar_t* w = out.data();
  // Most texts are ASCII through and through: eight bytes at a time while they are.
  while (end - p >= 8) {
    std::uint64_t chunk;
    std::memcpy(&chunk, p, sizeof chunk);
    if (chunk & 0x8080808080808080u) break;
    for (int i = 0; i < 8; ++i) w[i] = static_cast<wchar_t>(p[i]);
    p += 8;
    w += 8;
  }
  while (p != end && *p < 0x80) *w++ = static_cast<wchar_t>(*p++);
  if (p == end) return;
  while (p != end) {
    const unsigned c = *p;
    if (c < 0x80) {
      *w++ = static_cast<wchar_t>(c);
      ++p;
      continue;
    }
    std::uint32_t cp;
    if (c < 0xE0) {
      cp = ((c & 0x1Fu) << 6) | (p[1] & 0x3Fu);
      p += 2;
    } else if (c < 0xF0) {
      cp = ((c & 0x0Fu) << 12) | ((p[1] & 0x3Fu) << 6) | (p[2] & 0x3Fu);
      p += 3;
    } else {
      cp = ((c & 0x07u) << 18) | ((p[1] & 0x3Fu) << 12) | ((p[2] & 0x3Fu) << 6) | (p[3] & 0x3Fu);
      p += 4;
    }
    if (cp < 0x10000) {
      *w++ = static_cast<wchar_t>(cp);
    } else {
      cp -= 0x10000;
      *w++ = static_cast<wchar_t>(0xD800 + (cp >> 10));
      *w++ = static_cast<wchar_t>(0xDC00 + (cp & 0x3FF));
    }
  }
  out.resize(static_cast<std::size_t>(w - out.data()));
}

} // namespace velmor::sql
