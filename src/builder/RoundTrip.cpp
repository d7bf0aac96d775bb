// The round trip of a tree through its canonical text.
#include <velmor/sql/ast/TreeShape.h>
#include <velmor/sql/builder/RoundTrip.h>
#include <velmor/sql/parser/SqlParser.h>

#include "common/Utf8.h"

namespace velmor::sql {

RoundTripReport checkRoundTrip(const ast::Node& tree, const StringBuildContext* context, int nestingLimit) {
  RoundTripReport report;
  report.text = SqlStringBuilder(context).buildString(tree);
  const ParseContext parseContext;
  SqlParser parser(parseContext);
  parser.nestingLimit = nestingLimit;
  if (!parser.parse(detail::utf8Of(report.text))) {
    report.syntaxError = parser.errors.empty() ? "syntax error" : parser.errors.front()->what();
    return report;
  }
  const auto difference = ast::firstDifference(tree, parser.result, ast::Grouping::Associative);
  if (!difference) {
    report.same = true;
    return report;
  }
  report.written = SqlStringBuilder(nullptr).buildString(difference->first);
  report.readBack = SqlStringBuilder(nullptr).buildString(difference->second);
  return report;
}

} // namespace velmor::sql
