// Completion at a cursor in a statement of about 2 KB: at its end and in the middle, against the
// kit's GIS sample catalogue; and the automaton's part alone.
#include <velmor/sql/host/CatalogueFile.h>
#include <velmor/sql/host/Completion.h>
#include <velmor/sql/parser/Completion.h>

#include <benchmark/benchmark.h>

#include <string>

namespace {

using namespace velmor::sql;

// A chain of joined queries, UNION ALL, until the text passes 2,000 bytes.
std::string statement() {
  std::string text;
  for (int i = 0; text.size() < 2000; ++i) {
    if (i > 0) text += " UNION ALL ";
    const std::string n = std::to_string(i);
    text += "SELECT p" + n + ".parcel_id, upper(o" + n + ".full_nm), p" + n + ".area_sqm * 2 FROM parcels p" + n +
            " JOIN owners o" + n + " ON p" + n + ".owner_id = o" + n + ".owner_id WHERE p" + n +
            ".zone_id IN (1, 2, 3) AND o" + n + ".since_yr > 1990";
  }
  return text;
}

const std::string& text() {
  static const std::string value = statement();
  return value;
}

void BM_CompleteAtEnd(benchmark::State& state) {
  const auto catalogue = host::gisSampleCatalogue();
  const std::string sql = text() + " AND p0.";
  for (auto _ : state) benchmark::DoNotOptimize(host::complete(sql, sql.size(), *catalogue));
  state.SetLabel(std::to_string(sql.size()) + " bytes");
}
BENCHMARK(BM_CompleteAtEnd)->Unit(benchmark::kMicrosecond);

void BM_CompleteInTheMiddle(benchmark::State& state) {
  const auto catalogue = host::gisSampleCatalogue();
  const std::string& sql = text();
  // Just after a WHERE halfway through: every name of an expression is offered.
  const std::size_t offset = sql.find("WHERE ", sql.size() / 2) + 6;
  for (auto _ : state) benchmark::DoNotOptimize(host::complete(sql, offset, *catalogue));
  state.SetLabel(std::to_string(sql.size()) + " bytes");
}
BENCHMARK(BM_CompleteInTheMiddle)->Unit(benchmark::kMicrosecond);

void BM_TokensAcceptedAfter(benchmark::State& state) {
  const std::string& sql = text();
  for (auto _ : state) benchmark::DoNotOptimize(tokensAcceptedAfter(sql));
}
BENCHMARK(BM_TokensAcceptedAfter)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
