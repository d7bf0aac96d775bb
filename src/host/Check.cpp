// Validation with fault places.
#include <velmor/sql/host/Check.h>

#include <velmor/sql/ast/Traversal.h>
#include <velmor/sql/host/Catalogue.h>
#include <velmor/sql/host/Messages.h>
#include <velmor/sql/validation/Validator.h>

#include <algorithm>
#include <limits>
#include <stdexcept>

namespace velmor::sql::host {

std::vector<PlacedFault> placeFaults(const std::vector<std::shared_ptr<SqlError>>& faults, const FaultPlaces& places,
                                     const SourceRanges& ranges) {
  std::vector<PlacedFault> placed;
  placed.reserve(faults.size());
  for (const auto& fault : faults) {
    PlacedFault entry{fault, std::nullopt, {}};
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

bool isCheckable(const ast::Node& statement, Scoping scoping) {
  if (scoping == Scoping::Compatible) return isCheckable(statement);
  return ast::nodeIs<ast::QuerySpecification>(statement) || ast::nodeIs<ast::UpdateStatement>(statement) ||
         ast::nodeIs<ast::QueryOperation>(statement) || ast::nodeIs<ast::RowValueExpressionList>(statement) ||
         ast::nodeIs<ast::ExplicitTable>(statement) || ast::nodeIs<ast::InsertStatement>(statement) ||
         ast::nodeIs<ast::DeleteStatement>(statement);
}

std::vector<PlacedFault> checkStatement(const ast::Node& statement, const SourceRanges* ranges,
                                        const GlobalTypeContext& globalContext, const TableInfoContext& tableContext) {
  return checkStatement(statement, ranges, globalContext, tableContext, Scoping::Compatible);
}

std::vector<PlacedFault> checkStatement(const ast::Node& statement, const SourceRanges* ranges,
                                        const GlobalTypeContext& globalContext, const TableInfoContext& tableContext,
                                        Scoping scoping) {
  if (!isCheckable(statement, scoping)) {
    throw std::invalid_argument(scoping == Scoping::Compatible
                                    ? "only a query specification or an UPDATE can be checked"
                                    : "only a query, VALUES, TABLE, INSERT, UPDATE or DELETE can be checked");
  }
  Validator validator(globalContext, tableContext);
  validator.setScoping(scoping);
  std::vector<PlacedFault> placed;
  {
    FaultPlaces places;
    validator.validateStatement(statement);
    static const SourceRanges none;
    placed = placeFaults(validator.mErrors, places, ranges ? *ranges : none);
  }
  if (placed.empty()) return placed;
  const auto* catalogue = dynamic_cast<const Catalogue*>(&globalContext);
  const KnownNames names = knownNames(statement, catalogue);
  for (PlacedFault& fault : placed) fault.message = faultMessage(*fault.fault, catalogue, &names);
  if (scoping == Scoping::Standard) {
    const auto begin = [](const PlacedFault& fault) {
      return fault.range ? fault.range->beginOffset : std::numeric_limits<std::size_t>::max();
    };
    std::stable_sort(placed.begin(), placed.end(),
                     [&](const PlacedFault& a, const PlacedFault& b) { return begin(a) < begin(b); });
  }
  return placed;
}

} // namespace velmor::sql::host
