// Reading type names: the words a CAST may name and the sizes that refine them.
#include <velmor/sql/inference/StringTypeInferer.h>

#include <velmor/sql/types/Strings.h>

#include <array>
#include <string_view>
#include <vector>

namespace velmor::sql {

namespace {

using type::PlainType;

struct TypeName {
  std::wstring_view name;
  std::int32_t parameterCount;
  PlainType plainType;
};

// Searched from the top; the oddities ("long" is 32 bits, "real" is Double, "char" is VarChar)
// are the dialect's and stay.
constexpr std::array<TypeName, 34> typeNames{{
    {L"int", 1, PlainType::Integer},       {L"i", 1, PlainType::Integer},
    {L"number", 1, PlainType::Integer},    {L"integer", 1, PlainType::Integer},
    {L"int16", 0, PlainType::SmallInt},    {L"int32", 0, PlainType::Integer},
    {L"int64", 0, PlainType::BigInt},      {L"smallint", 0, PlainType::SmallInt},
    {L"shortint", 0, PlainType::SmallInt}, {L"short", 0, PlainType::SmallInt},
    {L"bigint", 0, PlainType::BigInt},     {L"largeint", 0, PlainType::BigInt},
    {L"long", 0, PlainType::Integer},      {L"char", 1, PlainType::VarChar},
    {L"varchar", 1, PlainType::VarChar},   {L"string", 1, PlainType::VarChar},
    {L"str", 1, PlainType::VarChar},       {L"text", 1, PlainType::VarChar},
    {L"clob", 1, PlainType::VarChar},      {L"double", 0, PlainType::Double},
    {L"real", 1, PlainType::Double},       {L"float", 1, PlainType::Float},
    {L"float32", 0, PlainType::Float},     {L"float64", 0, PlainType::Double},
    {L"decimal", 2, PlainType::Decimal},   {L"numeric", 2, PlainType::Decimal},
    {L"bool", 0, PlainType::Boolean},      {L"bit", 0, PlainType::Boolean},
    {L"boolean", 0, PlainType::Boolean},   {L"logical", 0, PlainType::Boolean},
    {L"date", 0, PlainType::Date},         {L"time", 0, PlainType::Time},
    {L"datetime", 0, PlainType::Timestamp}, {L"timestamp", 0, PlainType::Timestamp},
}};

struct Lookup {
  std::shared_ptr<Type> type;
  std::int32_t parameterCount = 0;
};

Lookup lookup(const std::wstring& name) {
  if (name.empty()) return {};
  const std::wstring key = toLowercase(name);
  for (const TypeName& row : typeNames) {
    if (row.name != key) continue;
    if (row.plainType == PlainType::Decimal) {
      return {std::make_shared<PrecisionScaleType>(PlainType::Decimal, 30, 10), row.parameterCount};
    }
    if (row.plainType == PlainType::VarChar) {
      return {std::make_shared<LengthType>(PlainType::VarChar, 50), row.parameterCount};
    }
    return {std::make_shared<Type>(row.plainType), row.parameterCount};
  }
  return {};
}

} // namespace

void StringTypeInferer::visit(const ast::ColumnReference& record) {
  // A qualified name is no type name.
  if (!record.table.empty()) {
    faultAction();
    return;
  }
  mResult = lookup(record.column).type;
}

void StringTypeInferer::visit(const ast::Function& record) {
  Lookup found = lookup(record.name);
  mResult = std::move(found.type);
  mParameterCount = found.parameterCount;
  if (!mResult) return;
  if (record.arguments.size() > static_cast<std::size_t>(mParameterCount)) {
    faultAction();
    return;
  }
  if (record.arguments.empty()) return;

  std::vector<std::uint64_t> sizes;
  sizes.reserve(record.arguments.size());
  for (const ast::ExpressionNode& argument : record.arguments) {
    sizes.push_back(ast::getNodeValue<ast::Number>(argument).unsignedInteger());
  }
  // Sizes are stored in 32 bits, as lengths, precisions and scales are.
  const std::uint64_t first = sizes.front();
  const auto cut = [](std::uint64_t value) { return static_cast<int>(static_cast<std::uint32_t>(value)); };
  switch (mResult->plainType()) {
  case PlainType::VarChar:
    if (first != 0) mResult = std::make_shared<LengthType>(PlainType::VarChar, cut(first));
    break;
  case PlainType::Integer:
    // int(n) is a width in bits, not a display width.
    if (first >= 1 && first <= 16) mResult = std::make_shared<Type>(PlainType::SmallInt);
    else if (first >= 33) mResult = std::make_shared<Type>(PlainType::BigInt);
    break;
  case PlainType::Decimal:
    mResult = std::make_shared<PrecisionScaleType>(PlainType::Decimal, cut(first), sizes.size() > 1 ? cut(sizes[1]) : 0);
    break;
  case PlainType::Float:
  case PlainType::Double:
    if (first >= 1 && first <= 32) mResult = std::make_shared<Type>(PlainType::Float);
    else if (first >= 33) mResult = std::make_shared<Type>(PlainType::Double);
    break;
  case PlainType::Contextual:
  case PlainType::Fault:
  case PlainType::Binary:
  case PlainType::VarBinary:
  case PlainType::BinaryLargeObject:
  case PlainType::Char:
  case PlainType::CharLargeObject:
  case PlainType::Boolean:
  case PlainType::SmallInt:
  case PlainType::BigInt:
  case PlainType::Numeric:
  case PlainType::Real:
  case PlainType::Time:
  case PlainType::Date:
  case PlainType::Timestamp:
  case PlainType::Tuple:
  case PlainType::Array:
    break;
  }
}

void StringTypeInferer::faultAction() {
  mParameterCount = -1;
  mResult = std::make_shared<Type>(PlainType::Fault);
}

} // namespace velmor::sql
