// Plain types, type objects and overload signatures.
#include <velmor/sql/types/Routine.h>
#include <velmor/sql/types/Type.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <vector>

namespace {

using namespace velmor::sql;
using type::PlainType;
using Types = std::vector<PlainType>;

TEST(Type, Arity) {
  const auto tuple = std::make_shared<TupleType>(std::vector<std::shared_ptr<Type>>{
      std::make_shared<Type>(PlainType::Integer), nullptr, std::make_shared<LengthType>(PlainType::Char, 3)});
  const auto emptyTuple = std::make_shared<TupleType>(std::vector<std::shared_ptr<Type>>{});
  const std::vector<std::pair<std::shared_ptr<Type>, std::size_t>> cases = {
      {std::make_shared<Type>(PlainType::Integer), 1},
      {std::make_shared<LengthType>(PlainType::VarChar, 10), 1},
      {std::make_shared<PrecisionScaleType>(), 1},
      {tuple, 3},
      {emptyTuple, 0},
      {std::make_shared<ArrayType>(tuple), 1},
  };
  for (const auto& [value, arity] : cases) EXPECT_EQ(value->arity(), arity);
  EXPECT_EQ(tuple->plainType(), PlainType::Tuple);
  const auto array = std::make_shared<ArrayType>(tuple);
  EXPECT_EQ(array->plainType(), PlainType::Array);
  EXPECT_EQ(array->elementType(), tuple);
}

TEST(Type, PrecisionScaleSum) {
  const PrecisionScaleType byDefault;
  EXPECT_EQ(byDefault.plainType(), PlainType::Decimal);
  EXPECT_EQ(byDefault.precision(), 1);
  EXPECT_EQ(byDefault.scale(), 0);

  struct Case {
    PrecisionScaleType left, right;
    int precision, scale;
  };
  const std::vector<Case> cases = {
      {{PlainType::Decimal, 5, 2}, {PlainType::Decimal, 7, 4}, 8, 4},
      {{PlainType::Numeric, 10, 2}, {PlainType::Numeric, 3, 3}, 12, 3},
      {{PlainType::Integer, 2, 5}, {PlainType::Decimal, 1, 0}, 7, 5},  // scale above precision
      {{}, {}, 2, 0},
  };
  for (const auto& [left, right, precision, scale] : cases) {
    const PrecisionScaleType sum = left + right;
    EXPECT_EQ(sum.plainType(), PlainType::Decimal);
    EXPECT_EQ(sum.precision(), precision);
    EXPECT_EQ(sum.scale(), scale);
  }
}

TEST(Type, ToPlainTypesDropsEmptyPointers) {
  EXPECT_EQ(toPlainTypes({std::make_shared<Type>(PlainType::Boolean), nullptr,
                          std::make_shared<LengthType>(PlainType::VarChar, 4), nullptr}),
            (Types{PlainType::Boolean, PlainType::VarChar}));
  EXPECT_TRUE(toPlainTypes({nullptr}).empty());
}

OverloadInfo intThenOptionalVarChar(bool variadic) {
  return OverloadInfo(PlainType::Integer, {PlainType::Integer}, nullptr, Determinism::Deterministic,
                      {PlainType::VarChar}, variadic);
}

TEST(Overload, ArityAndParameterTypes) {
  const OverloadInfo fixed = intThenOptionalVarChar(false);
  const OverloadInfo variadic = intThenOptionalVarChar(true);
  const OverloadInfo noRequired(PlainType::Integer, {}, nullptr, Determinism::Deterministic, {}, true);
  // count: fixed, variadic
  const std::vector<std::tuple<unsigned long long, bool, bool>> counts = {
      {0, false, false}, {1, true, true}, {2, true, true}, {3, false, true}, {1000, false, true}};
  for (const auto& [count, byFixed, byVariadic] : counts) {
    EXPECT_EQ(fixed.canTakeParams(count), byFixed) << count;
    EXPECT_EQ(variadic.canTakeParams(count), byVariadic) << count;
  }
  EXPECT_EQ(fixed.parameterTypes(4), (Types{PlainType::Integer, PlainType::VarChar, PlainType::Fault, PlainType::Fault}));
  // Repetition takes the last required parameter, never the optional one.
  EXPECT_EQ(variadic.parameterTypes(4), (Types{PlainType::Integer, PlainType::VarChar, PlainType::Integer, PlainType::Integer}));
  EXPECT_EQ(variadic.parameterType(5), PlainType::Integer);
  EXPECT_TRUE(noRequired.canTakeParams(0));
  EXPECT_EQ(noRequired.parameterType(0), PlainType::Fault);
}

TEST(Overload, ExactMatch) {
  const OverloadInfo fixed = intThenOptionalVarChar(false);
  const OverloadInfo variadic = intThenOptionalVarChar(true);
  const OverloadInfo none(PlainType::Timestamp, {}, nullptr);
  const OperatorOverloadInfo plus(PlainType::Integer, {PlainType::Integer, PlainType::Integer}, nullptr);
  const OperatorOverloadInfo equalAny(PlainType::Boolean, {PlainType::Integer, PlainType::Integer}, nullptr,
                                      ast::Quantifier::Any);
  const std::vector<std::tuple<const OverloadInfo*, Types, bool>> cases = {
      {&fixed, {PlainType::Integer}, true},
      {&fixed, {PlainType::Integer, PlainType::VarChar}, true},
      {&fixed, {PlainType::Integer, PlainType::Integer}, false},
      {&fixed, {PlainType::SmallInt}, false},  // no conversion
      {&fixed, {PlainType::Contextual}, false},  // no wildcard
      {&fixed, {}, false},
      {&variadic, {PlainType::Integer, PlainType::VarChar, PlainType::Integer, PlainType::Integer}, true},
      {&variadic, {PlainType::Integer, PlainType::VarChar, PlainType::VarChar}, false},
      {&none, {}, true},
      {&none, {PlainType::Integer}, false},
      {&plus, {PlainType::Integer, PlainType::Integer}, true},
      {&plus, {PlainType::Integer}, false},
  };
  for (const auto& [overload, types, expected] : cases) EXPECT_EQ(overload->matches(types), expected);

  const Types ints{PlainType::Integer, PlainType::Integer};
  EXPECT_TRUE(plus.matches(ints, ast::Quantifier::None));
  EXPECT_FALSE(plus.matches(ints, ast::Quantifier::All));
  EXPECT_TRUE(equalAny.matches(ints, ast::Quantifier::Any));
  EXPECT_FALSE(equalAny.matches(ints, ast::Quantifier::None));
  EXPECT_FALSE(equalAny.matches({PlainType::Integer}, ast::Quantifier::Any));
}

TEST(Overload, CalcFullType) {
  const auto result = std::make_shared<LengthType>(PlainType::VarChar, 12);
  const OverloadInfo empty(PlainType::VarChar, {PlainType::VarChar}, nullptr);
  const OverloadInfo given(PlainType::VarChar, {PlainType::VarChar},
                           [&](const std::vector<std::shared_ptr<Type>>& types) {
                             return types.size() == 1 ? result : nullptr;
                           });
  EXPECT_THROW(empty.calcFullType({result}), std::bad_function_call);
  EXPECT_EQ(given.calcFullType({result}), result);
}

} // namespace
