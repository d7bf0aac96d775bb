// Validation for editors: each fault with the stretch of text it is about.
#pragma once

#include <velmor/sql/ast/AST.h>
#include <velmor/sql/errors/SqlError.h>
#include <velmor/sql/host/Export.h>
#include <velmor/sql/parser/SourceRanges.h>
#include <velmor/sql/scope/Scoping.h>
#include <velmor/sql/types/Routine.h>
#include <velmor/sql/types/Table.h>
#include <velmor/sql/validation/FaultPlaces.h>

#include <memory>
#include <optional>
#include <vector>

namespace velmor::sql::host {

/// A fault and where it is.
struct PlacedFault {
  std::shared_ptr<SqlError> fault;
  /// The range of the node the fault is about; none when no single node is meant (an UPDATE's
  /// unknown table or SET column) or the node has no range.
  std::optional<SourceRange> range;
  /// The fault in words for a person (faultMessage), in the catalogue's type names when the
  /// check ran on a host::Catalogue; empty from placeFaults.
  std::string message;
};

/// Each of `faults`, a validator's list filled while `places` lived, with the range in `ranges`
/// of the node it is about, in the same order.
VELMOR_SQL_HOST_API std::vector<PlacedFault> placeFaults(const std::vector<std::shared_ptr<SqlError>>& faults,
                                                         const FaultPlaces& places, const SourceRanges& ranges);

/// True for the statements that a Validator checks: a query specification or an UPDATE.
VELMOR_SQL_HOST_API bool isCheckable(const ast::Node& statement);
/// The same for a scoping mode: standard scoping also checks set operations, VALUES, TABLE,
/// INSERT and DELETE.
VELMOR_SQL_HOST_API bool isCheckable(const ast::Node& statement, Scoping scoping);

/// Validates `statement` (a query specification or an UPDATE, see isCheckable) with a fresh
/// Validator over the two contexts, and places its faults; `ranges` are those of the parse that
/// made the statement, or null for faults without places. Empty when the statement is good.
/// Throws std::invalid_argument for any other statement; whatever Validator lets through passes.
VELMOR_SQL_HOST_API std::vector<PlacedFault> checkStatement(const ast::Node& statement, const SourceRanges* ranges,
                                                            const GlobalTypeContext& globalContext,
                                                            const TableInfoContext& tableContext);

/// Validates `statement` with a fresh Validator in `scoping` mode and places its faults, each
/// with its message (type names and suggestions from the catalogue when `globalContext` is a
/// host::Catalogue). In standard scoping every statement kind is checked and the faults come in
/// the order of the text (those without a place last). Throws std::invalid_argument for a
/// statement that isCheckable(statement, scoping) refuses.
VELMOR_SQL_HOST_API std::vector<PlacedFault> checkStatement(const ast::Node& statement, const SourceRanges* ranges,
                                                            const GlobalTypeContext& globalContext,
                                                            const TableInfoContext& tableContext, Scoping scoping);

} // namespace velmor::sql::host
