// Shared set-up of the fuzz targets: the locale the library is used under, and input helpers.
#pragma once

#include <clocale>
#include <cstddef>
#include <cstdint>
#include <string>

namespace velmor::sql::fuzz {

/// The tests and the tool run under C.UTF-8; the targets do the same.
inline void setLocale() { std::setlocale(LC_ALL, "C.UTF-8"); }

/// The input as one UTF-8 text, bytes unchanged.
inline std::string text(const std::uint8_t* data, std::size_t size) {
  return std::string(reinterpret_cast<const char*>(data), size);
}

/// The input as UTF-16 units, two bytes each (little end first); an odd last byte is one unit.
inline std::wstring units(const std::uint8_t* data, std::size_t size) {
  std::wstring out;
  out.reserve(size / 2 + 1);
  for (std::size_t i = 0; i < size; i += 2)
    out.push_back(static_cast<wchar_t>(data[i] | (i + 1 < size ? data[i + 1] << 8 : 0)));
  return out;
}

} // namespace velmor::sql::fuzz

/// Stops with a message that libFuzzer reports as a crash, with the input that led to it.
#define VELMOR_FUZZ_CHECK(condition, message)                                                      \
  do {                                                                                             \
    if (!(condition)) {                                                                            \
      fprintf(stderr, "fuzz check failed: %s (%s)\n", message, #condition);                       \
      abort();                                                                                     \
    }                                                                                              \
  } while (false)
