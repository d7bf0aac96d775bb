// Overloads are chosen once per statement and reused: within one statement, an operator or a
// function met again with other operand types, another quantifier or another callee must still
// get its own overload. Each select item of a statement is typed as it is typed alone.
#include <velmor/sql/host/CatalogueFile.h>
#include <velmor/sql/parser/SqlParser.h>
#include <velmor/sql/scope/ScopeBuilder.h>
#include <velmor/sql/host/TypeNames.h>

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

} // namespace
} // namespace velmor::sql::test
