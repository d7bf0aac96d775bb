// A host catalogue for the benchmark corpus: its twelve GIS-register tables (and wide_rows), the
// functions and operators its statements use.
#pragma once

#include <velmor/sql/types/Routine.h>
#include <velmor/sql/types/Strings.h>
#include <velmor/sql/types/Table.h>
#include <velmor/sql/types/Type.h>

#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace velmor::sql::corpus {

/// A host-only plain type that every value converts to: the parameter type of operators that
/// take anything (IN, IS, EXISTS, CASE, CAST).
inline constexpr type::PlainType Any = static_cast<type::PlainType>(200);

/// Tables and columns of the corpus. Number columns named like keys, years and counts are
/// Integer, other number columns Decimal(12,2), text columns VarChar(40).
///
/// Functions: count() and count(x), sum, avg, min, max (Aggregate); abs, upper, lower,
/// coalesce(x, y). Operators: + - * / (also unary - and +) over Integer, BigInt, Decimal and
/// Double; the six comparisons over those and VarChar and Boolean; AND OR NOT; [NOT] LIKE;
/// [NOT] BETWEEN; and IN, IS, EXISTS, CASE (any operand count), CAST over Any.
/// Conversions widen inside a family (Integer < BigInt < Decimal < Double; Char < VarChar),
/// Contextual and everything convert to Any. Names match case-insensitively.
class CorpusCatalogue : public GlobalTypeContext, public TableInfoContext {
public:
  CorpusCatalogue() {
    const std::vector<std::pair<const wchar_t*, std::vector<std::pair<const wchar_t*, char>>>> tables = {
        {L"parcels", {{L"parcel_id", 'n'}, {L"owner_id", 'n'}, {L"zone_id", 'n'}, {L"area_sqm", 'n'},
                      {L"land_use", 's'}, {L"city_name", 's'}, {L"assessed_val", 'n'}}},
        {L"owners", {{L"owner_id", 'n'}, {L"full_nm", 's'}, {L"city_name", 's'}, {L"phone_no", 's'}, {L"since_yr", 'n'}}},
        {L"zones", {{L"zone_id", 'n'}, {L"zone_code", 's'}, {L"max_height", 'n'}, {L"district_id", 'n'}}},
        {L"districts", {{L"district_id", 'n'}, {L"district_nm", 's'}, {L"pop_total", 'n'}, {L"area_sqm", 'n'}}},
        {L"roads", {{L"road_id", 'n'}, {L"road_nm", 's'}, {L"speed_lim", 'n'}, {L"lane_cnt", 'n'},
                    {L"district_id", 'n'}, {L"surface_kind", 's'}}},
        {L"buildings", {{L"bldg_id", 'n'}, {L"parcel_id", 'n'}, {L"height_m", 'n'}, {L"floor_cnt", 'n'},
                        {L"build_yr", 'n'}, {L"bldg_kind", 's'}}},
        {L"permits", {{L"permit_no", 'n'}, {L"bldg_id", 'n'}, {L"owner_id", 'n'}, {L"fee_amt", 'n'},
                      {L"status_code", 's'}, {L"issued_yr", 'n'}}},
        {L"sensors", {{L"sensor_id", 'n'}, {L"road_id", 'n'}, {L"model_code", 's'}, {L"install_yr", 'n'}}},
        {L"readings", {{L"reading_id", 'n'}, {L"sensor_id", 'n'}, {L"reading_val", 'n'}, {L"qual_flag", 's'},
                       {L"taken_day", 'n'}}},
        {L"cust_orders", {{L"order_id", 'n'}, {L"cust_id", 'n'}, {L"store_id", 'n'}, {L"amount", 'n'},
                          {L"qty", 'n'}, {L"status_code", 's'}}},
        {L"stores", {{L"store_id", 'n'}, {L"store_nm", 's'}, {L"city_name", 's'}, {L"district_id", 'n'}}},
        {L"customers", {{L"cust_id", 'n'}, {L"cust_nm", 's'}, {L"city_name", 's'}, {L"credit_lim", 'n'}}},
    };
    for (const auto& [name, columns] : tables) {
      std::vector<ColumnInfo> list;
      for (const auto& [column, kind] : columns) list.emplace_back(column, columnType(column, kind), name);
      m_tables.emplace(name, std::make_shared<GenericTableInfo>(list));
    }
    std::vector<ColumnInfo> wide;
    for (int i = 1; i <= 400; ++i) {
      std::wstring name = L"f000";
      name.replace(name.size() - std::to_wstring(i).size(), std::wstring::npos, std::to_wstring(i));
      wide.emplace_back(name, decimal(12, 2), L"wide_rows");
    }
    m_tables.emplace(L"wide_rows", std::make_shared<GenericTableInfo>(wide));

    using type::PlainType;
    const PlainType numbers[] = {PlainType::Integer, PlainType::BigInt, PlainType::Decimal, PlainType::Double};
    for (const OperationCode code :
         {OperationCode::Plus, OperationCode::Minus, OperationCode::Multiply, OperationCode::Divide}) {
      const bool additive = code == OperationCode::Plus || code == OperationCode::Minus;
      std::vector<std::shared_ptr<OperatorOverloadInfo>> list;
      for (const PlainType t : numbers)
        list.push_back(op(t, {t, t}, t == PlainType::Decimal && additive ? decimalSum() : plainResult(t)));
      if (additive) {
        for (const PlainType t : numbers) list.push_back(op(t, {t}, sameAs(0)));
      }
      addOperator(code, std::move(list));
    }
    for (const OperationCode code : {OperationCode::Equal, OperationCode::NotEqual, OperationCode::Less,
                                     OperationCode::Greater, OperationCode::LessOrEqual, OperationCode::GreaterOrEqual}) {
      std::vector<std::shared_ptr<OperatorOverloadInfo>> list;
      for (const PlainType t : numbers) list.push_back(op(PlainType::Boolean, {t, t}, boolean()));
      list.push_back(op(PlainType::Boolean, {PlainType::VarChar, PlainType::VarChar}, boolean()));
      list.push_back(op(PlainType::Boolean, {PlainType::Boolean, PlainType::Boolean}, boolean()));
      addOperator(code, std::move(list));
    }
    for (const OperationCode code : {OperationCode::And, OperationCode::Or})
      addOperator(code, {op(PlainType::Boolean, {PlainType::Boolean, PlainType::Boolean}, boolean())});
    addOperator(OperationCode::Not, {op(PlainType::Boolean, {PlainType::Boolean}, boolean())});
    for (const OperationCode code : {OperationCode::Like, OperationCode::NotLike})
      addOperator(code, {op(PlainType::Boolean, {PlainType::VarChar, PlainType::VarChar}, boolean())});
    for (const OperationCode code : {OperationCode::Between, OperationCode::NotBetween}) {
      std::vector<std::shared_ptr<OperatorOverloadInfo>> list;
      for (const PlainType t : numbers) list.push_back(op(PlainType::Boolean, {t, t, t}, boolean()));
      list.push_back(op(PlainType::Boolean, {PlainType::VarChar, PlainType::VarChar, PlainType::VarChar}, boolean()));
      addOperator(code, std::move(list));
    }
    for (const OperationCode code : {OperationCode::In, OperationCode::NotIn, OperationCode::Is, OperationCode::IsNot})
      addOperator(code, {op(PlainType::Boolean, {Any, Any}, boolean())});
    addOperator(OperationCode::Exists, {op(PlainType::Boolean, {Any}, boolean())});
    // A CAST is typed as the type it names; a CASE as its first THEN value. CASE takes any
    // number of operands: one variadic overload over Any stands for all of them.
    addOperator(OperationCode::Cast, {op(Any, {Any, Any}, sameAs(1))});
    auto caseOverload = op(Any, {Any}, sameAs(2));
    caseOverload->mVariadic = true;
    addOperator(OperationCode::Case, {std::move(caseOverload)});

    addFunction(L"count", FunctionKind::Aggregate,
                {fn(PlainType::BigInt, {}, plainResult(PlainType::BigInt)),
                 fn(PlainType::BigInt, {Any}, plainResult(PlainType::BigInt))});
    addFunction(L"sum", FunctionKind::Aggregate,
                {fn(PlainType::BigInt, {PlainType::Integer}, plainResult(PlainType::BigInt)),
                 fn(PlainType::Decimal, {PlainType::Decimal}, sameAs(0))});
    addFunction(L"avg", FunctionKind::Aggregate, {fn(PlainType::Double, {PlainType::Decimal}, plainResult(PlainType::Double))});
    for (const wchar_t* name : {L"min", L"max"}) {
      addFunction(name, FunctionKind::Aggregate,
                  {fn(PlainType::Integer, {PlainType::Integer}, sameAs(0)),
                   fn(PlainType::Decimal, {PlainType::Decimal}, sameAs(0)),
                   fn(PlainType::VarChar, {PlainType::VarChar}, sameAs(0))});
    }
    addFunction(L"abs", FunctionKind::Ordinary,
                {fn(PlainType::Integer, {PlainType::Integer}, sameAs(0)),
                 fn(PlainType::Decimal, {PlainType::Decimal}, sameAs(0))});
    for (const wchar_t* name : {L"upper", L"lower"})
      addFunction(name, FunctionKind::Ordinary, {fn(PlainType::VarChar, {PlainType::VarChar}, sameAs(0))});
    addFunction(L"coalesce", FunctionKind::Ordinary,
                {fn(PlainType::Integer, {PlainType::Integer, PlainType::Integer}, sameAs(0)),
                 fn(PlainType::Decimal, {PlainType::Decimal, PlainType::Decimal}, sameAs(0)),
                 fn(PlainType::VarChar, {PlainType::VarChar, PlainType::VarChar}, sameAs(0))});
  }

