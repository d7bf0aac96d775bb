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
  const struct {
    ast::Node node;
    const char* expected;
  } cases[] = {
      // Literals.
      {num(L"100"), "Decimal(3,0)"},
      {num(L"12.345"), "Decimal(5,3)"},
      {num(L"0"), "Decimal(1,0)"},
      {num(L".5"), "Decimal(1,1)"},
      {num(L"5."), "Decimal(1,0)"},
      {num(L"1.5E3"), "Decimal(4,3)"},
      {num(L"1E3"), "Decimal(3,0)"},
      {str(L"'abc'"), "Char(3)"},
      {str(L"'it''s'"), "Char(4)"},
      {str(L"'a\"b'"), "Char(4)"},  // the escapes of the written-back text count
      {str(L"'a\\nb'"), "Char(4)"},
      {str(L"''"), "Char(0)"},
      {truth(TernaryLogic::Unknown), "Boolean"},
      {truth(TernaryLogic::True), "Boolean"},
      {contextual(ast::Value::Default), "Contextual"},
      {contextual(ast::Value::Null), "Contextual"},
      // Columns and asterisks.
      {col(L"name"), "AmbiguousColumnReference .name"},
      {col(L"cities", L"name"), "VarChar(100)"},
      {col(L"R", L"Length"), "Decimal(10,2)"},
      {col(L"lanes"), "SmallInt"},
      {col(L"roads", L"lanes"), "UnknownColumnReference roads.lanes"},
      {col(L"zzz"), "UnknownColumnReference .zzz"},
      {item(col(L"founded"), L"alias"), "Date"},
      {star(L"r"), "Tuple(Integer,VarChar(60),Integer,Decimal(10,2),SmallInt,BinaryLargeObject)"},
      {star(L"zzz"), "Tuple()"},
      // Calls, with converted arguments reaching the full type.
      {fn(L"upper", {col(L"r", L"name")}), "VarChar(60)"},
      {fn(L"Abs", {col(L"area")}), "Double"},
      {fn(L"concat", {col(L"cities", L"name"), str(L"'ab'"), str(L"'c'")}), "VarChar(103)"},
      {fn(L"count"), "BigInt"},
      {ast::makeNode<E>(ast::Function{L"count", true, ast::SetQuantifier::Unspecified, {}}), "BigInt"},
      {fn(L"substr", {col(L"cities", L"name"), num(L"1")}), "NoGoodFunctionCandidate substr(VarChar(100) Decimal(1,0)) 1"},
      {fn(L"nosuch", {col(L"zzz")}), "UnknownFunction nosuch"},
      {fn(L"now", {untyped}), "Timestamp"},
      {op(OperationCode::Plus, {col(L"lanes"), col(L"population")}), "BigInt"},
      {op(OperationCode::Plus, {col(L"r", L"length"), num(L"1.25")}), "Decimal(11,2)"},
      {op(OperationCode::Plus, {col(L"r", L"id"), num(L"1")}), "Decimal(11,0)"},
      {op(OperationCode::Less, {col(L"lanes"), col(L"population")}), "Boolean"},
      {op(OperationCode::Equal, {col(L"city_id"), col(L"cities", L"id")}, ast::Quantifier::Any), "Boolean"},
      {op(OperationCode::Concat, {col(L"cities", L"name"), str(L"'x'")}), "VarChar(101)"},
      {op(OperationCode::Like, {col(L"cities", L"name"), num(L"1")}), "NoGoodOperatorOverload Like(VarChar(100) Decimal(1,0)) 1"},
      {op(OperationCode::Modulo, {col(L"zzz"), num(L"1")}), "OperatorNotSupported Modulo"},
      {op(OperationCode::Contains, {col(L"cities", L"obj"), col(L"r", L"obj")}), "Boolean"},
      // CAST: the target is a type name, not a column.
      {op(OperationCode::Cast, {col(L"population"), col(L"varchar")}), "VarChar(50)"},
      {op(OperationCode::Cast, {col(L"population"), fn(L"VARCHAR", {num(L"20")})}), "VarChar(20)"},
      {op(OperationCode::Cast, {col(L"city_id"), fn(L"decimal", {num(L"8"), num(L"2")})}), "Decimal(8,2)"},
      {op(OperationCode::Cast, {col(L"city_id"), col(L"int")}), "Integer"},
      {op(OperationCode::Cast, {col(L"population"), col(L"nonsense")}), "NoGoodOperatorOverload Cast(BigInt -) 21"},
      {op(OperationCode::Cast, {col(L"population"), col(L"t", L"int")}), "NoGoodOperatorOverload Cast(BigInt Fault) 21"},
      {op(OperationCode::Cast, {col(L"population"), fn(L"varchar", {col(L"x")})}), "BadNodeTypeException"},
      // IN lists, rows and queries.
      {op(OperationCode::In, {col(L"city_id"), rows({num(L"1"), num(L"2")})}), "Boolean"},
      {op(OperationCode::In, {col(L"city_id"), rows({num(L"1"), str(L"'a'")})}), "NoGoodOperatorOverload In(Integer Tuple(Decimal(1,0),Char(1))) 1"},
      {op(OperationCode::In, {col(L"city_id"), query({item(col(L"lanes"))})}), "Boolean"},
      {op(OperationCode::Exists, {query({star()})}), "Boolean"},
      {rows({}), "Tuple()"},
      {rows({num(L"7")}), "Array(Decimal(1,0))"},
      {rows({col(L"city_id"), col(L"lanes")}), "Array(Integer)"},
      {rows({col(L"lanes"), col(L"city_id")}), "Tuple(SmallInt,Integer)"},
      {rows({str(L"'a'"), str(L"'abc'")}), "Array(Char(1))"},
      {rows({row({num(L"1")}), row({num(L"22"), str(L"'x'")})}), "Array(Tuple(Decimal(1,0)))"},
      {rows({untyped}), "Array(-)"},
      {rows({untyped, num(L"1")}), "Tuple(-,Decimal(1,0))"},
      {rows({num(L"1"), untyped}), "Tuple(Decimal(1,0),-)"},
      {row({num(L"1")}), "Tuple(Decimal(1,0))"},
      {row({}), "Tuple()"},
      {query({item(col(L"lanes"))}), "Array(SmallInt)"},
      {query({item(col(L"lanes")), item(col(L"founded"))}), "Array(Tuple(SmallInt,Date))"},
      {query({item(row({num(L"1"), num(L"22")}))}), "Array(Tuple(Decimal(1,0),Decimal(2,0)))"},
      {query({star(L"cities")}), "Array(Tuple(Integer,VarChar(100),BigInt,Double,Date,BinaryLargeObject))"},
      {query({}), "Array(Tuple())"},
      {query({item(untyped)}), "Array(-)"},
      {query({item(untyped), star(L"zzz"), item(num(L"1"))}), "Array(Tuple(-,Decimal(1,0)))"},
      // The query's own FROM is not looked at: only the inferer's scope is.
      {query({item(col(L"note"))}, {tp(L"sensors")}), "UnknownColumnReference .note"},
  };
  for (const auto& c : cases) EXPECT_EQ(typed(c.node), c.expected) << typed(c.node);
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
