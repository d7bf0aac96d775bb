// The 25 White_Space code points of Unicode 8.0, as one UTF-16 unit: what the scanner skips
// between tokens and between the pieces of a string literal. The scanner's own class says the
// same in its regular-expression form; a test holds the two together.
#pragma once

namespace velmor::sql::detail {

constexpr bool isWhiteSpace(wchar_t unit) noexcept {
  switch (static_cast<unsigned>(unit)) {
  case 0x0009: case 0x000A: case 0x000B: case 0x000C: case 0x000D: case 0x0020:
  case 0x0085: case 0x00A0: case 0x1680:
  case 0x2000: case 0x2001: case 0x2002: case 0x2003: case 0x2004: case 0x2005:
  case 0x2006: case 0x2007: case 0x2008: case 0x2009: case 0x200A:
  case 0x2028: case 0x2029: case 0x202F: case 0x205F: case 0x3000:
    return true;
  default:
    return false;
  }
}

} // namespace velmor::sql::detail
