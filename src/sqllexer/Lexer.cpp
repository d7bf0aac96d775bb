// The scanning engine's bookkeeping: text window, positions, wide text.
#include "sqllexer/Lexer.h"

#include <algorithm>
#include <cstring>
#include <iostream>
#include <stdexcept>

namespace velmor::sql {

namespace {
constexpr std::size_t windowSize = Lexer::maxLexemeWindow + 2;
}

Lexer::Lexer(const std::string& text) {
  const auto* data = reinterpret_cast<const unsigned char*>(text.c_str());
  const std::size_t length = std::strlen(text.c_str());
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

int Lexer::fill(const unsigned char*& cursor, const unsigned char*& marker, const unsigned char*& lexemeStart,
                const unsigned char*& limit) {
  if (mSource == mSourceLimit) {
    if (mEndsAtNul) mStatus = Status::Error;
    return 1;
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
  lexemeStart = start;
  limit = mLimit = start + kept + added;
  start[kept + added] = 0;
  return 0;
}

void Lexer::lexemeTooLong() {
  mStatus = Status::Error;
  std::cerr << "SqlLexer: lexeme starting at line " << mLine << ", column " << mColumn
            << " is longer than the scanner's window of " << maxLexemeWindow << " bytes\n";
  throw std::runtime_error("Distance between lexeme start and current pointer exceeds buffer size.");
}

void Lexer::assignWide(std::string_view bytes, std::wstring& out) {
  const auto* p = reinterpret_cast<const unsigned char*>(bytes.data());
  const auto* end = p + bytes.size();
  // Never more units than bytes; the surplus is cut off below. Resizing in place keeps the
  // capacity of a string that the caller reuses.
  out.resize(bytes.size());
  wchar_t* w = out.data();
  // Most texts are ASCII through and through.
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
