// Canonical SQL output speed: every statement of the corpus written from pre-parsed trees,
// in bytes of UTF-8 output per second, beside the parse of the same statements so that the two
// compare within one run. Run with --benchmark_repetitions=5 and read the medians; point
// VELMOR_BENCH_CORPUS at the sample to measure that.
#include <velmor/sql/builder/RenameTableBuilder.h>
#include <velmor/sql/builder/SqlStringBuilder.h>

#include <velmor/sql/host/Precedence.h>

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include <velmor/sql/parser/SqlParser.h>

namespace {

using namespace velmor::sql;

std::size_t utf8Length(const std::wstring& units) {
  std::size_t bytes = 0;
  for (const wchar_t unit : units) {
    const auto code = static_cast<std::uint32_t>(unit) & 0xFFFFu;
    // A surrogate pair is four bytes, two for each of its halves.
    bytes += code < 0x80 ? 1 : code < 0x800 ? 2 : (code >= 0xD800 && code < 0xE000) ? 2 : 3;
  }
  return bytes;
}

// Writes every tree with a fresh `Builder` made of `arguments` in each pass.
template <class Builder = SqlStringBuilder, class... Arguments>
void formatAll(benchmark::State& state, const std::vector<ast::Node>& trees, const Arguments&... arguments) {
  std::size_t bytes = 0;
  {
    Builder builder(arguments...);
    for (const auto& tree : trees) bytes += utf8Length(builder.buildString(tree));
  }
  for (auto _ : state) {
    Builder builder(arguments...);
    for (const auto& tree : trees) {
      std::wstring text = builder.buildString(tree);
      benchmark::DoNotOptimize(text.data());
    }
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * bytes));
  state.counters["statements"] = static_cast<double>(trees.size());
}

class NoParseContext : public ParseContext {};

// The statements of the corpus that parse, in order.
const std::vector<std::string>& corpusStatements() {
  static const std::vector<std::string> statements = [] {
    std::vector<std::string> lines;
    const char* overridePath = std::getenv("VELMOR_BENCH_CORPUS");
    std::ifstream in(overridePath != nullptr ? overridePath : VELMOR_BENCH_CORPUS);
    NoParseContext context;
    SqlParser parser(context);
    for (std::string line; std::getline(in, line);)
      if (parser.parse(line)) lines.push_back(line);
    return lines;
  }();
  return statements;
}

const std::vector<ast::Node>& corpusTrees() {
  static const std::vector<ast::Node> trees = [] {
    std::vector<ast::Node> parsed;
    NoParseContext context;
    for (const std::string& statement : corpusStatements()) {
      SqlParser parser(context);
      parser.parse(statement);
      parsed.push_back(parser.result);
    }
    return parsed;
  }();
  return trees;
}

// The parse of the statements that the format benchmarks write: the yardstick for them.
void BM_ParseCorpus(benchmark::State& state) {
  const std::vector<std::string>& statements = corpusStatements();
  NoParseContext context;
  SqlParser parser(context);
  std::size_t bytes = 0;
  for (const std::string& statement : statements) bytes += statement.size();
  for (auto _ : state) {
    for (const std::string& statement : statements) {
      parser.parse(statement);
      benchmark::DoNotOptimize(parser.result);
    }
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * bytes));
  state.counters["statements"] = static_cast<double>(statements.size());
}
BENCHMARK(BM_ParseCorpus)->Unit(benchmark::kMillisecond);

// Each statement parsed and at once written, as a host that rewrites what it reads does: the
// tree is still in the caches, unlike the corpus's trees written one after another below. Less
// BM_ParseCorpus of the same run, it is the writer's cost on a fresh tree.
void BM_ParseAndFormatCorpus(benchmark::State& state) {
  static const velmor::sql::host::GrammarPrecedence precedence;
  const std::vector<std::string>& statements = corpusStatements();
  NoParseContext context;
  SqlParser parser(context);
  SqlStringBuilder builder(&precedence);
  for (auto _ : state) {
    for (const std::string& statement : statements) {
      parser.parse(statement);
      std::wstring text = builder.buildString(parser.result);
      benchmark::DoNotOptimize(text.data());
    }
  }
  state.counters["statements"] = static_cast<double>(statements.size());
}
BENCHMARK(BM_ParseAndFormatCorpus)->Unit(benchmark::kMillisecond);

