// The validator: scopes, result table, qualifier checks, typing of the clauses, aggregate and
// context checks, in a fixed order.
#include <velmor/sql/validation/Validator.h>

#include <velmor/sql/inference/TypeInferer.h>
#include <velmor/sql/scope/Scope.h>
#include <velmor/sql/scope/ScopeBuilder.h>
#include <velmor/sql/validation/ContextChecks.h>
#include <velmor/sql/validation/FaultPlaces.h>
#include <velmor/sql/validation/QualifierChecks.h>
#include <velmor/sql/errors/SemanticErrors.h>

namespace velmor::sql {

Validator::Validator(const GlobalTypeContext& globalContext, const TableInfoContext& tableContext,
                     const std::shared_ptr<ColumnInfoScope>& externalScope)
    : mGlobalContext(globalContext), mTableContext(tableContext), mExternalScope(externalScope) {}

void Validator::faultAction() {}

void ValidatorVisitor::faultAction() {}

bool Validator::validate(const ast::QuerySpecification& query) {
  try {
    // A query without FROM has an empty scope, which knows no column; the scopes below and
    // the result table take it as such.
    const auto scope = buildScope(mGlobalContext, mTableContext, query, mExternalScope);

    // Typing the select list here makes every fault of it end the run.
    auto tableInfo = buildTableInfo(mGlobalContext, scope, query.selectList);

    // Behind the FROM columns the clauses see the output columns under their own names; those
    // have no table name, so only an unqualified reference reaches them.
    auto selectScope = std::make_shared<TableInfoScope>(ast::TablePrimary{}, std::move(tableInfo));
    const auto fullScope = addExternalScope(scope, selectScope);
    TypeInferer inferer(mGlobalContext, *fullScope);

    UnknownTableQualifiersVisitor unknownQualifiers(mTableContext, scope.get());
    unknownQualifiers.setTargetErrorList(&mErrors);
    for (const auto& item : query.selectList) unknownQualifiers.visitAllNodes(item);

    AmbiguousTableQualifiersVisitor ambiguousQualifiers;
    ambiguousQualifiers.setTargetErrorList(&mErrors);
    for (const auto& reference : query.from) ambiguousQualifiers.visitAllNodes(reference);

    if (!query.where.isNull()) {
      inferer.inferType(query.where);
      if (AggregateQueryDetector(mGlobalContext).isAggregate(query.where)) {
        mErrors.push_back(std::make_shared<AggregateInWhereClause>());
        detail::noteFaultAt(*mErrors.back(), query.where);
      }
    }

    // HAVING, then ORDER BY, then GROUP BY: the first fault thrown decides what the list shows.
    if (!query.having.isNull()) inferer.inferType(query.having);
    for (const auto& sort : query.orderBy) inferer.inferType(sort.key);
    for (const auto& key : query.groupBy) inferer.inferType(key);

    if (ContextCheckVisitor(mGlobalContext).isContext(query)) {
      mErrors.push_back(std::make_shared<ContextQuery>());
      detail::noteMarkedFault(*mErrors.back());
    }
  } catch (const SqlError& error) {
    mErrors.push_back(std::shared_ptr<SqlError>(error.clone()));
    detail::noteCaughtFault(*mErrors.back());
  }
  return mErrors.empty();
}

bool Validator::validate(const ast::UpdateStatement& update) {
  try {
    auto table = mTableContext.table(update.table);
    if (!table) {
      mErrors.push_back(std::make_shared<UnknownTableReference>(update.table));
      return false;
    }
    // The table stands by itself: an enclosing scope plays no part in an UPDATE.
    const TableInfoScope scope(ast::TablePrimary{update.table, {}}, std::move(table));
    TypeInferer inferer(mGlobalContext, scope);

    if (!update.where.isNull()) inferer.inferType(update.where);

    for (const auto& clause : update.clauses) {
      if (scope.columnInfo({}, clause.column).isNull()) {
        mErrors.push_back(std::make_shared<UnknownColumnReference>(std::wstring{}, clause.column));
        return false;
      }
      inferer.inferType(clause.value);
    }
    return true;
  } catch (const SqlError& error) {
    mErrors.push_back(std::shared_ptr<SqlError>(error.clone()));
    detail::noteCaughtFault(*mErrors.back());
    return false;
  }
}

} // namespace velmor::sql
