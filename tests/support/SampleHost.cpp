// The sample host catalogue of the semantic tests.
#include "support/SampleHost.h"

#include <velmor/sql/types/Strings.h>

#include <utility>

namespace velmor::sql::sample {

using type::PlainType;

std::shared_ptr<Type> plain(PlainType plainType) { return std::make_shared<Type>(plainType); }
std::shared_ptr<Type> varchar(int length) { return std::make_shared<LengthType>(PlainType::VarChar, length); }
std::shared_ptr<Type> decimal(int precision, int scale) {
  return std::make_shared<PrecisionScaleType>(PlainType::Decimal, precision, scale);
}
std::shared_ptr<Type> geometry() { return plain(PlainType::BinaryLargeObject); }

FullTypeFunction returns(PlainType plainType) {
  return [plainType](const std::vector<std::shared_ptr<Type>>&) { return plain(plainType); };
}

FullTypeFunction returns(std::shared_ptr<Type> result) {
  return [result](const std::vector<std::shared_ptr<Type>>&) { return result; };
}

FullTypeFunction sameAs(std::size_t position) {
  return [position](const std::vector<std::shared_ptr<Type>>& types) {
    return position < types.size() ? types[position] : std::shared_ptr<Type>();
  };
}

FullTypeFunction decimalSum() {
  return [](const std::vector<std::shared_ptr<Type>>& types) -> std::shared_ptr<Type> {
    auto digits = [&](std::size_t i) {
      const auto* exact = i < types.size() ? dynamic_cast<const PrecisionScaleType*>(types[i].get()) : nullptr;
      return exact ? *exact : PrecisionScaleType();
    };
    return std::make_shared<PrecisionScaleType>(digits(0) + digits(1));
  };
}

FullTypeFunction concatenation() {
  return [](const std::vector<std::shared_ptr<Type>>& types) -> std::shared_ptr<Type> {
    int length = 0;
    for (const auto& type : types) {
      if (const auto* sized = dynamic_cast<const LengthType*>(type.get())) length += sized->length();
    }
    return varchar(length);
  };
}

SampleFunction::SampleFunction(FunctionKind kind, std::vector<std::shared_ptr<OverloadInfo>> overloads)
    : m_kind(kind), m_overloads(std::move(overloads)) {}
std::vector<std::shared_ptr<OverloadInfo>> SampleFunction::overloads() const { return m_overloads; }
FunctionKind SampleFunction::kind() const { return m_kind; }

SampleOperator::SampleOperator(std::vector<std::shared_ptr<OperatorOverloadInfo>> overloads)
    : m_overloads(std::move(overloads)) {}
std::vector<std::shared_ptr<OperatorOverloadInfo>> SampleOperator::overloads() const { return m_overloads; }

namespace {

// Families and ranks on the host's scale: a family orders first, the rank inside it second.
struct Place {
  int family;
  int rank;
};

Place place(PlainType t) {
  switch (t) {
  case PlainType::Contextual: return {0, 0};
  case PlainType::Boolean: return {1, 0};
  case PlainType::SmallInt: return {2, 0};
  case PlainType::Integer: return {2, 1};
  case PlainType::BigInt: return {2, 2};
  case PlainType::Numeric: return {2, 3};
  case PlainType::Decimal: return {2, 3};
  case PlainType::Float: return {2, 4};
  case PlainType::Real: return {2, 5};
  case PlainType::Double: return {2, 6};
  case PlainType::Char: return {3, 0};
  case PlainType::VarChar: return {3, 1};
  case PlainType::CharLargeObject: return {3, 2};
  case PlainType::Binary: return {4, 0};
  case PlainType::VarBinary: return {4, 1};
  case PlainType::BinaryLargeObject: return {4, 2};
  case PlainType::Date: return {5, 0};
  case PlainType::Time: return {5, 1};
  case PlainType::Timestamp: return {5, 2};
  case PlainType::Fault: return {6, 0};
  case PlainType::Tuple: return {7, 0};
  case PlainType::Array: return {8, 0};
  }
  return {9, static_cast<int>(t)};
}

std::shared_ptr<OverloadInfo> overload(PlainType result, std::vector<PlainType> parameters,
                                       FullTypeFunction fullType,
                                       std::vector<PlainType> optional = {}, bool variadic = false,
                                       Determinism determinism = Determinism::Deterministic) {
  return std::make_shared<OverloadInfo>(result, std::move(parameters), std::move(fullType), determinism,
                                        std::move(optional), variadic);
}

std::shared_ptr<OperatorOverloadInfo> op(PlainType result, std::vector<PlainType> parameters,
                                         FullTypeFunction fullType,
                                         ast::Quantifier quantifier = ast::Quantifier::None) {
  return std::make_shared<OperatorOverloadInfo>(result, std::move(parameters), std::move(fullType), quantifier);
}

std::shared_ptr<TableInfo> columns(const std::wstring& table,
                                   std::vector<std::pair<std::wstring, std::shared_ptr<Type>>> list) {
  std::vector<ColumnInfo> result;
  for (auto& [name, type] : list) result.emplace_back(name, std::move(type), table);
  return std::make_shared<GenericTableInfo>(result);
}

const PlainType arithmeticTypes[] = {PlainType::SmallInt, PlainType::Integer, PlainType::BigInt,
                                     PlainType::Double};
const PlainType comparableTypes[] = {PlainType::SmallInt, PlainType::Integer, PlainType::BigInt,
                                     PlainType::Decimal,  PlainType::Double,  PlainType::VarChar,
                                     PlainType::Date,     PlainType::Timestamp, PlainType::Boolean};

} // namespace

SampleHost::SampleHost() {
  const PlainType geo = PlainType::BinaryLargeObject;

  addTable(L"cities", columns(L"cities", {{L"id", plain(PlainType::Integer)},
                                          {L"name", varchar(100)},
                                          {L"population", plain(PlainType::BigInt)},
                                          {L"area", plain(PlainType::Double)},
                                          {L"founded", plain(PlainType::Date)},
                                          {L"obj", geometry()}}));
  addTable(L"roads", columns(L"roads", {{L"id", plain(PlainType::Integer)},
                                        {L"name", varchar(60)},
                                        {L"city_id", plain(PlainType::Integer)},
                                        {L"length", decimal(10, 2)},
                                        {L"lanes", plain(PlainType::SmallInt)},
                                        {L"obj", geometry()}}));
  addTable(L"countries", columns(L"countries", {{L"code", std::make_shared<LengthType>(PlainType::Char, 2)},
                                                {L"name", varchar(80)},
                                                {L"population", plain(PlainType::BigInt)},
                                                {L"obj", geometry()}}));
  addTable(L"sensors",
           std::make_shared<GenericTableInfo>(std::vector<ColumnInfo>{
               ColumnInfo(std::vector<std::wstring>{L"id", L"key"}, plain(PlainType::Integer), L"sensors"),
               ColumnInfo(L"reading", plain(PlainType::Float), L"sensors"),
               ColumnInfo(L"taken", plain(PlainType::Timestamp), L"sensors"),
               ColumnInfo(L"active", plain(PlainType::Boolean), L"sensors"),
               ColumnInfo(L"note", varchar(200), L"sensors")}));

  {
    using enum PlainType;
    using enum FunctionKind;
    // Overloads whose result is their one argument's type, and ones that give a plain type.
    const auto same = [](PlainType t) { return overload(t, {t}, sameAs(0)); };
    const auto gives = [](PlainType t, std::vector<PlainType> parameters) {
      return overload(t, std::move(parameters), returns(t));
    };
    addFunction(L"abs", Ordinary, {same(Integer), same(Decimal), same(Double)});
    addFunction(L"upper", Ordinary, {same(VarChar)});
    addFunction(L"lower", Ordinary, {same(VarChar)});
    addFunction(L"length", Ordinary, {gives(Integer, {VarChar})});
    addFunction(L"substr", Ordinary, {overload(VarChar, {VarChar, Integer}, sameAs(0), {Integer})});
    addFunction(L"concat", Ordinary, {overload(VarChar, {VarChar}, concatenation(), {}, true)});
    addFunction(L"area", Ordinary, {gives(Double, {geo})});
    addFunction(L"distance", Ordinary, {gives(Double, {geo, geo})});
    addFunction(L"buffer", Ordinary, {gives(geo, {geo, Double})});
    addFunction(L"now", Ordinary,
                {overload(Timestamp, {}, returns(Timestamp), {}, false, Determinism::NonDeterministic)});
    addFunction(L"count", Aggregate, {gives(BigInt, {}), gives(BigInt, {Integer}), gives(BigInt, {VarChar}),
                                      gives(BigInt, {geo})});
    addFunction(L"sum", Aggregate, {gives(BigInt, {Integer}), same(Decimal), gives(Double, {Double})});
    addFunction(L"avg", Aggregate, {gives(Double, {Double})});
    for (const wchar_t* name : {L"max", L"min"}) {
      addFunction(name, Aggregate, {same(Integer), same(Double), same(VarChar), same(Date)});
    }
    addFunction(L"objectinfo", ContextOpaque, {overload(VarChar, {geo, Integer}, returns(varchar(254)))});
  }

  for (const OperationCode code :
       {OperationCode::Plus, OperationCode::Minus, OperationCode::Multiply, OperationCode::Divide}) {
    std::vector<std::shared_ptr<OperatorOverloadInfo>> list;
    for (const PlainType t : arithmeticTypes) list.push_back(op(t, {t, t}, returns(t)));
    const bool additive = code == OperationCode::Plus || code == OperationCode::Minus;
    list.push_back(op(PlainType::Decimal, {PlainType::Decimal, PlainType::Decimal},
                      additive ? decimalSum() : sameAs(0)));
    addOperator(code, std::move(list));
  }
  addOperator(OperationCode::Concat,
              {op(PlainType::VarChar, {PlainType::VarChar, PlainType::VarChar}, concatenation())});
  for (const OperationCode code : {OperationCode::Equal, OperationCode::NotEqual, OperationCode::Less,
                                   OperationCode::Greater, OperationCode::LessOrEqual,
                                   OperationCode::GreaterOrEqual}) {
    std::vector<std::shared_ptr<OperatorOverloadInfo>> list;
    for (const auto quantifier : {ast::Quantifier::None, ast::Quantifier::All, ast::Quantifier::Any}) {
      for (const PlainType t : comparableTypes) {
        list.push_back(op(PlainType::Boolean, {t, t}, returns(PlainType::Boolean), quantifier));
      }
    }
    addOperator(code, std::move(list));
  }
  for (const OperationCode code : {OperationCode::And, OperationCode::Or, OperationCode::Xor}) {
    addOperator(code, {op(PlainType::Boolean, {PlainType::Boolean, PlainType::Boolean},
                          returns(PlainType::Boolean))});
  }
  addOperator(OperationCode::Not, {op(PlainType::Boolean, {PlainType::Boolean}, returns(PlainType::Boolean))});
  addOperator(OperationCode::Like, {op(PlainType::Boolean, {PlainType::VarChar, PlainType::VarChar},
                                       returns(PlainType::Boolean))});
  {
    std::vector<std::shared_ptr<OperatorOverloadInfo>> list;
    for (const PlainType t : arithmeticTypes) {
      list.push_back(op(PlainType::Boolean, {t, t, t}, returns(PlainType::Boolean)));
    }
    addOperator(OperationCode::Between, std::move(list));
  }
  for (const OperationCode code : {OperationCode::Within, OperationCode::Contains, OperationCode::Intersects,
                                   OperationCode::PartlyWithin, OperationCode::EntirelyWithin,
                                   OperationCode::ContainsPart, OperationCode::ContainsEntire}) {
    addOperator(code, {op(PlainType::Boolean, {geo, geo}, returns(PlainType::Boolean))});
  }
}

std::shared_ptr<FunctionInfo> SampleHost::function(const std::wstring& name) const {
  const auto found = m_functions.find(normalized(name));
  return found == m_functions.end() ? nullptr : found->second;
}

std::shared_ptr<OperatorInfo> SampleHost::operatorInfo(OperationCode code) const {
  const auto found = m_operators.find(code);
  return found == m_operators.end() ? nullptr : found->second;
}

bool SampleHost::canConvert(PlainType from, PlainType to) const {
  if (from == to || from == PlainType::Contextual) return true;
  const Place a = place(from);
  const Place b = place(to);
  // Date and Time both widen to Timestamp but not into each other.
  if (a.family == 5 && a.rank < 2 && b.rank < 2) return false;
  return a.family == b.family && a.family >= 1 && a.family <= 5 && a.rank <= b.rank;
}

std::shared_ptr<Type> SampleHost::convert(const std::shared_ptr<Type>& value, PlainType to) const {
  // Keep a length between strings and a precision between exact numbers; else a plain type.
  if (const auto* sized = dynamic_cast<const LengthType*>(value.get())) {
    if (place(to).family == 3 || place(to).family == 4) return std::make_shared<LengthType>(to, sized->length());
  }
  if (const auto* exact = dynamic_cast<const PrecisionScaleType*>(value.get())) {
    if (to == PlainType::Decimal || to == PlainType::Numeric) {
      return std::make_shared<PrecisionScaleType>(to, exact->precision(), exact->scale());
    }
  }
  if (value && (to == PlainType::Decimal || to == PlainType::Numeric)) {
    // The digits of the widest value of each integer type.
    const PlainType from = value->plainType();
    if (from == PlainType::SmallInt) return std::make_shared<PrecisionScaleType>(to, 5, 0);
    if (from == PlainType::Integer) return std::make_shared<PrecisionScaleType>(to, 10, 0);
    if (from == PlainType::BigInt) return std::make_shared<PrecisionScaleType>(to, 19, 0);
  }
  return plain(to);
}

int SampleHost::compareTypes(PlainType a, PlainType b) const {
  const Place x = place(a);
  const Place y = place(b);
  if (x.family != y.family) return x.family < y.family ? -1 : 1;
  return x.rank == y.rank ? 0 : (x.rank < y.rank ? -1 : 1);
}

std::shared_ptr<TableInfo> SampleHost::table(const std::wstring& name) const {
  const auto found = m_tables.find(normalized(name));
  return found == m_tables.end() ? nullptr : found->second;
}

void SampleHost::addTable(const std::wstring& name, std::shared_ptr<TableInfo> table) {
  m_tables[normalized(name)] = std::move(table);
}

void SampleHost::addFunction(const std::wstring& name, FunctionKind kind,
                             std::vector<std::shared_ptr<OverloadInfo>> overloads) {
  m_functions[normalized(name)] = std::make_shared<SampleFunction>(kind, std::move(overloads));
}

void SampleHost::addOperator(OperationCode code, std::vector<std::shared_ptr<OperatorOverloadInfo>> overloads) {
  m_operators[code] = std::make_shared<SampleOperator>(std::move(overloads));
}

void SampleHost::removeOperator(OperationCode code) { m_operators.erase(code); }

} // namespace velmor::sql::sample
