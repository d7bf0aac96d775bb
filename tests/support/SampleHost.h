// A small GIS-flavoured host catalogue shared by the semantic tests: tables, functions,
// operators and conversions behind the library's host interfaces.
#pragma once

#include <velmor/sql/types/Routine.h>
#include <velmor/sql/types/Table.h>
#include <velmor/sql/types/Type.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace velmor::sql::sample {

// Type makers for catalogue entries and expectations.
std::shared_ptr<Type> plain(type::PlainType plainType);
std::shared_ptr<Type> varchar(int length);
std::shared_ptr<Type> decimal(int precision, int scale);
/// The host's geometry: a binary large object.
std::shared_ptr<Type> geometry();

// Full-type functions for overloads.
/// Always a fresh Type of `plainType`.
FullTypeFunction returns(type::PlainType plainType);
/// Always `result` (shared).
FullTypeFunction returns(std::shared_ptr<Type> result);
/// The argument at `position` (an empty pointer when there is none).
FullTypeFunction sameAs(std::size_t position);
/// Decimal sum of the first two arguments through PrecisionScaleType::operator+ (Decimal(1,0)
/// stands in for an argument that has no precision).
FullTypeFunction decimalSum();
/// VarChar whose length is the sum of the arguments' lengths (0 for an argument without one).
FullTypeFunction concatenation();

/// A function: its overloads in catalogue order and its kind.
class SampleFunction : public FunctionInfo {
public:
  SampleFunction(FunctionKind kind, std::vector<std::shared_ptr<OverloadInfo>> overloads);
  std::vector<std::shared_ptr<OverloadInfo>> overloads() const override;
  FunctionKind kind() const override;

private:
  FunctionKind m_kind;
  std::vector<std::shared_ptr<OverloadInfo>> m_overloads;
};

/// An operator: its overloads in catalogue order.
class SampleOperator : public OperatorInfo {
public:
  explicit SampleOperator(std::vector<std::shared_ptr<OperatorOverloadInfo>> overloads);
  std::vector<std::shared_ptr<OperatorOverloadInfo>> overloads() const override;

private:
  std::vector<std::shared_ptr<OperatorOverloadInfo>> m_overloads;
};

/// The catalogue. Table and function names match case-insensitively (through normalized);
/// an unknown name gives an empty pointer. Later tests may add entries or replace them
/// (add* overwrite an entry of the same name).
///
/// Tables:
///   cities(id Integer, name VarChar(100), population BigInt, area Double, founded Date, obj geometry)
///   roads(id Integer, name VarChar(60), city_id Integer, length Decimal(10,2), lanes SmallInt, obj geometry)
///   countries(code Char(2), name VarChar(80), population BigInt, obj geometry)
///   sensors(id Integer also called "key", reading Float, taken Timestamp, active Boolean, note VarChar(200))
/// Functions (kind): abs, upper, lower, length, substr(VarChar, Integer [, Integer]),
///   concat(VarChar...), area(geometry), distance(geometry, geometry), buffer(geometry, Double),
///   now() (non-deterministic), count(), count(Integer|VarChar|geometry) (Aggregate), sum, avg,
///   max, min (Aggregate), objectinfo(geometry, Integer) (ContextOpaque).
/// Operators: + - * / over SmallInt/Integer/BigInt/Decimal/Double (Decimal + and - through operator+),
///   & (concatenation), the six comparisons over numbers, strings, dates and Boolean (also with
///   ALL and ANY), AND/OR/XOR/NOT over Boolean, LIKE, BETWEEN over numbers, and the spatial
///   predicates over geometry. Other operators are unsupported.
/// Conversions: widening inside a family (SmallInt < Integer < BigInt < Numeric/Decimal <
///   Float < Real < Double; Char < VarChar < CharLargeObject; Binary < VarBinary <
///   BinaryLargeObject; Date < Timestamp; Time < Timestamp), and Contextual to anything.
class SampleHost : public GlobalTypeContext, public TableInfoContext {
public:
  SampleHost();

  std::shared_ptr<FunctionInfo> function(const std::wstring& name) const override;
  std::shared_ptr<OperatorInfo> operatorInfo(OperationCode code) const override;
  bool canConvert(type::PlainType from, type::PlainType to) const override;
  std::shared_ptr<Type> convert(const std::shared_ptr<Type>& value, type::PlainType to) const override;
  int compareTypes(type::PlainType a, type::PlainType b) const override;
  std::shared_ptr<TableInfo> table(const std::wstring& name) const override;

  void addTable(const std::wstring& name, std::shared_ptr<TableInfo> table);
  void addFunction(const std::wstring& name, FunctionKind kind,
                   std::vector<std::shared_ptr<OverloadInfo>> overloads);
  void addOperator(OperationCode code, std::vector<std::shared_ptr<OperatorOverloadInfo>> overloads);
  void removeOperator(OperationCode code);

private:
  std::map<std::wstring, std::shared_ptr<TableInfo>> m_tables;
  std::map<std::wstring, std::shared_ptr<FunctionInfo>> m_functions;
  std::map<OperationCode, std::shared_ptr<OperatorInfo>> m_operators;
};

} // namespace velmor::sql::sample
