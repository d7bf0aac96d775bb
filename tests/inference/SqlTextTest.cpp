// Result tables with their types, and the types of whole select lists, from SQL texts.
#include "scope/Describe.h"
#include "scope/Trees.h"
#include "support/SampleHost.h"

#include <velmor/sql/ast/Traversal.h>
#include <velmor/sql/inference/TypeInferer.h>
#include <velmor/sql/parser/SqlParser.h>
#include <velmor/sql/scope/ScopeBuilder.h>

#include <gtest/gtest.h>

namespace velmor::sql::test {
namespace {

// The sample catalogue with IN over an array and CAST from integers.
class TextHost : public sample::SampleHost {
public:
  TextHost() {
    using type::PlainType;
    addOperator(OperationCode::In, {std::make_shared<OperatorOverloadInfo>(
                                       PlainType::Boolean, std::vector{PlainType::Integer, PlainType::Array},
                                       sample::returns(PlainType::Boolean))});
    std::vector<std::shared_ptr<OperatorOverloadInfo>> casts;
    for (const PlainType to : {PlainType::SmallInt, PlainType::BigInt, PlainType::Decimal, PlainType::VarChar}) {
      casts.push_back(std::make_shared<OperatorOverloadInfo>(to, std::vector{PlainType::Integer, to}, sample::sameAs(1)));
    }
    addOperator(OperationCode::Cast, std::move(casts));
  }
};

TextHost& host() {
  static TextHost instance;
  return instance;
}

std::string tableText(const TableInfo& table) {
  std::string text;
  for (std::size_t i = 0; i < table.columnCount(); ++i) {
    const ColumnInfo column = table.columnByIndex(i);
    text.append(i ? " " : "").append(narrow(column.canonicalName())).append(":").append(typeText(column.type()));
  }
  return text;
}

TEST(SqlTextTest, ResultTables) {
  const std::pair<const char*, const char*> cases[] = {
      {"SELECT id, id, id AS x FROM cities", "id:Integer id1:Integer x:Integer"},
      {"SELECT 1 AS x, 2 AS x FROM cities", "x:Decimal(1,0) 1:Decimal(1,0)"},
      {"SELECT id, 1, name, 'ab' FROM cities", "id:Integer column_1:Decimal(1,0) name:VarChar(100) column_2:Char(2)"},
      {"SELECT * FROM countries AS a, countries AS b",
       "code:Char(2) name:VarChar(80) population:BigInt obj:BinaryLargeObject "
       "code1:Char(2) name1:VarChar(80) population1:BigInt obj1:BinaryLargeObject"},
      {"SELECT * FROM countries JOIN sensors USING (name)",
       "code:Char(2) name:VarChar(80) population:BigInt obj:BinaryLargeObject "
       "id:Integer reading:Float taken:Timestamp active:Boolean note:VarChar(200)"},
      {"SELECT d.n, d.* FROM (SELECT name AS n, lanes + 1 FROM roads) AS d",
       "n:VarChar(60) name1:VarChar(60) column_1:Decimal(6,0)"},
      {"SELECT r.lanes * 2 AS w, upper(c.name) FROM cities AS c JOIN roads AS r ON r.city_id = c.id",
       "w:Decimal(5,0) column_1:VarChar(100)"},
      {"SELECT count(*), max(population) FROM cities", "column_1:BigInt column_2:Double"},
      {"SELECT abs(name) FROM cities", "NoGoodFunctionCandidate abs(VarChar(100)) 3"},
  };
  for (const auto& [sql, expected] : cases) {
    const auto query = parseQuery(sql);
    EXPECT_EQ(outcome([&] { return tableText(*buildTableInfo(host(), host(), query, nullptr)); }), expected) << sql;
  }
}

TEST(SqlTextTest, SelectTypes) {
  const std::pair<const char*, const char*> cases[] = {
      {"SELECT 12.345, 0, .5, 1.5E3, 'it''s', NULL, TRUE FROM cities",
       "Decimal(5,3) Decimal(1,0) Decimal(1,1) Decimal(4,3) Char(4) Boolean Boolean"},
      {"SELECT id IN (1, 2), (SELECT lanes FROM roads), ROW(1, 'a') FROM roads",
       "Boolean Array(SmallInt) Decimal(1,0) Char(1)"},
      {"SELECT name || 'x', length BETWEEN 1 AND 2 FROM roads", "VarChar(61) Boolean"},
      {"SELECT lanes = ANY (SELECT lanes FROM roads) FROM roads",
       "NoGoodOperatorOverload Equal(SmallInt Array(SmallInt)) 27"},
      {"SELECT CAST(id AS varchar(20)), CAST(id AS int(8)), CAST(id AS decimal(5, 2)) FROM roads",
       "VarChar(20) SmallInt Decimal(5,2)"},
      {"SELECT (SELECT lanes, city_id FROM cities) FROM roads", "Array(Tuple(SmallInt,Integer))"},
      {"SELECT lanes FROM roads WHERE EXISTS (SELECT note FROM sensors)", "SmallInt"},
      {"SELECT id FROM roads WHERE lanes > 1", "Integer"},
  };
  for (const auto& [sql, expected] : cases) {
    const auto query = parseQuery(sql);
    EXPECT_EQ(outcome([&] {
                const auto scope = buildScope(host(), host(), query, nullptr);
                return typesText(TypeInferer(host(), *scope).selectTypes(query.selectList));
              }),
              expected)
        << sql;
  }
}

} // namespace
} // namespace velmor::sql::test
