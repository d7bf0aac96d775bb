// The reserved words that a name must be bracketed for when it is written back as SQL.
#pragma once

#include <velmor/sql/Export.h>

#include <set>
#include <string>

namespace velmor::sql {

/// The table of reserved words of the SQL writer and the quoting that follows from it.
/// Words compare unit by unit through the C runtime's towlower, up to the first NUL unit, so
/// "SELECT", "Select" and "select" are one word. The table is read-only once built.
class VELMOR_SQL_API Keywords {
public:
  /// The one shared instance, built on first use (thread-safe) and kept until process exit.
  static const Keywords& instance();

  /// Builds the table of the 77 words.
  Keywords();

  /// True when `word` is a reserved word in any letter case. `[select]` is not.
  bool isOf(const std::wstring& word) const;

  /// `word` unchanged when it is no reserved word, else "[" word "]" with its case kept.
  /// Applies to one name component; nothing inside the word is examined or doubled.
  std::wstring escape(const std::wstring& word) const;

  /// The order of the table: case-insensitive through towlower, ending at the first NUL.
  struct VELMOR_SQL_API Less {
    bool operator()(const std::wstring& left, const std::wstring& right) const noexcept;
  };

private:
  std::set<std::wstring, Less> mWords;
};

} // namespace velmor::sql
