// Scanner throughput over the benchmark corpus, held in memory.
#include "sqllexer/SqlLexer.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

const std::string& corpus() {
  static const std::string text = [] {
    // The environment may point elsewhere, e.g. from a worktree that has no shared/ beside it.
    const char* path = std::getenv("VELMOR_BENCH_CORPUS");
    if (!path) path = VELMOR_BENCH_CORPUS;
    std::ifstream in(path, std::ios::binary);
    if (!in) throw std::runtime_error(std::string("cannot read ") + path);
    std::ostringstream buffer;
    buffer << in.rdbuf();
    return buffer.str();
  }();
  return text;
}

const std::vector<std::string>& statements() {
  static const std::vector<std::string> lines = [] {
    std::vector<std::string> result;
    std::istringstream in(corpus());
    for (std::string line; std::getline(in, line);) result.push_back(line);
    return result;
  }();
  return lines;
}

// The whole corpus as one text, tokens handed out as the parser takes them.
void BM_LexWholeCorpus(benchmark::State& state) {
  const std::string& text = corpus();
  std::size_t tokens = 0;
  for (auto _ : state) {
    velmor::sql::SqlLexer lexer(text, nullptr);
    std::wstring semantic;
    velmor::sql::Location location;
    while (lexer.lex(&semantic, &location) != velmor::sql::T_TERMINATION) ++tokens;
    benchmark::DoNotOptimize(semantic.data());
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
  state.counters["tokens"] = benchmark::Counter(static_cast<double>(tokens), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_LexWholeCorpus)->Unit(benchmark::kMillisecond);

// The automaton alone: tokens with their UTF-8 text, no wide text and no locations.
void BM_AutomatonOnly(benchmark::State& state) {
  const std::string& text = corpus();
  for (auto _ : state) {
    velmor::sql::SqlLexer lexer(text, nullptr);
    velmor::sql::Token token;
    while (lexer.next(token)) {
    }
    benchmark::DoNotOptimize(token.text.data());
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
}
BENCHMARK(BM_AutomatonOnly)->Unit(benchmark::kMillisecond);

// One lexer per statement, as a parse of each statement would make.
void BM_LexPerStatement(benchmark::State& state) {
  const auto& lines = statements();
  std::size_t bytes = 0;
  for (const auto& line : lines) bytes += line.size();
  for (auto _ : state) {
    std::wstring semantic;
    velmor::sql::Location location;
    for (const auto& line : lines) {
      velmor::sql::SqlLexer lexer(line, nullptr);
      while (lexer.lex(&semantic, &location) != velmor::sql::T_TERMINATION) {
      }
    }
    benchmark::DoNotOptimize(semantic.data());
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * bytes));
}
BENCHMARK(BM_LexPerStatement)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
