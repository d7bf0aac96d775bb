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

struct ResultCase {
  const char* what;
  ast::QuerySpecification query;
  std::vector<Q> outer;
  const char* expected;
};

TEST(ScopeBuilderTest, NamesResultColumns) {
  const ResultCase cases[] = {
      {"equal aliases of calculated columns", spec({item(num(L"1"), L"x"), item(num(L"2"), L"x")}), {}, "x:. 1:."},
      {"same column thrice", spec({item(col(L"id")), item(col(L"id")), item(col(L"id"))}, {tp(L"cities")}), {},
       "id:cities.id id1:cities.id id2:cities.id"},
      {"renaming starts from the original name",
       spec({item(col(L"id"), L"b"), item(col(L"id"), L"b")}, {tp(L"cities")}), {}, "b:cities.id id1:cities.id"},
      {"alias of a column", spec({item(col(L"c", L"name"), L"label")}, {tp(L"cities", L"c")}), {},
       "label:cities.name"},
      {"calculated column", spec({item(op(OperationCode::Plus, {col(L"id"), num(L"1")}))}, {tp(L"cities")}), {},
       "column_1:."},
      {"only unnamed items count",
       spec({item(col(L"id")), item(num(L"1")), item(num(L"5"), L"five"), item(col(L"name")), item(num(L"2"))},
            {tp(L"cities")}),
       {}, "id:cities.id column_1:. five:. name:cities.name column_2:."},
      {"column with two names keeps them", spec({item(col(L"key"))}, {tp(L"sensors")}), {}, "id:sensors.id"},
      {"same name in two tables is no duplicate", spec({item(col(L"c", L"name")), item(col(L"r", L"name"))},
                                                       {tp(L"cities", L"c"), tp(L"roads", L"r")}),
       {}, "name:cities.name name:roads.name"},
      {"same table twice", spec({star()}, {tp(L"countries", L"a"), tp(L"countries", L"b")}), {},
       "code:countries.code name:countries.name population:countries.population obj:countries.obj "
       "code1:countries.code name1:countries.name population1:countries.population obj1:countries.obj"},
      {"USING join", spec({star()}, {usingJoin(tp(L"countries"), tp(L"sensors"), {L"id"})}), {},
       "code:countries.code name:countries.name population:countries.population obj:countries.obj "
       "id:sensors.id reading:sensors.reading taken:sensors.taken active:sensors.active note:sensors.note"},
      {"qualified star then a column", spec({star(L"s"), item(col(L"note"))}, {tp(L"sensors", L"s")}), {},
       "id:sensors.id reading:sensors.reading taken:sensors.taken active:sensors.active note:sensors.note "
       "note1:sensors.note"},
      {"unknown qualifier gives nothing", spec({star(L"zzz"), item(col(L"note"))}, {tp(L"sensors")}), {},
       "note:sensors.note"},
      {"derived table", spec({star(), item(col(L"d", L"n"))},
                             {derived(query({item(col(L"name"), L"n"), item(num(L"1"))}, {tp(L"roads")}), L"d")}),
       {}, "n:roads.name column_1:. name1:roads.name"},
      {"subquery sees the enclosing query", spec({item(col(L"population"))}, {tp(L"roads")}), {tp(L"cities")},
       "population:cities.population"},
      {"outer copies of the same table come twice", spec({star()}, {tp(L"countries")}), {tp(L"countries")},
       "code:countries.code code1:countries.code name:countries.name name1:countries.name "
       "population:countries.population population1:countries.population obj:countries.obj obj1:countries.obj"},
      {"no FROM, literals only", spec({item(num(L"1")), item(str(L"'a'"))}), {}, "column_1:. column_2:."},
      {"no FROM, a column", spec({item(col(L"id"))}), {}, "UnknownColumnReference .id"},
      {"no FROM, an asterisk", spec({star()}), {}, ""},
      {"derived set operation", spec({star()}, {derived(unionOf(query({item(num(L"1"))}), query({item(num(L"2"))})),
                                                        L"u")}),
       {}, ""},
      {"unknown column", spec({item(col(L"c", L"zzz"))}, {tp(L"cities", L"c")}), {}, "UnknownColumnReference c.zzz"},
      {"ambiguous column", spec({item(col(L"obj"))}, {tp(L"cities"), tp(L"roads")}), {},
       "AmbiguousColumnReference .obj"},
      {"unknown table before any column", spec({item(col(L"zzz"))}, {tp(L"cities"), tp(L"Nowhere")}), {},
       "NonExistentTable Nowhere"},
      {"unknown table in a derived table", spec({star()}, {derived(query({star()}, {tp(L"nowhere")}), L"d")}), {},
       "NonExistentTable nowhere"},
      {"faults of calculated items pass through", spec({item(fn(L"nosuch"))}, {tp(L"cities")}), {},
       "UnknownFunction nosuch"},
  };
  for (const auto& c : cases) {
    std::shared_ptr<ColumnInfoScope> external;
    if (!c.outer.empty()) external = buildScope(host(), host(), spec({}, c.outer), nullptr);
    EXPECT_EQ(outcome([&] { return tableText(*buildTableInfo(host(), host(), c.query, external)); }), c.expected)
        << c.what;
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
