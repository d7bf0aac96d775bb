// Validation throughput over the SELECT statements of the common corpus, beside the parse
// throughput of the same statements, measured in the same run.
#include <velmor/sql/parser/SqlParser.h>
#include <velmor/sql/validation/Validator.h>

#include "CorpusCatalogue.h"

#include <benchmark/benchmark.h>

#include <chrono>

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

namespace {

using namespace velmor::sql;

// The corpus path is fixed at build time; VELMOR_BENCH_CORPUS in the environment overrides it
// (a worktree that is not beside the shared folder).
std::vector<std::string> loadSelects() {
  const char* path = std::getenv("VELMOR_BENCH_CORPUS");
  std::ifstream in(path != nullptr ? path : VELMOR_BENCH_CORPUS);
  if (!in) {
    std::cerr << "cannot read the corpus; set VELMOR_BENCH_CORPUS\n";
    std::exit(2);
  }
  std::vector<std::string> selects;
  for (std::string line; std::getline(in, line);) {
    if (line.rfind("SELECT", 0) == 0) selects.push_back(std::move(line));
  }
  return selects;
}

const std::vector<std::string>& selects() {
  static const std::vector<std::string> lines = loadSelects();
  return lines;
}

// Every statement of the corpus, of every kind, for the standard scoping's check.
std::vector<std::string> loadAll() {
  const char* path = std::getenv("VELMOR_BENCH_CORPUS");
  std::ifstream in(path != nullptr ? path : VELMOR_BENCH_CORPUS);
  std::vector<std::string> lines;
  for (std::string line; std::getline(in, line);) {
    if (!line.empty()) lines.push_back(std::move(line));
  }
  return lines;
}

const std::vector<std::string>& allStatements() {
  static const std::vector<std::string> lines = loadAll();
  return lines;
}

const std::vector<ast::Node>& allTrees() {
  static const std::vector<ast::Node> trees = [] {
    std::vector<ast::Node> result;
    const ParseContext context;
    SqlParser parser(context);
    for (const auto& text : allStatements()) {
      if (parser.parse(text)) result.push_back(parser.result);
    }
    return result;
  }();
  return trees;
}

// The queries a host validates: a QuerySpecification itself, or each one of a set operation.
class QueryCollector : public ast::NodeVisitor {
public:
  void visit(const ast::QuerySpecification& record) override { mQueries.push_back(&record); }
  void visit(const ast::QueryOperation& record) override {
    record.left.accept(*this);
    record.right.accept(*this);
  }
  void faultAction() override {}

  std::vector<const ast::QuerySpecification*> mQueries;
};

struct ParsedCorpus {
  std::vector<ast::Node> trees;  // keeps the queries alive
  std::vector<const ast::QuerySpecification*> queries;
  std::size_t statements = 0;
};

const ParsedCorpus& parsedCorpus() {
  static const ParsedCorpus corpus = [] {
    ParsedCorpus result;
    const ParseContext context;
    SqlParser parser(context);
    QueryCollector collector;
    for (const auto& text : selects()) {
      if (!parser.parse(text)) continue;
      result.trees.push_back(parser.result);
      parser.result.accept(collector);
      ++result.statements;
    }
    result.queries = std::move(collector.mQueries);
    return result;
  }();
  return corpus;
}

void BM_ParseSelects(benchmark::State& state) {
  const auto& lines = selects();
  const ParseContext context;
  SqlParser parser(context);
  std::size_t bytes = 0;
  for (const auto& line : lines) bytes += line.size();
  for (auto _ : state) {
    for (const auto& line : lines) {
      benchmark::DoNotOptimize(parser.parse(line));
    }
  }
  state.counters["statements/s"] =
      benchmark::Counter(static_cast<double>(lines.size()), benchmark::Counter::kIsIterationInvariantRate);
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * bytes));
}

