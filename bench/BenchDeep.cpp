// Cost of deep and long texts by size: parse, canonical text, validation and release should
// all grow about linearly (the reported complexity is the fit over the sizes).
#include <velmor/sql/host/Precedence.h>
#include "support/SampleHost.h"

#include <velmor/sql/ast/Traversal.h>
#include <velmor/sql/builder/SqlStringBuilder.h>
#include <velmor/sql/parser/SqlParser.h>
#include <velmor/sql/validation/Validator.h>

#include <benchmark/benchmark.h>

#include <string>

namespace {

using namespace velmor::sql;

std::string repeat(const std::string& piece, std::int64_t count) {
  std::string out;
  for (std::int64_t i = 0; i < count; ++i) out += piece;
  return out;
}

std::string parentheses(std::int64_t n) { return "SELECT " + repeat("(", n) + "id" + repeat(")", n) + " FROM cities"; }
std::string minusSigns(std::int64_t n) { return "SELECT " + repeat("- ", n) + "id FROM cities"; }
std::string plusChain(std::int64_t n) { return "SELECT id" + repeat(" + id", n - 1) + " FROM cities"; }
std::string orChain(std::int64_t n) {
  std::string text = "SELECT name FROM cities WHERE id = 0";
  for (std::int64_t i = 1; i < n; ++i) text += " OR id = " + std::to_string(i);
  return text;
}
std::string inList(std::int64_t n) {
  std::string text = "SELECT name FROM cities WHERE id IN (0";
  for (std::int64_t i = 1; i < n; ++i) text += ", " + std::to_string(i);
  return text + ")";
}
std::string subqueries(std::int64_t n) {
  return repeat("SELECT id FROM (", n) + "SELECT id FROM cities" + repeat(") AS q", n);
}

// Format writes with the tool's precedence context; FormatBare with none, which puts every
// nested binary operation in parentheses, so a long chain is wrapped once per level.
enum Stage { Parse, Format, FormatBare, Validate };

// One iteration: parse (and release the previous tree), then the stage's own work.
template <std::string (*Text)(std::int64_t), Stage S>
void BM_Shape(benchmark::State& state) {
  const std::string text = Text(state.range(0));
  const ParseContext context;
  const sample::SampleHost host;
  SqlParser parser(context);
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
    }
  }
  state.SetComplexityN(state.range(0));
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
}

#define VELMOR_DEEP(Text, Stage, Low, High)                                                        \
  BENCHMARK_TEMPLATE(BM_Shape, Text, Stage)                                                        \
      ->RangeMultiplier(2)                                                                         \
      ->Range(Low, High)                                                                           \
      ->Complexity()                                                                               \
      ->Unit(benchmark::kMicrosecond);

VELMOR_DEEP(parentheses, Parse, 1 << 10, 8 << 10)
VELMOR_DEEP(minusSigns, Parse, 1 << 10, 8 << 10)
VELMOR_DEEP(minusSigns, Format, 1 << 10, 8 << 10)
VELMOR_DEEP(plusChain, Parse, 1 << 10, 8 << 10)
VELMOR_DEEP(plusChain, Format, 1 << 10, 8 << 10)
VELMOR_DEEP(plusChain, Validate, 1 << 10, 8 << 10)
VELMOR_DEEP(orChain, Parse, 1 << 10, 8 << 10)
VELMOR_DEEP(orChain, Format, 1 << 10, 8 << 10)
VELMOR_DEEP(orChain, FormatBare, 1 << 10, 8 << 10)
VELMOR_DEEP(orChain, Validate, 1 << 10, 8 << 10)
VELMOR_DEEP(inList, Parse, 1 << 13, 1 << 17)
VELMOR_DEEP(inList, Format, 1 << 13, 1 << 17)
VELMOR_DEEP(subqueries, Parse, 1 << 8, 2 << 10)
VELMOR_DEEP(subqueries, Format, 1 << 8, 2 << 10)
VELMOR_DEEP(subqueries, Validate, 1 << 8, 2 << 10)

} // namespace

BENCHMARK_MAIN();
