// The error family's root and the syntax error classes.
#include <velmor/sql/errors/SqlError.h>

#include <cstdlib>
#include <string>
#include <utility>

namespace velmor::sql {

SqlError::~SqlError() = default;
const char* SqlError::what() const noexcept { return "Sql error"; }
SqlErrorType SqlError::type() const { return SqlErrorType::Undefined; }

const char* SqlSyntaxError::what() const noexcept { return "Sql syntax error"; }

GeneralSyntaxError::GeneralSyntaxError(std::string text) : description(std::move(text)) {}
const char* GeneralSyntaxError::what() const noexcept {
  return description.empty() ? SqlSyntaxError::what() : description.c_str();
}
SqlError* GeneralSyntaxError::clone() const { return new GeneralSyntaxError(*this); }
SqlErrorType GeneralSyntaxError::type() const { return SqlErrorType::GeneralSyntaxError; }

UnknownLexeme::UnknownLexeme(const std::wstring& text)
    : GeneralSyntaxError("Unknown lexeme: [" + fromWideString(text) + "]"), lexeme(text) {}
SqlError* UnknownLexeme::clone() const { return new UnknownLexeme(*this); }
SqlErrorType UnknownLexeme::type() const { return SqlErrorType::UnknownLexeme; }

UnexpectedLexeme::UnexpectedLexeme(std::size_t line_, std::size_t column_, const std::string& text_)
    : GeneralSyntaxError(text_.empty() ? std::string("Unexpected lexeme") : text_),
      line(line_), column(column_), text(text_) {
  if (line != 0) {
    description.append(" at ").append(std::to_string(line));
    if (column != 0) description.append(":").append(std::to_string(column));
  }
}
SqlError* UnexpectedLexeme::clone() const { return new UnexpectedLexeme(*this); }
SqlErrorType UnexpectedLexeme::type() const { return SqlErrorType::UnexpectedLexeme; }

const char* NotEnoughMemory::what() const noexcept { return "Not enough memory"; }
SqlError* NotEnoughMemory::clone() const { return new NotEnoughMemory(*this); }
SqlErrorType NotEnoughMemory::type() const { return SqlErrorType::NotEnoughMemory; }

std::wstring toWideString(const std::string& text) {
  std::wstring result(text.size(), L' ');
  // The all-ones result of a failed conversion goes straight into resize: std::length_error.
  const std::size_t count = std::mbstowcs(result.data(), text.c_str(), text.size());
  result.resize(count);
  return result;
}

std::string fromWideString(const std::wstring& text) {
  std::string result(4 * text.size(), ' ');
  // The limit is the number of wide units on purpose: multi-byte output is cut at that count.
  const std::size_t count = std::wcstombs(result.data(), text.c_str(), text.size());
  result.resize(count);
  return result;
}

} // namespace velmor::sql
