// UTF-16 units (one to a wchar_t) to UTF-8, whatever the locale: for the library's own use where
// it reads back a text that it wrote. A lone surrogate becomes U+FFFD.
#pragma once

#include <string>

namespace velmor::sql::detail {

inline std::string utf8Of(const std::wstring& units) {
  std::string out;
  out.reserve(units.size());
  for (std::size_t i = 0; i < units.size(); ++i) {
    char32_t cp = static_cast<char32_t>(units[i]) & 0xFFFF;
    if (cp >= 0xD800 && cp < 0xDC00 && i + 1 < units.size() && (units[i + 1] & 0xFC00) == 0xDC00) {
      cp = 0x10000 + ((cp - 0xD800) << 10) + (static_cast<char32_t>(units[++i]) & 0x3FF);
    } else if (cp >= 0xD800 && cp < 0xE000) {
      cp = 0xFFFD;
    }
    if (cp < 0x80) {
      out += static_cast<char>(cp);
    } else if (cp < 0x800) {
      out += static_cast<char>(0xC0 | (cp >> 6));
      out += static_cast<char>(0x80 | (cp & 0x3F));
    } else if (cp < 0x10000) {
      out += static_cast<char>(0xE0 | (cp >> 12));
      out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
      out += static_cast<char>(0x80 | (cp & 0x3F));
    } else {
      out += static_cast<char>(0xF0 | (cp >> 18));
      out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
      out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
      out += static_cast<char>(0x80 | (cp & 0x3F));
    }
  }
  return out;
}

} // namespace velmor::sql::detail
