// Name resolution and asterisk expansion of scopes built from FROM lists.
#include "scope/Describe.h"
#include "scope/Trees.h"
#include "support/SampleHost.h"

#include <velmor/sql/scope/ScopeBuilder.h>
#include <velmor/sql/types/Strings.h>

#include <gtest/gtest.h>

namespace velmor::sql::test {
namespace {

sample::SampleHost& host() {
  static sample::SampleHost instance;
  return instance;
}

std::shared_ptr<ColumnInfoScope> scopeOf(std::vector<Q> from, std::vector<Q> outer = {}) {
  std::shared_ptr<ColumnInfoScope> external;
  if (!outer.empty()) external = buildScope(host(), host(), spec({}, std::move(outer)), nullptr);
  return buildScope(host(), host(), spec({}, std::move(from)), external);
}

struct Resolution {
  const char* what;
  std::vector<Q> from;
  std::vector<Q> outer;
  const wchar_t* table;
  const wchar_t* column;
  const char* expected;  // origin of the column found, "null", or the fault
};

TEST(ScopeTest, ResolvesQualifiedAndUnqualifiedNames) {
  const Resolution cases[] = {
      {"plain table", {tp(L"cities")}, {}, L"", L"name", "cities.name"},
      {"qualified, case folded", {tp(L"cities")}, {}, L"CITIES", L"Name", "cities.name"},
      {"second name of a column", {tp(L"sensors")}, {}, L"", L"key", "sensors.id"},
      {"unknown column", {tp(L"cities")}, {}, L"", L"zzz", "null"},
      {"alias resolves", {tp(L"cities", L"c")}, {}, L"c", L"name", "cities.name"},
      {"alias hides the table name", {tp(L"cities", L"c")}, {}, L"cities", L"name", "null"},
      {"two tables conflict", {tp(L"cities"), tp(L"roads")}, {}, L"", L"name", "AmbiguousColumnReference .name"},
      {"ambiguity keeps the name as given", {tp(L"cities"), tp(L"roads")}, {}, L"", L"NAME",
       "AmbiguousColumnReference .NAME"},
      {"qualifier picks the left", {tp(L"cities"), tp(L"roads")}, {}, L"cities", L"name", "cities.name"},
      {"qualifier picks the right", {tp(L"cities"), tp(L"roads")}, {}, L"roads", L"name", "roads.name"},
      {"only one side has it", {tp(L"cities"), tp(L"roads")}, {}, L"", L"lanes", "roads.lanes"},
      {"USING join keeps both sides", {usingJoin(tp(L"cities"), tp(L"roads"), {L"id"})}, {}, L"", L"id",
       "AmbiguousColumnReference .id"},
      {"same table twice", {tp(L"cities", L"a"), tp(L"cities", L"b")}, {}, L"", L"id", "AmbiguousColumnReference .id"},
      {"same table twice, qualified", {tp(L"cities", L"a"), tp(L"cities", L"b")}, {}, L"b", L"id", "cities.id"},
      {"nested join conflicts", {join(tp(L"cities"), tp(L"roads")), tp(L"countries")}, {}, L"", L"obj",
       "AmbiguousColumnReference .obj"},
      {"inner column hides outer one", {tp(L"roads")}, {tp(L"cities")}, L"", L"name", "roads.name"},
      {"outer column seen from inside", {tp(L"roads")}, {tp(L"cities")}, L"", L"population", "cities.population"},
      {"outer table qualified", {tp(L"roads")}, {tp(L"cities")}, L"cities", L"name", "cities.name"},
      {"two outer tables still conflict", {tp(L"sensors")}, {tp(L"cities"), tp(L"roads")}, L"", L"name",
       "AmbiguousColumnReference .name"},
      {"derived table by its alias", {derived(query({item(col(L"id"))}, {tp(L"cities")}), L"d")}, {}, L"d", L"id",
       "cities.id"},
      {"derived table hides its source", {derived(query({item(col(L"id"))}, {tp(L"cities")}), L"d")}, {}, L"cities",
       L"id", "null"},
      {"derived plain table keeps its own name", {derived(tp(L"cities"), L"d")}, {}, L"cities", L"id", "cities.id"},
      {"set operation gives no scope", {derived(unionOf(query({item(col(L"id"))}, {tp(L"roads")}),
                                                        query({item(col(L"id"))}, {tp(L"roads")})), L"u"),
                                        tp(L"cities")}, {}, L"", L"id", "cities.id"},
  };
  for (const auto& c : cases) {
    const auto scope = scopeOf(c.from, c.outer);
    EXPECT_EQ(outcome([&] { return origin(scope->columnInfo(c.table, c.column)); }), c.expected) << c.what;
  }
}

std::string pairsText(const AsteriskColumns& pairs) {
  std::string text;
  for (const auto& [table, column] : pairs) text.append(text.empty() ? "" : " ").append(narrow(table)).append(".").append(narrow(column));
  return text;
}

struct Expansion {
  const char* what;
  std::vector<Q> from;
  std::vector<Q> outer;
  const wchar_t* table;
  const char* expected;
};

TEST(ScopeTest, ExpandsAsterisks) {
  const char* cities = "cities.id cities.name cities.population cities.area cities.founded cities.obj";
  const char* roads = "roads.id roads.name roads.city_id roads.length roads.lanes roads.obj";
  const Expansion cases[] = {
      {"all columns in order", {tp(L"Cities")}, {}, L"", cities},
      {"named by the alias", {tp(L"sensors", L"S")}, {}, L"", "s.id s.reading s.taken s.active s.note"},
      {"qualified", {tp(L"sensors", L"s")}, {}, L"S", "s.id s.reading s.taken s.active s.note"},
      {"USING join keeps both sides", {usingJoin(tp(L"cities"), tp(L"roads"), {L"id"})}, {}, L"",
       "cities.id cities.name cities.population cities.area cities.founded cities.obj "
       "roads.id roads.name roads.city_id roads.length roads.lanes roads.obj"},
      {"right side of a join", {tp(L"cities"), tp(L"roads")}, {}, L"roads", roads},
      {"same name twice gives its pairs once", {tp(L"cities"), tp(L"cities")}, {}, L"", cities},
      {"two aliases of one table", {tp(L"countries", L"a"), tp(L"countries", L"b")}, {}, L"",
       "a.code a.name a.population a.obj b.code b.name b.population b.obj"},
      {"unknown qualifier", {tp(L"cities")}, {}, L"roads", ""},
      {"star stays inside the subquery", {tp(L"roads")}, {tp(L"cities")}, L"", roads},
      {"qualified star reaches out", {tp(L"roads")}, {tp(L"cities")}, L"cities", cities},
      {"derived table", {derived(query({item(col(L"id")), item(num(L"1"), L"one")}, {tp(L"cities")}), L"d")}, {}, L"",
       "d.id d.one"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(pairsText(scopeOf(c.from, c.outer)->columnsForAsterisk(c.table)), c.expected) << c.what;
  }
}

TEST(ScopeTest, KeepsColumnCaseAndRepeatsInsideOneList) {
  sample::SampleHost local;
  local.addTable(L"Mixed", GenericTableInfo::create({ColumnInfo(L"Name", nullptr, L"Mixed"),
                                                      ColumnInfo(L"Name", nullptr, L"Mixed")}));
  const auto scope = buildScope(local, local, spec({}, {tp(L"MIXED"), tp(L"mixed")}), nullptr);
  EXPECT_EQ(pairsText(scope->columnsForAsterisk(L"")), "mixed.Name mixed.Name");
}

TEST(ScopeTest, EmptyAndNullAnswers) {
  const JoinScope empty({});
  EXPECT_TRUE(empty.columnInfo(L"", L"x").isNull());
  EXPECT_TRUE(empty.columnsInfo(L"", L"x").empty());
  EXPECT_TRUE(empty.columnsForAsterisk(L"").empty());
  EXPECT_EQ(empty.columnType(L"", L"x"), nullptr);

  const TableInfoScope table(ast::TablePrimary{L"cities", L""}, host().table(L"cities"));
  const auto unknown = table.columnsInfo(L"", L"zzz");
  ASSERT_EQ(unknown.size(), 1u);
  EXPECT_TRUE(unknown[0].isNull());
  EXPECT_EQ(typeText(table.columnType(L"", L"name")), "VarChar(100)");

  const auto joined = scopeOf({tp(L"cities"), tp(L"roads")});
  EXPECT_TRUE(joined->columnsInfo(L"", L"zzz").empty());
  EXPECT_EQ(joined->columnsInfo(L"", L"name").size(), 2u);  // no ambiguity at this level

  const ScopeTypeContext nothing;
  EXPECT_EQ(nothing.columnType(L"t", L"x"), nullptr);
  EXPECT_TRUE(nothing.columnsForAsterisk(L"t").empty());
}

TEST(ScopeTest, ResultColumnsBehindTheFromList) {
  // How a statement sees its own output columns: unqualified only, and after the FROM list.
  const auto from = scopeOf({tp(L"roads")});
  const auto result = buildTableInfo(host(), from, {item(col(L"lanes"), L"width"), item(col(L"name"))});
  const auto full = addExternalScope(from, std::make_shared<TableInfoScope>(ast::TablePrimary{}, result));
  EXPECT_EQ(origin(full->columnInfo(L"", L"width")), "roads.lanes");
  EXPECT_EQ(narrow(full->columnInfo(L"", L"name").canonicalName()), "name");
  EXPECT_TRUE(full->columnInfo(L"roads", L"width").isNull());
  EXPECT_EQ(pairsText(full->columnsForAsterisk(L"")), pairsText(from->columnsForAsterisk(L"")));
}

TEST(ScopeTest, ExternalScopeAddedOnlyWhenThere) {
  const auto inner = scopeOf({tp(L"roads")});
  EXPECT_EQ(addExternalScope(inner, nullptr), inner);
  const auto joined = addExternalScope(inner, scopeOf({tp(L"cities")}));
  ASSERT_NE(dynamic_cast<const JoinScope*>(joined.get()), nullptr);
  EXPECT_EQ(origin(joined->columnInfo(L"", L"founded")), "cities.founded");

  const ExternalScope hollow(nullptr);
  EXPECT_TRUE(hollow.columnInfo(L"", L"x").isNull());
  EXPECT_TRUE(hollow.columnsForAsterisk(L"t").empty());
}

TEST(ScopeTest, TableNamesCompareAsFoldedNames) {
  // Qualifiers in ASCII are compared without folding a copy; the rest must agree with normalized.
  const TableInfoScope greek(ast::TablePrimary{L"\x03A3\x03C4", L"Kk"}, nullptr);
  EXPECT_TRUE(greek.isTableName(L"\x03C3\x03C4"));
  EXPECT_TRUE(greek.isTableName(L"\x03A3\x03A4"));
  EXPECT_TRUE(greek.isTableName(L"KK"));
  EXPECT_TRUE(greek.isTableName(L"\x212Ak"));  // the Kelvin sign folds to k
  EXPECT_FALSE(greek.isTableName(L"k"));
  EXPECT_FALSE(greek.isTableName(L""));
  const TableInfoScope unnamed(ast::TablePrimary{L"", L""}, nullptr);
  EXPECT_TRUE(unnamed.isTableName(L""));
  EXPECT_TRUE(unnamed.columnInfo(L"", L"x").isNull());
  for (unsigned unit = 1; unit < 0x80; ++unit) {
    const std::wstring name(1, static_cast<wchar_t>(unit));
    const TableInfoScope scope(ast::TablePrimary{name, L""}, nullptr);
    EXPECT_TRUE(scope.isTableName(name) && scope.isTableName(normalized(name))) << unit;
  }
}

} // namespace
} // namespace velmor::sql::test
