// Checking a document of many statements in one process: split, parse, validate, with 1 and 2
// threads, as `velmor-sql check -f` does. Reports statements per second and MB/s of the document.
#include <velmor/sql/host/document/DocumentCheck.h>
#include <velmor/sql/host/document/Statements.h>

#include "CorpusCatalogue.h"

#include <benchmark/benchmark.h>

#include <atomic>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace velmor::sql;

// The corpus holds one statement a line; as a document it gets a ';' after each.
const std::string& document() {
  static const std::string text = [] {
    const char* path = std::getenv("VELMOR_BENCH_CORPUS");
    std::ifstream in(path != nullptr ? path : VELMOR_BENCH_CORPUS, std::ios::binary);
    if (!in) {
      std::cerr << "cannot read the corpus; set VELMOR_BENCH_CORPUS\n";
      std::exit(2);
    }
    std::string all;
    for (std::string line; std::getline(in, line);) all += line + ";\n";
    return all;
  }();
  return text;
}

const host::Catalogue& catalogue() {
  static const auto made = corpus::corpusCatalogue();
  return *made;
}

void BM_SplitDocument(benchmark::State& state) {
  const std::string& text = document();
  std::size_t statements = 0;
  for (auto _ : state) {
    statements = host::splitStatements(text).size();
    benchmark::DoNotOptimize(statements);
  }
  state.counters["statements/s"] =
      benchmark::Counter(static_cast<double>(statements * state.iterations()), benchmark::Counter::kIsRate);
  state.SetBytesProcessed(static_cast<std::int64_t>(text.size() * state.iterations()));
}
BENCHMARK(BM_SplitDocument)->Unit(benchmark::kMillisecond);

// Split as the document streams in, in batches that threads check with a checker each.
void BM_CheckDocument(benchmark::State& state) {
  const std::string& text = document();
  const auto jobs = static_cast<unsigned>(state.range(0));
  std::vector<std::unique_ptr<host::DocumentChecker>> checkers;
  for (unsigned i = 0; i < jobs; ++i) checkers.push_back(std::make_unique<host::DocumentChecker>(catalogue(), catalogue()));
  std::size_t statements = 0;
  for (auto _ : state) {
    host::StatementSplitter splitter;
    std::vector<host::DocumentStatement> batch;
    statements = 0;
    const auto checkBatch = [&] {
      std::atomic<std::size_t> next{0};
      const auto work = [&](host::DocumentChecker& checker) {
        for (std::size_t i; (i = next.fetch_add(1)) < batch.size();) benchmark::DoNotOptimize(checker.check(batch[i]));
      };
      std::vector<std::thread> threads;
      for (unsigned t = 1; t < jobs; ++t) threads.emplace_back(work, std::ref(*checkers[t]));
      work(*checkers.front());
      for (auto& thread : threads) thread.join();
      statements += batch.size();
      batch.clear();
    };
    constexpr std::size_t chunk = 1 << 16;
    for (std::size_t at = 0; at < text.size(); at += chunk) {
      splitter.feed(std::string_view(text).substr(at, chunk), batch);
      if (batch.size() >= 256 * jobs) checkBatch();
    }
    splitter.finish(batch);
    checkBatch();
  }
  state.counters["statements/s"] =
      benchmark::Counter(static_cast<double>(statements * state.iterations()), benchmark::Counter::kIsRate);
  state.SetBytesProcessed(static_cast<std::int64_t>(text.size() * state.iterations()));
}
BENCHMARK(BM_CheckDocument)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

BENCHMARK_MAIN();
