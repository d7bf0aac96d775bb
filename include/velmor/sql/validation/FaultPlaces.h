// Which node each fault of a validation is about, noted while the validation runs.
#pragma once

#include <velmor/sql/Export.h>
#include <velmor/sql/ast/AST.h>
#include <velmor/sql/errors/SqlError.h>

#include <memory>
#include <unordered_map>

namespace velmor::sql {

/// While one lives, the Validator runs on its thread note, for each fault they put in their
/// list, the node that the fault is about: the column reference, the table reference, the call,
/// the operation, the WHERE condition that holds an aggregate, the CAST that makes a context
/// query. A fault that no single node stands for (in an UPDATE, its table and the columns of its
/// SET clauses) has none. What the validation does and finds is the same with or without one.
///
/// Lives on one thread, on the stack of the code that validates, and must die on the thread
/// that made it and before any one made after it on that thread (they nest). It keeps no
/// reference to the tree or the faults: it answers by identity.
class VELMOR_SQL_API FaultPlaces {
public:
  FaultPlaces();
  ~FaultPlaces();
  FaultPlaces(const FaultPlaces&) = delete;
  FaultPlaces& operator=(const FaultPlaces&) = delete;

  /// The node that `fault`, an entry of a validator's list, is about, or null.
  const ast::NodeInterface* nodeOf(const SqlError& fault) const;

  struct State; ///< what the notes fill; internal

private:
  std::unique_ptr<State> mState;
  void* mOuter;
};

namespace detail {
/// The Validator's notes to the thread's FaultPlaces, if any: `fault` was caught from a walk (the
/// node it left innermost), was listed during a walk (the node being visited), or is about
/// `node`.
VELMOR_SQL_API void noteCaughtFault(const SqlError& fault) noexcept;
VELMOR_SQL_API void noteListedFault(const SqlError& fault) noexcept;
VELMOR_SQL_API void noteFaultAt(const SqlError& fault, const ast::Node& node) noexcept;
/// A check that answers yes or no found its reason in the node being visited: the fault that
/// the caller lists for the answer is about that node (noteMarkedFault).
VELMOR_SQL_API void markFaultPlace() noexcept;
VELMOR_SQL_API void noteMarkedFault(const SqlError& fault) noexcept;
} // namespace detail

} // namespace velmor::sql
