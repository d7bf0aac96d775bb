// Parses every statement of the benchmark corpus and of its sample from memory, one tree at a
// time, beside scan-only passes over the same text; and long generated texts.
#include <velmor/sql/parser/SqlParser.h>

#include "parser/SqlParserPrivate.h"
#include "sqllexer/SqlLexer.h"

#include <velmor/sql/sqllexer/Tokens.h>

#include <benchmark/benchmark.h>

#ifdef VELMOR_BENCH_PEER_PG
#include <pg_query.h>
#endif

#include <cstdlib>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

namespace {

// The environment may point elsewhere when the tree is checked out away from the corpus; the
// sample (every tenth statement) sits beside the whole corpus.
std::string corpusPath(const char* file) {
  const char* path = std::getenv("VELMOR_BENCH_CORPUS");
  std::string whole = path ? path : VELMOR_BENCH_CORPUS;
  if (std::string_view(file) == "common") return whole;
  const std::size_t slash = whole.find_last_of('/');
  return (slash == std::string::npos ? std::string() : whole.substr(0, slash + 1)) + "corpus-sample.sql";
}

std::vector<std::string> loadStatements(const std::string& path) {
  std::ifstream in(path);
  std::vector<std::string> statements;
  for (std::string line; std::getline(in, line);) {
    if (!line.empty()) statements.push_back(line);
  }
  return statements;
}

const std::vector<std::string>& corpus(const char* which) {
  static const std::vector<std::string> common = loadStatements(corpusPath("common"));
  static const std::vector<std::string> sample = loadStatements(corpusPath("sample"));
  return std::string_view(which) == "common" ? common : sample;
}

void setCounters(benchmark::State& state, const std::vector<std::string>& statements) {
  std::size_t bytes = 0;
  for (const std::string& statement : statements) bytes += statement.size();
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes));
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * statements.size()));
}

// Parse and scan-only passes over the same statements, side by side in one run: compare
// within a run, since wall-clock figures drift between runs on a shared machine.
void parsePass(benchmark::State& state, const char* which, bool ranges) {
  const std::vector<std::string>& statements = corpus(which);
  if (statements.empty()) state.SkipWithError("the corpus is missing or empty");
  const velmor::sql::ParseContext context;
  velmor::sql::SqlParser parser(context);
  parser.keepSourceRanges = ranges;
  std::size_t failures = 0;
  for (auto _ : state) {
    for (const std::string& statement : statements) {
      // Each parse releases the previous tree, so memory stays flat.
      if (!parser.parse(statement)) ++failures;
      benchmark::DoNotOptimize(parser.result);
    }
  }
  if (failures != 0) state.SkipWithError("a corpus statement failed to parse");
  setCounters(state, statements);
}

void BM_Parse(benchmark::State& state, const char* which) { parsePass(state, which, false); }
// The same with source ranges kept, as an editor parses: compare with BM_Parse of the same run.
void BM_ParseWithRanges(benchmark::State& state, const char* which) { parsePass(state, which, true); }

// What the parser asks of the scanner: every token's id, location and wide text.
void BM_Scan(benchmark::State& state, const char* which) {
  const std::vector<std::string>& statements = corpus(which);
  if (statements.empty()) state.SkipWithError("the corpus is missing or empty");
  std::wstring text;
  for (auto _ : state) {
    for (const std::string& statement : statements) {
      velmor::sql::SqlLexer lexer(statement, nullptr);
      velmor::sql::Location location;
      while (lexer.lex(&text, &location) != velmor::sql::T_TERMINATION) benchmark::DoNotOptimize(text.data());
    }
  }
  setCounters(state, statements);
}

// The public tokenizer, which also copies every token out.
void BM_Tokenize(benchmark::State& state, const char* which) {
  const std::vector<std::string>& statements = corpus(which);
  if (statements.empty()) state.SkipWithError("the corpus is missing or empty");
  for (auto _ : state) {
    for (const std::string& statement : statements) benchmark::DoNotOptimize(velmor::sql::tokenize(statement));
  }
  setCounters(state, statements);
}

BENCHMARK_CAPTURE(BM_Parse, corpus, "common")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Scan, corpus, "common")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Tokenize, corpus, "common")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Parse, sample, "sample")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Scan, sample, "sample")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Tokenize, sample, "sample")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ParseWithRanges, sample, "sample")->Unit(benchmark::kMillisecond);

#ifdef VELMOR_BENCH_PEER_PG
// PostgreSQL's raw parser (libpg_query) over the same statements in the same run: a region per
// statement, released in one piece, as its own callers do. Its internal entry points are
// declared here because their header needs the server's headers.
struct PeerParseResult {
  void* tree;
  char* stderrBuffer;
  PgQueryError* error;
};
extern "C" PeerParseResult pg_query_raw_parse(const char* input);
extern "C" void* pg_query_enter_memory_context();
extern "C" void pg_query_exit_memory_context(void* context);
extern "C" void pg_query_free_error(PgQueryError* error);

void BM_PeerRawParse(benchmark::State& state, const char* which) {
  const std::vector<std::string>& statements = corpus(which);
  if (statements.empty()) state.SkipWithError("the corpus is missing or empty");
  std::size_t failures = 0;
  for (auto _ : state) {
    for (const std::string& statement : statements) {
      void* region = pg_query_enter_memory_context();
      const PeerParseResult result = pg_query_raw_parse(statement.c_str());
      benchmark::DoNotOptimize(result.tree);
      if (result.error != nullptr) {
        ++failures;
        pg_query_free_error(result.error);
      }
      pg_query_exit_memory_context(region);
    }
  }
  if (failures != 0) state.SkipWithError("a corpus statement failed to parse");
  setCounters(state, statements);
}
BENCHMARK_CAPTURE(BM_PeerRawParse, corpus, "common")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_PeerRawParse, sample, "sample")->Unit(benchmark::kMillisecond);
#endif

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
