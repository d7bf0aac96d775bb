// The writer's table of reserved words.
#include <velmor/sql/builder/Keywords.h>

#include <array>
#include <cstdint>
#include <cwctype>
#include <string_view>

namespace velmor::sql {

namespace {

// Bounds of the words in the table; a name outside them needs no look-up.
constexpr std::size_t kShortestWord = 2;
constexpr std::size_t kLongestWord = 10;

// The table, in lower case.
constexpr std::array<std::wstring_view, 77> kWords = {
    L"all",      L"and",        L"any",       L"array",     L"as",       L"asc",
    L"between",  L"by",         L"case",      L"contains",  L"cross",    L"default",
    L"delete",   L"desc",       L"distinct",  L"end",       L"entire",   L"entirely",
    L"except",   L"exists",     L"false",     L"first",     L"from",     L"full",
    L"glob",     L"group",      L"groupby",   L"having",    L"in",       L"inner",
    L"insert",   L"intersect",  L"intersects", L"into",     L"is",       L"join",
    L"last",     L"left",       L"like",      L"limit",     L"mod",      L"multiset",
    L"natural",  L"noselect",   L"not",       L"null",      L"nulls",    L"on",
    L"offset",   L"or",         L"order",     L"orderby",   L"outer",    L"overriding",
    L"part",     L"partly",     L"right",     L"row",       L"select",   L"set",
    L"some",     L"system",     L"table",     L"then",      L"true",     L"union",
    L"unique",   L"unknown",    L"update",    L"user",      L"using",    L"value",
    L"values",   L"when",       L"where",     L"within",    L"xor"};

// The words grouped by length, then first letter: the words of length n beginning with
// letter c are words[start[n][c]] up to words[start[n][c + 1]]. Most names fall into an
// empty group and are rejected after folding one unit.
struct Groups {
  std::array<std::wstring_view, kWords.size()> words{};
  std::array<std::array<std::uint8_t, 27>, kLongestWord + 1> start{};
};

constexpr Groups kGroups = [] {
  Groups groups;
  std::size_t next = 0;
  for (std::size_t length = 0; length <= kLongestWord; ++length) {
    for (std::size_t letter = 0; letter < 26; ++letter) {
      groups.start[length][letter] = static_cast<std::uint8_t>(next);
      for (const std::wstring_view word : kWords)
        if (word.size() == length && static_cast<std::size_t>(word[0] - L'a') == letter) groups.words[next++] = word;
    }
    groups.start[length][26] = static_cast<std::uint8_t>(next);
  }
  return groups;
}();
static_assert(kGroups.start[kLongestWord][26] == kWords.size(), "every word of the table is in a group");

// For each first letter, the lengths of the words that begin with it, as bits.
constexpr std::array<std::uint32_t, 26> kLengths = [] {
  std::array<std::uint32_t, 26> lengths{};
  for (const std::wstring_view word : kWords) lengths[static_cast<std::size_t>(word[0] - L'a')] |= 1u << word.size();
  return lengths;
}();

// For each first letter, the second letters of the words that begin with it, as bits.
constexpr std::array<std::uint32_t, 26> kSecondLetters = [] {
  std::array<std::uint32_t, 26> letters{};
  for (const std::wstring_view word : kWords) letters[static_cast<std::size_t>(word[0] - L'a')] |= 1u << (word[1] - L'a');
  return letters;
}();

// towlower for one unit; ASCII letters directly, as towlower folds them.
wchar_t fold(wchar_t unit) {
  if (unit >= L'A' && unit <= L'Z') return static_cast<wchar_t>(unit - L'A' + L'a');
  if (unit < 0x80) return unit;
  return static_cast<wchar_t>(std::towlower(static_cast<std::wint_t>(unit)));
}

} // namespace

bool Keywords::Less::operator()(const std::wstring& left, const std::wstring& right) const noexcept {
  const wchar_t* a = left.c_str();
  const wchar_t* b = right.c_str();
  for (;; ++a, ++b) {
    const auto la = static_cast<wchar_t>(std::towlower(static_cast<std::wint_t>(*a)));
    const auto lb = static_cast<wchar_t>(std::towlower(static_cast<std::wint_t>(*b)));
    if (la != lb) return la < lb;
    if (la == L'\0') return false;
  }
}

const Keywords& Keywords::instance() {
  static const Keywords keywords;
  return keywords;
}

Keywords::Keywords() = default;

namespace {

// Whether `word`, of `size` units, is a word of the table. The order stops at the first NUL,
// so a word of length n is this name only when the name ends at n or has its first NUL there;
// a match of the n units before shows there is none among them. Only the lengths that words
// with this first letter have are tried.
[[gnu::noinline]] bool lookUp(const std::wstring& word, std::size_t size) {
  const wchar_t first = fold(word[0]);
  const wchar_t second = fold(word[1]);
  if (first < L'a' || first > L'z' || second < L'a' || second > L'z') return false;
  const auto letter = static_cast<std::size_t>(first - L'a');
  if ((kSecondLetters[letter] >> (second - L'a') & 1u) == 0) return false;
  const std::size_t longest = size < kLongestWord ? size : kLongestWord;
  std::uint32_t lengths = kLengths[letter] & ((2u << longest) - 1);
  while (lengths != 0) {
    const auto length = static_cast<std::size_t>(__builtin_ctz(lengths));
    lengths &= lengths - 1;
    if (length < size && word[length] != L'\0') continue;
    const auto& start = kGroups.start[length];
    for (std::size_t candidate = start[letter]; candidate < start[letter + 1]; ++candidate) {
      const std::wstring_view stored = kGroups.words[candidate];
      std::size_t i = 1;
      while (i < length && fold(word[i]) == stored[i]) ++i;
      if (i == length) return true;
    }
    return false;
  }
  return false;
}

} // namespace

bool Keywords::isOf(const std::wstring& word) const {
  const std::size_t size = word.size();
  if (size < kShortestWord) return false;
  // Three names in four fail on their first two letters, which no word of the table begins
  // with: for ASCII ones (setting bit 5 folds a letter and makes no other unit one) that is
  // settled here, before anything else is set up.
  const auto first = static_cast<std::uint32_t>(word[0]);
  const auto second = static_cast<std::uint32_t>(word[1]);
  if (first < 0x80 && second < 0x80) {
    const std::uint32_t letter = (first | 0x20u) - L'a';
    const std::uint32_t next = (second | 0x20u) - L'a';
    if (letter > 25 || next > 25 || (kSecondLetters[letter] >> next & 1u) == 0) return false;
  }
  return lookUp(word, size);
}

std::wstring Keywords::escape(const std::wstring& word) const {
  if (!isOf(word)) return word;
  std::wstring quoted;
  quoted.reserve(word.size() + 2);
  quoted += L'[';
  quoted += word;
  quoted += L']';
  return quoted;
}

} // namespace velmor::sql
