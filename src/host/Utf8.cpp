// UTF-16 to UTF-8 and back, written out by hand so that no locale is involved.
#include <velmor/sql/host/Utf8.h>

#include <cstdint>

namespace velmor::sql::host {

namespace {

void appendCodePoint(std::uint32_t cp, std::string& out) {
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

} // namespace

void appendUtf8(const std::wstring& units, std::string& out) {
  for (std::size_t i = 0; i < units.size(); ++i) {
    // wchar_t may be wider than 16 bits; anything past the Unicode range is replaced.
    auto unit = static_cast<std::uint32_t>(units[i]);
    if (unit >= 0xD800 && unit < 0xDC00 && i + 1 < units.size()) {
      const auto low = static_cast<std::uint32_t>(units[i + 1]);
      if (low >= 0xDC00 && low < 0xE000) {
        appendCodePoint(0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00), out);
        ++i;
        continue;
      }
    }
    appendCodePoint(unit <= 0x10FFFF ? unit : 0xFFFD, out);
  }
}

std::string toUtf8(const std::wstring& units) {
  std::string out;
  out.reserve(units.size());
  appendUtf8(units, out);
  return out;
}

std::wstring fromUtf8(std::string_view bytes) {
  std::wstring units;
  units.reserve(bytes.size());
  for (std::size_t i = 0; i < bytes.size();) {
    const auto lead = static_cast<unsigned char>(bytes[i]);
    std::uint32_t code = lead;
    std::size_t length = 1;
    if (lead >= 0xF0 && lead < 0xF8) {
      code = lead & 0x07u;
      length = 4;
    } else if (lead >= 0xE0 && lead < 0xF0) {
      code = lead & 0x0Fu;
      length = 3;
    } else if (lead >= 0xC0 && lead < 0xE0) {
      code = lead & 0x1Fu;
      length = 2;
    }
    bool valid = i + length <= bytes.size();
    for (std::size_t k = 1; valid && k < length; ++k) {
      const auto next = static_cast<unsigned char>(bytes[i + k]);
      valid = (next & 0xC0u) == 0x80u;
      code = (code << 6) | (next & 0x3Fu);
    }
    if (!valid) {
      code = lead;
      length = 1;
    }
    i += length;
    if (code >= 0x10000) {
      code -= 0x10000;
      units += static_cast<wchar_t>(0xD800 + (code >> 10));
      units += static_cast<wchar_t>(0xDC00 + (code & 0x3FF));
    } else {
      units += static_cast<wchar_t>(code);
    }
  }
  return units;
}

} // namespace velmor::sql::host