  std::shared_ptr<FunctionInfo> function(const std::wstring& name) const override {
    const auto found = m_functions.find(normalized(name));
    return found == m_functions.end() ? nullptr : found->second;
  }

  std::shared_ptr<OperatorInfo> operatorInfo(OperationCode code) const override {
    const auto index = static_cast<std::size_t>(code);
    return index < m_operators.size() ? m_operators[index] : nullptr;
  }

  bool canConvert(type::PlainType from, type::PlainType to) const override {
    if (from == to || from == type::PlainType::Contextual || to == Any) return true;
    const auto a = place(from);
    const auto b = place(to);
    return a.first == b.first && a.first > 0 && a.second <= b.second;
  }

  std::shared_ptr<Type> convert(const std::shared_ptr<Type>& value, type::PlainType to) const override {
    // Anything stays itself as Any; an exact number keeps its digits as a Decimal.
    if (to == Any) return value;
    if (to == type::PlainType::Decimal && value) {
      if (const auto* exact = dynamic_cast<const PrecisionScaleType*>(value.get()))
        return std::make_shared<PrecisionScaleType>(to, exact->precision(), exact->scale());
      return decimal(value->plainType() == type::PlainType::BigInt ? 19 : 10, 0);
    }
    if (to == type::PlainType::VarChar && value) {
      if (const auto* sized = dynamic_cast<const LengthType*>(value.get()))
        return std::make_shared<LengthType>(to, sized->length());
    }
    return std::make_shared<Type>(to);
  }

