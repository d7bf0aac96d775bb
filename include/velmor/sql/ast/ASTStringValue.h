// The value of an SQL string literal: quoting and escapes resolved, and written back.
#pragma once

#include <velmor/sql/Export.h>

#include <string>

namespace velmor::sql {

/// The text a string literal stands for. A plain value; copying copies the text.
class VELMOR_SQL_API ASTStringValue {
public:
  ASTStringValue() = default;
  /// The empty value for an empty text, otherwise as parse(raw).
  explicit ASTStringValue(const std::wstring& raw);

  /// Replaces the value with the resolved text of a raw literal of one or more quoted pieces
  /// ('a' "b" ...). Malformed input asserts (source "ASTStringValue") and, if the process goes
  /// on, is read as if the assertion held.
  void parse(const std::wstring& raw);

  /// The value with escapes and without enclosing quotes.
  std::wstring toString() const;
  /// toString().size(), without making the text.
  std::size_t toStringLength() const noexcept;

  const std::wstring& value() const noexcept { return m_value; }

  std::wstring m_value;
};

} // namespace velmor::sql
