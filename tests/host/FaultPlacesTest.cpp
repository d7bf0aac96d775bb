// Fault places: each fault of a check with the stretch of text it is about, shown under the
// statement (golden file host/fault-places.golden). Inputs starting "small: " are checked against
// the CLI's small catalogue, the others against the GIS sample.
#include "support/Golden.h"

#include <velmor/sql/host/Catalogue.h>
#include <velmor/sql/host/CatalogueFile.h>
#include <velmor/sql/host/Check.h>
#include <velmor/sql/host/TypeNames.h>
#include <velmor/sql/ast/Traversal.h>
#include <velmor/sql/parser/SqlParser.h>
#include <velmor/sql/validation/Validator.h>

#include <gtest/gtest.h>

#include <string>

namespace velmor::sql::test {
namespace {

std::string describe(const std::string& input) {
  static const auto sample = host::gisSampleCatalogue();
  static const auto small = host::loadCatalogue(VELMOR_TEST_DATA_DIR "/cli/catalogues/small.json");
  const bool useSmall = input.rfind("small: ", 0) == 0;
  const std::string sql = useSmall ? input.substr(7) : input;
  const host::Catalogue& catalogue = useSmall ? *small : *sample;

  SqlParser parser(catalogue);
  parser.keepSourceRanges = true;
  if (!parser.parse(sql)) return parser.errors.front()->what();
  const auto faults = host::checkStatement(parser.result, parser.sourceRanges.get(), catalogue, catalogue);
  if (faults.empty()) return "ok";
  std::string out;
  for (const auto& fault : faults) {
    if (!out.empty()) out += '\n';
    if (fault.range) {
      const std::size_t from = codePointWidth(sql, fault.range->beginOffset) + (useSmall ? 7 : 0);
      out += std::string(from, ' ') +
             std::string(codePointWidth(sql, fault.range->endOffset) - codePointWidth(sql, fault.range->beginOffset), '^') + ' ' +
             rangeText(*fault.range) + ' ';
    } else {
      out += "(no place) ";
    }
    out += host::errorLine(*fault.fault);
  }
  return out;
}

const bool registered = (registerGolden("FaultPlaces", "host/fault-places.golden", describe), true);

TEST(FaultPlaces, ListsTheSameFaultsWithOrWithoutPlaces) {
  const auto catalogue = host::gisSampleCatalogue();
  SqlParser parser(*catalogue);
  ASSERT_TRUE(parser.parse("SELECT nosuch.* FROM parcels, parcels WHERE count(*) > 1"));
  const auto placed = host::checkStatement(parser.result, nullptr, *catalogue, *catalogue);
  Validator validator(*catalogue, *catalogue);
  validator.validate(ast::getNodeValue<ast::QuerySpecification>(parser.result));
  ASSERT_EQ(placed.size(), validator.mErrors.size());
  for (std::size_t i = 0; i < placed.size(); ++i) {
    EXPECT_EQ(host::errorLine(*placed[i].fault), host::errorLine(*validator.mErrors[i]));
    EXPECT_FALSE(placed[i].range);  // no ranges were kept
  }
  EXPECT_THROW(host::checkStatement(ast::makeEmptyNode(), nullptr, *catalogue, *catalogue), std::invalid_argument);
}

} // namespace
} // namespace velmor::sql::test
