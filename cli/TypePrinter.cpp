// Type names of the tool.
#include "TypePrinter.h"

#include <cctype>

namespace velmor::cli {

using sql::type::PlainType;

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

std::string typeText(const std::shared_ptr<sql::Type>& type) {
  if (!type) return "none";
  std::string text = plainTypeName(type->plainType());
  if (const auto* tuple = dynamic_cast<const sql::TupleType*>(type.get())) {
    text += '(';
    const char* separator = "";
    for (const auto& field : tuple->types()) {
      text += separator;
      text += typeText(field);
      separator = ", ";
    }
    text += ')';
  } else if (const auto* array = dynamic_cast<const sql::ArrayType*>(type.get())) {
    text += '(' + typeText(array->elementType()) + ')';
  } else if (const auto* sized = dynamic_cast<const sql::LengthType*>(type.get())) {
    text += '(' + std::to_string(sized->length()) + ')';
  } else if (const auto* exact = dynamic_cast<const sql::PrecisionScaleType*>(type.get())) {
    text += '(' + std::to_string(exact->precision()) + ',' + std::to_string(exact->scale()) + ')';
  }
  return text;
}

std::string typesText(const std::vector<std::shared_ptr<sql::Type>>& types) {
  std::string text = "[";
  const char* separator = "";
  for (const auto& type : types) {
    text += separator;
    text += typeText(type);
    separator = ", ";
  }
  return text + ']';
}

} // namespace velmor::cli
