// The host kit: a catalogue built through its C++ API with the standard SQL set answers the
// library as a host would (golden file host/standard.golden), its faults name what is wrong,
// and the UTF-8 helpers keep every unit.
#include "support/Golden.h"

#include <velmor/sql/builder/SqlStringBuilder.h>
#include <velmor/sql/host/Catalogue.h>
#include <velmor/sql/host/CatalogueFile.h>
#include <velmor/sql/host/TypeNames.h>
#include <velmor/sql/host/Utf8.h>
#include <velmor/sql/parser/SqlParser.h>
#include <velmor/sql/scope/ScopeBuilder.h>
#include <velmor/sql/inference/TypeInferer.h>
#include <velmor/sql/validation/ContextChecks.h>
#include <velmor/sql/validation/QualifierChecks.h>
#include <velmor/sql/validation/Validator.h>

#include <gtest/gtest.h>

#include <functional>
#include <type_traits>

namespace velmor::sql::test {
namespace {

using host::Catalogue;
using host::CatalogueError;
using host::Result;
using type::PlainType;

const Catalogue& standard() {
  static const auto instance = [] {
    auto c = std::make_unique<Catalogue>();
    c->addStandardSql();
    c->addTable(L"parcels", {{L"id", "Integer"}, {L"area", "Decimal(12,2)"}, {L"owner", "VarChar(40)"},
                             {L"shape", "Geometry", {L"geom"}}, {L"since", "Date"}});
    c->addTable(L"roads", {{L"id", "BigInt"}, {L"name", "VarChar(80)"}, {L"path", "Geometry"}});
    c->addFunction(L"area", {{{"Geometry"}, "Double"}});
    c->addFunction(L"sum", FunctionKind::Aggregate, {{{"integerTypes"}, "BigInt"}, {{"Decimal"}, Result::argument(0)}});
    c->addFunction(L"coalesce", {{{"any"}, Result::widest(), {}, true}});
    c->addCustomOperator(static_cast<OperationCode>(51), L"NEAR", 9);
    c->addOperator(static_cast<OperationCode>(51), {{{"Geometry", "Geometry"}, "Boolean"}});
    return c;
  }();
  return *instance;
}

// The canonical text, then the result columns of a query or the faults of the statement.
std::string describe(const std::string& sql) {
  const Catalogue& c = standard();
  SqlParser parser(c);
  if (!parser.parse(sql)) return parser.errors.front()->what();
  std::string out = host::toUtf8(SqlStringBuilder(&c).buildString(parser.result));
  Validator validator(c, c, nullptr);
  const bool good = ast::nodeIs<ast::QuerySpecification>(parser.result)
                        ? validator.validate(ast::getNodeValue<ast::QuerySpecification>(parser.result))
                        : validator.validate(ast::getNodeValue<ast::UpdateStatement>(parser.result));
  if (!good) {
    for (const auto& error : validator.mErrors) out += "\n" + host::errorLine(*error);
    return out;
  }
  if (!ast::nodeIs<ast::QuerySpecification>(parser.result)) return out;
  const auto table = buildTableInfo(c, c, ast::getNodeValue<ast::QuerySpecification>(parser.result), nullptr);
  for (std::size_t i = 0; i < table->columnCount(); ++i) {
    const auto column = table->columnByIndex(i);
    out += "\n" + host::toUtf8(column.canonicalName()) + " " + host::typeText(column.type());
  }
  return out;
}

const bool registered = (registerGolden("StandardSql", "host/standard.golden", describe), true);

struct FaultCase {
  const char* what;
  std::function<void(Catalogue&)> build;
  const char* message;
};

TEST(HostCatalogue, FaultsNameTheirCause) {
  const FaultCase cases[] = {
      {"table twice", [](Catalogue& c) { c.addTable(L"t", {{L"a", "Integer"}}); c.addTable(L"T", {{L"b", "Integer"}}); },
       "a second table called \"T\""},
      {"column twice", [](Catalogue& c) { c.addTable(L"t", {{L"a", "Integer"}, {L"A", "Date"}}); },
       "the table has a column of this name already"},
      {"no columns", [](Catalogue& c) { c.addTable(L"t", std::vector<host::Column>{}); }, "a table needs at least one column"},
      {"unknown type", [](Catalogue& c) { c.addTable(L"t", {{L"a", "Geometry"}}); }, "unknown type \"Geometry\""},
      {"open parenthesis", [](Catalogue& c) { c.typeOf("VarChar(4"); }, "bad type \"VarChar(4\": expected a closing parenthesis"},
      {"three numbers", [](Catalogue& c) { c.typeOf("Decimal(1,2,3)"); },
       "bad type \"Decimal(1,2,3)\": expected (length) or (precision,scale)"},
      {"set as type", [](Catalogue& c) { c.typeOf("numericTypes"); }, "\"numericTypes\" is a set of types, not a type"},
      {"sized parameter", [](Catalogue& c) { c.addFunction(L"f", {{{"VarChar(3)"}, "Integer"}}); },
       "\"VarChar(3)\": a plain type here, without length or digits"},
      {"alias of a plain name", [](Catalogue& c) { c.addTypeName("integer", std::make_shared<Type>(PlainType::BigInt)); },
       "an alias must not be empty or the name of a plain type or a set"},
      {"huge expansion", [](Catalogue& c) {
         c.addFunction(L"f", {{{"numericTypes", "comparableTypes", "orderedTypes", "datetimeTypes", "characterStringTypes", "numericDateTypes"}, "Integer"}});
       }, "unknown type \"comparableTypes\""},
      {"huge expansion with sets", [](Catalogue& c) {
         c.addStandardSql();
         c.addFunction(L"f", {{{"numericTypes", "comparableTypes", "orderedTypes", "datetimeTypes", "binaryStringTypes",
                                "characterStringTypes"}, "Integer"}});
       }, "expands to more than 20000 overloads"},
      {"variadic without parameters", [](Catalogue& c) { c.addFunction(L"f", {{{}, "Integer", {}, true}}); },
       "a variadic overload needs at least one parameter in \"params\""},
      {"ranked twice", [](Catalogue& c) { c.setRanking({{PlainType::Integer}, {PlainType::Integer}}); }, "\"Integer\" is ranked twice"},
  };
  for (const auto& test : cases) {
    Catalogue c;
    try {
      test.build(c);
      ADD_FAILURE() << test.what << ": no fault";
    } catch (const CatalogueError& error) {
      EXPECT_EQ(error.what(), std::string(test.message)) << test.what;
    }
  }
}

// A file builds on what the catalogue holds: the standard set's sets and host type names.
TEST(HostCatalogue, FileAddsToTheStandardSet) {
  Catalogue c;
  c.addStandardSql(PlainType::VarBinary);
  host::readCatalogue(c, R"({"tables": [{"name": "t", "columns": [{"name": "g", "type": "Geometry"}]}],
                             "functions": [{"name": "f", "overloads": [{"params": ["orderedTypes"], "result": "Boolean"}]}]})",
                      "test");
  EXPECT_EQ(host::typeText(c.table(L"T")->columnByName(L"G").type()), "VarBinary");
  EXPECT_EQ(c.function(L"F")->overloads().size(), 14u);
  EXPECT_THROW(host::readCatalogue(c, R"({"tables": [{"name": "T", "columns": [{"name": "g", "type": "Integer"}]}]})", "again"),
               CatalogueError);
}

