// String helpers: case folding of names and quoting of texts.
#pragma once

#include <velmor/sql/Export.h>

#include <string>

namespace velmor::sql {

// Case folding. Narrow text folds the ASCII letters A-Z only. Wide text (UTF-16 units) folds
// each unit of the Basic Multilingual Plane by Unicode 8.0 simple case folding, so Latin,
// Greek, Cyrillic and the other cased scripts fold alike; surrogates and units without a
// mapping stay. Folding stops at the first NUL unit, and the length never changes. All of these
// are pure functions of their arguments and safe from any thread.

/// Folds `text` in place (ASCII letters only).
VELMOR_SQL_API void makeLowercase(std::string& text);
/// Folds `text` in place.
VELMOR_SQL_API void makeLowercase(std::wstring& text);
/// A folded copy (ASCII letters only).
VELMOR_SQL_API std::string toLowercase(const std::string& text);
/// A folded copy.
VELMOR_SQL_API std::wstring toLowercase(const std::wstring& text);
/// The comparison key of a name: two names are the same name when their normalized forms are
/// equal. The same folding as toLowercase.
VELMOR_SQL_API std::wstring normalized(const std::wstring& text);

/// Doubles every `quote` in `text` and surrounds it with one `quote` on each side, in place;
/// returns `text`. Pairs already present are doubled again: a''b becomes 'a''''b'.
VELMOR_SQL_API std::wstring& escape(std::wstring& text, wchar_t quote);
/// The same on a copy.
VELMOR_SQL_API std::wstring escape(const std::wstring& text, wchar_t quote);

/// Takes off one enclosing pair of square brackets when the text starts with '[' and ends with
/// ']' ("[]" gives ""); otherwise a copy. Nothing inside is examined or unescaped.
VELMOR_SQL_API std::wstring trimSquareBrackets(const std::wstring& text);

} // namespace velmor::sql
