// Reading the raw text of a string literal into its value, and writing the value back escaped.
#include <velmor/sql/Assert.h>
#include <velmor/sql/ast/ASTStringValue.h>

#include "common/WhiteSpace.h"

#include <cstdint>

namespace velmor::sql {
namespace {

// Appends what the escape `\<unit>` stands for. Only the low byte of the unit counts, read as a
// signed char: a unit above 255 loses its high byte on purpose, so that stored values stay
// what hosts already have. A byte of 128 or more is sign-extended to a 16-bit unit.
void appendEscape(std::wstring& out, wchar_t unit) {
  const char low = static_cast<char>(static_cast<unsigned char>(static_cast<unsigned>(unit) & 0xFFu));
  switch (low) {
  case '%':
  case '_':
    // A LIKE pattern keeps its escaped wildcard as an escape.
    out.push_back(L'\\');
    out.push_back(static_cast<wchar_t>(low));
    return;
  case '0': out.push_back(L'\0'); return;
  case 'Z': out.push_back(static_cast<wchar_t>(22)); return; // 22, mirrored by toString
  case 'b': out.push_back(static_cast<wchar_t>(8)); return;
  case 'n': out.push_back(static_cast<wchar_t>(10)); return;
  case 'r': out.push_back(static_cast<wchar_t>(13)); return;
  case 't': out.push_back(static_cast<wchar_t>(9)); return;
  default:
    out.push_back(static_cast<wchar_t>(static_cast<std::uint16_t>(static_cast<std::int16_t>(low))));
    return;
  }
}

} // namespace

ASTStringValue::ASTStringValue(const std::wstring& raw) {
  if (!raw.empty()) parse(raw);
}

void ASTStringValue::parse(const std::wstring& value) {
  m_value.clear();
  m_value.reserve(value.length());
  const std::size_t length = value.length();

  // The scanner hands over one or more quoted pieces separated by white space; they are joined.
  // White space is the scanner's own (Unicode's, not the C locale's), so that every text the
  // scanner joined reads back here. The steps run at least once, so an empty text fails the
  // delimiter check as a blank one does. value[length] is the terminating NUL, which is what a
  // malformed text reads past its end.
  std::size_t i = 0;
  do {
    // Reported under its established text, which names the platform's wide isspace that this
    // test stands in for.
    if (!(i == 0 || detail::isWhiteSpace(value[i]))) {
      assertionFailed("i == 0 || std::isspace(value[i], std::locale())", "ASTStringValue");
    }
    while (i < length && detail::isWhiteSpace(value[i])) ++i;
    VELMOR_SQL_ASSERT(value[i] == L'"' || value[i] == L'\'', "ASTStringValue");
    const wchar_t delimiter = value[i];
    ++i;
    while (i < length) {
      const wchar_t unit = value[i];
      if (unit == delimiter) {
        if (i + 1 == length || value[i + 1] != delimiter) {
          ++i;
          break;
        }
        m_value.push_back(delimiter);
        i += 2;
      } else if (unit == L'\\') {
        VELMOR_SQL_ASSERT(i + 1 < value.length(), "ASTStringValue");
        appendEscape(m_value, value[i + 1]);
        i += 2;
      } else {
        m_value.push_back(unit);
        ++i;
      }
    }
  } while (i < length);
  m_value.shrink_to_fit();
}

std::wstring ASTStringValue::toString() const {
  std::wstring out;
  out.reserve(2 * m_value.length());
  const std::size_t length = m_value.length();
  for (std::size_t i = 0; i < length; ++i) {
    const wchar_t unit = m_value[i];
    switch (unit) {
    case 0: out += L"\\0"; break;
    case 8: out += L"\\b"; break;
    case 9: out += L"\\t"; break;
    case 10: out += L"\\n"; break;
    case 13: out += L"\\r"; break;
    case 22: out += L"\\Z"; break;
    case L'"': out += L"\\\""; break;
    case L'\\':
      // An escaped LIKE wildcard was kept as a pair by parse and goes out unchanged.
      if (i + 1 < length && (m_value[i + 1] == L'%' || m_value[i + 1] == L'_')) {
        out.push_back(unit);
        out.push_back(m_value[++i]);
      } else {
        out += L"\\\\";
      }
      break;
    default: out.push_back(unit); break;
    }
  }
  out.shrink_to_fit();
  return out;
}

std::size_t ASTStringValue::toStringLength() const noexcept {
  std::size_t count = 0;
  const std::size_t length = m_value.length();
  for (std::size_t i = 0; i < length; ++i) {
    const wchar_t unit = m_value[i];
    // Nearly every unit stands for itself; a few controls, '"' and '\\' are written escaped.
    if (unit > L'"' && unit != L'\\') {
      ++count;
      continue;
    }
    switch (unit) {
    case 0:
    case 8:
    case 9:
    case 10:
    case 13:
    case 22:
    case L'"':
      count += 2;
      break;
    case L'\\':
      // A kept wildcard pair goes out as it is, a lone backslash doubled: two units either way.
      if (i + 1 < length && (m_value[i + 1] == L'%' || m_value[i + 1] == L'_')) ++i;
      count += 2;
      break;
    default: ++count; break;
    }
  }
  return count;
}

} // namespace velmor::sql
