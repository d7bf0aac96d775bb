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

// The scope of a FROM list written as text, behind the scope of an enclosing FROM list if any.
std::shared_ptr<ColumnInfoScope> scopeOf(const char* from, const char* outer = "") {
  std::shared_ptr<ColumnInfoScope> external;
  if (*outer) external = buildScope(host(), host(), parseQuery(std::string("SELECT 1 FROM ") + outer), nullptr);
  return buildScope(host(), host(), parseQuery(std::string("SELECT 1 FROM ") + from), external);
}

TEST(ScopeTest, ResolvesQualifiedAndUnqualifiedNames) {
  const struct {
    const char* from;
    const char* outer;
    const wchar_t* table;
    const wchar_t* column;
    const char* expected;  // origin of the column found, "null", or the fault
  } cases[] = {
      {"cities", "", L"", L"name", "cities.name"},
      {"cities", "", L"CITIES", L"Name", "cities.name"},
      {"sensors", "", L"", L"key", "sensors.id"},  // a second name of a column
      {"cities", "", L"", L"zzz", "null"},
      {"cities AS c", "", L"c", L"name", "cities.name"},
      {"cities AS c", "", L"cities", L"name", "null"},  // the alias hides the table name
      {"cities, roads", "", L"", L"name", "AmbiguousColumnReference .name"},
      {"cities, roads", "", L"", L"NAME", "AmbiguousColumnReference .NAME"},
      {"cities, roads", "", L"cities", L"name", "cities.name"},
      {"cities, roads", "", L"roads", L"name", "roads.name"},
      {"cities, roads", "", L"", L"lanes", "roads.lanes"},
      {"cities JOIN roads USING (id)", "", L"", L"id", "AmbiguousColumnReference .id"},
      {"cities AS a, cities AS b", "", L"", L"id", "AmbiguousColumnReference .id"},
      {"cities AS a, cities AS b", "", L"b", L"id", "cities.id"},
      {"cities JOIN roads ON 1 = 1, countries", "", L"", L"obj", "AmbiguousColumnReference .obj"},
      {"roads", "cities", L"", L"name", "roads.name"},  // an inner column hides an outer one
      {"roads", "cities", L"", L"population", "cities.population"},
      {"roads", "cities", L"cities", L"name", "cities.name"},
      {"sensors", "cities, roads", L"", L"name", "AmbiguousColumnReference .name"},
      {"(SELECT id FROM cities) AS d", "", L"d", L"id", "cities.id"},
      {"(SELECT id FROM cities) AS d", "", L"cities", L"id", "null"},
      {"(SELECT id FROM roads UNION SELECT id FROM roads) AS u, cities", "", L"", L"id", "cities.id"},
  };
  for (const auto& c : cases) {
    const auto scope = scopeOf(c.from, c.outer);
    EXPECT_EQ(outcome([&] { return origin(scope->columnInfo(c.table, c.column)); }), c.expected)
        << c.from << " / " << narrow(c.table) << "." << narrow(c.column);
  }
  // Only a host can put a plain table behind a derived table's alias; the table keeps its name.
  const auto plain = buildScope(host(), host(), spec({}, {derived(tp(L"cities"), L"d")}), nullptr);
  EXPECT_EQ(origin(plain->columnInfo(L"cities", L"id")), "cities.id");
}

std::string pairsText(const AsteriskColumns& pairs) {
  std::string text;
  for (const auto& [table, column] : pairs) text.append(text.empty() ? "" : " ").append(narrow(table)).append(".").append(narrow(column));
  return text;
}

TEST(ScopeTest, ExpandsAsterisks) {
  const char* cities = "cities.id cities.name cities.population cities.area cities.founded cities.obj";
  const char* roads = "roads.id roads.name roads.city_id roads.length roads.lanes roads.obj";
  const struct {
    const char* from;
    const char* outer;
    const wchar_t* table;
    const char* expected;
  } cases[] = {
      {"Cities", "", L"", cities},
      {"sensors AS S", "", L"", "s.id s.reading s.taken s.active s.note"},
      {"sensors AS s", "", L"S", "s.id s.reading s.taken s.active s.note"},
      {"cities JOIN roads USING (id)", "", L"",
       "cities.id cities.name cities.population cities.area cities.founded cities.obj "
       "roads.id roads.name roads.city_id roads.length roads.lanes roads.obj"},
      {"cities, roads", "", L"roads", roads},
      {"cities, cities", "", L"", cities},  // the same name twice gives its pairs once
      {"countries AS a, countries AS b", "", L"",
       "a.code a.name a.population a.obj b.code b.name b.population b.obj"},
      {"cities", "", L"roads", ""},
      {"roads", "cities", L"", roads},  // a star stays inside the subquery
      {"roads", "cities", L"cities", cities},
      {"(SELECT id, 1 AS one FROM cities) AS d", "", L"", "d.id d.one"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(pairsText(scopeOf(c.from, c.outer)->columnsForAsterisk(c.table)), c.expected) << c.from;
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

  const auto joined = scopeOf("cities, roads");
  EXPECT_TRUE(joined->columnsInfo(L"", L"zzz").empty());
  EXPECT_EQ(joined->columnsInfo(L"", L"name").size(), 2u);  // no ambiguity at this level

  const ScopeTypeContext nothing;
  EXPECT_EQ(nothing.columnType(L"t", L"x"), nullptr);
  EXPECT_TRUE(nothing.columnsForAsterisk(L"t").empty());
}

TEST(ScopeTest, ResultColumnsBehindTheFromList) {
  // How a statement sees its own output columns: unqualified only, and after the FROM list.
  const auto from = scopeOf("roads");
  const auto result = buildTableInfo(host(), from, {item(col(L"lanes"), L"width"), item(col(L"name"))});
  const auto full = addExternalScope(from, std::make_shared<TableInfoScope>(ast::TablePrimary{}, result));
  EXPECT_EQ(origin(full->columnInfo(L"", L"width")), "roads.lanes");
  EXPECT_EQ(narrow(full->columnInfo(L"", L"name").canonicalName()), "name");
  EXPECT_TRUE(full->columnInfo(L"roads", L"width").isNull());
  EXPECT_EQ(pairsText(full->columnsForAsterisk(L"")), pairsText(from->columnsForAsterisk(L"")));
}

TEST(ScopeTest, ExternalScopeAddedOnlyWhenThere) {
  const auto inner = scopeOf("roads");
  EXPECT_EQ(addExternalScope(inner, nullptr), inner);
  const auto joined = addExternalScope(inner, scopeOf("cities"));
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
