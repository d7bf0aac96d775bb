// Wide text of the library (UTF-16 units in std::wstring) to UTF-8 bytes for output.
#pragma once

#include <string>

namespace velmor::cli {

/// Appends the UTF-8 form of UTF-16 `units`: a surrogate pair becomes one four-byte sequence,
/// a lone surrogate its three-byte form (so that text the scanner took in comes out as it
/// went in). Independent of the locale.
void appendUtf8(const std::wstring& units, std::string& out);

/// The same, as a new string.
std::string toUtf8(const std::wstring& units);

} // namespace velmor::cli
