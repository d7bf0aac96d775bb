// The language server after one keystroke in a 5,000-line document: time to the published
// diagnostics and to a completion answer (median and 99th percentile), and memory per document.
#include <Server.h>

#include <benchmark/benchmark.h>

#include <malloc.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

namespace {

using nlohmann::json;
using velmor::lsp::Clock;

// Statements that differ one from another (a number each), so that none shares an analysis.
std::string largeDocument() {
  const char* statements[] = {
      "SELECT parcel_id, area_sqm FROM parcels WHERE area_sqm > ",
      "SELECT p.parcel_id, o.nosuch\n  FROM parcels AS p JOIN owners AS o ON o.owner_id = p.owner_id AND p.parcel_id = ",
      "-- the lots of one owner\nSELECT * FROM parcels WHERE owner_id = ",
      "UPDATE parcels SET land_use = 'park' WHERE parcel_id = ",
      "SELECT land_use, count(*) FROM parcels WHERE area_sqm > 1 GROUP BY land_use HAVING count(*) > ",
      "SELECT FROM parcels WHERE parcel_id = ",
  };
  std::string text;
  std::size_t lines = 0;
  for (std::size_t i = 0; lines < 5000; ++i) {
    const std::string statement = statements[i % std::size(statements)] + std::to_string(i) + ";";
    text += statement + "\n";
    lines += static_cast<std::size_t>(std::count(statement.begin(), statement.end(), '\n')) + 1;
  }
  return text;
}

struct Session {
  Session() : server([this](const json& message) { bytes += message.dump().size(); }, velmor::lsp::Log(), "bench") {
    server.handle({{"jsonrpc", "2.0"}, {"id", 1}, {"method", "initialize"}, {"params", {{"capabilities", json::object()}}}},
                  now);
  }
  void open(const std::string& uri, const std::string& text) {
    server.handle({{"jsonrpc", "2.0"},
                   {"method", "textDocument/didOpen"},
                   {"params", {{"textDocument", {{"uri", uri}, {"version", 1}, {"text", text}}}}}},
                  now);
    server.runDue(now);
  }
  // Types or deletes one character at the middle line, alternately, so that the text stays.
  void keystroke(int version) {
    const json start = {{"line", 2500}, {"character", 7}};
    const json end = {{"line", 2500}, {"character", version % 2 == 0 ? 8 : 7}};
    server.handle({{"jsonrpc", "2.0"},
                   {"method", "textDocument/didChange"},
                   {"params",
                    {{"textDocument", {{"uri", "file:///bench/large.sql"}, {"version", version}}},
                     {"contentChanges", {{{"range", {{"start", start}, {"end", end}}}, {"text", version % 2 == 0 ? "" : "x"}}}}}}},
                  now);
  }

  std::size_t bytes = 0;
  Clock::time_point now{};
  velmor::lsp::Server server;
};

void percentiles(benchmark::State& state, std::vector<double>& samples) {
  if (samples.empty()) return;
  std::sort(samples.begin(), samples.end());
  state.counters["median_ms"] = samples[samples.size() / 2];
  state.counters["p99_ms"] = samples[std::min(samples.size() - 1, samples.size() * 99 / 100)];
}

double since(Clock::time_point start) {
  return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

// From the keystroke to the diagnostics of the whole document written out (the delay skipped).
void BM_DiagnosticsAfterKeystroke(benchmark::State& state) {
  Session session;
  session.open("file:///bench/large.sql", largeDocument());
  std::vector<double> samples;
  int version = 1;
  for (auto _ : state) {
    const auto start = Clock::now();
    session.keystroke(++version);
    session.now += std::chrono::seconds(1);
    session.server.runDue(session.now);
    samples.push_back(since(start));
  }
  percentiles(state, samples);
}
BENCHMARK(BM_DiagnosticsAfterKeystroke)->Unit(benchmark::kMillisecond)->Iterations(500);

// From the keystroke to the completion answer in the statement edited.
void BM_CompletionAfterKeystroke(benchmark::State& state) {
  Session session;
  session.open("file:///bench/large.sql", largeDocument());
  const json request = {{"jsonrpc", "2.0"},
                        {"id", 2},
                        {"method", "textDocument/completion"},
                        {"params",
                         {{"textDocument", {{"uri", "file:///bench/large.sql"}}},
                          {"position", {{"line", 2500}, {"character", 7}}}}}};
  std::vector<double> samples;
  int version = 1;
  for (auto _ : state) {
    const auto start = Clock::now();
    session.keystroke(++version);
    session.server.handle(request, session.now);
    samples.push_back(since(start));
  }
  percentiles(state, samples);
}
BENCHMARK(BM_CompletionAfterKeystroke)->Unit(benchmark::kMillisecond)->Iterations(500);

// Heap held per open 5,000-line document once its diagnostics are out (20 documents open).
void BM_MemoryPerDocument(benchmark::State& state) {
  const std::string text = largeDocument();
  for (auto _ : state) {
    const std::size_t before = mallinfo2().uordblks;
    Session session;
    for (int i = 0; i < 20; ++i) session.open("file:///bench/doc" + std::to_string(i) + ".sql", text);
    const std::size_t after = mallinfo2().uordblks;
    state.counters["bytes_per_doc"] = static_cast<double>(after - before) / 20;
    state.counters["text_bytes"] = static_cast<double>(text.size());
  }
}
BENCHMARK(BM_MemoryPerDocument)->Unit(benchmark::kMillisecond)->Iterations(1);

} // namespace

BENCHMARK_MAIN();
