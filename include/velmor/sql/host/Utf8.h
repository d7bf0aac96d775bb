// Wide text of the library (UTF-16 units in std::wstring) to and from UTF-8 bytes.
#pragma once

#include <velmor/sql/host/Export.h>

#include <string>
#include <string_view>

namespace velmor::sql::host {

/// Appends the UTF-8 form of UTF-16 `units`: a surrogate pair becomes one four-byte sequence,
/// a lone surrogate its three-byte form (so that text the scanner took in comes out as it
/// went in). Independent of the locale.
VELMOR_SQL_HOST_API void appendUtf8(const std::wstring& units, std::string& out);

/// The same, as a new string.
VELMOR_SQL_HOST_API std::string toUtf8(const std::wstring& units);

/// UTF-8 bytes to UTF-16 units: a four-byte sequence becomes a surrogate pair; a byte that does
/// not start a complete sequence stands for itself (as a Latin-1 unit). Independent of the locale.
VELMOR_SQL_HOST_API std::wstring fromUtf8(std::string_view bytes);

} // namespace velmor::sql::host
