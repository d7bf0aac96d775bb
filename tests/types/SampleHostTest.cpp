// The shared sample host answers as its catalogue says (other subsystems' tests rely on it).
#include "support/SampleHost.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using namespace velmor::sql;
using type::PlainType;

TEST(SampleHost, Catalogue) {
  const sample::SampleHost host;
  const GlobalTypeContext& routines = host;
  const TableInfoContext& tables = host;

  ASSERT_NE(routines.function(L"COUNT"), nullptr);
  EXPECT_EQ(routines.function(L"count")->kind(), FunctionKind::Aggregate);
  EXPECT_EQ(routines.function(L"ObjectInfo")->kind(), FunctionKind::ContextOpaque);
  EXPECT_EQ(routines.function(L"abs")->kind(), FunctionKind::Ordinary);
  EXPECT_EQ(routines.function(L"no_such_function"), nullptr);
  EXPECT_TRUE(routines.function(L"concat")->overloads().at(0)->canTakeParams(5));

  ASSERT_NE(routines.operatorInfo(OperationCode::Plus), nullptr);
  EXPECT_EQ(routines.operatorInfo(OperationCode::Regexp), nullptr);
  const auto plus = routines.operatorInfo(OperationCode::Plus)->overloads();
  const auto decimalPlus = std::find_if(plus.begin(), plus.end(), [](const auto& o) {
    return o->matches({PlainType::Decimal, PlainType::Decimal}, ast::Quantifier::None);
  });
  ASSERT_NE(decimalPlus, plus.end());
  const auto sum = std::dynamic_pointer_cast<PrecisionScaleType>(
      (*decimalPlus)->calcFullType({sample::decimal(5, 2), sample::decimal(7, 4)}));
  ASSERT_NE(sum, nullptr);
  EXPECT_EQ(sum->precision(), 8);

  EXPECT_TRUE(routines.canConvert(PlainType::SmallInt, PlainType::Double));
  EXPECT_TRUE(routines.canConvert(PlainType::Contextual, PlainType::Date));
  EXPECT_FALSE(routines.canConvert(PlainType::Double, PlainType::Integer));
  EXPECT_FALSE(routines.canConvert(PlainType::Date, PlainType::Time));
  EXPECT_FALSE(routines.canConvert(PlainType::VarChar, PlainType::Integer));
  EXPECT_LT(routines.compareTypes(PlainType::Integer, PlainType::BigInt), 0);
  EXPECT_GT(routines.compareTypes(PlainType::Double, PlainType::Float), 0);
  const auto widened = std::dynamic_pointer_cast<LengthType>(routines.convert(sample::varchar(9), PlainType::CharLargeObject));
  ASSERT_NE(widened, nullptr);
  EXPECT_EQ(widened->length(), 9);

  ASSERT_NE(tables.table(L"Cities"), nullptr);
  EXPECT_EQ(tables.table(L"cities")->columnCount(), 6u);
  EXPECT_EQ(tables.table(L"sensors")->indexByName(L"KEY"), 0u);
  EXPECT_EQ(tables.table(L"rivers"), nullptr);
}

} // namespace
