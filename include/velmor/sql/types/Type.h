// The type model: plain type numbers shared with the host and the immutable type objects.
#pragma once

#include <velmor/sql/Export.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <set>
#include <vector>

namespace velmor::sql {

namespace type {

/// The plain type of a value. The numbers are part of the interface with the host and never
/// move; 0 and 21 are deliberately left without an enumerator so that 22 and 23 stay put.
/// Plain types marked "host" are carried by number but never produced by the library itself.
enum class PlainType : std::int32_t {
  Contextual = 1,         ///< A value that takes its type from where it stands (NULL, DEFAULT, ...).
  Fault = 2,              ///< What an inferer yields for something that has no type.
  Binary = 3,             ///< host
  VarBinary = 4,          ///< host
  BinaryLargeObject = 5,  ///< host
  Char = 6,               ///< String literals (as a LengthType).
  VarChar = 7,            ///< "varchar", "text", ... (as a LengthType).
  CharLargeObject = 8,    ///< host
  Boolean = 9,
  SmallInt = 10,
  Integer = 11,
  BigInt = 12,
  Decimal = 13,           ///< Every numeric literal (as a PrecisionScaleType).
  Numeric = 14,           ///< host
  Float = 15,
  Real = 16,              ///< host; the word "real" names Double.
  Double = 17,
  Time = 18,
  Date = 19,
  Timestamp = 20,
  Tuple = 22,             ///< Every TupleType.
  Array = 23,             ///< Every ArrayType.
};

} // namespace type

/// Groups of plain types for hosts that describe one overload for many types. Built during
/// static initialisation of the library and never changed; reading them is thread-safe. A host
/// must not read them from its own static initialisers (initialisation order across libraries
/// is unspecified).
VELMOR_SQL_API extern const std::set<type::PlainType> exactNumericTypes;       ///< 14, 13, 10, 11, 12
VELMOR_SQL_API extern const std::set<type::PlainType> numericTypes;            ///< exact + approximate
VELMOR_SQL_API extern const std::set<type::PlainType> numericDateTypes;        ///< numeric + datetime
VELMOR_SQL_API extern const std::set<type::PlainType> approximateNumericTypes; ///< 15, 16, 17
VELMOR_SQL_API extern const std::set<type::PlainType> characterStringTypes;    ///< 6, 7, 8
VELMOR_SQL_API extern const std::set<type::PlainType> binaryStringTypes;       ///< 3, 4, 5
VELMOR_SQL_API extern const std::set<type::PlainType> datetimeTypes;           ///< 19, 18, 20

/// A type without further parameters, and the base of all types. Types are immutable, live on
/// the heap and are shared through std::shared_ptr<Type> (deleting through the base is the
/// normal path). An empty pointer means that no type is known. Compare types by plainType(),
/// never by pointer. Safe to read from any number of threads.
class VELMOR_SQL_API Type {
public:
  /// No check that the plain type suits the class: any number is accepted.
  explicit Type(type::PlainType plainType) noexcept;
  virtual ~Type();

  /// The number of values the type stands for: 1, except for a TupleType (its field count).
  virtual std::size_t arity() const;

  type::PlainType plainType() const noexcept { return m_type; }

private:
  type::PlainType m_type;
};

/// A type with a length (character and binary strings). No check of the plain type or of the
/// sign of the length.
class VELMOR_SQL_API LengthType : public Type {
public:
  LengthType(type::PlainType plainType, int length) noexcept;

  int length() const noexcept { return m_length; }

private:
  std::int32_t m_length;
};

/// An exact number with declared digits. No check of the plain type or of the digits: the scale
/// may exceed the precision, and either may be negative.
class VELMOR_SQL_API PrecisionScaleType : public Type {
public:
  /// Decimal, precision 1, scale 0.
  PrecisionScaleType() noexcept;
  PrecisionScaleType(type::PlainType plainType, int precision, int scale) noexcept;

  /// The type of the sum of two exact numbers: always Decimal, scale = the larger scale,
  /// precision = scale + the larger count of integer digits + 1 (the carry). Signed 32-bit
  /// arithmetic without overflow check.
  PrecisionScaleType operator+(const PrecisionScaleType& other) const noexcept;

  /// Total digits.
  int precision() const noexcept { return m_precision; }
  /// Digits behind the point.
  int scale() const noexcept { return m_scale; }

private:
  std::int32_t m_precision;
  std::int32_t m_scale;
};

/// A row of values; plain type Tuple. Field types may be empty pointers (unknown).
class VELMOR_SQL_API TupleType : public Type {
public:
  /// Takes over the vector.
  explicit TupleType(std::vector<std::shared_ptr<Type>> types) noexcept;

  /// The number of fields; 0 for a tuple of no fields.
  std::size_t arity() const override;

  const std::vector<std::shared_ptr<Type>>& types() const noexcept { return m_types; }

private:
  std::vector<std::shared_ptr<Type>> m_types;
};

/// An array; plain type Array. Its arity is 1 whatever the element is.
class VELMOR_SQL_API ArrayType : public Type {
public:
  /// Shares the element type (which may be empty).
  explicit ArrayType(const std::shared_ptr<Type>& element) noexcept;

  /// A new reference to the element type.
  std::shared_ptr<Type> elementType() const noexcept { return m_element; }

private:
  std::shared_ptr<Type> m_element;
};

/// The plain types of `types` in order. Empty pointers are skipped, not replaced, so positions
/// of the result need not line up with those of the input.
VELMOR_SQL_API std::vector<type::PlainType> toPlainTypes(const std::vector<std::shared_ptr<Type>>& types);

} // namespace velmor::sql
