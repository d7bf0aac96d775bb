// Result tables of select lists: which columns a query yields and how they are named.
#include "scope/Describe.h"
#include "scope/Trees.h"
#include "support/SampleHost.h"

#include <velmor/sql/scope/ScopeBuilder.h>

#include <gtest/gtest.h>

namespace velmor::sql::test {
namespace {

sample::SampleHost& host() {
  static sample::SampleHost instance;
  return instance;
}

// "name:origin:type" per column, origin being originalTable.originalName.
std::string tableText(const TableInfo& table) {
  std::string text;
  for (std::size_t i = 0; i < table.columnCount(); ++i) {
    const ColumnInfo column = table.columnByIndex(i);
    text.append(i ? " " : "").append(narrow(column.canonicalName())).append(":").append(origin(column));
  }
  return text;
}

TEST(ScopeBuilderTest, NamesResultColumns) {
  const struct {
    const char* sql;
    const char* outer;  // the FROM list of an enclosing query, if any
    const char* expected;
  } cases[] = {
      {"SELECT 1 AS x, 2 AS x FROM cities", "", "x:. 1:."},
      {"SELECT id, id, id FROM cities", "", "id:cities.id id1:cities.id id2:cities.id"},
      {"SELECT id AS b, id AS b FROM cities", "", "b:cities.id id1:cities.id"},
      {"SELECT c.name AS label FROM cities AS c", "", "label:cities.name"},
      {"SELECT id + 1 FROM cities", "", "column_1:."},
      {"SELECT id, 1, 5 AS five, name, 2 FROM cities", "",
       "id:cities.id column_1:. five:. name:cities.name column_2:."},
      {"SELECT key FROM sensors", "", "id:sensors.id"},
      {"SELECT c.name, r.name FROM cities AS c, roads AS r", "", "name:cities.name name:roads.name"},
      {"SELECT * FROM countries AS a, countries AS b", "",
       "code:countries.code name:countries.name population:countries.population obj:countries.obj "
       "code1:countries.code name1:countries.name population1:countries.population obj1:countries.obj"},
      {"SELECT * FROM countries JOIN sensors USING (id)", "",
       "code:countries.code name:countries.name population:countries.population obj:countries.obj "
       "id:sensors.id reading:sensors.reading taken:sensors.taken active:sensors.active note:sensors.note"},
      {"SELECT s.*, note FROM sensors AS s", "",
       "id:sensors.id reading:sensors.reading taken:sensors.taken active:sensors.active note:sensors.note "
       "note1:sensors.note"},
      {"SELECT zzz.*, note FROM sensors", "", "note:sensors.note"},
      {"SELECT *, d.n FROM (SELECT name AS n, 1 FROM roads) AS d", "", "n:roads.name column_1:. name1:roads.name"},
      {"SELECT population FROM roads", "cities", "population:cities.population"},
      {"SELECT * FROM countries", "countries",
       "code:countries.code code1:countries.code name:countries.name name1:countries.name "
       "population:countries.population population1:countries.population obj:countries.obj obj1:countries.obj"},
      {"SELECT * FROM (SELECT 1 FROM cities UNION SELECT 2 FROM cities) AS u", "", ""},
      {"SELECT c.zzz FROM cities AS c", "", "UnknownColumnReference c.zzz"},
      {"SELECT obj FROM cities, roads", "", "AmbiguousColumnReference .obj"},
      {"SELECT zzz FROM cities, Nowhere", "", "NonExistentTable Nowhere"},
      {"SELECT * FROM (SELECT * FROM nowhere) AS d", "", "NonExistentTable nowhere"},
      {"SELECT nosuch() FROM cities", "", "UnknownFunction nosuch"},
  };
  for (const auto& c : cases) {
    std::shared_ptr<ColumnInfoScope> external;
    if (*c.outer) external = buildScope(host(), host(), parseQuery(std::string("SELECT 1 FROM ") + c.outer), nullptr);
    const auto query = parseQuery(c.sql);
    EXPECT_EQ(outcome([&] { return tableText(*buildTableInfo(host(), host(), query, external)); }), c.expected)
        << c.sql;
  }
}

TEST(ScopeBuilderTest, QueriesWithoutFrom) {
  // Only a host builds these: the grammar always asks for a FROM.
  const std::pair<ast::QuerySpecification, const char*> cases[] = {
      {spec({item(num(L"1")), item(str(L"'a'"))}), "column_1:. column_2:."},
      {spec({item(col(L"id"))}), "UnknownColumnReference .id"},
      {spec({star()}), ""},
  };
  for (const auto& [query, expected] : cases) {
    EXPECT_EQ(outcome([&] { return tableText(*buildTableInfo(host(), host(), query, nullptr)); }), expected);
  }
}

TEST(ScopeBuilderTest, CalculatedColumnsAreTyped) {
  const auto table = buildTableInfo(host(), host(),
                                    spec({item(op(OperationCode::Plus, {col(L"length"), num(L"1.5")})),
                                          item(fn(L"upper", {col(L"name")}), L"u"), item(col(L"lanes"))},
                                         {tp(L"roads")}),
                                    nullptr);
  EXPECT_EQ(typeText(table->columnByIndex(0).type()), "Decimal(11,2)");
  EXPECT_EQ(typeText(table->columnByIndex(1).type()), "VarChar(60)");
  EXPECT_EQ(typeText(table->columnByIndex(2).type()), "SmallInt");
  EXPECT_EQ(table->columnByName(L"U").canonicalName(), L"u");
}

TEST(ScopeBuilderTest, ScopesOfTableReferences) {
  EXPECT_EQ(buildScope(host(), host(), spec({item(num(L"1"))}), buildScope(host(), host(), spec({}, {tp(L"cities")}), nullptr)),
            nullptr);
  // Kinds that are no table reference give no scope, and no report.
  EXPECT_EQ(buildScopeForTableReference(host(), host(), ast::makeNode<Q>(ast::ExplicitTable{L"cities"}), nullptr), nullptr);
  const auto derivedScope = buildScopeForTableReference(
      host(), host(), derived(query({item(col(L"id"))}, {tp(L"cities")}), L"D"), nullptr);
  ASSERT_NE(derivedScope, nullptr);
  EXPECT_EQ(origin(derivedScope->columnInfo(L"d", L"ID")), "cities.id");
}

} // namespace
} // namespace velmor::sql::test
