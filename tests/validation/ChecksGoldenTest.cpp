// data/validation/checks.golden: "mode statement" and what the check of that mode gives (the
// modes are described at the top of the file).
#include <velmor/sql/scope/Scope.h>
#include <velmor/sql/validation/ContextChecks.h>
#include <velmor/sql/validation/QualifierChecks.h>
#include <velmor/sql/validation/Validator.h>

#include "ValidationTestSupport.h"
#include "support/Golden.h"

#include <gtest/gtest.h>

namespace velmor::sql::validation_test {
namespace {

std::string listed(const std::vector<std::shared_ptr<SqlError>>& errors) {
  std::string out;
  for (const std::string& error : describe(errors)) out += "\n" + error;
  return out;
}

std::string yesNo(bool value) { return value ? "yes" : "no"; }

std::string check(const std::string& input) {
  const std::string mode = input.substr(0, input.find(' '));
  const std::string text = input.substr(mode.size() + 1);
  const CountingHost counting;
  const sample::SampleHost& host = counting;
  std::vector<std::shared_ptr<SqlError>> errors;
  if (mode == "validate") {
    const auto validating = testHost();
    Validator validator(validating, validating, nullptr);
    const auto tree = parse(text);
    const bool good = ast::nodeIs<ast::UpdateStatement>(tree)
                          ? validator.validate(ast::getNodeValue<ast::UpdateStatement>(tree))
                          : validator.validate(ast::getNodeValue<ast::QuerySpecification>(tree));
    return (good ? "valid" : "invalid") + listed(validator.errors());
  }
  if (mode == "context") {
    ContextCheckVisitor visitor(host);
    const bool context = visitor.isContext(parseAs<ast::QuerySpecification>(text));
    return yesNo(context) + (visitor.inSelect() ? " still in select" : "");
  }
  if (mode == "statement") {
    ContextCheckVisitor visitor(host);
    parse(text).accept(visitor);
    const int lookups = counting.mLookups;
    const bool context = visitor.isContext(parseAs<ast::QuerySpecification>("SELECT upper(a) FROM t"));
    // A select list asks the host nothing.
    return yesNo(context) + " after " + std::to_string(lookups) + " lookups" +
           (counting.mLookups != lookups ? " and more" : "");
  }
  if (mode == "aggregate") return yesNo(AggregateQueryDetector(host).isAggregate(parse(text)));
  if (mode == "unknown") {
    const TableInfoScope scope(ast::TablePrimary{L"x", L""}, host.table(L"cities"));
    UnknownTableQualifiersVisitor visitor(host, &scope);
    visitor.setTargetErrorList(&errors);
    for (const auto& item : parseAs<ast::QuerySpecification>(text).selectList) visitor.visitAllNodes(item);
    return "faults:" + listed(errors);
  }
  if (mode == "ambiguous") {
    AmbiguousTableQualifiersVisitor visitor;
    visitor.setTargetErrorList(&errors);
    for (const auto& reference : parseAs<ast::QuerySpecification>(text).from) visitor.visitAllNodes(reference);
    return "faults:" + listed(errors);
  }
  return "unknown mode " + mode;
}

const bool registered = (test::registerGolden("Checks", "validation/checks.golden", check), true);

} // namespace
} // namespace velmor::sql::validation_test
