// The type objects, and the exported groups of plain types.
#include <velmor/sql/types/Type.h>

#include <algorithm>
#include <utility>

namespace velmor::sql {

using type::PlainType;

// Initialisers are written in the groups' documented order; the sets sort them anyway.
const std::set<PlainType> exactNumericTypes{PlainType::Numeric, PlainType::Decimal, PlainType::SmallInt,
                                            PlainType::Integer, PlainType::BigInt};
const std::set<PlainType> numericTypes{PlainType::Numeric, PlainType::Decimal, PlainType::SmallInt,
                                       PlainType::Integer, PlainType::BigInt,  PlainType::Float,
                                       PlainType::Real,    PlainType::Double};
const std::set<PlainType> numericDateTypes{PlainType::Numeric, PlainType::Decimal, PlainType::SmallInt,
                                           PlainType::Integer, PlainType::BigInt,  PlainType::Float,
                                           PlainType::Real,    PlainType::Double,  PlainType::Date,
                                           PlainType::Time,    PlainType::Timestamp};
const std::set<PlainType> approximateNumericTypes{PlainType::Float, PlainType::Real, PlainType::Double};
const std::set<PlainType> characterStringTypes{PlainType::Char, PlainType::VarChar,
                                               PlainType::CharLargeObject};
const std::set<PlainType> binaryStringTypes{PlainType::Binary, PlainType::VarBinary,
                                            PlainType::BinaryLargeObject};
const std::set<PlainType> datetimeTypes{PlainType::Date, PlainType::Time, PlainType::Timestamp};

Type::Type(PlainType plainType) noexcept : m_type(plainType) {}
Type::~Type() = default;
std::size_t Type::arity() const { return 1; }

LengthType::LengthType(PlainType plainType, int length) noexcept : Type(plainType), m_length(length) {}

PrecisionScaleType::PrecisionScaleType() noexcept : PrecisionScaleType(PlainType::Decimal, 1, 0) {}
PrecisionScaleType::PrecisionScaleType(PlainType plainType, int precision, int scale) noexcept
    : Type(plainType), m_precision(precision), m_scale(scale) {}

PrecisionScaleType PrecisionScaleType::operator+(const PrecisionScaleType& other) const noexcept {
  const std::int32_t scale = std::max(m_scale, other.m_scale);
  const std::int32_t integerDigits =
      std::max(m_precision - m_scale, other.m_precision - other.m_scale);
  // One more digit for the carry; the sum of any two exact kinds is a Decimal.
  return PrecisionScaleType(PlainType::Decimal, scale + integerDigits + 1, scale);
}

TupleType::TupleType(std::vector<std::shared_ptr<Type>> types) noexcept
    : Type(PlainType::Tuple), m_types(std::move(types)) {}
std::size_t TupleType::arity() const { return m_types.size(); }

ArrayType::ArrayType(const std::shared_ptr<Type>& element) noexcept
    : Type(PlainType::Array), m_element(element) {}

std::vector<PlainType> toPlainTypes(const std::vector<std::shared_ptr<Type>>& types) {
  std::vector<PlainType> result;
  result.reserve(types.size());
  for (const auto& type : types) {
    if (type) result.push_back(type->plainType());
  }
  return result;
}

} // namespace velmor::sql