// "extends": "standard" adds the set once: to an empty catalogue, not again to one that has it.
TEST(HostCatalogue, FileExtendsTheStandardSetOnce) {
  const char* file = R"({"extends": "standard", "tables": [{"name": "t", "columns": [{"name": "g", "type": "Geometry"}]}]})";
  const auto alone = host::parseCatalogue(file, "alone");
  EXPECT_TRUE(alone->hasStandardSql());
  EXPECT_EQ(host::typeText(alone->table(L"t")->columnByName(L"g").type()), "BinaryLargeObject");
  Catalogue c;
  c.addStandardSql(PlainType::VarBinary);
  const std::size_t operators = c.operatorCount();
  host::readCatalogue(c, file, "on top");
  EXPECT_EQ(c.operatorCount(), operators);
  EXPECT_EQ(host::typeText(c.table(L"t")->columnByName(L"g").type()), "VarBinary");
  EXPECT_FALSE(host::parseCatalogue(R"({"tables": []})", "plain")->hasStandardSql());
  EXPECT_THROW(host::parseCatalogue(R"({"extends": ["standard"]})", "list"), CatalogueError);
}

// A written catalogue reads back into one that writes the same text and answers the same.
TEST(HostCatalogueFile, WrittenCatalogueReadsBack) {
  const std::pair<const char*, const Catalogue*> cases[] = {
      {"GIS sample", host::gisSampleCatalogue().get()},
      {"standard set through the API", &standard()},
  };
  for (const auto& [what, catalogue] : cases) {
    const std::string text = host::writeCatalogue(*catalogue);
    const auto again = host::parseCatalogue(text, what);
    EXPECT_EQ(host::writeCatalogue(*again), text) << what;
    EXPECT_EQ(again->tableCount(), catalogue->tableCount()) << what;
    EXPECT_EQ(again->functionCount(), catalogue->functionCount()) << what;
    EXPECT_EQ(again->operatorCount(), catalogue->operatorCount()) << what;
    for (int code = 0; code <= 52; ++code) {
      const auto op = static_cast<OperationCode>(code);
      EXPECT_EQ(again->precedenceLevel(op), catalogue->precedenceLevel(op)) << what << " " << code;
    }
  }
}

