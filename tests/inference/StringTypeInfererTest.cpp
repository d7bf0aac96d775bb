// Type names read back from the expressions that stand for them after CAST ... AS.
#include "scope/Describe.h"
#include "scope/Trees.h"

#include <velmor/sql/inference/StringTypeInferer.h>

#include <gtest/gtest.h>

namespace velmor::sql::test {
namespace {

std::string named(const E& node, std::int32_t* count = nullptr) {
  return outcome([&] {
    StringTypeInferer inferer;
    inferer.doVisit(node);
    if (count) *count = inferer.parameterCount();
    return typeText(inferer.result());
  });
}

TEST(StringTypeInfererTest, EveryNameOfTheTable) {
  const std::pair<const wchar_t*, const char*> table[] = {
      {L"int", "Integer"},          {L"i", "Integer"},          {L"number", "Integer"},
      {L"integer", "Integer"},      {L"int16", "SmallInt"},     {L"int32", "Integer"},
      {L"int64", "BigInt"},         {L"smallint", "SmallInt"},  {L"shortint", "SmallInt"},
      {L"short", "SmallInt"},       {L"bigint", "BigInt"},      {L"largeint", "BigInt"},
      {L"long", "Integer"},         {L"char", "VarChar(50)"},   {L"varchar", "VarChar(50)"},
      {L"string", "VarChar(50)"},   {L"str", "VarChar(50)"},    {L"text", "VarChar(50)"},
      {L"clob", "VarChar(50)"},     {L"double", "Double"},      {L"real", "Double"},
      {L"float", "Float"},          {L"float32", "Float"},      {L"float64", "Double"},
      {L"decimal", "Decimal(30,10)"}, {L"numeric", "Decimal(30,10)"}, {L"bool", "Boolean"},
      {L"bit", "Boolean"},          {L"boolean", "Boolean"},    {L"logical", "Boolean"},
      {L"date", "Date"},            {L"time", "Time"},          {L"datetime", "Timestamp"},
      {L"timestamp", "Timestamp"},
      // Folding, and words that are no type.
      {L"INTEGER", "Integer"},      {L"VarChar", "VarChar(50)"}, {L"nonsense", "-"},
      {L"", "-"},                   {L"integer ", "-"},          {L"[int]", "-"},
  };
  for (const auto& [name, expected] : table) {
    EXPECT_EQ(named(col(name)), expected) << narrow(name);
    EXPECT_EQ(named(fn(name)), expected) << narrow(name) << "()";
  }
}

TEST(StringTypeInfererTest, SizesAndFaults) {
  const struct {
    E node;
    const char* expected;
    std::int32_t count;
  } cases[] = {
      {fn(L"varchar", {num(L"20")}), "VarChar(20)", 1},
      {fn(L"varchar", {num(L"0")}), "VarChar(50)", 1},
      {fn(L"TEXT", {num(L"4294967297")}), "VarChar(1)", 1},  // cut to 32 bits
      {fn(L"decimal", {num(L"10")}), "Decimal(10,0)", 2},
      {fn(L"decimal", {num(L"10"), num(L"2")}), "Decimal(10,2)", 2},
      {fn(L"numeric", {num(L"0")}), "Decimal(0,0)", 2},
      {fn(L"decimal", {num(L"1"), num(L"2"), num(L"3")}), "Fault", -1},
      {fn(L"int", {num(L"0")}), "Integer", 1},
      {fn(L"int", {num(L"1")}), "SmallInt", 1},
      {fn(L"int", {num(L"8")}), "SmallInt", 1},
      {fn(L"int", {num(L"16")}), "SmallInt", 1},
      {fn(L"int", {num(L"17")}), "Integer", 1},
      {fn(L"integer", {num(L"32")}), "Integer", 1},
      {fn(L"int", {num(L"33")}), "BigInt", 1},
      {fn(L"float", {num(L"0")}), "Float", 1},
      {fn(L"float", {num(L"32")}), "Float", 1},
      {fn(L"float", {num(L"33")}), "Double", 1},
      {fn(L"real", {num(L"32")}), "Float", 1},
      {fn(L"real", {num(L"0")}), "Double", 1},
      {fn(L"real", {num(L"64")}), "Double", 1},
      {fn(L"int", {num(L"1"), num(L"2")}), "Fault", -1},
      {fn(L"date", {num(L"1")}), "Fault", -1},
      {fn(L"int16", {num(L"1")}), "Fault", -1},
      {fn(L"nonsense", {col(L"x")}), "-", 0},
      {fn(L"varchar", {col(L"x")}), "BadNodeTypeException", 0},
      {col(L"t", L"integer"), "Fault", -1},
      {num(L"5"), "Fault", -1},
      {str(L"'int'"), "Fault", -1},
  };
  for (const auto& c : cases) {
    std::int32_t count = 0;
    EXPECT_EQ(named(c.node, &count), c.expected);
    if (std::string(c.expected) != "BadNodeTypeException") {
      EXPECT_EQ(count, c.count) << c.expected;
    }
  }
}

} // namespace
} // namespace velmor::sql::test
