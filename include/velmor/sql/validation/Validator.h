// Checks a parsed SELECT or UPDATE against the host's tables and routines, gathering its faults.
#pragma once

#include <velmor/sql/Export.h>
#include <velmor/sql/ast/AST.h>
#include <velmor/sql/ast/Traversal.h>
#include <velmor/sql/errors/SqlError.h>
#include <velmor/sql/scope/Scoping.h>
#include <velmor/sql/types/Routine.h>
#include <velmor/sql/types/Table.h>
#include <velmor/sql/validation/FaultPlaces.h>

#include <memory>
#include <utility>
#include <vector>

namespace velmor::sql {

class ColumnInfoScope;

/// Validates statements against the host's catalogue.
///
/// Faults of table qualifiers, an aggregate in WHERE and a context query are gathered and the
/// run goes on; any other SqlError (an unknown table, column or function, no fitting overload,
/// an unsupported operator...) ends the run and is put in the list as well, as a clone of the
/// most derived class. Exceptions that are no SqlError pass through untouched, leaving in the
/// list what was gathered before: std::bad_alloc, ast::NullNodeException (an empty handle in a
/// hand-made tree), ast::BadNodeTypeException (a CAST size that is no number),
/// std::out_of_range (a CAST size too large to read), whatever the host throws.
///
/// The contexts are borrowed and must outlive the validator; the external scope is shared. A
/// validator may check any number of statements in turn; each run appends to `mErrors`, which
/// nothing but the caller ever clears. One thread at a time.
class VELMOR_SQL_API Validator : public ast::NodeVisitor {
public:
  /// An empty error list. `externalScope` is the scope of an enclosing statement, or empty; it
  /// takes part in queries only, never in an UPDATE.
  Validator(const GlobalTypeContext& globalContext, const TableInfoContext& tableContext,
            const std::shared_ptr<ColumnInfoScope>& externalScope = nullptr);
  /// Temporary contexts would dangle: refused.
  Validator(GlobalTypeContext&& globalContext, const TableInfoContext& tableContext,
            const std::shared_ptr<ColumnInfoScope>& externalScope = nullptr) = delete;
  Validator(const GlobalTypeContext& globalContext, TableInfoContext&& tableContext,
            const std::shared_ptr<ColumnInfoScope>& externalScope = nullptr) = delete;

  /// How names are scoped in the runs from now on; Compatible unless set. Standard checks every
  /// clause at every depth, gathers all faults of a statement in the order of its text (a fault
  /// ends only the part it is in), and raises the classes numbered from 34 as well.
  void setScoping(Scoping scoping) noexcept { mScoping = scoping; }
  Scoping scoping() const noexcept { return mScoping; }

  /// Checks a statement of any kind: a query specification or an UPDATE by the scoping in
  /// force (as the two validate operations do); a set operation, a VALUES list, an INSERT or a
  /// DELETE by standard rules in either mode, as the compatible rules have none for them. An
  /// empty handle or a node of another kind is no statement: false, with nothing listed. True
  /// when this run found nothing.
  bool validateStatement(const ast::Node& statement);

  /// Checks a query. True when `mErrors` is empty afterwards, so a validator that already holds
  /// errors from an earlier run answers false even for a good query.
  bool validate(const ast::QuerySpecification& query);
  /// Checks an UPDATE: the table, WHERE and each SET clause. True when this run found nothing,
  /// whatever earlier runs left in `mErrors`. Values are not compared with the column types,
  /// and neither the qualifier checks nor the context check run here.
  bool validate(const ast::UpdateStatement& update);

  /// The faults of all runs so far, oldest first. Never empty pointers.
  const std::vector<std::shared_ptr<SqlError>>& errors() const noexcept { return mErrors; }

  /// Not used as a visitor: every slot is silent.
  void faultAction() override;

  /// All faults so far; public so that a host may read and clear it.
  std::vector<std::shared_ptr<SqlError>> mErrors;

private:
  bool validateStandard(const ast::Node& statement);

  const GlobalTypeContext& mGlobalContext;
  const TableInfoContext& mTableContext;
  std::shared_ptr<ColumnInfoScope> mExternalScope;
  Scoping mScoping = Scoping::Compatible;
};

/// Base of the walkers that report faults of one kind over a whole tree: with a target list a
/// fault is appended and the walk goes on; without one the fault is thrown by value. Every kind
/// that a derived walker does not handle is passed over silently.
class VELMOR_SQL_API ValidatorVisitor : public ast::TraversalVisitor {
public:
  /// Where faults go from now on; the list is borrowed and must outlive the walks. Null (the
  /// initial state) turns the visitor back to throwing.
  void setTargetErrorList(std::vector<std::shared_ptr<SqlError>>* list) noexcept {
    mTargetErrorList = list;
  }

  /// Silent: kinds without a check of their own are no fault.
  void faultAction() override;

protected:
  /// Appends `error` to the target list, or throws it when there is none.
  template <class Error>
  void report(Error error) {
    if (mTargetErrorList == nullptr) throw error;
    mTargetErrorList->push_back(std::make_shared<Error>(std::move(error)));
    detail::noteListedFault(*mTargetErrorList->back());
  }

  std::vector<std::shared_ptr<SqlError>>* mTargetErrorList = nullptr;
};

} // namespace velmor::sql