  int compareTypes(type::PlainType a, type::PlainType b) const override {
    const auto x = place(a);
    const auto y = place(b);
    if (x != y) return x < y ? -1 : 1;
    return 0;
  }

  std::shared_ptr<TableInfo> table(const std::wstring& name) const override {
    const auto found = m_tables.find(normalized(name));
    return found == m_tables.end() ? nullptr : found->second;
  }

private:
  class Function final : public FunctionInfo {
  public:
    Function(FunctionKind kind, std::vector<std::shared_ptr<OverloadInfo>> overloads)
        : m_kind(kind), m_overloads(std::move(overloads)) {}
    std::vector<std::shared_ptr<OverloadInfo>> overloads() const override { return m_overloads; }
    FunctionKind kind() const override { return m_kind; }

  private:
    FunctionKind m_kind;
    std::vector<std::shared_ptr<OverloadInfo>> m_overloads;
  };

  class Operator final : public OperatorInfo {
  public:
    explicit Operator(std::vector<std::shared_ptr<OperatorOverloadInfo>> overloads)
        : m_overloads(std::move(overloads)) {}
    std::vector<std::shared_ptr<OperatorOverloadInfo>> overloads() const override { return m_overloads; }

  private:
    std::vector<std::shared_ptr<OperatorOverloadInfo>> m_overloads;
  };

