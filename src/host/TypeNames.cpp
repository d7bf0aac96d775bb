// Type names for people, and faults as one line each.
#include <velmor/sql/host/TypeNames.h>

#include <velmor/sql/host/Utf8.h>

#include <velmor/sql/ast/EnumNames.h>
#include <velmor/sql/errors/SemanticErrors.h>

#include <cctype>

namespace velmor::sql::host {

using type::PlainType;

namespace {

// Every named plain type once; names and look-up both come from this list.
constexpr PlainType namedPlainTypes[] = {
    PlainType::Contextual, PlainType::Fault,     PlainType::Binary,   PlainType::VarBinary,
    PlainType::BinaryLargeObject, PlainType::Char, PlainType::VarChar, PlainType::CharLargeObject,
    PlainType::Boolean,    PlainType::SmallInt,  PlainType::Integer,  PlainType::BigInt,
    PlainType::Decimal,    PlainType::Numeric,   PlainType::Float,    PlainType::Real,
    PlainType::Double,     PlainType::Time,      PlainType::Date,     PlainType::Timestamp,
    PlainType::Tuple,      PlainType::Array,
};

const char* nameOf(PlainType plainType) {
  switch (plainType) {
  case PlainType::Contextual: return "Contextual";
  case PlainType::Fault: return "Fault";
  case PlainType::Binary: return "Binary";
  case PlainType::VarBinary: return "VarBinary";
  case PlainType::BinaryLargeObject: return "BinaryLargeObject";
  case PlainType::Char: return "Char";
  case PlainType::VarChar: return "VarChar";
  case PlainType::CharLargeObject: return "CharLargeObject";
  case PlainType::Boolean: return "Boolean";
  case PlainType::SmallInt: return "SmallInt";
  case PlainType::Integer: return "Integer";
  case PlainType::BigInt: return "BigInt";
  case PlainType::Decimal: return "Decimal";
  case PlainType::Numeric: return "Numeric";
  case PlainType::Float: return "Float";
  case PlainType::Real: return "Real";
  case PlainType::Double: return "Double";
  case PlainType::Time: return "Time";
  case PlainType::Date: return "Date";
  case PlainType::Timestamp: return "Timestamp";
  case PlainType::Tuple: return "Tuple";
  case PlainType::Array: return "Array";
  }
  return nullptr;
}

bool equalFolded(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (std::tolower(static_cast<unsigned char>(a[i])) != std::tolower(static_cast<unsigned char>(b[i])))
      return false;
  }
  return true;
}

} // namespace

std::string plainTypeName(PlainType plainType) {
  if (const char* name = nameOf(plainType)) return name;
  return "PlainType(" + std::to_string(static_cast<int>(plainType)) + ")";
}

std::optional<PlainType> plainTypeFromName(std::string_view name) {
  for (const PlainType candidate : namedPlainTypes) {
    if (equalFolded(name, nameOf(candidate))) return candidate;
  }
  return std::nullopt;
}

std::string typeText(const std::shared_ptr<Type>& type) {
  if (!type) return "none";
  std::string text = plainTypeName(type->plainType());
  if (const auto* tuple = dynamic_cast<const TupleType*>(type.get())) {
    text += '(';
    const char* separator = "";
    for (const auto& field : tuple->types()) {
      text += separator;
      text += typeText(field);
      separator = ", ";
    }
    text += ')';
  } else if (const auto* array = dynamic_cast<const ArrayType*>(type.get())) {
    text += '(' + typeText(array->elementType()) + ')';
  } else if (const auto* sized = dynamic_cast<const LengthType*>(type.get())) {
    text += '(' + std::to_string(sized->length()) + ')';
  } else if (const auto* exact = dynamic_cast<const PrecisionScaleType*>(type.get())) {
    text += '(' + std::to_string(exact->precision()) + ',' + std::to_string(exact->scale()) + ')';
  }
  return text;
}

std::string typesText(const std::vector<std::shared_ptr<Type>>& types) {
  std::string text = "[";
  const char* separator = "";
  for (const auto& type : types) {
    text += separator;
    text += typeText(type);
    separator = ", ";
  }
  return text + ']';
}

