// Cost of deep and wide texts by size, from 10 KB to 1 MiB of text: parse, canonical text,
// validation and result naming should all grow linearly, so bytes per second stay flat. The
// parser's nesting limit is raised for the deep shapes, as a host may do.
#include <velmor/sql/host/Precedence.h>
#include "support/SampleHost.h"

#include <velmor/sql/ast/Traversal.h>
#include <velmor/sql/builder/SqlStringBuilder.h>
#include <velmor/sql/parser/SqlParser.h>
#include <velmor/sql/scope/ScopeBuilder.h>
#include <velmor/sql/validation/Validator.h>

#include <benchmark/benchmark.h>

#include <string>

namespace {

using namespace velmor::sql;

// Pieces repeated until the text holds at least `bytes`.
std::string grown(std::string text, const std::string& before, const std::string& after, std::int64_t bytes,
                  const std::string& piece, const std::string& closing = "") {
  std::string open, close;
  std::int64_t n = 0;
  while (static_cast<std::int64_t>(text.size() + open.size() + close.size()) < bytes) {
    open += piece;
    close += closing;
    ++n;
  }
  return before + open + text + close + after;
}

std::string parentheses(std::int64_t b) { return grown("id", "SELECT ", " FROM cities", b, "(", ")"); }
std::string minusSigns(std::int64_t b) { return grown("id", "SELECT ", " FROM cities", b, "- "); }
std::string plusChain(std::int64_t b) { return grown("", "SELECT id", " FROM cities", b, " + id"); }
std::string orChain(std::int64_t b) {
  std::string text = "SELECT name FROM cities WHERE id = 0";
  for (int i = 1; static_cast<std::int64_t>(text.size()) < b; ++i) text += " OR id = " + std::to_string(i);
  return text;
}
std::string inList(std::int64_t b) {
  std::string text = "SELECT name FROM cities WHERE id IN (0";
  for (int i = 1; static_cast<std::int64_t>(text.size()) < b; ++i) text += ", " + std::to_string(i);
  return text + ")";
}
std::string subqueries(std::int64_t b) {
  return grown("SELECT id FROM cities", "", "", b, "SELECT id FROM (", ") AS q");
}
// One name again and again: every repeat is renamed (id, id1, id2, ...).
std::string repeatedNames(std::int64_t b) { return grown("", "SELECT id", " FROM cities", b, ", id"); }

// Format writes with the tool's precedence context; FormatBare with none, which puts every
// nested binary operation in parentheses. Columns names the result columns.
enum Stage { Parse, Format, FormatBare, Validate, Columns };

// One iteration: parse (and release the previous tree), then the stage's own work.
template <std::string (*Text)(std::int64_t), Stage S>
void BM_Shape(benchmark::State& state) {
  const std::string text = Text(state.range(0));
  const ParseContext context;
  const sample::SampleHost host;
  SqlParser parser(context);
  parser.nestingLimit = 1 << 22;
  for (auto _ : state) {
    if (!parser.parse(text)) {
      state.SkipWithError("the text does not parse");
      break;
    }
    if constexpr (S == Format || S == FormatBare) {
      static const velmor::sql::host::GrammarPrecedence precedence;
      SqlStringBuilder builder(S == Format ? &precedence : nullptr);
      benchmark::DoNotOptimize(builder.buildString(parser.result));
    } else if constexpr (S == Validate) {
      Validator validator(host, host);
      benchmark::DoNotOptimize(validator.validate(ast::getNodeValue<ast::QuerySpecification>(parser.result)));
    } else if constexpr (S == Columns) {
      benchmark::DoNotOptimize(buildTableInfo(host, host, ast::getNodeValue<ast::QuerySpecification>(parser.result), nullptr));
    }
  }
  state.SetComplexityN(static_cast<std::int64_t>(text.size()));
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
}

#define VELMOR_DEEP(Text, Stage)                                                                   \
  BENCHMARK_TEMPLATE(BM_Shape, Text, Stage)                                                        \
      ->Arg(10'000)                                                                                \
      ->Arg(100'000)                                                                               \
      ->Arg(1 << 20)                                                                               \
      ->Complexity(benchmark::oN)                                                                  \
      ->Unit(benchmark::kMillisecond);

VELMOR_DEEP(parentheses, Parse)
VELMOR_DEEP(parentheses, Format)
VELMOR_DEEP(minusSigns, Parse)
VELMOR_DEEP(minusSigns, Format)
VELMOR_DEEP(minusSigns, Validate)
VELMOR_DEEP(plusChain, Parse)
VELMOR_DEEP(plusChain, Format)
VELMOR_DEEP(plusChain, Validate)
VELMOR_DEEP(orChain, Parse)
VELMOR_DEEP(orChain, Format)
VELMOR_DEEP(orChain, FormatBare)
VELMOR_DEEP(orChain, Validate)
VELMOR_DEEP(inList, Parse)
VELMOR_DEEP(inList, Format)
VELMOR_DEEP(subqueries, Parse)
VELMOR_DEEP(subqueries, Format)
VELMOR_DEEP(subqueries, Validate)
VELMOR_DEEP(repeatedNames, Columns)
VELMOR_DEEP(repeatedNames, Validate)

} // namespace

BENCHMARK_MAIN();