  static bool integerColumn(const std::wstring& name) {
    for (const std::wstring suffix : {L"_id", L"_no", L"_yr", L"_cnt"}) {
      if (name.size() > suffix.size() && name.compare(name.size() - suffix.size(), suffix.size(), suffix) == 0)
        return true;
    }
    return name == L"qty";
  }
  static std::shared_ptr<Type> decimal(int precision, int scale) {
    return std::make_shared<PrecisionScaleType>(type::PlainType::Decimal, precision, scale);
  }
  static std::shared_ptr<Type> columnType(const std::wstring& name, char kind) {
    if (kind == 's') return std::make_shared<LengthType>(type::PlainType::VarChar, 40);
    return integerColumn(name) ? std::make_shared<Type>(type::PlainType::Integer) : decimal(12, 2);
  }

  // (family, rank): Boolean 1; numbers 2; strings 3; Any above everything; the rest 0.
  static std::pair<int, int> place(type::PlainType t) {
    using type::PlainType;
    switch (t) {
    case PlainType::Boolean: return {1, 0};
    case PlainType::SmallInt: return {2, 0};
    case PlainType::Integer: return {2, 1};
    case PlainType::BigInt: return {2, 2};
    case PlainType::Decimal: return {2, 3};
    case PlainType::Numeric: return {2, 3};
    case PlainType::Float: return {2, 4};
    case PlainType::Real: return {2, 5};
    case PlainType::Double: return {2, 6};
    case PlainType::Char: return {3, 0};
    case PlainType::VarChar: return {3, 1};
    case PlainType::CharLargeObject: return {3, 2};
    case PlainType::Contextual:
    case PlainType::Fault:
    case PlainType::Binary:
    case PlainType::VarBinary:
    case PlainType::BinaryLargeObject:
    case PlainType::Time:
    case PlainType::Date:
    case PlainType::Timestamp:
    case PlainType::Tuple:
    case PlainType::Array: return {0, static_cast<int>(t)};
    }
    return {t == Any ? 9 : 0, static_cast<int>(t)};
  }

  static FullTypeFunction plainResult(type::PlainType t) {
    return [t](const std::vector<std::shared_ptr<Type>>&) { return std::make_shared<Type>(t); };
  }
  static FullTypeFunction boolean() {
    auto result = std::make_shared<Type>(type::PlainType::Boolean);
    return [result](const std::vector<std::shared_ptr<Type>>&) { return result; };
  }
  static FullTypeFunction sameAs(std::size_t position) {
    return [position](const std::vector<std::shared_ptr<Type>>& types) {
      return position < types.size() ? types[position] : nullptr;
    };
  }
  static FullTypeFunction decimalSum() {
    return [](const std::vector<std::shared_ptr<Type>>& types) -> std::shared_ptr<Type> {
      auto digits = [&](std::size_t i) {
        const auto* exact = i < types.size() ? dynamic_cast<const PrecisionScaleType*>(types[i].get()) : nullptr;
        return exact ? *exact : PrecisionScaleType();
      };
      return std::make_shared<PrecisionScaleType>(digits(0) + digits(1));
    };
  }
  static std::shared_ptr<OperatorOverloadInfo> op(type::PlainType result, std::vector<type::PlainType> parameters,
                                                  FullTypeFunction fullType) {
    return std::make_shared<OperatorOverloadInfo>(result, std::move(parameters), std::move(fullType));
  }
  static std::shared_ptr<OverloadInfo> fn(type::PlainType result, std::vector<type::PlainType> parameters,
                                          FullTypeFunction fullType) {
    return std::make_shared<OverloadInfo>(result, std::move(parameters), std::move(fullType));
  }

  void addOperator(OperationCode code, std::vector<std::shared_ptr<OperatorOverloadInfo>> overloads) {
    m_operators[static_cast<std::size_t>(code)] = std::make_shared<Operator>(std::move(overloads));
  }
  void addFunction(const std::wstring& name, FunctionKind kind, std::vector<std::shared_ptr<OverloadInfo>> overloads) {
    m_functions[normalized(name)] = std::make_shared<Function>(kind, std::move(overloads));
  }

  std::unordered_map<std::wstring, std::shared_ptr<TableInfo>> m_tables;
  std::unordered_map<std::wstring, std::shared_ptr<FunctionInfo>> m_functions;
  std::array<std::shared_ptr<OperatorInfo>, 51> m_operators{};
};

} // namespace velmor::sql::corpus
