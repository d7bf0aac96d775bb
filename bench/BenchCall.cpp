// One host call as a GIS host makes it: parse and check a typical statement against the kit's GIS
// sample catalogue; the Python module's `check` is measured beside it (see the issue notes).
#include <velmor/sql/host/CatalogueFile.h>
#include <velmor/sql/parser/SqlParser.h>
#include <velmor/sql/validation/Validator.h>

#include <benchmark/benchmark.h>

namespace {

using namespace velmor::sql;

constexpr const char* kTypical =
    "SELECT p.parcel_id, p.area_sqm * 2 AS twice, upper(p.city_name) FROM parcels AS p "
    "WHERE p.land_use LIKE 'res%' AND p.assessed_val BETWEEN 1 AND 100 ORDER BY p.parcel_id";

void BM_ParseAndCheck(benchmark::State& state) {
  const auto catalogue = host::gisSampleCatalogue();
  const ParseContext context;
  SqlParser parser(context);
  for (auto _ : state) {
    parser.parse(kTypical);
    Validator validator(*catalogue, *catalogue);
    benchmark::DoNotOptimize(validator.validate(ast::getNodeValue<ast::QuerySpecification>(parser.result)));
  }
}
BENCHMARK(BM_ParseAndCheck)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