void BM_FormatCorpus(benchmark::State& state) {
  static const velmor::sql::host::GrammarPrecedence context;
  formatAll(state, corpusTrees(), &context);
}
BENCHMARK(BM_FormatCorpus)->Unit(benchmark::kMillisecond);

void BM_FormatCorpusNoContext(benchmark::State& state) {
  formatAll(state, corpusTrees(), static_cast<const StringBuildContext*>(nullptr));
}
BENCHMARK(BM_FormatCorpusNoContext)->Unit(benchmark::kMillisecond);

void BM_FormatCorpusRename(benchmark::State& state) {
  static const velmor::sql::host::GrammarPrecedence context;
  formatAll<RenameTableBuilder>(state, corpusTrees(), &context, std::wstring(L"zones"), std::wstring(L"areas"));
}
BENCHMARK(BM_FormatCorpusRename)->Unit(benchmark::kMillisecond);

// A host's builder that overrides a hook, which the writer serves through the fragment walk.
class HostBuilder : public SqlStringBuilder {
public:
  using SqlStringBuilder::SqlStringBuilder;
  std::wstring& onWhere(std::wstring& clauses) override { return clauses; }
};

void BM_FormatCorpusHostBuilder(benchmark::State& state) {
  static const velmor::sql::host::GrammarPrecedence context;
  formatAll<HostBuilder>(state, corpusTrees(), static_cast<const StringBuildContext*>(&context));
}
BENCHMARK(BM_FormatCorpusHostBuilder)->Unit(benchmark::kMillisecond);

// A statement of the corpus's shape built by hand, so that the writer can be measured alone.
ast::Node syntheticStatement() {
  using namespace ast;
  auto col = [](const wchar_t* table, const wchar_t* name) {
    return makeNode<ExpressionNode>(ColumnReference{table, name});
  };
  auto num = [](const wchar_t* text) { return makeNode<ExpressionNode>(Number{NumberKind::Integer, text}); };
  auto bin = [](OperationCode code, ExpressionNode l, ExpressionNode r) {
    return makeNode<ExpressionNode>(Operation(code, std::move(l), std::move(r)));
  };
  QuerySpecification inner;
  inner.selectList.push_back(makeNode(DerivedColumn{col(L"", L"district_id"), L""}));
  inner.from.push_back(makeNode<QueryExpressionNode>(TablePrimary{L"districts", L""}));
  inner.where = bin(OperationCode::And,
                    bin(OperationCode::In, col(L"", L"district_id"),
                        makeNode<ExpressionNode>(RowValueExpressionList{{num(L"5905"), num(L"8773")}})),
                    bin(OperationCode::Like, col(L"", L"district_nm"),
                        makeNode<ExpressionNode>(String{ASTStringValue()})));
  QuerySpecification outer;
  outer.selectList.push_back(makeNode(DerivedColumn{col(L"u1", L"owner_id"), L""}));
  outer.selectList.push_back(makeNode(DerivedColumn{col(L"u1", L"permit_no"), L"p"}));
  outer.from.push_back(makeNode<QueryExpressionNode>(TablePrimary{L"permits", L"u1"}));
  outer.where = bin(OperationCode::And, bin(OperationCode::Equal, col(L"u1", L"status_code"), num(L"7")),
                    bin(OperationCode::In, col(L"u1", L"parcel_id"), makeNode<ExpressionNode>(inner)));
  outer.limit.limit = Number{NumberKind::Integer, L"304"};
  return makeNode<QueryExpressionNode>(QueryOperation{QueryOperationCode::Union, true,
                                                      makeNode<QueryExpressionNode>(outer),
                                                      makeNode<QueryExpressionNode>(outer)});
}

void BM_FormatSynthetic(benchmark::State& state) {
  static const velmor::sql::host::GrammarPrecedence context;
  const std::vector<ast::Node> trees(1000, syntheticStatement());
  formatAll(state, trees, &context);
}
BENCHMARK(BM_FormatSynthetic)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
