// The semantic faults of a statement: small exception classes that carry plain data and no
// message text, so that a host words its own messages.
#pragma once

#include <velmor/sql/Export.h>
#include <velmor/sql/ast/AST.h>
#include <velmor/sql/errors/SqlError.h>
#include <velmor/sql/types/Routine.h>
#include <velmor/sql/types/Type.h>

#include <cstdint>
#include <exception>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace velmor::sql {

// Every class is thrown by value by the code that finds the fault; Validator catches at
// SqlError and keeps a clone(). clone() returns a heap copy of the most derived class, owned by
// the caller, that shares the Type and overload objects of its source. what() is the constant
// "Sql semantic error" for the whole branch. A host may raise any of these from its own
// contexts or checks; the meaning of the text fields is then the raiser's.

/// Base of all semantic faults; abstract.
class VELMOR_SQL_API SqlSemanticError : public SqlError {
public:
  /// "Sql semantic error".
  const char* what() const noexcept override;
  SqlError* clone() const override = 0;
};

/// Base reserved for evaluation faults; abstract, and the library has no subclass of it.
class VELMOR_SQL_API SqlEvaluationError : public SqlError {
public:
  /// "Sql evaluation error".
  const char* what() const noexcept override;
  SqlError* clone() const override = 0;
};

/// A fault that needs no data: its class is Base and its number is Number.
template <class Base, SqlErrorType Number>
class CustomSqlError : public Base {
public:
  SqlError* clone() const override { return new CustomSqlError(*this); }
  SqlErrorType type() const override { return Number; }
};

/// An aggregate function in a WHERE clause (listed by Validator).
using AggregateInWhereClause = CustomSqlError<SqlSemanticError, SqlErrorType::AggregateInWhereClause>;
/// A context cast where none is allowed (listed by Validator).
using ContextQuery = CustomSqlError<SqlSemanticError, SqlErrorType::ContextQuery>;

// The classes that carry one table name.
#define VELMOR_SQL_TABLE_NAME_ERROR(Name)                                                          \
  class VELMOR_SQL_API Name : public SqlSemanticError {                                            \
  public:                                                                                          \
    explicit Name(std::wstring tableName);                                                         \
    SqlError* clone() const override;                                                              \
    SqlErrorType type() const override;                                                            \
    std::wstring tableName;                                                                        \
  };

/// A FROM names a table the host doesn't know (thrown while building scopes).
VELMOR_SQL_TABLE_NAME_ERROR(NonExistentTable)
/// Not raised by the library.
VELMOR_SQL_TABLE_NAME_ERROR(TableExists)
/// A qualifier that names no table of the query.
VELMOR_SQL_TABLE_NAME_ERROR(UnknownTableReference)
/// Not raised by the library.
VELMOR_SQL_TABLE_NAME_ERROR(NonUniqueTableReference)
/// A qualifier that fits more than one table of the query.
VELMOR_SQL_TABLE_NAME_ERROR(AmbiguousTablesReference)
#undef VELMOR_SQL_TABLE_NAME_ERROR

/// A column reference that resolves to nothing; `tableName` is the qualifier as written.
class VELMOR_SQL_API UnknownColumnReference : public SqlSemanticError {
public:
  UnknownColumnReference(std::wstring tableName, std::wstring columnName);
  SqlError* clone() const override;
  SqlErrorType type() const override;
  std::wstring tableName;
  std::wstring columnName;
};

/// A column reference that resolves to more than one column.
class VELMOR_SQL_API AmbiguousColumnReference : public SqlSemanticError {
public:
  AmbiguousColumnReference(std::wstring tableName, std::wstring columnName);
  SqlError* clone() const override;
  SqlErrorType type() const override;
  std::wstring tableName;
  std::wstring columnName;
};

/// Not raised by the library.
class VELMOR_SQL_API WrongExpressionType : public SqlSemanticError {
public:
  WrongExpressionType(std::shared_ptr<Type> actualType, std::set<type::PlainType> expectedTypes,
                      std::wstring text);
  SqlError* clone() const override;
  SqlErrorType type() const override;
  std::shared_ptr<Type> actualType;
  std::set<type::PlainType> expectedTypes;
  std::wstring text;
};

/// Not raised by the library.
class VELMOR_SQL_API CommonColumnTypeMismatch : public SqlSemanticError {
public:
  CommonColumnTypeMismatch(std::wstring columnName, std::vector<std::shared_ptr<Type>> leftTypes,
                           std::vector<std::shared_ptr<Type>> rightTypes, std::wstring leftTableName,
                           std::wstring rightTableName);
  SqlError* clone() const override;
  SqlErrorType type() const override;
  std::wstring columnName;
  std::vector<std::shared_ptr<Type>> leftTypes;
  std::vector<std::shared_ptr<Type>> rightTypes;
  std::wstring leftTableName;
  std::wstring rightTableName;
};

