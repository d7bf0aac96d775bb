// Comparisons of names as normalized() folds them, without building folded copies: folding maps
// unit to unit, keeps the length, ends at a NUL unit, and on ASCII only lowers A-Z, so ASCII
// names (nearly all names) compare in place.
#pragma once

#include <velmor/sql/types/Strings.h>

#include <cstddef>
#include <string>

namespace velmor::sql::detail {

/// Whether normalized(name) == name; false for any name with a unit beyond ASCII before its
/// first NUL (those are left to normalized()).
inline bool foldsToItself(const std::wstring& name) noexcept {
  for (const wchar_t unit : name) {
    if (unit == 0) return true;
    if (unit >= 0x80 || (unit >= L'A' && unit <= L'Z')) return false;
  }
  return true;
}

/// Whether normalized(name) == key, where `key` is folded already.
inline bool sameFoldedName(const std::wstring& name, const std::wstring& key) {
  if (name.size() != key.size()) return false;
  for (std::size_t i = 0; i < name.size(); ++i) {
    wchar_t unit = name[i];
    if (unit >= 0x80) return normalized(name) == key;
    if (unit == 0) return name.compare(i, std::wstring::npos, key, i, std::wstring::npos) == 0;
    if (unit >= L'A' && unit <= L'Z') unit = static_cast<wchar_t>(unit - L'A' + L'a');
    if (unit != key[i]) return false;
  }
  return true;
}

/// Whether normalized(a) == normalized(b).
inline bool sameNames(const std::wstring& a, const std::wstring& b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    wchar_t x = a[i];
    wchar_t y = b[i];
    if (x >= 0x80 || y >= 0x80) return normalized(a) == normalized(b);
    if (x == 0 || y == 0) return normalized(a) == normalized(b);
    if (x >= L'A' && x <= L'Z') x = static_cast<wchar_t>(x - L'A' + L'a');
    if (y >= L'A' && y <= L'Z') y = static_cast<wchar_t>(y - L'A' + L'a');
    if (x != y) return false;
  }
  return true;
}

} // namespace velmor::sql::detail