namespace {

std::string quoted(const std::string& utf8) {
  std::string result = "\"";
  for (const char c : utf8) {
    result += c;
    if (c == '"') result += c;
  }
  return result + '"';
}


std::string plainTypesText(const std::vector<PlainType>& types) {
  std::string text;
  for (const PlainType type : types) {
    if (!text.empty()) text += ", ";
    text += plainTypeName(type);
  }
  return text;
}

std::string operationName(OperationCode code) {
  const char* name = ast::enumName(code);
  return name ? name : std::to_string(static_cast<int>(code));
}

// "(VarChar, Decimal[, Decimal]) -> VarChar", "(Integer...) -> BigInt", "ALL (Integer, Array) -> Boolean".
std::string signature(const OverloadInfo& overload) {
  std::string text;
  if (const auto* op = dynamic_cast<const OperatorOverloadInfo*>(&overload)) {
    if (op->mQuantifier == ast::Quantifier::All) text.append("ALL ");
    if (op->mQuantifier == ast::Quantifier::Any) text.append("ANY ");
  }
  text.append("(").append(plainTypesText(overload.mParameters));
  if (!overload.mOptionalParameters.empty()) {
    text.append(overload.mParameters.empty() ? "[" : "[, ");
    text.append(plainTypesText(overload.mOptionalParameters)).append("]");
  }
  if (overload.mVariadic) text.append("...");
  text.append(") -> ").append(plainTypeName(overload.mReturnType));
  return text;
}

// Long lists (an operator over many types) are cut after a few, with their size.
template <class Overload>
std::string candidatesText(const std::vector<std::shared_ptr<Overload>>& candidates) {
  constexpr std::size_t shown = 6;
  std::string text = "[";
  const char* separator = "";
  for (std::size_t i = 0; i < candidates.size() && i < shown; ++i) {
    text += separator;
    text += candidates[i] ? signature(*candidates[i]) : std::string("none");
    separator = "; ";
  }
  if (candidates.size() > shown) text += "; ... " + std::to_string(candidates.size()) + " in all";
  return text + ']';
}

std::string setText(const std::set<PlainType>& types) {
  std::string text("{");
  text.append(plainTypesText(std::vector<PlainType>(types.begin(), types.end()))).append("}");
  return text;
}

// The fields of the classes that carry data, in their declared order.
std::vector<FaultField> fieldsOf(const SqlError& error) {
  std::vector<FaultField> f;
  // A name or a piece of the statement; a count; a flag; a description (types, lists).
  using Kind = FaultField::Kind;
  const auto field = [&f](const char* name, Kind kind, std::string text, std::int64_t value) {
    FaultField one;
    one.name = name;
    one.kind = kind;
    one.text = std::move(text);
    one.number = value;
    f.push_back(std::move(one));
  };
  const auto name = [&](const char* n, const std::wstring& value) { field(n, Kind::Name, toUtf8(value), 0); };
  const auto narrowName = [&](const char* n, const std::string& value) { field(n, Kind::Name, value, 0); };
  const auto number = [&](const char* n, std::int64_t value) { field(n, Kind::Number, {}, value); };
  const auto flag = [&](const char* n, bool value) { field(n, Kind::Flag, {}, value ? 1 : 0); };
  const auto add = [&](const char* n, std::string value) { field(n, Kind::Description, std::move(value), 0); };
  if (const auto* e = dynamic_cast<const NonExistentTable*>(&error)) name("tableName", e->tableName);
  else if (const auto* e = dynamic_cast<const TableExists*>(&error)) name("tableName", e->tableName);
  else if (const auto* e = dynamic_cast<const UnknownTableReference*>(&error)) name("tableName", e->tableName);
  else if (const auto* e = dynamic_cast<const NonUniqueTableReference*>(&error)) name("tableName", e->tableName);
  else if (const auto* e = dynamic_cast<const AmbiguousTablesReference*>(&error)) name("tableName", e->tableName);
  else if (const auto* e = dynamic_cast<const UnknownColumnReference*>(&error)) {
    name("tableName", e->tableName);
    name("columnName", e->columnName);
  } else if (const auto* e = dynamic_cast<const AmbiguousColumnReference*>(&error)) {
    name("tableName", e->tableName);
    name("columnName", e->columnName);
  } else if (const auto* e = dynamic_cast<const WrongExpressionType*>(&error)) {
    add("actualType", typeText(e->actualType));
    add("expectedTypes", setText(e->expectedTypes));
    name("text", e->text);
  } else if (const auto* e = dynamic_cast<const CommonColumnTypeMismatch*>(&error)) {
    name("columnName", e->columnName);
    add("leftTypes", typesText(e->leftTypes));
    add("rightTypes", typesText(e->rightTypes));
    name("leftTableName", e->leftTableName);
    name("rightTableName", e->rightTableName);
  } else if (const auto* e = dynamic_cast<const NoCommonColumns*>(&error)) {
    name("leftTableName", e->leftTableName);
    name("rightTableName", e->rightTableName);
  } else if (const auto* e = dynamic_cast<const SetClauseTypeMismatch*>(&error)) {
    add("targetTypes", typesText(e->targetTypes));
    add("sourceTypes", typesText(e->sourceTypes));
    name("columnName", e->columnName);
  } else if (const auto* e = dynamic_cast<const InsertSourceTypeMismatch*>(&error)) {
    add("targetTypes", typesText(e->targetTypes));
    add("sourceTypes", typesText(e->sourceTypes));
    name("tableName", e->tableName);
    name("text", e->text);
  } else if (const auto* e = dynamic_cast<const BinaryOperationTypeMismatch*>(&error)) {
    add("leftType", typeText(e->leftType));
    add("rightType", typeText(e->rightType));
    name("leftText", e->leftText);
    name("rightText", e->rightText);
  } else if (const auto* e = dynamic_cast<const UnknownFunction*>(&error)) {
    name("functionName", e->functionName);
  } else if (const auto* e = dynamic_cast<const NoGoodFunctionCandidate*>(&error)) {
    name("functionName", e->functionName);
    add("argumentTypes", typesText(e->argumentTypes));
    add("candidates", candidatesText(e->candidates));
  } else if (const auto* e = dynamic_cast<const AmbiguousFunctionCall*>(&error)) {
    name("functionName", e->functionName);
    add("argumentTypes", typesText(e->argumentTypes));
    add("candidates", candidatesText(e->candidates));
  } else if (const auto* e = dynamic_cast<const WrongParametersArity*>(&error)) {
    name("functionName", e->functionName);
    number("required", static_cast<std::int64_t>(e->arity.required));
    number("optional", static_cast<std::int64_t>(e->arity.optional));
    number("actual", static_cast<std::int64_t>(e->arity.actual));
    flag("variadic", e->arity.variadic);
  } else if (const auto* e = dynamic_cast<const IncompatibleParameterType*>(&error)) {
    name("functionName", e->functionName);
    number("position", static_cast<std::int64_t>(e->position));
    add("expectedTypes", setText(e->expectedTypes));
    add("actualType", plainTypeName(e->actualType));
    name("text", e->text);
  } else if (const auto* e = dynamic_cast<const AsteriskIsProhibited*>(&error)) name("text", e->text);
  else if (const auto* e = dynamic_cast<const SetQuantifierIsProhibited*>(&error)) name("text", e->text);
  else if (const auto* e = dynamic_cast<const UnexpectedParseResult*>(&error)) name("text", e->text);
  else if (const auto* e = dynamic_cast<const NoGoodOperatorOverload*>(&error)) {
    add("operation", operationName(e->operation));
    add("argumentTypes", typesText(e->argumentTypes));
    add("candidates", candidatesText(e->candidates));
  } else if (const auto* e = dynamic_cast<const AmbiguousOperatorCall*>(&error)) {
    add("operation", operationName(e->operation));
    add("argumentTypes", typesText(e->argumentTypes));
    add("candidates", candidatesText(e->candidates));
  } else if (const auto* e = dynamic_cast<const OperatorNotSupported*>(&error)) {
    add("operation", operationName(e->operation));
  } else if (const auto* e = dynamic_cast<const SubqueryNotScalar*>(&error)) {
    number("columnCount", static_cast<std::int64_t>(e->columnCount));
  } else if (const auto* e = dynamic_cast<const UngroupedColumnReference*>(&error)) {
    name("tableName", e->tableName);
    name("columnName", e->columnName);
  } else if (const auto* e = dynamic_cast<const ColumnCountMismatch*>(&error)) {
    number("expectedCount", static_cast<std::int64_t>(e->expectedCount));
    number("actualCount", static_cast<std::int64_t>(e->actualCount));
  } else if (const auto* e = dynamic_cast<const UnknownLexeme*>(&error)) {
    name("lexeme", e->lexeme);
  } else if (const auto* e = dynamic_cast<const UnexpectedLexeme*>(&error)) {
    number("line", static_cast<std::int64_t>(e->line));
    number("column", static_cast<std::int64_t>(e->column));
    narrowName("text", e->text);
  }
  return f;
}


const char* className(const SqlError& error) {

  switch (error.type()) {
  case SqlErrorType::Undefined:
    if (dynamic_cast<const WhereClauseExpressionNotBool*>(&error)) return "WhereClauseExpressionNotBool";
    if (dynamic_cast<const HavingClauseExpressionNotBool*>(&error)) return "HavingClauseExpressionNotBool";
    return "SqlError";
  case SqlErrorType::UnknownLexeme: return "UnknownLexeme";
  case SqlErrorType::UnexpectedLexeme: return "UnexpectedLexeme";
  case SqlErrorType::NonExistentTable: return "NonExistentTable";
  case SqlErrorType::TableExists: return "TableExists";
  case SqlErrorType::UnknownTableReference: return "UnknownTableReference";
  case SqlErrorType::NonUniqueTableReference: return "NonUniqueTableReference";
  case SqlErrorType::UnknownColumnReference: return "UnknownColumnReference";
  case SqlErrorType::AmbiguousColumnReference: return "AmbiguousColumnReference";
  case SqlErrorType::WrongExpressionType: return "WrongExpressionType";
  case SqlErrorType::CommonColumnTypeMismatch: return "CommonColumnTypeMismatch";
  case SqlErrorType::NoCommonColumns: return "NoCommonColumns";
  case SqlErrorType::SetClauseTypeMismatch: return "SetClauseTypeMismatch";
  case SqlErrorType::InsertSourceTypeMismatch: return "InsertSourceTypeMismatch";
  case SqlErrorType::BinaryOperationTypeMismatch: return "BinaryOperationTypeMismatch";
  case SqlErrorType::UnknownFunction: return "UnknownFunction";
  case SqlErrorType::NoGoodFunctionCandidate: return "NoGoodFunctionCandidate";
  case SqlErrorType::AmbiguousFunctionCall: return "AmbiguousFunctionCall";
  case SqlErrorType::WrongParametersArity: return "WrongParametersArity";
  case SqlErrorType::IncompatibleParameterType: return "IncompatibleParameterType";
  case SqlErrorType::AsteriskIsProhibited: return "AsteriskIsProhibited";
  case SqlErrorType::SetQuantifierIsProhibited: return "SetQuantifierIsProhibited";
  case SqlErrorType::NoGoodOperatorOverload: return "NoGoodOperatorOverload";
  case SqlErrorType::AmbiguousOperatorCall: return "AmbiguousOperatorCall";
  case SqlErrorType::OperatorNotSupported: return "OperatorNotSupported";
  case SqlErrorType::AggregateInWhereClause: return "AggregateInWhereClause";
  case SqlErrorType::ContextQuery: return "ContextQuery";
  case SqlErrorType::InvalidContext: return "InvalidContext";
  case SqlErrorType::UnexpectedParseResult: return "UnexpectedParseResult";
  case SqlErrorType::SelectionTableIsAbsent: return "SelectionTableIsAbsent";
  case SqlErrorType::GeneralSyntaxError: return "GeneralSyntaxError";
  case SqlErrorType::AmbiguousTablesReference: return "AmbiguousTablesReference";
  case SqlErrorType::NotEnoughMemory: return "NotEnoughMemory";
  case SqlErrorType::SubqueryNotScalar: return "SubqueryNotScalar";
  case SqlErrorType::UngroupedColumnReference: return "UngroupedColumnReference";
  case SqlErrorType::ColumnCountMismatch: return "ColumnCountMismatch";
  }
  return "SqlError";
}

} // namespace

std::vector<FaultField> faultFields(const SqlError& error) { return fieldsOf(error); }

const char* faultClassName(const SqlError& error) { return className(error); }

std::string errorLine(const SqlError& error) {
  std::string line = std::to_string(static_cast<int>(error.type())) + ' ' + className(error);
  for (const FaultField& field : fieldsOf(error)) {
    line.append(" ").append(field.name).append("=");
    switch (field.kind) {
    case FaultField::Kind::Name: line += quoted(field.text); break;
    case FaultField::Kind::Description: line += field.text; break;
    case FaultField::Kind::Number: line += std::to_string(field.number); break;
    case FaultField::Kind::Flag: line += field.number != 0 ? "true" : "false"; break;
    }
  }
  return line;
}

} // namespace velmor::sql::host