/// Not raised by the library.
class VELMOR_SQL_API NoCommonColumns : public SqlSemanticError {
public:
  NoCommonColumns(std::wstring leftTableName, std::wstring rightTableName);
  SqlError* clone() const override;
  SqlErrorType type() const override;
  std::wstring leftTableName;
  std::wstring rightTableName;
};

/// Not raised by the library.
class VELMOR_SQL_API SetClauseTypeMismatch : public SqlSemanticError {
public:
  SetClauseTypeMismatch(std::vector<std::shared_ptr<Type>> targetTypes,
                        std::vector<std::shared_ptr<Type>> sourceTypes, std::wstring columnName);
  SqlError* clone() const override;
  SqlErrorType type() const override;
  std::vector<std::shared_ptr<Type>> targetTypes;
  std::vector<std::shared_ptr<Type>> sourceTypes;
  std::wstring columnName;
};

/// Not raised by the library.
class VELMOR_SQL_API InsertSourceTypeMismatch : public SqlSemanticError {
public:
  InsertSourceTypeMismatch(std::vector<std::shared_ptr<Type>> targetTypes,
                           std::vector<std::shared_ptr<Type>> sourceTypes, std::wstring tableName,
                           std::wstring text);
  SqlError* clone() const override;
  SqlErrorType type() const override;
  std::vector<std::shared_ptr<Type>> targetTypes;
  std::vector<std::shared_ptr<Type>> sourceTypes;
  std::wstring tableName;
  std::wstring text;
};

/// Not raised by the library.
class VELMOR_SQL_API BinaryOperationTypeMismatch : public SqlSemanticError {
public:
  BinaryOperationTypeMismatch(std::shared_ptr<Type> leftType, std::shared_ptr<Type> rightType,
                              std::wstring leftText, std::wstring rightText);
  SqlError* clone() const override;
  SqlErrorType type() const override;
  std::shared_ptr<Type> leftType;
  std::shared_ptr<Type> rightType;
  std::wstring leftText;
  std::wstring rightText;
};

/// The host knows no function of this name (as written).
class VELMOR_SQL_API UnknownFunction : public SqlSemanticError {
public:
  explicit UnknownFunction(std::wstring functionName);
  SqlError* clone() const override;
  SqlErrorType type() const override;
  std::wstring functionName;
};

/// No overload of the function takes these argument types; `candidates` in the host's order.
class VELMOR_SQL_API NoGoodFunctionCandidate : public SqlSemanticError {
public:
  NoGoodFunctionCandidate(std::wstring functionName, std::vector<std::shared_ptr<Type>> argumentTypes,
                          std::vector<std::shared_ptr<OverloadInfo>> candidates);
  SqlError* clone() const override;
  SqlErrorType type() const override;
  std::wstring functionName;
  std::vector<std::shared_ptr<Type>> argumentTypes;
  std::vector<std::shared_ptr<OverloadInfo>> candidates;
};

/// More than one overload fits equally well; `candidates` are the tied ones.
class VELMOR_SQL_API AmbiguousFunctionCall : public SqlSemanticError {
public:
  AmbiguousFunctionCall(std::wstring functionName, std::vector<std::shared_ptr<Type>> argumentTypes,
                        std::vector<std::shared_ptr<OverloadInfo>> candidates);
  SqlError* clone() const override;
  SqlErrorType type() const override;
  std::wstring functionName;
  std::vector<std::shared_ptr<Type>> argumentTypes;
  std::vector<std::shared_ptr<OverloadInfo>> candidates;
};

/// Not raised by the library. The block's meaning is the raiser's; it is copied as a whole.
class VELMOR_SQL_API WrongParametersArity : public SqlSemanticError {
public:
  struct Arity {
    std::uint64_t required = 0;
    std::uint64_t optional = 0;
    std::uint64_t actual = 0;
    bool variadic = false;
  };

  WrongParametersArity(std::wstring functionName, Arity arity);
  SqlError* clone() const override;
  SqlErrorType type() const override;
  std::wstring functionName;
  Arity arity;
};

/// Not raised by the library.
class VELMOR_SQL_API IncompatibleParameterType : public SqlSemanticError {
public:
  IncompatibleParameterType(std::wstring functionName, std::uint64_t position,
                            std::set<type::PlainType> expectedTypes, type::PlainType actualType,
                            std::wstring text);
  SqlError* clone() const override;
  SqlErrorType type() const override;
  std::wstring functionName;
  std::uint64_t position;
  std::set<type::PlainType> expectedTypes;
  type::PlainType actualType;
  std::wstring text;
};

// The classes that carry one text, none raised by the library.
#define VELMOR_SQL_TEXT_ERROR(Name)                                                                \
  class VELMOR_SQL_API Name : public SqlSemanticError {                                            \
  public:                                                                                          \
    explicit Name(std::wstring text);                                                              \
    SqlError* clone() const override;                                                              \
    SqlErrorType type() const override;                                                            \
    std::wstring text;                                                                             \
  };

