// Validation with fault places.
#include <velmor/sql/host/Check.h>

#include <velmor/sql/ast/Traversal.h>
#include <velmor/sql/validation/Validator.h>

#include <stdexcept>

namespace velmor::sql::host {

std::vector<PlacedFault> placeFaults(const std::vector<std::shared_ptr<SqlError>>& faults, const FaultPlaces& places,
                                     const SourceRanges& ranges) {
  std::vector<PlacedFault> placed;
  placed.reserve(faults.size());
  for (const auto& fault : faults) {
    PlacedFault entry{fault, std::nullopt};
    if (fault) {
      if (const SourceRange* range = ranges.find(places.nodeOf(*fault))) entry.range = *range;
    }
    placed.push_back(std::move(entry));
  }
  return placed;
}

bool isCheckable(const ast::Node& statement) {
  return ast::nodeIs<ast::QuerySpecification>(statement) || ast::nodeIs<ast::UpdateStatement>(statement);
}

std::vector<PlacedFault> checkStatement(const ast::Node& statement, const SourceRanges* ranges,
                                        const GlobalTypeContext& globalContext, const TableInfoContext& tableContext) {
  if (!isCheckable(statement))
    throw std::invalid_argument("only a query specification or an UPDATE can be checked");
  Validator validator(globalContext, tableContext);
  FaultPlaces places;
  if (ast::nodeIs<ast::QuerySpecification>(statement)) {
    validator.validate(ast::getNodeValue<ast::QuerySpecification>(statement));
  } else {
    validator.validate(ast::getNodeValue<ast::UpdateStatement>(statement));
  }
  static const SourceRanges none;
  return placeFaults(validator.mErrors, places, ranges ? *ranges : none);
}

} // namespace velmor::sql::host
