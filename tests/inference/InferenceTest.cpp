// Golden files under data/inference:
//   expressions.golden: an expression of "SELECT <it> FROM cities, roads AS r" and its type;
//   queries.golden: a query and the types of its select list over its own FROM list;
//   typenames.golden: the expression after CAST ... AS and the type it names, with the count of
//   size parameters the name takes.
#include "scope/Describe.h"
#include "scope/Trees.h"
#include "support/Golden.h"
#include "support/SampleHost.h"

#include <velmor/sql/inference/StringTypeInferer.h>
#include <velmor/sql/inference/TypeInferer.h>
#include <velmor/sql/scope/ScopeBuilder.h>

#include <gtest/gtest.h>

namespace velmor::sql::test {
namespace {

using type::PlainType;

// The sample catalogue with CAST, IN and EXISTS, and with Char optionally convertible to Decimal.
class InferenceHost : public sample::SampleHost {
public:
  InferenceHost();
  bool canConvert(PlainType from, PlainType to) const override {
    return (m_charToDecimal && from == PlainType::Char && to == PlainType::Decimal) || SampleHost::canConvert(from, to);
  }
  bool m_charToDecimal = false;
};

InferenceHost::InferenceHost() {
  std::vector<std::shared_ptr<OperatorOverloadInfo>> casts;
  for (const PlainType from : {PlainType::Integer, PlainType::BigInt, PlainType::VarChar}) {
    for (const PlainType to : {PlainType::SmallInt, PlainType::Integer, PlainType::BigInt, PlainType::Decimal,
                               PlainType::Double, PlainType::VarChar, PlainType::Date}) {
      casts.push_back(std::make_shared<OperatorOverloadInfo>(to, std::vector{from, to}, sample::sameAs(1)));
    }
  }
  addOperator(OperationCode::Cast, std::move(casts));
  for (const auto code : {OperationCode::In, OperationCode::Exists}) {
    std::vector<PlainType> operands{PlainType::Array};
    if (code == OperationCode::In) operands.insert(operands.begin(), PlainType::Integer);
    addOperator(code, {std::make_shared<OperatorOverloadInfo>(PlainType::Boolean, operands,
                                                              sample::returns(PlainType::Boolean))});
  }
}

InferenceHost& host() {
  static InferenceHost instance;
  return instance;
}

// cities with roads as r: unqualified names of cities or of roads alone, r.x for the rest.
const std::shared_ptr<ColumnInfoScope>& scope() {
  static const auto instance = buildScope(host(), host(),
                                          spec({}, {tp(L"cities"), tp(L"roads", L"r")}), nullptr);
  return instance;
}

std::string expressionType(const std::string& expression) {
  const auto query = parseQuery("SELECT " + expression + " FROM cities, roads AS r");
  return outcome([&] {
    return typeText(TypeInferer(host(), *scope()).inferNodeType(query.selectList.front()));
  });
}

std::string selectTypes(const std::string& sql) {
  const auto query = parseQuery(sql);
  return outcome([&] {
    const auto scope = buildScope(host(), host(), query, nullptr);
    return typesText(TypeInferer(host(), *scope).selectTypes(query.selectList));
  });
}

std::string namedType(const std::string& expression) {
  const auto query = parseQuery("SELECT " + expression + " FROM t");
  std::int32_t count = 0;
  const std::string type = outcome([&] {
    StringTypeInferer inferer;
    inferer.doVisit(ast::getNodeValue<ast::DerivedColumn>(query.selectList.front()).expression);
    count = inferer.parameterCount();
    return typeText(inferer.result());
  });
  return type + " " + std::to_string(count);
}

const bool registered = (registerGolden("Expressions", "inference/expressions.golden", expressionType),
                         registerGolden("Queries", "inference/queries.golden", selectTypes),
                         registerGolden("TypeNames", "inference/typenames.golden", namedType), true);

std::string typed(const ast::Node& node, const GlobalTypeContext& global = host()) {
  return outcome([&] {
    TypeInferer inferer(global, *scope());
    return typeText(inferer.inferNodeType(node));
  });
}

const E untyped = ast::makeNode<E>(ast::QueryOperation{});

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

// Names that no SQL text gives: the inferer neither trims nor strips brackets.
TEST(StringTypeInfererTest, NamesAsWritten) {
  for (const wchar_t* name : {L"", L"integer ", L"[int]"}) {
    StringTypeInferer inferer;
    inferer.doVisit(col(name));
    EXPECT_EQ(inferer.result(), nullptr);
    StringTypeInferer call;
    call.doVisit(fn(name));
    EXPECT_EQ(call.result(), nullptr);
  }
}

} // namespace
} // namespace velmor::sql::test
