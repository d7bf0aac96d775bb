// Walkers over whole trees, the children of a node, and one-kind checks and accessors.
#pragma once

#include <velmor/sql/Export.h>
#include <velmor/sql/ast/AST.h>

#include <deque>
#include <type_traits>
#include <utility>
#include <vector>

namespace velmor::sql::ast {

/// A visitor that yields a value: `Base` plus one result field that the derived class fills in
/// its visit operations. Overrides no slot. The result can be moved out with
/// `std::move(visitor).result()` once the visit is over.
template <class Base, class Result>
class VisitorWithResult : public Base {
public:
  using Base::Base;

  const Result& result() const& noexcept { return mResult; }
  Result& result() & noexcept { return mResult; }
  Result&& result() && noexcept { return std::move(mResult); }

protected:
  Result mResult{};
};

/// Lists the children of the one node it visits, in the fixed order of each record kind (the
/// order a TraversalVisitor walks them, reversed). Record fields held by value (the INSERT
/// source, ORDER BY items, UPDATE clauses, a written LIMIT) are handed out as new nodes made
/// for each call. A node of EmptyNode and the leaf kinds add nothing. Results accumulate over
/// several visits.
class VELMOR_SQL_API ChildExtractor : public VisitorWithResult<NodeVisitor, std::vector<Node>> {
public:
#define VELMOR_SQL_RECORD(Name, isExpr) void visit(const Name& record) override;
#include <velmor/sql/ast/Records.def>
  /// Unreachable (every slot is handled); does nothing.
  void faultAction() override;
};

/// The children of `node` in order; empty for leaves and for a node of EmptyNode.
/// Throws NullNodeException for an empty handle.
VELMOR_SQL_API std::vector<Node> children(const Node& node);

/// Walks a whole tree depth first, parent before children, the children of a node from the
/// last to the first (a `+` operation, then its right operand, then its left).
///
/// Override the kinds of interest and `faultAction` (to do nothing): the base slots report every
/// other kind through NodeVisitor::faultAction. A visit may call skipCurrentNodeChildren (spares
/// the subtree of the node just visited), stopTraversal (ends the walk, the rest is dropped) or
/// processNode (walks a further node next).
///
/// Not re-entrant: the work list and the flags belong to the object, so a walk started from
/// inside a visit of the same object ends the outer one. Use a second object for a sub-walk.
/// A handle with an empty implementation in the tree makes the walk throw NullNodeException;
/// an exception out of a visit leaves the remaining work list until the next walk.
/// A walker belongs to one thread; any number of walkers may read one tree at once.
class VELMOR_SQL_API TraversalVisitor : public NodeVisitor {
public:
  /// Walks the tree of `node`; hides NodeVisitor::doVisit.
  void doVisit(const Node& node);
  /// The walk: clears both flags, visits `root` and then every node below it.
  void visitAllNodes(const Node& root);
  /// Pushes the children of `node` unless a flag is set; otherwise clears the skip flag.
  void maybeAddChildren(const Node& node);
  /// Puts `node` on the work list, so that it is the next node visited (with its subtree).
  void processNode(const Node& node);
  /// Ends the walk after the current visit; holds until the next walk starts.
  void stopTraversal() noexcept { mStop = true; }
  /// Spares the children of the node being visited.
  void skipCurrentNodeChildren() noexcept { mSkip = true; }
  /// True while the stop flag or the skip flag is set.
  bool inSkip() const noexcept { return mStop || mSkip; }

private:
  std::deque<Node> mWorkList;
  bool mStop = false;
  bool mSkip = false;
};

/// Visits one node and reacts to one record kind T: `visit(T)` runs OnMatch, every other slot
/// runs OnFault. OnMatch may take `(const T&, Result&)`, or take `(const T&)` and return the
/// result (or return nothing, leaving the result as it is).
template <class T, class OnMatch, class OnFault, class Result>
class SingleTypeVisitor : public VisitorWithResult<NodeVisitor, Result> {
public:
  SingleTypeVisitor(OnMatch onMatch, OnFault onFault, Result initial = Result{})
      : mOnMatch(std::move(onMatch)), mOnFault(std::move(onFault)) {
    this->mResult = std::move(initial);
  }

  using NodeVisitor::visit;
  void visit(const T& record) override {
    if constexpr (std::is_invocable_v<OnMatch&, const T&, Result&>)
      mOnMatch(record, this->mResult);
    else if constexpr (std::is_void_v<std::invoke_result_t<OnMatch&, const T&>>)
      mOnMatch(record);
    else
      this->mResult = mOnMatch(record);
  }
  void faultAction() override { mOnFault(); }

private:
  OnMatch mOnMatch;
  OnFault mOnFault;
};

/// Runs `onMatch` on the record when `node` holds a T and gives its result (see
/// SingleTypeVisitor), else gives `defaultResult`. A node of EmptyNode gives the default;
/// an empty handle throws NullNodeException.
template <class T, class OnMatch, class Result>
Result visitSingle(const Node& node, OnMatch&& onMatch, Result defaultResult) {
  auto ignore = [] {};
  SingleTypeVisitor<T, std::decay_t<OnMatch>, decltype(ignore), Result> visitor(
      std::forward<OnMatch>(onMatch), ignore, std::move(defaultResult));
  visitor.doVisit(node);
  return std::move(visitor).result();
}

/// True when `node` holds a T; false for other kinds and for a node of EmptyNode, silently.
/// Throws NullNodeException for an empty handle.
template <class T>
bool nodeIs(const Node& node) {
  return visitSingle<T>(node, [](const T&) { return true; }, false);
}

/// A copy of the record held by `node`. Throws BadNodeTypeException when it holds another kind,
/// NullNodeException for an empty handle; a node of EmptyNode gives a default-made T.
template <class T>
T getNodeValue(const Node& node) {
  auto store = [](const T& record, T& result) { result = record; };
  auto reject = []() { throw BadNodeTypeException(); };
  SingleTypeVisitor<T, decltype(store), decltype(reject), T> visitor(store, reject);
  visitor.doVisit(node);
  return std::move(visitor).result();
}

} // namespace velmor::sql::ast