VELMOR_SQL_TEXT_ERROR(AsteriskIsProhibited)
VELMOR_SQL_TEXT_ERROR(SetQuantifierIsProhibited)
VELMOR_SQL_TEXT_ERROR(UnexpectedParseResult)
#undef VELMOR_SQL_TEXT_ERROR

/// No overload of the operator takes these operand types (with the call's quantifier).
class VELMOR_SQL_API NoGoodOperatorOverload : public SqlSemanticError {
public:
  NoGoodOperatorOverload(OperationCode operation, std::vector<std::shared_ptr<Type>> argumentTypes,
                         std::vector<std::shared_ptr<OperatorOverloadInfo>> candidates);
  SqlError* clone() const override;
  SqlErrorType type() const override;
  OperationCode operation;
  std::vector<std::shared_ptr<Type>> argumentTypes;
  std::vector<std::shared_ptr<OperatorOverloadInfo>> candidates;
};

/// More than one operator overload fits equally well.
class VELMOR_SQL_API AmbiguousOperatorCall : public SqlSemanticError {
public:
  AmbiguousOperatorCall(OperationCode operation, std::vector<std::shared_ptr<Type>> argumentTypes,
                        std::vector<std::shared_ptr<OperatorOverloadInfo>> candidates);
  SqlError* clone() const override;
  SqlErrorType type() const override;
  OperationCode operation;
  std::vector<std::shared_ptr<Type>> argumentTypes;
  std::vector<std::shared_ptr<OperatorOverloadInfo>> candidates;
};

/// The host has no OperatorInfo for this operator.
class VELMOR_SQL_API OperatorNotSupported : public SqlSemanticError {
public:
  explicit OperatorNotSupported(OperationCode operation);
  SqlError* clone() const override;
  SqlErrorType type() const override;
  OperationCode operation;
};

// Faults that only standard scoping raises (Validator with Scoping::Standard).

/// A query with `columnCount` columns (not one) where a single value is needed: a comparison,
/// arithmetic, a select item, a function argument, a SET value.
class VELMOR_SQL_API SubqueryNotScalar : public SqlSemanticError {
public:
  explicit SubqueryNotScalar(std::uint64_t columnCount);
  SqlError* clone() const override;
  SqlErrorType type() const override;
  std::uint64_t columnCount;
};

/// A column of the query's own FROM that is neither named in GROUP BY nor inside an aggregate,
/// in a query that groups (a GROUP BY or an aggregate in its select list, HAVING or ORDER BY).
class VELMOR_SQL_API UngroupedColumnReference : public SqlSemanticError {
public:
  UngroupedColumnReference(std::wstring tableName, std::wstring columnName);
  SqlError* clone() const override;
  SqlErrorType type() const override;
  std::wstring tableName;
  std::wstring columnName;
};

/// Two lists of columns that must match in number do not: the parts of a UNION, EXCEPT or
/// INTERSECT (left, right), an INSERT's columns and its values or query (target, source), the
/// rows of a VALUES list (first row, this row).
class VELMOR_SQL_API ColumnCountMismatch : public SqlSemanticError {
public:
  ColumnCountMismatch(std::uint64_t expectedCount, std::uint64_t actualCount);
  SqlError* clone() const override;
  SqlErrorType type() const override;
  std::uint64_t expectedCount;
  std::uint64_t actualCount;
};

// The classes that carry nothing and have numbers of their own, none raised by the library.
#define VELMOR_SQL_EMPTY_ERROR(Name)                                                               \
  class VELMOR_SQL_API Name : public SqlSemanticError {                                            \
  public:                                                                                          \
    SqlError* clone() const override;                                                              \
    SqlErrorType type() const override;                                                            \
  };

VELMOR_SQL_EMPTY_ERROR(InvalidContext)
VELMOR_SQL_EMPTY_ERROR(SelectionTableIsAbsent)
#undef VELMOR_SQL_EMPTY_ERROR

/// Not raised by the library. Deliberately without a number of its own: type() answers
/// Undefined (0), so a host tells it by its class.
class VELMOR_SQL_API WhereClauseExpressionNotBool : public SqlSemanticError {
public:
  SqlError* clone() const override;
};

/// Not raised by the library. Like WhereClauseExpressionNotBool, type() answers Undefined (0).
class VELMOR_SQL_API HavingClauseExpressionNotBool : public SqlSemanticError {
public:
  SqlError* clone() const override;
};

/// A failure of type inference outside the SqlError family; carries nothing, and what() is
/// std::exception's. Validator lets it through.
class VELMOR_SQL_API TypeInferenceException : public std::exception {};

/// Raised inside operator overload resolution when two overloads each win on a different
/// parameter. TypeInferer turns it into AmbiguousOperatorCall; only direct callers of its
/// public comparison helpers see it. Not a SqlError.
class VELMOR_SQL_API AmbiguousOperatorOverloads : public TypeInferenceException {
public:
  /// "Ambiguous operator".
  const char* what() const noexcept override;
};

} // namespace velmor::sql