void BM_ValidateSelects(benchmark::State& state) {
  const auto& corpus = parsedCorpus();
  const auto hostCatalogue = corpus::corpusCatalogue();
  const host::Catalogue& catalogue = *hostCatalogue;
  std::size_t good = 0;
  for (auto _ : state) {
    good = 0;
    for (const auto* query : corpus.queries) {
      Validator validator(catalogue, catalogue, nullptr);
      good += validator.validate(*query) ? 1 : 0;
    }
  }
  state.counters["statements/s"] = benchmark::Counter(static_cast<double>(corpus.statements),
                                                      benchmark::Counter::kIsIterationInvariantRate);
  state.counters["queries/s"] = benchmark::Counter(static_cast<double>(corpus.queries.size()),
                                                   benchmark::Counter::kIsIterationInvariantRate);
  state.counters["valid"] = static_cast<double>(good) / static_cast<double>(corpus.queries.size());
}

// Parse, then check in standard scoping, every statement of the corpus: the two figures of one
// run give what a check costs against its parse.
void BM_ParseAll(benchmark::State& state) {
  const auto& lines = allStatements();
  const ParseContext context;
  SqlParser parser(context);
  for (auto _ : state) {
    for (const auto& line : lines) benchmark::DoNotOptimize(parser.parse(line));
  }
  state.counters["statements/s"] =
      benchmark::Counter(static_cast<double>(lines.size()), benchmark::Counter::kIsIterationInvariantRate);
}

void checkAll(benchmark::State& state, Scoping scoping) {
  const auto& trees = allTrees();
  const auto hostCatalogue = corpus::corpusCatalogue();
  const host::Catalogue& catalogue = *hostCatalogue;
  std::size_t good = 0;
  for (auto _ : state) {
    good = 0;
    for (const auto& tree : trees) {
      Validator validator(catalogue, catalogue, nullptr);
      validator.setScoping(scoping);
      good += validator.validateStatement(tree) ? 1 : 0;
    }
  }
  state.counters["statements/s"] =
      benchmark::Counter(static_cast<double>(trees.size()), benchmark::Counter::kIsIterationInvariantRate);
  state.counters["valid"] = static_cast<double>(good) / static_cast<double>(trees.size());
}

void BM_CheckAllStandard(benchmark::State& state) { checkAll(state, Scoping::Standard); }

// The same trees in the library's default, compatible scoping (the kinds it cannot check fail
// fast), so that both modes are measured in one run.
void BM_CheckAllCompatible(benchmark::State& state) { checkAll(state, Scoping::Compatible); }

// Parse and check each statement in turn, as a host does: the tree is checked while it is still
// in the cache. Less BM_ParseAll, what the check adds to a parse.
void parseAndCheckAll(benchmark::State& state, Scoping scoping) {
  const auto& lines = allStatements();
  const auto hostCatalogue = corpus::corpusCatalogue();
  const host::Catalogue& catalogue = *hostCatalogue;
  SqlParser parser(catalogue);
  // The clock read around each half tells which of the two a change moved; a read costs tens of
  // nanoseconds against the microseconds of a statement.
  using Clock = std::chrono::steady_clock;
  Clock::duration parsing{};
  Clock::duration checking{};
  for (auto _ : state) {
    for (const auto& line : lines) {
      const Clock::time_point start = Clock::now();
      const bool parsed = parser.parse(line);
      const Clock::time_point middle = Clock::now();
      parsing += middle - start;
      if (!parsed) continue;
      Validator validator(catalogue, catalogue, nullptr);
      validator.setScoping(scoping);
      benchmark::DoNotOptimize(validator.validateStatement(parser.result));
      checking += Clock::now() - middle;
    }
  }
  state.counters["statements/s"] =
      benchmark::Counter(static_cast<double>(lines.size()), benchmark::Counter::kIsIterationInvariantRate);
  const auto perPass = [&](Clock::duration spent) {
    return std::chrono::duration<double, std::milli>(spent).count() / static_cast<double>(state.iterations());
  };
  state.counters["parse_ms"] = perPass(parsing);
  state.counters["check_ms"] = perPass(checking);
}

void BM_ParseAndCheckAll(benchmark::State& state) { parseAndCheckAll(state, Scoping::Standard); }

// The same in the library's default, compatible scoping.
void BM_ParseAndCheckAllCompatible(benchmark::State& state) { parseAndCheckAll(state, Scoping::Compatible); }

BENCHMARK(BM_ParseSelects)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ValidateSelects)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ParseAll)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CheckAllStandard)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CheckAllCompatible)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ParseAndCheckAll)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ParseAndCheckAllCompatible)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
