// The writer's table of reserved words.
#include <velmor/sql/builder/Keywords.h>

#include <array>
#include <cstdint>
#include <cwctype>

namespace velmor::sql {

namespace {

// Units of a word up to its first NUL: what the table order looks at.
std::size_t effectiveLength(const std::wstring& word) noexcept {
  std::size_t length = 0;
  while (length < word.size() && word[length] != L'\0') ++length;
  return length;
}

// Bounds of the words in the table; a name outside them needs no look-up.
constexpr std::size_t kShortestWord = 2;
constexpr std::size_t kLongestWord = 10;

// The table, in lower case.
constexpr std::array<const wchar_t*, 77> kWords = {
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

// For each length, the first letters that words of that length begin with: most names are
// rejected by this before the set is searched.
constexpr std::array<std::uint32_t, kLongestWord + 1> kFirstLetters = [] {
  std::array<std::uint32_t, kLongestWord + 1> masks{};
  for (const wchar_t* word : kWords) {
    std::size_t length = 0;
    while (word[length] != L'\0') ++length;
    masks[length] |= 1u << (word[0] - L'a');
  }
  return masks;
}();

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

Keywords::Keywords() {
  for (const wchar_t* word : kWords) mWords.emplace(word);
}

bool Keywords::isOf(const std::wstring& word) const {
  const std::size_t length = effectiveLength(word);
  if (length < kShortestWord || length > kLongestWord) return false;
  // Fold once, then compare with the stored words, which are lower case already. ASCII
  // letters fold directly (towlower does the same to them); other units go through towlower.
  wchar_t folded[kLongestWord];
  for (std::size_t i = 0; i < length; ++i) {
    const wchar_t unit = word[i];
    if (unit >= L'A' && unit <= L'Z')
      folded[i] = static_cast<wchar_t>(unit - L'A' + L'a');
    else if (unit < 0x80)
      folded[i] = unit;
    else
      folded[i] = static_cast<wchar_t>(std::towlower(static_cast<std::wint_t>(unit)));
  }
  if (folded[0] < L'a' || folded[0] > L'z' || (kFirstLetters[length] >> (folded[0] - L'a') & 1u) == 0)
    return false;
  return mWords.find(Folded{std::wstring_view(folded, length)}) != mWords.end();
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
