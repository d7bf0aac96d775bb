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

#include "ast/RecordOf.h"
#include "inference/Resolutions.h"
#include "inference/StandardAnalysis.h"

namespace velmor::sql {

Validator::Validator(const GlobalTypeContext& globalContext, const TableInfoContext& tableContext,
                     const std::shared_ptr<ColumnInfoScope>& externalScope)
    : mGlobalContext(globalContext), mTableContext(tableContext), mExternalScope(externalScope) {}

void Validator::faultAction() {}

void ValidatorVisitor::faultAction() {}

namespace {

// Standard scoping's faults go to the validator's list, each with its place noted.
class ListSink final : public detail::FaultSink {
public:
  explicit ListSink(std::vector<std::shared_ptr<SqlError>>& list) : mList(list) {}
  void caught(const SqlError& fault) override {
    mList.push_back(std::shared_ptr<SqlError>(fault.clone()));
    detail::noteCaughtFault(*mList.back());
  }
  void found(const SqlError& fault, const ast::Node* node) override {
    mList.push_back(std::shared_ptr<SqlError>(fault.clone()));
    if (node) detail::noteFaultAt(*mList.back(), *node);
  }

private:
  std::vector<std::shared_ptr<SqlError>>& mList;
};

bool isStatement(const ast::Node& node) {
  return ast::detail::holds<ast::QuerySpecification, ast::UpdateStatement, ast::QueryOperation,
                            ast::RowValueExpressionList, ast::InsertStatement, ast::DeleteStatement,
                            ast::ExplicitTable>(node);
}

} // namespace

bool Validator::validateStatement(const ast::Node& statement) {
  if (statement.isNull() || !isStatement(statement)) return false;
  if (mScoping == Scoping::Compatible) {
    if (ast::detail::holds<ast::QuerySpecification>(statement)) {
      const std::size_t before = mErrors.size();
      validate(ast::detail::recordIn<ast::QuerySpecification>(statement));
      return mErrors.size() == before;
    }
    if (ast::detail::holds<ast::UpdateStatement>(statement)) return validate(ast::detail::recordIn<ast::UpdateStatement>(statement));
  }
  return validateStandard(statement);
}

bool Validator::validateStandard(const ast::Node& statement) {
  const detail::ResolutionScope resolutions(mGlobalContext);
  const std::size_t before = mErrors.size();
  ListSink sink(mErrors);
  detail::StandardAnalysis analysis(mGlobalContext, mTableContext, &sink);
  try {
    const std::uint64_t castsBefore = detail::typingMarks().casts;
    analysis.checkStatement(statement, mExternalScope);
    // The walk finds nothing but a CAST: when typing went through the whole statement and met
    // none, it is spared.
    const bool mayHoldCasts = detail::typingMarks().casts != castsBefore || analysis.cuts() != 0;
    if (mayHoldCasts && ast::detail::holds<ast::QuerySpecification>(statement) &&
        ContextCheckVisitor(mGlobalContext).isContext(ast::detail::recordIn<ast::QuerySpecification>(statement))) {
      mErrors.push_back(std::make_shared<ContextQuery>());
      detail::noteMarkedFault(*mErrors.back());
    }
  } catch (const FaultReported&) {
    // Its fault is in the list.
  } catch (const SqlError& error) {
    sink.caught(error);
  }
  return mErrors.size() == before;
}

bool Validator::validate(const ast::QuerySpecification& query) {
  if (mScoping == Scoping::Standard) {
    validateStandard(ast::makeNode(query));
    return mErrors.empty();
  }
  const detail::ResolutionScope resolutions(mGlobalContext);
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
  if (mScoping == Scoping::Standard) return validateStandard(ast::makeNode(update));
  const detail::ResolutionScope resolutions(mGlobalContext);
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
