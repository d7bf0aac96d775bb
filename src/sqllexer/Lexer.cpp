// The scanning engine's bookkeeping: text window, positions, wide text.
#include "sqllexer/Lexer.h"

#include <cstring>
#include <iostream>
#include <stdexcept>

namespace velmor::sql {

Lexer::Lexer(const std::string& text) {
  // A text longer than the window needs sentinels written into it while it is scanned,
  // so it is scanned from a copy; shorter texts are read in place (std::string ends in NUL).
  const char* data = text.c_str();
  if (text.size() > maxLexemeWindow) {
    mCopy = text;
    data = mCopy.c_str();
  }
  mCursor = reinterpret_cast<const unsigned char*>(data);
  mEnd = mCursor + text.size();
  mLimit = mCursor + std::strlen(data);
  placeCap(mCursor);
}

Lexer::~Lexer() = default;

int Lexer::fill(const unsigned char*& limit, const unsigned char* lexemeStart) {
  if (mCap && limit == mCap) {
    if (mCap == lexemeStart + maxLexemeWindow) lexemeTooLong();
    // The cap belongs to an earlier lexeme's window: move it to this one's and read on.
    placeCap(lexemeStart);
    limit = mWindowLimit;
    return 0;
  }
  // The automaton falls back to its last match at the end of the text; at a NUL byte the
  // text ends and whatever lexeme is under way is dropped.
  if (mLimit != mEnd) mStatus = Status::Error;
  return 1;
}

void Lexer::placeCap(const unsigned char* lexemeStart) {
  if (mCap) *mCap = mCapSaved;
  mCap = nullptr;
  mWindowLimit = mLimit;
  if (static_cast<std::size_t>(mLimit - lexemeStart) > maxLexemeWindow) {
    // Only texts longer than the window get here, and those are scanned from mCopy.
    mCap = const_cast<unsigned char*>(lexemeStart + maxLexemeWindow);
    mCapSaved = *mCap;
    *mCap = 0;
    mWindowLimit = mCap;
  }
}

void Lexer::lexemeTooLong() {
  mStatus = Status::Error;
  std::cerr << "SqlLexer: lexeme starting at line " << mLine << ", column " << mColumn
            << " is longer than the scanner's window of " << maxLexemeWindow << " bytes\n";
  throw std::runtime_error("Distance between lexeme start and current pointer exceeds buffer size.");
}

void Lexer::appendWide(std::string_view bytes, std::wstring& out) {
  const auto* p = reinterpret_cast<const unsigned char*>(bytes.data());
  const auto* end = p + bytes.size();
  const std::size_t start = out.size();
  // Never more units than bytes; the surplus is cut off below.
  out.resize(start + bytes.size());
  wchar_t* w = out.data() + start;
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
