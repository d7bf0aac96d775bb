// Columns, the abstract table's default bodies and GenericTableInfo.
#include "types/ColumnOrder.h"

#include <velmor/sql/types/Table.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <vector>

namespace {

using namespace velmor::sql;
using type::PlainType;
using Names = std::vector<std::wstring>;
using Indices = std::vector<std::size_t>;
constexpr std::size_t npos = TableInfo::npos;

std::shared_ptr<Type> plain(PlainType t) { return std::make_shared<Type>(t); }

std::vector<PlainType> plainOrZero(const std::vector<std::shared_ptr<Type>>& types) {
  std::vector<PlainType> result;
  for (const auto& t : types) result.push_back(t ? t->plainType() : PlainType{});
  return result;
}

// id(Integer) also called key, Name(VarChar), name(Boolean), Город(Date)
GenericTableInfo sample() {
  return GenericTableInfo{ColumnInfo(Names{L"id", L"key"}, plain(PlainType::Integer), L"t"),
                          ColumnInfo(L"Name", plain(PlainType::VarChar), L"t"),
                          ColumnInfo(L"name", plain(PlainType::Boolean), L"t"),
                          ColumnInfo(L"\u0413\u043E\u0440\u043E\u0434", plain(PlainType::Date), L"t")};
}

TEST(ColumnInfo, NullAndConstructors) {
  const ColumnInfo a, b;
  EXPECT_TRUE(a.isNull());
  EXPECT_EQ(&a.names(), &b.names());  // one shared null data object
  EXPECT_EQ(a.type(), nullptr);

  const auto integer = plain(PlainType::Integer);

  EXPECT_THROW(ColumnInfo(Names{}, integer, L"t"), std::out_of_range);
  EXPECT_TRUE(ColumnInfo(Names{}, integer, L"x", L"t").isNull());  // null by shape

  const ColumnInfo many(Names{L"a", L"b", L"c"}, integer, L"orig", L"t");
  const ColumnInfo renamed = many.rename(L"z");
  EXPECT_EQ(renamed.names(), Names{L"z"});
  EXPECT_EQ(renamed.originalName(), L"orig");
  EXPECT_EQ(renamed.originalTable(), L"t");
  EXPECT_EQ(renamed.type(), integer);

  const ColumnInfo calculated = ColumnInfo::calculatedColumn(L"sum", integer);
  EXPECT_FALSE(calculated.isNull());
  EXPECT_TRUE(calculated.originalTable().empty());
  EXPECT_TRUE(calculated.originalName().empty());
}

TEST(ColumnInfo, OrderAndLooseEquality) {
  // By table, then names; case counts ("B" before "a").
  std::vector<ColumnInfo> columns = {ColumnInfo(L"a", nullptr, L"t2"), ColumnInfo(L"b", nullptr, L"t1"),
                                     ColumnInfo(L"a", nullptr, L"t1"), ColumnInfo(L"B", nullptr, L"t1"),
                                     ColumnInfo(Names{L"a", L"c"}, nullptr, L"t1")};
  std::sort(columns.begin(), columns.end());
  std::vector<std::pair<std::wstring, Names>> order;
  for (const auto& c : columns) order.emplace_back(c.originalTable(), c.names());
  EXPECT_EQ(order, (std::vector<std::pair<std::wstring, Names>>{
                       {L"t1", {L"B"}}, {L"t1", {L"a"}}, {L"t1", {L"a", L"c"}}, {L"t1", {L"b"}}, {L"t2", {L"a"}}}));

  EXPECT_TRUE(ColumnInfo(Names{L"x", L"y"}, nullptr, L"t") == ColumnInfo(L"y", nullptr, L"t"));
  EXPECT_FALSE(ColumnInfo(L"y", nullptr, L"t") == ColumnInfo(L"y", nullptr, L"u"));
  EXPECT_FALSE(ColumnInfo(L"y", nullptr, L"t") == ColumnInfo(L"Y", nullptr, L"t"));
  EXPECT_FALSE(ColumnInfo() == ColumnInfo());
}

TEST(GenericTableInfo, CaseInsensitiveIndexFirstClaimWins) {
  const GenericTableInfo table = sample();
  const std::vector<std::pair<std::wstring, std::size_t>> lookups = {
      {L"id", 0}, {L"KEY", 0}, {L"Key", 0}, {L"NAME", 1}, {L"name", 1}, {L"\u0433\u041E\u0420\u041E\u0414", 3},
      {L"missing", npos}, {L"", npos}};
  for (const auto& [name, index] : lookups) EXPECT_EQ(table.indexByName(name), index) << name;
  EXPECT_EQ(table.columnCount(), 4u);
  EXPECT_EQ(table.columnByName(L"KEY").canonicalName(), L"id");
  EXPECT_TRUE(table.columnByName(L"nope").isNull());
  EXPECT_TRUE(table.columnByIndex(4).isNull());
  EXPECT_EQ(table.indicesByNames({L"name", L"x", L"ID"}), (Indices{1, npos, 0}));
  EXPECT_EQ(table.indicesExceptNames({L"KEY", L"x"}), (Indices{1, 2, 3}));
}

TEST(GenericTableInfo, EmptyMeansAll) {
  const GenericTableInfo table = sample();
  EXPECT_EQ(table.complementIndices({1, 1, 99, npos}), (Indices{0, 2, 3}));
  EXPECT_EQ(table.complementIndices({}), (Indices{0, 1, 2, 3}));
  EXPECT_EQ(table.subTable({}).size(), 4u);
  const auto picked = table.subTable({2, 0, 2, 7});
  ASSERT_EQ(picked.size(), 3u);
  EXPECT_EQ(picked[0].canonicalName(), L"name");
  EXPECT_EQ(picked[1].canonicalName(), L"id");
  // Listing every column leaves an empty complement, which subTable reads as "all".
  EXPECT_EQ(table.complementTable({0, 1, 2, 3}).size(), 4u);
  EXPECT_EQ(table.complementTable({0, 3}).size(), 2u);

  EXPECT_EQ(table.columnsNames({}), (Names{L"id", L"Name", L"name", L"\u0413\u043E\u0440\u043E\u0434"}));
  EXPECT_EQ(table.columnsNames({3, 0}), (Names{L"\u0413\u043E\u0440\u043E\u0434", L"id"}));
  EXPECT_EQ(plainOrZero(table.columnsTypes(Indices{})).size(), 4u);
  EXPECT_EQ(plainOrZero(table.columnsTypes(Indices{2, npos})), (std::vector<PlainType>{PlainType::Boolean, PlainType{}}));
  EXPECT_EQ(plainOrZero(table.columnsTypes(Names{L"KEY", L"zz"})), (std::vector<PlainType>{PlainType::Integer, PlainType{}}));
  EXPECT_EQ(table.columnType(L"zz"), nullptr);
  EXPECT_EQ(table.columnType(npos), nullptr);
}

TEST(GenericTableInfo, ClearKeepsTheStaleIndex) {
  GenericTableInfo table = sample();
  table.clear();
  EXPECT_EQ(table.columnCount(), 0u);
  EXPECT_TRUE(table.isNull());
  EXPECT_TRUE(table.hasColumn(L"name"));            // the index still knows it
  EXPECT_TRUE(table.columnByName(L"name").isNull());  // but the column is gone
  EXPECT_EQ(table.columnType(L"name"), nullptr);
  table.updateSearchIndex();
  EXPECT_FALSE(table.hasColumn(L"name"));
}

TEST(GenericTableInfo, FactoriesAndHelpers) {
  const auto first = GenericTableInfo::null();
  EXPECT_TRUE(first->isNull());
  EXPECT_FALSE(first->isValid());
  EXPECT_NE(first, GenericTableInfo::null());
  EXPECT_TRUE(GenericTableInfo::create({ColumnInfo(L"a", nullptr, L"t")})->isValid());
}

// A host table that only answers the pure operations: the base bodies do the rest.
class HostTable : public TableInfo {
public:
  std::size_t columnCount() const override { return 2; }
  ColumnInfo columnByIndex(std::size_t index) const override {
    if (index == 0) return ColumnInfo(L"x", plain(PlainType::Double), L"h");
    if (index == 1) return ColumnInfo(L"y", nullptr, L"h");
    return ColumnInfo();
  }
  std::size_t indexByName(const std::wstring& name) const override {
    return name == L"x" ? 0 : name == L"y" ? 1 : npos;
  }
};

TEST(TableInfo, DefaultBodies) {
  const HostTable table;
  EXPECT_EQ(table.columnsNames({}), (Names{L"x", L"y"}));
  EXPECT_EQ(table.columnsNames({1}), Names{L"y"});
  EXPECT_EQ(plainOrZero(table.columnsTypes()), (std::vector<PlainType>{PlainType::Double, PlainType{}}));
  EXPECT_TRUE(table.hasColumn(L"y"));
  EXPECT_FALSE(table.hasColumn(L"z"));
  EXPECT_EQ(table.columnByName(L"x").canonicalName(), L"x");
  EXPECT_TRUE(table.columnByName(L"z").isNull());
}

} // namespace
