// Golden files under data/scope:
//   names.golden: "FROM list | enclosing FROM list | table.column" and the origin of the column
//   found (or "t.*", "*" and the pairs they expand to);
//   results.golden: "query [| enclosing FROM list]" and its result columns, one per line.
#include "scope/Describe.h"
#include "scope/Trees.h"
#include "support/Golden.h"
#include "support/SampleHost.h"

#include <velmor/sql/scope/ScopeBuilder.h>
#include <velmor/sql/types/Strings.h>

#include <gtest/gtest.h>

#include <algorithm>

namespace velmor::sql::test {
namespace {

sample::SampleHost& host() {
  static sample::SampleHost instance;
  return instance;
}

std::vector<std::string> fields(const std::string& input) {
  std::vector<std::string> out;
  for (std::size_t begin = 0, bar; begin <= input.size(); begin = bar + 1) {
    bar = std::min(input.find('|', begin), input.size());
    const auto first = input.find_first_not_of(' ', begin);
    const auto last = input.find_last_not_of(' ', bar - 1);
    out.push_back(first < bar && last != std::string::npos ? input.substr(first, last - first + 1) : "");
  }
  return out;
}

// The scope of a FROM list written as text, behind the scope of an enclosing FROM list if any.
std::shared_ptr<ColumnInfoScope> scopeOf(const std::string& from, const std::string& outer = "") {
  std::shared_ptr<ColumnInfoScope> external;
  if (!outer.empty()) external = buildScope(host(), host(), parseQuery("SELECT 1 FROM " + outer), nullptr);
  return buildScope(host(), host(), parseQuery("SELECT 1 FROM " + from), external);
}

std::wstring wide(const std::string& text) { return std::wstring(text.begin(), text.end()); }

std::string pairsText(const AsteriskColumns& pairs) {
  std::string text;
  for (const auto& [table, column] : pairs) text.append(text.empty() ? "" : " ").append(narrow(table)).append(".").append(narrow(column));
  return text;
}

std::string resolve(const std::string& input) {
  const auto parts = fields(input);
  const auto scope = scopeOf(parts.at(0), parts.at(1));
  const std::string& name = parts.at(2);
  const auto dot = name.find('.');
  if (name.back() == '*') return pairsText(scope->columnsForAsterisk(dot == std::string::npos ? L"" : wide(name.substr(0, dot))));
  return outcome([&] { return origin(scope->columnInfo(wide(name.substr(0, dot)), wide(name.substr(dot + 1)))); });
}

std::string tableText(const TableInfo& table) {
  std::string text;
  for (std::size_t i = 0; i < table.columnCount(); ++i) {
    const ColumnInfo column = table.columnByIndex(i);
    text.append(i ? "\n" : "").append(narrow(column.canonicalName())).append(" ").append(origin(column));
    text.append(" ").append(typeText(column.type()));
  }
  return text;
}

std::string results(const std::string& input) {
  const auto parts = fields(input);
  std::shared_ptr<ColumnInfoScope> external;
  if (parts.size() > 1) external = buildScope(host(), host(), parseQuery("SELECT 1 FROM " + parts[1]), nullptr);
  const auto query = parseQuery(parts[0]);
  return outcome([&] { return tableText(*buildTableInfo(host(), host(), query, external)); });
}

const bool registered = (registerGolden("Names", "scope/names.golden", resolve),
                         registerGolden("Results", "scope/results.golden", results), true);

TEST(ScopeTest, PlainTableBehindADerivedAlias) {
  // Only a host can put a plain table behind a derived table's alias; the table keeps its name.
  const auto plain = buildScope(host(), host(), selectFrom({}, {derived(tp(L"cities"), L"d")}), nullptr);
  EXPECT_EQ(origin(plain->columnInfo(L"cities", L"id")), "cities.id");
}

TEST(ScopeTest, KeepsColumnCaseAndRepeatsInsideOneList) {
  sample::SampleHost local;
  local.addTable(L"Mixed", GenericTableInfo::create({ColumnInfo(L"Name", nullptr, L"Mixed"),
                                                      ColumnInfo(L"Name", nullptr, L"Mixed")}));
  const auto scope = buildScope(local, local, selectFrom({}, {tp(L"MIXED"), tp(L"mixed")}), nullptr);
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
  // Folding stops at a NUL unit: what follows it compares unit for unit.
  const std::wstring nul(L"t\0X", 3);
  const TableInfoScope cut(ast::TablePrimary{nul, L""},
                           GenericTableInfo::create({ColumnInfo(L"x", nullptr, nul)}));
  const std::pair<std::wstring, bool> nulCases[] = {
      {nul, true}, {std::wstring(L"T\0X", 3), true}, {std::wstring(L"t\0x", 3), false}, {L"t", false}};
  for (const auto& [name, same] : nulCases) {
    EXPECT_EQ(cut.isTableName(name), same) << narrow(name);
    EXPECT_EQ(cut.isTableName(name), normalized(name) == normalized(nul)) << narrow(name);
  }
  EXPECT_FALSE(cut.columnInfo(nul, L"x").isNull());
  EXPECT_EQ(cut.columnsForAsterisk(nul).size(), 1u);
  for (unsigned unit = 1; unit < 0x80; ++unit) {
    const std::wstring name(1, static_cast<wchar_t>(unit));
    const TableInfoScope scope(ast::TablePrimary{name, L""}, nullptr);
    EXPECT_TRUE(scope.isTableName(name) && scope.isTableName(normalized(name))) << unit;
  }
}

TEST(ScopeBuilderTest, QueriesWithoutFrom) {
  // Only a host builds these: the grammar always asks for a FROM.
  const std::pair<ast::QuerySpecification, const char*> cases[] = {
      {selectFrom({item(num(L"1")), item(str(L"'a'"))}), "column_1 . Decimal(1,0)\ncolumn_2 . Char(1)"},
      {selectFrom({item(col(L"id"))}), "UnknownColumnReference .id"},
      {selectFrom({star()}), ""},
  };
  for (const auto& [query, expected] : cases) {
    EXPECT_EQ(outcome([&] { return tableText(*buildTableInfo(host(), host(), query, nullptr)); }), expected);
  }
}

TEST(ScopeBuilderTest, ScopesOfTableReferences) {
  EXPECT_EQ(buildScope(host(), host(), selectFrom({item(num(L"1"))}), buildScope(host(), host(), selectFrom({}, {tp(L"cities")}), nullptr)),
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
