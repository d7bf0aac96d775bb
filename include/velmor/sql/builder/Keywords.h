// The reserved words that a name must be bracketed for when it is written back as SQL.
#pragma once

#include <velmor/sql/Export.h>

#include <string>
#include <string_view>

namespace velmor::sql {

/// The table of reserved words of the SQL writer and the quoting that follows from it.
/// Words compare unit by unit through the C runtime's towlower, up to the first NUL unit, so
/// "SELECT", "Select" and "select" are one word. The table is read-only once built.
class VELMOR_SQL_API Keywords {
public:
  /// The one shared instance, built on first use (thread-safe) and kept until process exit.
  static const Keywords& instance();

  /// The table of the 77 words is a constant; an instance holds nothing.
  Keywords();

  /// True when `word` is a reserved word in any letter case. `[select]` is not.
  bool isOf(const std::wstring& word) const;

  /// `word` unchanged when it is no reserved word, else "[" word "]" with its case kept.
  /// Applies to one name component; nothing inside the word is examined or doubled.
  std::wstring escape(const std::wstring& word) const;

  /// A word already folded to lower case and cut at its first NUL: a look-up key that
  /// compares with the stored (lower-case) words without folding them again.
  struct Folded {
    std::wstring_view units;
  };

  /// The order of the table: case-insensitive through towlower, ending at the first NUL.
  struct VELMOR_SQL_API Less {
    using is_transparent = void;
    bool operator()(const std::wstring& left, const std::wstring& right) const noexcept;
    bool operator()(const std::wstring& stored, Folded key) const noexcept {
      return before(stored, key.units);
    }
    bool operator()(Folded key, const std::wstring& stored) const noexcept {
      return before(key.units, stored);
    }
    // Plain lexicographic order of short texts, shorter first; cheaper than wmemcmp here.
    static bool before(std::wstring_view left, std::wstring_view right) noexcept {
      const std::size_t common = left.size() < right.size() ? left.size() : right.size();
      for (std::size_t i = 0; i < common; ++i)
        if (left[i] != right[i]) return left[i] < right[i];
      return left.size() < right.size();
    }
  };
};

} // namespace velmor::sql
