// The root of the library's error family, its numbers, and the syntax error classes.
#pragma once

#include <velmor/sql/Export.h>

#include <cstddef>
#include <cstdint>
#include <exception>
#include <string>

namespace velmor::sql {

/// What SqlError::type() answers. The numbers are part of the public interface; 27 is unused.
enum class SqlErrorType : std::int32_t {
  Undefined = 0,
  UnknownLexeme = 1,
  UnexpectedLexeme = 2,
  NonExistentTable = 3,
  TableExists = 4,
  UnknownTableReference = 5,
  NonUniqueTableReference = 6,
  UnknownColumnReference = 7,
  AmbiguousColumnReference = 8,
  WrongExpressionType = 9,
  CommonColumnTypeMismatch = 10,
  NoCommonColumns = 11,
  SetClauseTypeMismatch = 12,
  InsertSourceTypeMismatch = 13,
  BinaryOperationTypeMismatch = 14,
  UnknownFunction = 15,
  NoGoodFunctionCandidate = 16,
  AmbiguousFunctionCall = 17,
  WrongParametersArity = 18,
  IncompatibleParameterType = 19,
  AsteriskIsProhibited = 20,
  SetQuantifierIsProhibited = 21,
  NoGoodOperatorOverload = 22,
  AmbiguousOperatorCall = 23,
  OperatorNotSupported = 24,
  AggregateInWhereClause = 25,
  ContextQuery = 26,
  InvalidContext = 28,
  UnexpectedParseResult = 29,
  SelectionTableIsAbsent = 30,
  GeneralSyntaxError = 31,
  AmbiguousTablesReference = 32,
  NotEnoughMemory = 33,
  // Raised by standard scoping only.
  SubqueryNotScalar = 34,
  UngroupedColumnReference = 35,
  ColumnCountMismatch = 36,
};

/// Base of every syntax and semantic fault. Thrown by value; Validator keeps clone()s.
class VELMOR_SQL_API SqlError : public std::exception {
public:
  ~SqlError() override;
  /// A constant text of the family, never built from the fields: "Sql error".
  const char* what() const noexcept override;
  /// A heap copy of the most derived class, owned by the caller.
  virtual SqlError* clone() const = 0;
  /// The number of the most derived class; 0 unless a class overrides it.
  virtual SqlErrorType type() const;
};

class VELMOR_SQL_API SqlSyntaxError : public SqlError {
public:
  /// "Sql syntax error".
  const char* what() const noexcept override;
};

class VELMOR_SQL_API GeneralSyntaxError : public SqlSyntaxError {
public:
  GeneralSyntaxError() = default;
  explicit GeneralSyntaxError(std::string description);
  /// `description`, or "Sql syntax error" when it is empty.
  const char* what() const noexcept override;
  SqlError* clone() const override;
  SqlErrorType type() const override;

  std::string description;
};

/// Input that matches no token. The scanner drops such input silently, so the library never
/// makes one; a host may.
class VELMOR_SQL_API UnknownLexeme : public GeneralSyntaxError {
public:
  /// `description` becomes "Unknown lexeme: [" + fromWideString(lexeme) + "]".
  explicit UnknownLexeme(const std::wstring& lexeme);
  SqlError* clone() const override;
  SqlErrorType type() const override;

  std::wstring lexeme;
};

/// The syntax error of a parse: the message and the lookahead's begin line and column.
class VELMOR_SQL_API UnexpectedLexeme : public GeneralSyntaxError {
public:
  /// `description` is `text` (or "Unexpected lexeme" when empty), then " at LINE" when line is
  /// not 0, then ":COLUMN" when column is not 0 too.
  UnexpectedLexeme(std::size_t line, std::size_t column, const std::string& text);
  SqlError* clone() const override;
  SqlErrorType type() const override;

  std::size_t line;
  std::size_t column;
  std::string text;
};

class VELMOR_SQL_API NotEnoughMemory : public SqlError {
public:
  /// "Not enough memory".
  const char* what() const noexcept override;
  SqlError* clone() const override;
  SqlErrorType type() const override;
};

/// Narrow to wide through the C runtime's mbstowcs under the current locale (never set by the
/// library). An unconvertible text throws std::length_error.
VELMOR_SQL_API std::wstring toWideString(const std::string& text);

/// Wide to narrow through wcstombs under the current locale. At most text.size() bytes come
/// out, so multi-byte characters cut the result short. An unconvertible text throws
/// std::length_error.
VELMOR_SQL_API std::string fromWideString(const std::wstring& text);

} // namespace velmor::sql
