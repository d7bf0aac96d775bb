// Short texts of types, columns and semantic faults, so that test tables can state outcomes.
#pragma once

#include <velmor/sql/ast/EnumNames.h>
#include <velmor/sql/types/Table.h>
#include <velmor/sql/types/Type.h>
#include <velmor/sql/validation/SemanticErrors.h>

#include <string>
#include <vector>

namespace velmor::sql::test {

inline std::string narrow(const std::wstring& text) { return std::string(text.begin(), text.end()); }

inline std::string plainName(type::PlainType t) {
  switch (t) {
#define VELMOR_TEST_PLAIN(Name) case type::PlainType::Name: return #Name;
  VELMOR_TEST_PLAIN(Contextual) VELMOR_TEST_PLAIN(Fault) VELMOR_TEST_PLAIN(Binary) VELMOR_TEST_PLAIN(VarBinary)
  VELMOR_TEST_PLAIN(BinaryLargeObject) VELMOR_TEST_PLAIN(Char) VELMOR_TEST_PLAIN(VarChar)
  VELMOR_TEST_PLAIN(CharLargeObject) VELMOR_TEST_PLAIN(Boolean) VELMOR_TEST_PLAIN(SmallInt)
  VELMOR_TEST_PLAIN(Integer) VELMOR_TEST_PLAIN(BigInt) VELMOR_TEST_PLAIN(Decimal) VELMOR_TEST_PLAIN(Numeric)
  VELMOR_TEST_PLAIN(Float) VELMOR_TEST_PLAIN(Real) VELMOR_TEST_PLAIN(Double) VELMOR_TEST_PLAIN(Time)
  VELMOR_TEST_PLAIN(Date) VELMOR_TEST_PLAIN(Timestamp) VELMOR_TEST_PLAIN(Tuple) VELMOR_TEST_PLAIN(Array)
#undef VELMOR_TEST_PLAIN
  }
  return std::string("?").append(std::to_string(static_cast<int>(t)));
}

/// "-" for no type; "VarChar(20)", "Decimal(5,3)", "Tuple(Integer,-)", "Array(Integer)", "Integer".
inline std::string typeText(const std::shared_ptr<Type>& type) {
  if (!type) return "-";
  std::string text = plainName(type->plainType());
  if (const auto* tuple = dynamic_cast<const TupleType*>(type.get())) {
    text += "(";
    for (std::size_t i = 0; i < tuple->types().size(); ++i) text.append(i ? "," : "").append(typeText(tuple->types()[i]));
    return text + ")";
  }
  if (const auto* array = dynamic_cast<const ArrayType*>(type.get())) return text + "(" + typeText(array->elementType()) + ")";
  if (const auto* sized = dynamic_cast<const LengthType*>(type.get())) return text + "(" + std::to_string(sized->length()) + ")";
  if (const auto* exact = dynamic_cast<const PrecisionScaleType*>(type.get())) {
    return text + "(" + std::to_string(exact->precision()) + "," + std::to_string(exact->scale()) + ")";
  }
  return text;
}

inline std::string typesText(const std::vector<std::shared_ptr<Type>>& types) {
  std::string text;
  for (std::size_t i = 0; i < types.size(); ++i) text.append(i ? " " : "").append(typeText(types[i]));
  return text;
}

/// "table.column" of a column's origin, "null" for the null column.
inline std::string origin(const ColumnInfo& column) {
  return column.isNull() ? "null" : narrow(column.originalTable()) + "." + narrow(column.originalName());
}

/// A fault with its fields: "UnknownColumnReference t.c", "NoGoodFunctionCandidate f(Integer) 3",
/// "UnknownTableReference t", ...; "type N" for a fault without a text here.
inline std::string faultText(const SqlError& error) {
  const auto call = [](std::string text, const std::vector<std::shared_ptr<Type>>& types, std::size_t candidates) {
    return text.append("(").append(typesText(types)).append(") ").append(std::to_string(candidates));
  };
  const auto names = [](std::string text, const std::wstring& table, const std::wstring& column) {
    return text.append(narrow(table)).append(".").append(narrow(column));
  };
  if (auto* e = dynamic_cast<const UnknownColumnReference*>(&error)) return names("UnknownColumnReference ", e->tableName, e->columnName);
  if (auto* e = dynamic_cast<const AmbiguousColumnReference*>(&error)) return names("AmbiguousColumnReference ", e->tableName, e->columnName);
  if (auto* e = dynamic_cast<const NonExistentTable*>(&error)) return "NonExistentTable " + narrow(e->tableName);
  if (auto* e = dynamic_cast<const UnknownTableReference*>(&error)) return "UnknownTableReference " + narrow(e->tableName);
  if (auto* e = dynamic_cast<const AmbiguousTablesReference*>(&error)) return "AmbiguousTablesReference " + narrow(e->tableName);
  if (auto* e = dynamic_cast<const UnknownFunction*>(&error)) return "UnknownFunction " + narrow(e->functionName);
  if (auto* e = dynamic_cast<const NoGoodFunctionCandidate*>(&error))
    return call("NoGoodFunctionCandidate " + narrow(e->functionName), e->argumentTypes, e->candidates.size());
  if (auto* e = dynamic_cast<const AmbiguousFunctionCall*>(&error))
    return call("AmbiguousFunctionCall " + narrow(e->functionName), e->argumentTypes, e->candidates.size());
  if (auto* e = dynamic_cast<const OperatorNotSupported*>(&error))
    return std::string("OperatorNotSupported ") + ast::enumName(e->operation);
  if (auto* e = dynamic_cast<const NoGoodOperatorOverload*>(&error))
    return call(std::string("NoGoodOperatorOverload ") + ast::enumName(e->operation), e->argumentTypes, e->candidates.size());
  if (auto* e = dynamic_cast<const AmbiguousOperatorCall*>(&error))
    return call(std::string("AmbiguousOperatorCall ") + ast::enumName(e->operation), e->argumentTypes, e->candidates.size());
  if (dynamic_cast<const AggregateInWhereClause*>(&error)) return "AggregateInWhereClause";
  if (dynamic_cast<const ContextQuery*>(&error)) return "ContextQuery";
  return "type " + std::to_string(static_cast<int>(error.type()));
}

/// Runs `body` (which gives a text) and gives its text, or the fault it throws.
template <class Body>
std::string outcome(Body&& body) {
  try {
    return body();
  } catch (const SqlError& e) {
    return faultText(e);
  } catch (const AmbiguousOperatorOverloads&) {
    return "AmbiguousOperatorOverloads";
  } catch (const ast::BadNodeTypeException&) {
    return "BadNodeTypeException";
  }
}

} // namespace velmor::sql::test
