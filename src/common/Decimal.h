// Decimal numerals appended to wide text: the standard library's std::to_wstring goes through a
// formatted print, which costs hundreds of instructions for a column's number.
#pragma once

#include <cstdint>
#include <string>

namespace velmor::sql::detail {

/// Appends `value` as std::to_wstring writes it.
inline void appendDecimal(std::wstring& text, std::int64_t value) {
  // The magnitude in unsigned arithmetic, so that the least value has one too.
  std::uint64_t magnitude = value < 0 ? 0 - static_cast<std::uint64_t>(value) : static_cast<std::uint64_t>(value);
  wchar_t digits[20];
  std::size_t count = 0;
  do {
    digits[count++] = static_cast<wchar_t>(L'0' + magnitude % 10);
    magnitude /= 10;
  } while (magnitude != 0);
  if (value < 0) text += L'-';
  while (count > 0) text += digits[--count];
}

} // namespace velmor::sql::detail
