// Case folding of names and quoting of texts.
#include <velmor/sql/types/Strings.h>

#include <cstdint>

namespace velmor::sql {

namespace {

#include "CaseFoldingTable.inc"

// Narrow text folds the ASCII letters only, whatever the bytes of a multi-byte encoding hold.
void foldNarrow(char* text) {
  for (; *text != '\0'; ++text) {
    if (*text >= 'A' && *text <= 'Z') *text = static_cast<char>(*text - 'A' + 'a');
  }
}

// Unit by unit over UTF-16: a surrogate has no mapping and stays, so a supplementary
// character keeps its case. A wchar_t value above 0xFFFF is no UTF-16 unit and stays too.
void foldWide(wchar_t* text) {
  for (; *text != L'\0'; ++text) {
    const auto unit = static_cast<std::uint32_t>(*text);
    if (unit > 0xFFFF) continue;
    const std::uint16_t delta =
        caseFoldDelta[caseFoldBlock[unit >> caseFoldBlockShift] * (1u << caseFoldBlockShift) +
                      (unit & ((1u << caseFoldBlockShift) - 1))];
    *text = static_cast<wchar_t>((unit + delta) & 0xFFFF);
  }
}

} // namespace

// The buffer is folded as a NUL-terminated string, so folding ends at an embedded NUL.
void makeLowercase(std::string& text) {
  if (!text.empty()) foldNarrow(text.data());
}

void makeLowercase(std::wstring& text) {
  if (!text.empty()) foldWide(text.data());
}

std::string toLowercase(const std::string& text) {
  std::string result(text);
  makeLowercase(result);
  return result;
}

std::wstring toLowercase(const std::wstring& text) {
  std::wstring result(text);
  makeLowercase(result);
  return result;
}

std::wstring normalized(const std::wstring& text) {
  std::wstring result(text);
  makeLowercase(result);
  return result;
}

std::wstring& escape(std::wstring& text, wchar_t quote) {
  // Every quote is doubled, pairs included: the search resumes behind the inserted one.
  for (auto position = text.find(quote); position != std::wstring::npos;
       position = text.find(quote, position + 2)) {
    text.insert(position + 1, 1, quote);
  }
  text.insert(text.begin(), quote);
  text.push_back(quote);
  return text;
}

std::wstring escape(const std::wstring& text, wchar_t quote) {
  std::wstring result(text);
  escape(result, quote);
  return result;
}

std::wstring trimSquareBrackets(const std::wstring& text) {
  if (text.size() >= 2 && text.front() == L'[' && text.back() == L']') {
    return text.substr(1, text.size() - 2);
  }
  return text;
}

} // namespace velmor::sql
