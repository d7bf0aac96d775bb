// Types of literals, columns, calls, rows and queries, and the faults of typing.
#include "scope/Describe.h"
#include "scope/Trees.h"
#include "support/SampleHost.h"

#include <velmor/sql/inference/TypeInferer.h>
#include <velmor/sql/scope/ScopeBuilder.h>

#include <gtest/gtest.h>

namespace velmor::sql::test {
namespace {

using type::PlainType;

// The sample catalogue with CAST, IN and EXISTS, and with Char optionally convertible to Decimal.
class InferenceHost : public sample::SampleHost {
public:
  InferenceHost() {
    std::vector<std::shared_ptr<OperatorOverloadInfo>> casts;
    for (const PlainType from : {PlainType::Integer, PlainType::BigInt, PlainType::VarChar}) {
      for (const PlainType to : {PlainType::SmallInt, PlainType::Integer, PlainType::BigInt, PlainType::Decimal,
                                 PlainType::Double, PlainType::VarChar, PlainType::Date}) {
        casts.push_back(std::make_shared<OperatorOverloadInfo>(to, std::vector{from, to}, sample::sameAs(1)));
      }
    }
    addOperator(OperationCode::Cast, std::move(casts));
    addOperator(OperationCode::In, {std::make_shared<OperatorOverloadInfo>(
                                       PlainType::Boolean, std::vector{PlainType::Integer, PlainType::Array},
                                       sample::returns(PlainType::Boolean))});
    addOperator(OperationCode::Exists, {std::make_shared<OperatorOverloadInfo>(
                                           PlainType::Boolean, std::vector{PlainType::Array},
                                           sample::returns(PlainType::Boolean))});
  }
  bool canConvert(PlainType from, PlainType to) const override {
    return (m_charToDecimal && from == PlainType::Char && to == PlainType::Decimal) || SampleHost::canConvert(from, to);
  }
  bool m_charToDecimal = false;
};

InferenceHost& host() {
  static InferenceHost instance;
  return instance;
}

// cities with roads as r: unqualified names of cities or of roads alone, r.x for the rest.
const std::shared_ptr<ColumnInfoScope>& scope() {
  static const auto instance = buildScope(host(), host(), spec({}, {tp(L"cities"), tp(L"roads", L"r")}), nullptr);
  return instance;
}

std::string typed(const ast::Node& node, const GlobalTypeContext& global = host()) {
  return outcome([&] {
    TypeInferer inferer(global, *scope());
    return typeText(inferer.inferNodeType(node));
  });
}

const E untyped = ast::makeNode<E>(ast::QueryOperation{});

TEST(TypeInfererTest, Expressions) {
  const std::pair<const char*, const char*> cases[] = {
      // Literals.
      {"100", "Decimal(3,0)"},
      {"12.345", "Decimal(5,3)"},
      {"0", "Decimal(1,0)"},
      {".5", "Decimal(1,1)"},
      {"5.", "Decimal(1,0)"},
      {"1.5E3", "Decimal(4,3)"},
      {"1E3", "Decimal(3,0)"},
      {"'abc'", "Char(3)"},
      {"'it''s'", "Char(4)"},
      {"''", "Char(0)"},
      {"'a\"b'", "Char(4)"},  // the escapes of the written-back text count
      {"'a\\nb'", "Char(4)"},
      {"NULL", "Boolean"},
      {"TRUE", "Boolean"},
      // Columns and asterisks.
      {"name", "AmbiguousColumnReference .name"},
      {"cities.name", "VarChar(100)"},
      {"R.Length", "Decimal(10,2)"},
      {"lanes", "SmallInt"},
      {"roads.lanes", "UnknownColumnReference roads.lanes"},
      {"zzz", "UnknownColumnReference .zzz"},
      {"founded AS alias", "Date"},
      {"r.*", "Tuple(Integer,VarChar(60),Integer,Decimal(10,2),SmallInt,BinaryLargeObject)"},
      {"zzz.*", "Tuple()"},
      // Calls, with converted arguments reaching the full type.
      {"upper(r.name)", "VarChar(60)"},
      {"Abs(area)", "Double"},
      {"concat(cities.name, 'ab', 'c')", "VarChar(103)"},
      {"count()", "BigInt"},
      {"count(*)", "BigInt"},
      {"substr(cities.name, 1)", "NoGoodFunctionCandidate substr(VarChar(100) Decimal(1,0)) 1"},
      {"nosuch(zzz)", "UnknownFunction nosuch"},
      {"lanes + population", "BigInt"},
      {"r.length + 1.25", "Decimal(11,2)"},
      {"r.id + 1", "Decimal(11,0)"},
      {"lanes < population", "Boolean"},
      {"cities.name || 'x'", "VarChar(101)"},
      {"cities.name LIKE 1", "NoGoodOperatorOverload Like(VarChar(100) Decimal(1,0)) 1"},
      {"zzz % 1", "OperatorNotSupported Modulo"},
      {"cities.obj CONTAINS r.obj", "Boolean"},
      {"city_id = ANY (SELECT lanes FROM roads)", "NoGoodOperatorOverload Equal(Integer Array(SmallInt)) 27"},
      // CAST: the target is a type name, not a column.
      {"CAST(population AS varchar)", "VarChar(50)"},
      {"CAST(population AS VARCHAR(20))", "VarChar(20)"},
      {"CAST(city_id AS decimal(8, 2))", "Decimal(8,2)"},
      {"CAST(city_id AS int)", "Integer"},
      {"CAST(population AS nonsense)", "NoGoodOperatorOverload Cast(BigInt -) 21"},
      {"CAST(population AS t.int)", "NoGoodOperatorOverload Cast(BigInt Fault) 21"},
      {"CAST(population AS varchar(x))", "BadNodeTypeException"},
      // IN lists, rows and queries.
      {"city_id IN (1, 2)", "Boolean"},
      {"city_id IN (1, 'a')", "NoGoodOperatorOverload In(Integer Tuple(Decimal(1,0),Char(1))) 1"},
      {"city_id IN (SELECT lanes FROM cities)", "Boolean"},
      {"EXISTS (SELECT * FROM cities)", "Boolean"},
      {"EXISTS (SELECT 1 FROM cities UNION SELECT 2 FROM roads)", "NoGoodOperatorOverload Exists(-) 1"},
      {"ROW(1)", "Tuple(Decimal(1,0))"},
      {"ROW()", "Tuple()"},
      {"(1, 'a')", "Tuple(Decimal(1,0),Char(1))"},
      {"(SELECT lanes FROM roads)", "Array(SmallInt)"},
      {"(SELECT lanes, founded FROM roads)", "Array(Tuple(SmallInt,Date))"},
      {"(SELECT ROW(1, 22) FROM roads)", "Array(Tuple(Decimal(1,0),Decimal(2,0)))"},
      {"(SELECT cities.* FROM cities)", "Array(Tuple(Integer,VarChar(100),BigInt,Double,Date,BinaryLargeObject))"},
      // The query's own FROM is not looked at: only the inferer's scope is.
      {"(SELECT note FROM sensors)", "UnknownColumnReference .note"},
  };
  for (const auto& [expression, expected] : cases) {
    const auto query = parseQuery(std::string("SELECT ") + expression + " FROM cities, roads AS r");
    EXPECT_EQ(typed(query.selectList.front()), expected) << expression;
  }
}

// Trees that only a host makes: the grammar has no such values in expression position.
TEST(TypeInfererTest, HandMadeTrees) {
  const std::pair<ast::Node, const char*> cases[] = {
      {contextual(ast::Value::Default), "Contextual"},
      {contextual(ast::Value::Null), "Contextual"},
      {op(OperationCode::Equal, {col(L"city_id"), col(L"cities", L"id")}, ast::Quantifier::Any), "Boolean"},
      {fn(L"now", {untyped}), "Timestamp"},
      {rows({}), "Tuple()"},
      {rows({num(L"7")}), "Array(Decimal(1,0))"},
      {rows({col(L"city_id"), col(L"lanes")}), "Array(Integer)"},
      {rows({col(L"lanes"), col(L"city_id")}), "Tuple(SmallInt,Integer)"},
      {rows({str(L"'a'"), str(L"'abc'")}), "Array(Char(1))"},
      {rows({row({num(L"1")}), row({num(L"22"), str(L"'x'")})}), "Array(Tuple(Decimal(1,0)))"},
      {rows({untyped}), "Array(-)"},
      {rows({untyped, num(L"1")}), "Tuple(-,Decimal(1,0))"},
      {rows({num(L"1"), untyped}), "Tuple(Decimal(1,0),-)"},
      {query({}), "Array(Tuple())"},
      {query({item(untyped)}), "Array(-)"},
      {query({item(untyped), star(L"zzz"), item(num(L"1"))}), "Array(Tuple(-,Decimal(1,0)))"},
  };
  for (const auto& [node, expected] : cases) EXPECT_EQ(typed(node), expected);
}

TEST(TypeInfererTest, ListsOfDifferingThingsDependOnConversion) {
  InferenceHost converting;
  converting.m_charToDecimal = true;
  const E list = rows({num(L"1"), str(L"'a'")});
  EXPECT_EQ(typed(list), "Tuple(Decimal(1,0),Char(1))");
  EXPECT_EQ(typed(list, converting), "Array(Decimal(1,0))");
}

TEST(TypeInfererTest, AsteriskOfOneColumnOpensInAQuery) {
  const TableInfoScope single(ast::TablePrimary{L"t", L""},
                              GenericTableInfo::create({ColumnInfo(L"x", sample::varchar(3), L"t")}));
  TypeInferer inferer(host(), single);
  EXPECT_EQ(typeText(inferer.inferType(query({star()}))), "Array(VarChar(3))");
  EXPECT_EQ(typesText(inferer.selectTypes({star(), item(row({num(L"1"), num(L"2")}))})),
            "VarChar(3) Decimal(1,0) Decimal(1,0)");
  EXPECT_EQ(typesText(inferer.selectItemTypes(item(untyped))), "-");
}

TEST(TypeInfererTest, ResultsAndReuse) {
  TypeInferer inferer(host(), *scope());
  // A column's own type object comes back, length and all.
  EXPECT_EQ(inferer.inferType(col(L"r", L"name")), host().table(L"roads")->columnByName(L"name").type());

  // A kind without a type leaves the former result; a fresh inferer gives nothing.
  EXPECT_EQ(typeText(inferer.inferType(untyped)), "VarChar(60)");
  EXPECT_EQ(typeText(inferer.inferNodeType(ast::makeEmptyNode())), "VarChar(60)");
  EXPECT_EQ(typeText(inferer.inferNodeType(tp(L"cities"))), "VarChar(60)");
  EXPECT_EQ(TypeInferer(host(), *scope()).inferType(untyped), nullptr);

  // A failing column reference has stored the empty answer; other faults keep the last result.
  EXPECT_THROW(inferer.inferType(col(L"zzz")), UnknownColumnReference);
  EXPECT_EQ(inferer.result(), nullptr);
  inferer.inferType(num(L"12"));
  EXPECT_THROW(inferer.inferType(fn(L"nosuch")), UnknownFunction);
  EXPECT_EQ(typeText(inferer.result()), "Decimal(2,0)");

  EXPECT_THROW(inferer.inferType(E()), ast::NullNodeException);
  EXPECT_EQ(typesText(inferer.inferTypes({num(L"1"), untyped, str(L"'x'")})), "Decimal(1,0) - Char(1)");
}

TEST(TypeInfererTest, OperandTypesOfCast) {
  const TypeInferer inferer(host(), *scope());
  EXPECT_EQ(typesText(inferer.operationTypes(getNodeValue<ast::Operation>(
                op(OperationCode::Cast, {col(L"lanes"), fn(L"char", {num(L"4")})})))),
            "SmallInt VarChar(4)");
  // Only a CAST of two operands reads a type name.
  EXPECT_EQ(typesText(inferer.operationTypes(getNodeValue<ast::Operation>(op(OperationCode::Cast, {col(L"lanes")})))),
            "SmallInt");
  EXPECT_EQ(outcome([&] {
              return typesText(inferer.operationTypes(
                  getNodeValue<ast::Operation>(op(OperationCode::Plus, {col(L"lanes"), col(L"int")}))));
            }),
            "UnknownColumnReference .int");
}

} // namespace
} // namespace velmor::sql::test
