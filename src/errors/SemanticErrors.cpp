// The semantic error classes: constructors, clone and type.
#include <velmor/sql/errors/SemanticErrors.h>

#include <utility>

namespace velmor::sql {

const char* SqlSemanticError::what() const noexcept { return "Sql semantic error"; }
const char* SqlEvaluationError::what() const noexcept { return "Sql evaluation error"; }

// Every concrete class clones by copy construction and answers the number of its own name.
#define VELMOR_SQL_CLONE_AND_TYPE(Name)                                                            \
  SqlError* Name::clone() const { return new Name(*this); }                                        \
  SqlErrorType Name::type() const { return SqlErrorType::Name; }

#define VELMOR_SQL_SEMANTIC_ERRORS(X)                                                              \
  X(NonExistentTable)                                                                              \
  X(TableExists)                                                                                   \
  X(UnknownTableReference)                                                                         \
  X(NonUniqueTableReference)                                                                       \
  X(UnknownColumnReference)                                                                        \
  X(AmbiguousColumnReference)                                                                      \
  X(WrongExpressionType)                                                                           \
  X(CommonColumnTypeMismatch)                                                                      \
  X(NoCommonColumns)                                                                               \
  X(SetClauseTypeMismatch)                                                                         \
  X(InsertSourceTypeMismatch)                                                                      \
  X(BinaryOperationTypeMismatch)                                                                   \
  X(UnknownFunction)                                                                               \
  X(NoGoodFunctionCandidate)                                                                       \
  X(AmbiguousFunctionCall)                                                                         \
  X(WrongParametersArity)                                                                          \
  X(IncompatibleParameterType)                                                                     \
  X(AsteriskIsProhibited)                                                                          \
  X(SetQuantifierIsProhibited)                                                                     \
  X(NoGoodOperatorOverload)                                                                        \
  X(AmbiguousOperatorCall)                                                                         \
  X(OperatorNotSupported)                                                                          \
  X(InvalidContext)                                                                                \
  X(UnexpectedParseResult)                                                                         \
  X(SelectionTableIsAbsent)                                                                        \
  X(AmbiguousTablesReference)                                                                      \
  X(SubqueryNotScalar)                                                                             \
  X(UngroupedColumnReference)                                                                      \
  X(ColumnCountMismatch)

VELMOR_SQL_SEMANTIC_ERRORS(VELMOR_SQL_CLONE_AND_TYPE)
#undef VELMOR_SQL_SEMANTIC_ERRORS
#undef VELMOR_SQL_CLONE_AND_TYPE

#define VELMOR_SQL_ONE_FIELD(Name, Type, field)                                                    \
  Name::Name(Type value) : field(std::move(value)) {}

VELMOR_SQL_ONE_FIELD(NonExistentTable, std::wstring, tableName)
VELMOR_SQL_ONE_FIELD(TableExists, std::wstring, tableName)
VELMOR_SQL_ONE_FIELD(UnknownTableReference, std::wstring, tableName)
VELMOR_SQL_ONE_FIELD(NonUniqueTableReference, std::wstring, tableName)
VELMOR_SQL_ONE_FIELD(AmbiguousTablesReference, std::wstring, tableName)
VELMOR_SQL_ONE_FIELD(UnknownFunction, std::wstring, functionName)
VELMOR_SQL_ONE_FIELD(AsteriskIsProhibited, std::wstring, text)
VELMOR_SQL_ONE_FIELD(SetQuantifierIsProhibited, std::wstring, text)
VELMOR_SQL_ONE_FIELD(UnexpectedParseResult, std::wstring, text)
VELMOR_SQL_ONE_FIELD(OperatorNotSupported, OperationCode, operation)
#undef VELMOR_SQL_ONE_FIELD

UnknownColumnReference::UnknownColumnReference(std::wstring table, std::wstring column)
    : tableName(std::move(table)), columnName(std::move(column)) {}

SubqueryNotScalar::SubqueryNotScalar(std::uint64_t count) : columnCount(count) {}

UngroupedColumnReference::UngroupedColumnReference(std::wstring table, std::wstring column)
    : tableName(std::move(table)), columnName(std::move(column)) {}

ColumnCountMismatch::ColumnCountMismatch(std::uint64_t expected, std::uint64_t actual)
    : expectedCount(expected), actualCount(actual) {}

AmbiguousColumnReference::AmbiguousColumnReference(std::wstring table, std::wstring column)
    : tableName(std::move(table)), columnName(std::move(column)) {}

WrongExpressionType::WrongExpressionType(std::shared_ptr<Type> actual, std::set<type::PlainType> expected,
                                         std::wstring text_)
    : actualType(std::move(actual)), expectedTypes(std::move(expected)), text(std::move(text_)) {}

CommonColumnTypeMismatch::CommonColumnTypeMismatch(std::wstring column,
                                                   std::vector<std::shared_ptr<Type>> left,
                                                   std::vector<std::shared_ptr<Type>> right,
                                                   std::wstring leftTable, std::wstring rightTable)
    : columnName(std::move(column)), leftTypes(std::move(left)), rightTypes(std::move(right)),
      leftTableName(std::move(leftTable)), rightTableName(std::move(rightTable)) {}

NoCommonColumns::NoCommonColumns(std::wstring leftTable, std::wstring rightTable)
    : leftTableName(std::move(leftTable)), rightTableName(std::move(rightTable)) {}

SetClauseTypeMismatch::SetClauseTypeMismatch(std::vector<std::shared_ptr<Type>> target,
                                             std::vector<std::shared_ptr<Type>> source,
                                             std::wstring column)
    : targetTypes(std::move(target)), sourceTypes(std::move(source)), columnName(std::move(column)) {}

InsertSourceTypeMismatch::InsertSourceTypeMismatch(std::vector<std::shared_ptr<Type>> target,
                                                   std::vector<std::shared_ptr<Type>> source,
                                                   std::wstring table, std::wstring text_)
    : targetTypes(std::move(target)), sourceTypes(std::move(source)), tableName(std::move(table)),
      text(std::move(text_)) {}

BinaryOperationTypeMismatch::BinaryOperationTypeMismatch(std::shared_ptr<Type> left,
                                                         std::shared_ptr<Type> right,
                                                         std::wstring leftText_, std::wstring rightText_)
    : leftType(std::move(left)), rightType(std::move(right)), leftText(std::move(leftText_)),
      rightText(std::move(rightText_)) {}

NoGoodFunctionCandidate::NoGoodFunctionCandidate(std::wstring name, std::vector<std::shared_ptr<Type>> arguments,
                                                 std::vector<std::shared_ptr<OverloadInfo>> overloads)
    : functionName(std::move(name)), argumentTypes(std::move(arguments)), candidates(std::move(overloads)) {}

AmbiguousFunctionCall::AmbiguousFunctionCall(std::wstring name, std::vector<std::shared_ptr<Type>> arguments,
                                             std::vector<std::shared_ptr<OverloadInfo>> overloads)
    : functionName(std::move(name)), argumentTypes(std::move(arguments)), candidates(std::move(overloads)) {}

WrongParametersArity::WrongParametersArity(std::wstring name, Arity arity_)
    : functionName(std::move(name)), arity(arity_) {}

IncompatibleParameterType::IncompatibleParameterType(std::wstring name, std::uint64_t position_,
                                                     std::set<type::PlainType> expected,
                                                     type::PlainType actual, std::wstring text_)
    : functionName(std::move(name)), position(position_), expectedTypes(std::move(expected)),
      actualType(actual), text(std::move(text_)) {}

NoGoodOperatorOverload::NoGoodOperatorOverload(OperationCode code, std::vector<std::shared_ptr<Type>> arguments,
                                               std::vector<std::shared_ptr<OperatorOverloadInfo>> overloads)
    : operation(code), argumentTypes(std::move(arguments)), candidates(std::move(overloads)) {}

AmbiguousOperatorCall::AmbiguousOperatorCall(OperationCode code, std::vector<std::shared_ptr<Type>> arguments,
                                             std::vector<std::shared_ptr<OperatorOverloadInfo>> overloads)
    : operation(code), argumentTypes(std::move(arguments)), candidates(std::move(overloads)) {}

// These two have no number of their own: type() stays SqlError's.
SqlError* WhereClauseExpressionNotBool::clone() const { return new WhereClauseExpressionNotBool(*this); }
SqlError* HavingClauseExpressionNotBool::clone() const { return new HavingClauseExpressionNotBool(*this); }

const char* AmbiguousOperatorOverloads::what() const noexcept { return "Ambiguous operator"; }

} // namespace velmor::sql