struct Utf8Case {
  std::string bytes;
  std::wstring units;
  std::string back; // the bytes toUtf8 gives for `units`
};

// A catalogue's table finds each name where a GenericTableInfo of the same columns finds it:
// any case, other names, the first column to claim a name, names beyond ASCII, with a NUL, and
// tables large enough to need a larger index.
TEST(HostCatalogue, TablesFindNamesAsTheGenericTableDoes) {
  std::vector<ColumnInfo> columns{
      ColumnInfo(std::vector<std::wstring>{L"Parcel_ID", L"pid"}, nullptr, L"t"),
      ColumnInfo(L"PID", nullptr, L"t"),            // claimed by parcel_id already
      ColumnInfo(L"\u00C4rea", nullptr, L"t"),        // beyond ASCII: folds to \u00E4rea
      ColumnInfo(std::wstring(L"a\0B", 3), nullptr, L"t"),
      ColumnInfo(L"x", nullptr, L"t"),
  };
  for (int i = 0; i < 40; ++i) columns.emplace_back(L"col" + std::to_wstring(i), nullptr, L"t");
  const std::vector<std::wstring> probes{
      L"parcel_id", L"PARCEL_id", L"pid", L"Pid", L"\u00E4REA", L"\u00C4REA", L"area", std::wstring(L"a\0B", 3),
      std::wstring(L"A\0B", 3), std::wstring(L"a\0b", 3), L"X", L"COL0", L"col39", L"col40", L"", L"parcel", L"x "};
  for (const std::size_t count : {std::size_t{5}, columns.size()}) {
    const std::vector<ColumnInfo> some(columns.begin(), columns.begin() + static_cast<std::ptrdiff_t>(count));
    Catalogue catalogue;
    catalogue.addTable(L"t", some);
    const GenericTableInfo generic(some);
    const auto table = catalogue.table(L"t");
    for (const std::wstring& probe : probes) {
      EXPECT_EQ(table->indexByName(probe), generic.indexByName(probe)) << count << " columns, name of " << probe.size();
    }
  }
}

