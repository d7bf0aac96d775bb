// Parses every statement of the benchmark corpus from memory, one tree at a time.
#include <velmor/sql/parser/SqlParser.h>

#include "parser/SqlParserPrivate.h"
#include "sqllexer/SqlLexer.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

namespace {

std::vector<std::string> loadCorpus() {
  // The environment may point elsewhere when the tree is checked out away from the corpus.
  const char* path = std::getenv("VELMOR_BENCH_CORPUS");
  std::ifstream in(path ? path : VELMOR_BENCH_CORPUS);
  std::vector<std::string> statements;
  for (std::string line; std::getline(in, line);) {
    if (!line.empty()) statements.push_back(line);
  }
  return statements;
}

void BM_ParseCorpus(benchmark::State& state) {
  static const std::vector<std::string> corpus = loadCorpus();
  std::size_t bytes = 0;
  for (const std::string& statement : corpus) bytes += statement.size();

  const velmor::sql::ParseContext context;
  velmor::sql::SqlParser parser(context);
  std::size_t failures = 0;
  if (corpus.empty()) state.SkipWithError("the corpus is missing or empty");
  for (auto _ : state) {
    for (const std::string& statement : corpus) {
      // Each parse releases the previous tree, so memory stays flat.
      if (!parser.parse(statement)) ++failures;
      benchmark::DoNotOptimize(parser.result);
    }
  }
  if (failures != 0) state.SkipWithError("a corpus statement failed to parse");
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes));
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * corpus.size()));
}
BENCHMARK(BM_ParseCorpus)->Unit(benchmark::kMillisecond);

// The cost that keeping the automaton saves a parse: scanner and automaton with its initial
// stack, built and destroyed.
void BM_AutomatonSetup(benchmark::State& state) {
  const std::string text;
  std::vector<std::shared_ptr<velmor::sql::SqlError>> errors;
  for (auto _ : state) {
    velmor::sql::SqlLexer lexer(text, &errors);
    velmor::sql::SqlParserPrivate automaton;
    benchmark::DoNotOptimize(&automaton);
  }
}
BENCHMARK(BM_AutomatonSetup);

// Long generated texts: bytes per second should stay flat as the term count grows.
std::string orChain(int terms) {
  std::string text = "x = 1";
  for (int i = 2; i <= terms; ++i) text.append(" OR x = ").append(std::to_string(i));
  return text;
}

std::string inList(int values) {
  std::string text = "x IN (1";
  for (int i = 2; i <= values; ++i) text.append(", ").append(std::to_string(i));
  return text.append(")");
}

std::string valuesRows(int rows) {
  std::string text = "INSERT INTO t VALUES (1, 'a')";
  for (int i = 2; i <= rows; ++i) text.append(", (").append(std::to_string(i)).append(", 'a')");
  return text;
}

template <std::string (*make)(int)>
void BM_ParseLong(benchmark::State& state) {
  const std::string text = make(static_cast<int>(state.range(0)));
  const velmor::sql::ParseContext context;
  velmor::sql::SqlParser parser(context);
  for (auto _ : state) {
    if (!parser.parse(text)) state.SkipWithError("the text failed to parse");
    benchmark::DoNotOptimize(parser.result);
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
}
// An OR chain is a left-deep tree, so its length stops short of the nesting limit.
BENCHMARK_TEMPLATE(BM_ParseLong, orChain)->Arg(1000)->Arg(3000)->Arg(9000)->Unit(benchmark::kMicrosecond);
BENCHMARK_TEMPLATE(BM_ParseLong, inList)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMicrosecond);
BENCHMARK_TEMPLATE(BM_ParseLong, valuesRows)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
