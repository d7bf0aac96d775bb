// The editor services at a cursor against the kit's GIS sample catalogue: completion and hover
// in a statement of about 2 KB and in a document of 1 MB, completion after 100 KB of open
// parentheses; and the automaton's part alone.
#include <velmor/sql/host/CatalogueFile.h>
#include <velmor/sql/host/Completion.h>
#include <velmor/sql/host/editor/Editing.h>
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

void BM_HoverInTheMiddle(benchmark::State& state) {
  const auto catalogue = host::gisSampleCatalogue();
  const std::string& sql = text();
  const std::size_t offset = sql.find(".area_sqm", sql.size() / 2) + 3;
  for (auto _ : state) benchmark::DoNotOptimize(host::hover(sql, offset, *catalogue));
  state.SetLabel(std::to_string(sql.size()) + " bytes");
}
BENCHMARK(BM_HoverInTheMiddle)->Unit(benchmark::kMicrosecond);

// A document of 1 MB: the 2 KB statement over and over, the cursor in one near the middle.
const std::string& document() {
  static const std::string value = [] {
    std::string out;
    while (out.size() < (1u << 20)) out += text() + ";\n";
    return out;
  }();
  return value;
}

void BM_CompleteInMegabyteDocument(benchmark::State& state) {
  const auto catalogue = host::gisSampleCatalogue();
  const std::string& sql = document();
  const std::size_t offset = sql.find("WHERE ", sql.size() / 2) + 6;
  for (auto _ : state) benchmark::DoNotOptimize(host::complete(sql, offset, *catalogue));
  state.SetLabel(std::to_string(sql.size()) + " bytes");
}
BENCHMARK(BM_CompleteInMegabyteDocument)->Unit(benchmark::kMillisecond);

void BM_HoverInMegabyteDocument(benchmark::State& state) {
  const auto catalogue = host::gisSampleCatalogue();
  const std::string& sql = document();
  const std::size_t offset = sql.find(".area_sqm", sql.size() / 2) + 3;
  for (auto _ : state) benchmark::DoNotOptimize(host::hover(sql, offset, *catalogue));
  state.SetLabel(std::to_string(sql.size()) + " bytes");
}
BENCHMARK(BM_HoverInMegabyteDocument)->Unit(benchmark::kMillisecond);

// One statement of 1 MB: a select list of a hundred thousand columns.
void BM_CompleteInMegabyteStatement(benchmark::State& state) {
  const auto catalogue = host::gisSampleCatalogue();
  std::string sql = "SELECT ";
  while (sql.size() < (1u << 20)) sql += "p.area_sqm, ";
  const std::size_t offset = sql.size();
  sql += " FROM parcels p";
  for (auto _ : state) benchmark::DoNotOptimize(host::complete(sql, offset, *catalogue));
  state.SetLabel(std::to_string(sql.size()) + " bytes");
}
BENCHMARK(BM_CompleteInMegabyteStatement)->Unit(benchmark::kMillisecond);

// 100 KB of open parentheses before the cursor: beyond the nesting limit, answered from the
// automaton alone.
void BM_CompleteAfterDeepNesting(benchmark::State& state) {
  const auto catalogue = host::gisSampleCatalogue();
  const std::string sql = "SELECT " + std::string(100'000, '(');
  for (auto _ : state) benchmark::DoNotOptimize(host::complete(sql, sql.size(), *catalogue));
  state.SetLabel(std::to_string(sql.size()) + " bytes");
}
BENCHMARK(BM_CompleteAfterDeepNesting)->Unit(benchmark::kMillisecond);

void BM_TokensAcceptedAfter(benchmark::State& state) {
  const std::string& sql = text();
  for (auto _ : state) benchmark::DoNotOptimize(tokensAcceptedAfter(sql));
}
BENCHMARK(BM_TokensAcceptedAfter)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