// Conversions hand out shared types: each kind, length and pair of digits gets its own, below,
// at and past the sizes that are kept, whatever was converted before.
TEST(HostCatalogue, ConversionsKeepKindLengthAndDigits) {
  Catalogue catalogue;
  const std::vector<PlainType> lengthKinds{PlainType::Binary, PlainType::VarBinary, PlainType::BinaryLargeObject,
                                           PlainType::Char,   PlainType::VarChar,   PlainType::CharLargeObject};
  for (int round = 0; round < 2; ++round) {
    for (const int length : {0, 1, 255, 256, 70000}) {
      for (const PlainType kind : lengthKinds) {
        const auto converted = catalogue.convert(std::make_shared<LengthType>(PlainType::VarChar, length), kind);
        const auto* sized = dynamic_cast<const LengthType*>(converted.get());
        ASSERT_NE(sized, nullptr);
        EXPECT_EQ(sized->plainType(), kind) << length;
        EXPECT_EQ(sized->length(), length);
      }
    }
    for (const auto& [precision, scale] : std::vector<std::pair<int, int>>{{0, 0}, {12, 2}, {39, 39}, {40, 2}, {12, 40}}) {
      for (const PlainType kind : {PlainType::Decimal, PlainType::Numeric}) {
        const auto converted =
            catalogue.convert(std::make_shared<PrecisionScaleType>(PlainType::Decimal, precision, scale), kind);
        const auto* digits = dynamic_cast<const PrecisionScaleType*>(converted.get());
        ASSERT_NE(digits, nullptr);
        EXPECT_EQ(digits->plainType(), kind) << precision << "," << scale;
        EXPECT_EQ(digits->precision(), precision);
        EXPECT_EQ(digits->scale(), scale);
      }
    }
    for (const PlainType kind : {PlainType::Integer, PlainType::Double, PlainType::Boolean, PlainType::Date}) {
      EXPECT_EQ(catalogue.convert(std::make_shared<Type>(PlainType::SmallInt), kind)->plainType(), kind);
    }
  }
}

TEST(HostUtf8, RoundTripAndInvalidBytes) {
  const Utf8Case cases[] = {
      {"abc", L"abc", "abc"},
      {"\xC3\xA9t\xC3\xA9", {0xE9, L't', 0xE9}, "\xC3\xA9t\xC3\xA9"},
      {"\xE2\x82\xAC", {0x20AC}, "\xE2\x82\xAC"},
      {"\xF0\x9F\x8C\x8D", {0xD83C, 0xDF0D}, "\xF0\x9F\x8C\x8D"},                // a surrogate pair
      {"\xC3", {0xC3}, "\xC3\x83"},                                            // cut short: the byte itself
      {"\x80z", {0x80, L'z'}, "\xC2\x80z"},                                     // a stray continuation byte
      {"\xED\xA0\x80", {0xD800}, "\xED\xA0\x80"},                               // a lone surrogate survives
  };
  for (const auto& test : cases) {
    EXPECT_EQ(host::fromUtf8(test.bytes), test.units) << test.bytes;
    EXPECT_EQ(host::toUtf8(test.units), test.back) << test.bytes;
  }
}

} // namespace
} // namespace velmor::sql::test

namespace velmor::sql::test {
namespace {

// Classes that borrow a host context refuse a temporary one, which would dangle.
struct Routines : host::Catalogue {};
static_assert(std::is_constructible_v<Validator, const Routines&, const Routines&>);
static_assert(!std::is_constructible_v<Validator, Routines&&, const Routines&>);
static_assert(!std::is_constructible_v<Validator, const Routines&, Routines&&>);
static_assert(!std::is_constructible_v<Validator, Routines&&, Routines&&>);
static_assert(!std::is_constructible_v<SqlParser, Routines&&>);
static_assert(!std::is_constructible_v<TypeInferer, Routines&&, const ColumnInfoScope&>);
static_assert(!std::is_constructible_v<ContextCheckVisitor, Routines&&>);
static_assert(!std::is_constructible_v<AggregateQueryDetector, Routines&&>);
static_assert(!std::is_constructible_v<UnknownTableQualifiersVisitor, Routines&&, const ColumnInfoScope*>);

} // namespace
} // namespace velmor::sql::test
