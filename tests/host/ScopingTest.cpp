// Standard scoping through the kit: each statement of host/scoping.golden is checked against the
// GIS sample, and its faults are shown under it with carets, their messages and classes. Inputs
// starting "compatible: " are checked with the library's default rules instead.
#include "support/Golden.h"

#include <velmor/sql/errors/SemanticErrors.h>
#include <velmor/sql/host/Catalogue.h>
#include <velmor/sql/host/CatalogueFile.h>
#include <velmor/sql/host/Utf8.h>
#include <velmor/sql/host/Check.h>
#include <velmor/sql/host/Messages.h>
#include <velmor/sql/host/TypeNames.h>
#include <velmor/sql/inference/TypeInferer.h>
#include <velmor/sql/parser/SqlParser.h>
#include <velmor/sql/scope/ScopeBuilder.h>
#include <velmor/sql/validation/Validator.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <string>

namespace velmor::sql::test {
namespace {

std::string describe(const std::string& input) {
  static const auto sample = host::gisSampleCatalogue();
  const std::string prefix = "compatible: ";
  const bool compatible = input.rfind(prefix, 0) == 0;
  const std::string sql = compatible ? input.substr(prefix.size()) : input;
  const std::size_t shift = compatible ? prefix.size() : 0;

  SqlParser parser(*sample);
  parser.keepSourceRanges = true;
  if (!parser.parse(sql)) return parser.errors.front()->what();
  const Scoping scoping = compatible ? Scoping::Compatible : Scoping::Standard;
  if (!host::isCheckable(parser.result, scoping)) return "not checkable";
  const auto faults = host::checkStatement(parser.result, parser.sourceRanges.get(), *sample, *sample, scoping);
  if (faults.empty()) return "ok";
  std::string out;
  for (const auto& fault : faults) {
    if (!out.empty()) out += '\n';
    if (fault.range) {
      const std::size_t from = codePointWidth(sql, fault.range->beginOffset) + shift;
      out += std::string(from, ' ') +
             std::string(codePointWidth(sql, fault.range->endOffset) - codePointWidth(sql, fault.range->beginOffset), '^') + ' ';
    } else {
      out += "(no place) ";
    }
    out += fault.message + " [" + host::faultClassName(*fault.fault) + ']';
  }
  return out;
}

const bool registered = (registerGolden("Scoping", "host/scoping.golden", describe), true);

// Over a sample of the benchmark corpus (the project's own copy), standard scoping never calls a
// column unknown that its table has, and every statement kind is checked.
TEST(Scoping, CorpusSampleHasNoUnknownColumns) {
  auto catalogue = std::make_shared<host::Catalogue>();
  host::readCatalogue(*catalogue, host::gisSampleCatalogueText(), "GIS sample");
  // The corpus's wide table of numbers, which the GIS sample leaves out.
  std::vector<host::Column> wide;
  for (int i = 1; i <= 400; ++i) {
    char name[8];
    std::snprintf(name, sizeof name, "f%03d", i);
    wide.push_back({host::fromUtf8(name), "Decimal(12,2)", {}});
  }
  catalogue->addTable(L"wide_rows", wide);

  std::ifstream in(VELMOR_TEST_DATA_DIR "/validation/corpus-sample.sql");
  ASSERT_TRUE(in) << "tests/data/validation/corpus-sample.sql";
  std::string line;
  int statements = 0;
  int checked = 0;
  while (std::getline(in, line)) {
    if (line.empty()) continue;
    ++statements;
    SqlParser parser(*catalogue);
    ASSERT_TRUE(parser.parse(line)) << line;
    if (!host::isCheckable(parser.result, Scoping::Standard)) continue;
    ++checked;
    for (const auto& fault : host::checkStatement(parser.result, nullptr, *catalogue, *catalogue, Scoping::Standard)) {
      const auto type = fault.fault->type();
      EXPECT_NE(type, SqlErrorType::UnknownColumnReference) << fault.message << "\n" << line;
      EXPECT_NE(type, SqlErrorType::UnknownTableReference) << fault.message << "\n" << line;
      EXPECT_NE(type, SqlErrorType::AmbiguousColumnReference) << fault.message << "\n" << line;
      EXPECT_NE(type, SqlErrorType::UngroupedColumnReference) << fault.message << "\n" << line;
    }
  }
  EXPECT_GE(statements, 400);
  EXPECT_EQ(checked, statements);
}

// A plain TypeInferer in standard scoping types a subquery in its own scope and throws the first
// fault, as the compatible one does.
TEST(Scoping, TypeInfererTypesSubqueriesInTheirOwnScope) {
  const auto catalogue = host::gisSampleCatalogue();
  const auto parcels = std::make_shared<TableInfoScope>(ast::TablePrimary{L"parcels", {}}, catalogue->table(L"parcels"));
  SqlParser parser(*catalogue);
  struct Case {
    const char* expression;
    const char* standard;
    const char* compatible;
  };
  const Case cases[] = {
      {"(SELECT max(z.max_height) FROM zones z WHERE z.zone_id = zone_id)", "Decimal(6,2)", "UnknownColumnReference"},
      {"shape WITHIN (SELECT shape FROM zones WHERE zone_id = 3)", "Boolean", "NoGoodOperatorOverload"},
      {"zone_id IN (SELECT zone_id FROM zones)", "Boolean", "Boolean"},
      {"(SELECT zone_id, shape FROM zones)", "SubqueryNotScalar", "Array(Tuple(Integer, Geometry))"},
      {"EXISTS (SELECT 1 FROM nowhere)", "NonExistentTable", "Boolean"},
      {"zone_id IN (SELECT shape FROM zones)", "NoGoodOperatorOverload", "Boolean"},
  };
  for (const Case& c : cases) {
    ASSERT_TRUE(parser.parse(c.expression)) << c.expression;
    for (const Scoping scoping : {Scoping::Standard, Scoping::Compatible}) {
      TypeInferer inferer(*catalogue, *parcels);
      inferer.setScoping(scoping, catalogue.get());
      EXPECT_EQ(inferer.scoping(), scoping);
      std::string got;
      try {
        got = catalogue->typeName(inferer.inferType(parser.result.toExpression()));
      } catch (const SqlError& fault) {
        got = host::faultClassName(fault);
      }
      EXPECT_EQ(got, scoping == Scoping::Standard ? c.standard : c.compatible) << c.expression;
    }
  }
}

// Standard result columns: a USING column once and first, a union's left names, VALUES.
TEST(Scoping, ResultColumnsOfEveryQueryKind) {
  const auto catalogue = host::gisSampleCatalogue();
  SqlParser parser(*catalogue);
  struct Case {
    const char* sql;
    const char* columns;
  };
  const Case cases[] = {
      {"SELECT * FROM parcels p JOIN buildings b USING (parcel_id)",
       "parcel_id owner_id zone_id area_sqm land_use city_name assessed_val shape bldg_id height_m floor_cnt build_yr "
       "bldg_kind footprint"},
      {"SELECT parcel_id AS id FROM parcels UNION SELECT zone_id FROM zones", "id"},
      {"VALUES (1, 'a'), (2, 'b')", "column_1 column_2"},
      {"SELECT d.twice FROM (SELECT area_sqm * 2 AS twice FROM parcels) AS d", "twice"},
      {"SELECT 1, parcel_id, 2 FROM parcels", "column_1 parcel_id column_2"},
  };
  for (const Case& c : cases) {
    ASSERT_TRUE(parser.parse(c.sql)) << c.sql;
    const auto table = buildTableInfo(*catalogue, *catalogue, parser.result, Scoping::Standard);
    std::string names;
    for (std::size_t i = 0; i < table->columnCount(); ++i) {
      if (i > 0) names += ' ';
      names += host::toUtf8(table->columnByIndex(i).canonicalName());
    }
    EXPECT_EQ(names, c.columns) << c.sql;
  }
}

TEST(Scoping, ClosestNameBoundaries) {
  const std::vector<std::wstring> names{L"parcel_id", L"parcels", L"area_sqm", L"ab"};
  struct Case {
    const wchar_t* name;
    const wchar_t* closest; // null: none
  };
  const Case cases[] = {
      {L"parcl_id", L"parcel_id"},  // one deletion
      {L"PARCEL_DI", L"parcel_id"}, // a swap, case ignored
      {L"aera_sqm", L"area_sqm"},
      {L"parcel_id", nullptr},      // the name itself
      {L"zz", nullptr},             // two edits for a short name are too many
      {L"ac", nullptr},             // too short to guess at
      {L"xab", L"ab"},              // three letters: one edit
      {L"xarcxl_ix", L"parcel_id"}, // three edits in nine letters: the most allowed
      {L"xxrcxl_ix", nullptr},      // four are too many
      {L"", nullptr},
  };
  for (const Case& c : cases) {
    const auto got = host::closestName(c.name, names);
    if (c.closest) {
      ASSERT_TRUE(got) << host::toUtf8(c.name);
      EXPECT_EQ(*got, c.closest);
    } else {
      EXPECT_FALSE(got) << host::toUtf8(c.name);
    }
  }
}

} // namespace
} // namespace velmor::sql::test
