// Overloads are chosen once per statement and reused: within one statement, an operator or a
// function met again with other operand types, another quantifier or another callee must still
// get its own overload. Each select item of a statement is typed as it is typed alone. A
// catalogue with revisions lets the choices last from statement to statement, until it changes.
#include <velmor/sql/host/CatalogueFile.h>
#include <velmor/sql/parser/SqlParser.h>
#include <velmor/sql/scope/ScopeBuilder.h>
#include <velmor/sql/host/TypeNames.h>
#include <velmor/sql/validation/Validator.h>

#include "inference/Resolutions.h"

#include <functional>
#include <memory>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace velmor::sql::test {
namespace {

std::vector<std::string> columnTypes(const std::string& text) {
  const auto& catalogue = *host::gisSampleCatalogue();
  SqlParser parser(catalogue);
  EXPECT_TRUE(parser.parse(text)) << text;
  const auto table = buildTableInfo(catalogue, catalogue, parser.result, Scoping::Standard);
  std::vector<std::string> types;
  for (std::size_t i = 0; i < table->columnCount(); ++i) types.push_back(host::typeText(table->columnByIndex(i).type()));
  return types;
}

TEST(Resolutions, EachItemIsTypedAsItIsAlone) {
  const std::vector<std::string> items = {
      "zone_id + 1", "zone_id + 1.5", "area_sqm + 1", "zone_id + zone_id", // one operator, other operands
      "zone_id = 1", "zone_id = ANY (SELECT zone_id FROM zones)", "zone_id = ALL (SELECT 2.5 FROM zones)",
      "abs(zone_id)", "abs(area_sqm)", "abs(1.5)", // one function, other arguments
      "upper(land_use)", "lower(land_use)", "- zone_id", "- area_sqm", // other callees, unary forms
      "land_use || 'x'", "land_use || land_use",
  };
  std::string all = "SELECT ";
  for (std::size_t i = 0; i < items.size(); ++i) all += (i ? ", " : "") + items[i];
  const std::vector<std::string> together = columnTypes(all + " FROM parcels");
  ASSERT_EQ(together.size(), items.size());
  for (std::size_t i = 0; i < items.size(); ++i) {
    const std::vector<std::string> alone = columnTypes("SELECT " + items[i] + " FROM parcels");
    ASSERT_EQ(alone.size(), 1u) << items[i];
    EXPECT_EQ(together[i], alone.front()) << items[i];
  }
}

// Counts what the library asks of an operator of the catalogue.
class CountingOperator final : public OperatorInfo {
public:
  explicit CountingOperator(std::shared_ptr<OperatorInfo> inner) : mInner(std::move(inner)) {}
  std::vector<std::shared_ptr<OperatorOverloadInfo>> overloads() const override {
    ++asked;
    return mInner->overloads();
  }
  mutable int asked = 0;

private:
  std::shared_ptr<OperatorInfo> mInner;
};

// The catalogue's answers through a context that has no revisions.
class Unrevised final : public GlobalTypeContext {
public:
  explicit Unrevised(const host::Catalogue& inner) : mInner(inner) {}
  std::shared_ptr<FunctionInfo> function(const std::wstring& name) const override { return mInner.function(name); }
  std::shared_ptr<OperatorInfo> operatorInfo(OperationCode code) const override { return mInner.operatorInfo(code); }
  bool canConvert(type::PlainType from, type::PlainType to) const override { return mInner.canConvert(from, to); }
  std::shared_ptr<Type> convert(const std::shared_ptr<Type>& value, type::PlainType to) const override {
    return mInner.convert(value, to);
  }
  int compareTypes(type::PlainType a, type::PlainType b) const override { return mInner.compareTypes(a, b); }

private:
  const host::Catalogue& mInner;
};

struct Counted {
  host::Catalogue catalogue;
  std::shared_ptr<CountingOperator> plus;
  Counted() {
    catalogue.addStandardSql();
    catalogue.addTable(L"t", std::vector<ColumnInfo>{ColumnInfo(L"a", std::make_shared<Type>(type::PlainType::Integer), L"t")});
    plus = std::make_shared<CountingOperator>(catalogue.operatorInfo(OperationCode::Plus));
    catalogue.setOperator(OperationCode::Plus, plus);
  }
  std::string typeOf(const GlobalTypeContext& global, const std::string& text) {
    SqlParser parser(catalogue);
    EXPECT_TRUE(parser.parse(text)) << text;
    const auto table = buildTableInfo(global, catalogue, parser.result, Scoping::Standard);
    return host::typeText(table->columnByIndex(0).type());
  }
};

TEST(Resolutions, LastFromStatementToStatementWhileTheCatalogueStays) {
  Counted counted;
  EXPECT_EQ(counted.typeOf(counted.catalogue, "SELECT a + a FROM t"), "Integer");
  EXPECT_EQ(counted.typeOf(counted.catalogue, "SELECT a + a FROM t"), "Integer");
  Validator validator(counted.catalogue, counted.catalogue, nullptr);
  validator.setScoping(Scoping::Standard);
  SqlParser parser(counted.catalogue);
  ASSERT_TRUE(parser.parse("SELECT a + a FROM t"));
  EXPECT_TRUE(validator.validateStatement(parser.result));
  EXPECT_EQ(counted.plus->asked, 1);
  // Other operand types are another question.
  EXPECT_EQ(counted.typeOf(counted.catalogue, "SELECT a + 1.5 FROM t"), "Decimal(12,1)");
  EXPECT_EQ(counted.plus->asked, 2);
  // Any change of the catalogue, even one that the question does not touch, starts again.
  counted.catalogue.addConversion(type::PlainType::Date, type::PlainType::Date);
  EXPECT_EQ(counted.typeOf(counted.catalogue, "SELECT a + a FROM t"), "Integer");
  EXPECT_EQ(counted.plus->asked, 3);
  // A context without revisions is asked once a statement.
  const Unrevised unrevised(counted.catalogue);
  EXPECT_EQ(counted.typeOf(unrevised, "SELECT a + a FROM t"), "Integer");
  EXPECT_EQ(counted.typeOf(unrevised, "SELECT a + a FROM t"), "Integer");
  EXPECT_EQ(counted.plus->asked, 5);
}

// An operator of fixed overloads.
class FixedOperator final : public OperatorInfo {
public:
  explicit FixedOperator(std::vector<std::shared_ptr<OperatorOverloadInfo>> overloads) : mOverloads(std::move(overloads)) {}
  std::vector<std::shared_ptr<OperatorOverloadInfo>> overloads() const override { return mOverloads; }

private:
  std::vector<std::shared_ptr<OperatorOverloadInfo>> mOverloads;
};

TEST(Resolutions, AReplacedOperatorIsChosenAnew) {
  Counted counted;
  EXPECT_EQ(counted.typeOf(counted.catalogue, "SELECT a + a FROM t"), "Integer");
  const auto toDouble = [](const std::vector<std::shared_ptr<Type>>&) { return std::make_shared<Type>(type::PlainType::Double); };
  const std::vector<type::PlainType> integers{type::PlainType::Integer, type::PlainType::Integer};
  counted.catalogue.setOperator(OperationCode::Plus, std::make_shared<FixedOperator>(std::vector<std::shared_ptr<OperatorOverloadInfo>>{
                                                         std::make_shared<OperatorOverloadInfo>(type::PlainType::Double, integers, toDouble)}));
  EXPECT_EQ(counted.typeOf(counted.catalogue, "SELECT a + a FROM t"), "Double");
}

TEST(Resolutions, AChangedRankingIsChosenAnew) {
  // The same operator object throughout: only the revision tells that the choice may differ.
  Counted counted;
  const auto to = [](type::PlainType plain) {
    return [plain](const std::vector<std::shared_ptr<Type>>&) { return std::make_shared<Type>(plain); };
  };
  const auto overload = [&](type::PlainType plain) {
    return std::make_shared<OperatorOverloadInfo>(plain, std::vector<type::PlainType>{plain, plain}, to(plain));
  };
  counted.catalogue.setOperator(OperationCode::Plus, std::make_shared<FixedOperator>(std::vector<std::shared_ptr<OperatorOverloadInfo>>{
                                                         overload(type::PlainType::Decimal), overload(type::PlainType::Double)}));
  const std::string before = counted.typeOf(counted.catalogue, "SELECT a + a FROM t");
  counted.catalogue.setRanking({{type::PlainType::Integer}, {type::PlainType::Double}, {type::PlainType::Decimal}});
  EXPECT_EQ(counted.typeOf(counted.catalogue, "SELECT a + a FROM t"), "Double");
  counted.catalogue.setRanking({{type::PlainType::Integer}, {type::PlainType::Decimal}, {type::PlainType::Double}});
  EXPECT_EQ(counted.typeOf(counted.catalogue, "SELECT a + a FROM t"), before);
}

TEST(Resolutions, TheCatalogueFindsOperatorsOfAnyNumber) {
  // Numbers below 64 are looked up by place, the others by search: both sides of that line.
  host::Catalogue catalogue;
  for (const int number : {0, 1, 63, 64, 65, 1000}) {
    const auto code = static_cast<OperationCode>(number);
    EXPECT_EQ(catalogue.operatorInfo(code), nullptr) << number;
    const auto info = std::make_shared<FixedOperator>(std::vector<std::shared_ptr<OperatorOverloadInfo>>{});
    catalogue.setOperator(code, info);
    EXPECT_EQ(catalogue.operatorInfo(code), info) << number;
    catalogue.addOperator(code, std::vector<std::shared_ptr<OperatorOverloadInfo>>{});
    EXPECT_NE(catalogue.operatorInfo(code), info) << number;  // a host's operator gives way to the catalogue's own
    EXPECT_NE(catalogue.operatorInfo(code), nullptr) << number;
  }
  EXPECT_EQ(catalogue.operatorInfo(static_cast<OperationCode>(62)), nullptr);
}

TEST(Resolutions, EveryChangeOfTheCatalogueGivesANewRevision) {
  host::Catalogue catalogue;
  const std::vector<std::pair<const char*, std::function<void()>>> changes = {
      {"addStandardSql", [&] { catalogue.addStandardSql(); }},
      {"addTypeName", [&] { catalogue.addTypeName("Place", std::make_shared<Type>(type::PlainType::BinaryLargeObject)); }},
      {"addTypeSet", [&] { catalogue.addTypeSet("places", {"Place"}); }},
      {"addTable", [&] { catalogue.addTable(L"u", std::vector<ColumnInfo>{}); }},
      {"addFunction", [&] { catalogue.addFunction(L"f", FunctionKind::Ordinary, std::vector<std::shared_ptr<OverloadInfo>>{}); }},
      {"addOperator", [&] { catalogue.addOperator(OperationCode::Concat, std::vector<std::shared_ptr<OperatorOverloadInfo>>{}); }},
      {"setOperator", [&] { catalogue.setOperator(OperationCode::Concat, nullptr); }},
      {"addConversion", [&] { catalogue.addConversion(type::PlainType::Date, type::PlainType::Timestamp); }},
      {"setRanking", [&] { catalogue.setRanking({{type::PlainType::Integer}}); }},
      {"setPrecedenceLevel", [&] { catalogue.setPrecedenceLevel(OperationCode::Plus, 3); }},
  };
  for (const auto& [name, change] : changes) {
    const std::uint64_t before = catalogue.revision();
    change();
    EXPECT_NE(catalogue.revision(), before) << name;
  }
  // Two catalogues never share a revision.
  const host::Catalogue other;
  EXPECT_NE(other.revision(), catalogue.revision());
}

// The memo itself: enough entries to grow its slots several times, answers by callee,
// quantifier and plain types (untyped operands skipped), none for a question not asked.
TEST(Resolutions, MemoAnswersEveryKeptChoiceAcrossGrowth) {
  const auto& global = *host::gisSampleCatalogue();
  const std::shared_ptr<Type> integer = std::make_shared<Type>(type::PlainType::Integer);
  const std::shared_ptr<Type> real = std::make_shared<Type>(type::PlainType::Double);
  std::vector<std::shared_ptr<void>> callees;
  for (int i = 0; i < 40; ++i) callees.push_back(std::make_shared<int>(i));
  detail::Resolutions memo;
  EXPECT_EQ(memo.find(global, callees[0], 0, {integer}), nullptr);
  // Each callee with 0, 1 or 2 operands of two kinds and two quantifiers: 40 * 2 * 7 entries.
  const std::vector<std::vector<std::shared_ptr<Type>>> lists = {
      {}, {integer}, {real}, {integer, integer}, {integer, real}, {real, integer}, {real, real}};
  const auto plainOf = [](const std::vector<std::shared_ptr<Type>>& types) {
    std::vector<type::PlainType> plain;
    for (const auto& type : types) plain.push_back(type->plainType());
    return plain;
  };
  const auto overloadFor = [](std::size_t callee, int quantifier, std::size_t list) {
    return std::make_shared<std::size_t>(callee * 100 + static_cast<std::size_t>(quantifier) * 10 + list);
  };
  std::vector<std::shared_ptr<void>> kept;
  for (std::size_t c = 0; c < callees.size(); ++c) {
    for (int q = 0; q < 2; ++q) {
      for (std::size_t l = 0; l < lists.size(); ++l) {
        auto overload = overloadFor(c, q, l);
        kept.push_back(overload);
        memo.keep(global, callees[c], q, plainOf(lists[l]), overload);
      }
    }
  }
  EXPECT_EQ(memo.size(), kept.size());
  std::size_t at = 0;
  for (std::size_t c = 0; c < callees.size(); ++c) {
    for (int q = 0; q < 2; ++q) {
      for (std::size_t l = 0; l < lists.size(); ++l) {
        EXPECT_EQ(memo.find(global, callees[c], q, lists[l]), kept[at++]) << c << ' ' << q << ' ' << l;
      }
    }
  }
  // An untyped operand is skipped as the kept list skipped it.
  EXPECT_EQ(memo.find(global, callees[3], 1, {nullptr, integer, nullptr}), memo.find(global, callees[3], 1, {integer}));
  EXPECT_EQ(memo.find(global, callees[3], 2, {integer}), nullptr);
  EXPECT_EQ(memo.find(global, std::make_shared<int>(7), 0, {integer}), nullptr);
  EXPECT_EQ(memo.find(global, callees[3], 0, {integer, integer, integer}), nullptr);
  memo.clear();
  EXPECT_EQ(memo.size(), 0u);
  EXPECT_EQ(memo.find(global, callees[0], 0, {}), nullptr);
  memo.keep(global, callees[0], 0, {}, kept[0]);
  EXPECT_EQ(memo.find(global, callees[0], 0, {}), kept[0]);
}

} // namespace
} // namespace velmor::sql::test
