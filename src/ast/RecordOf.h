// The record a node holds, read in place: getNodeValue gives a copy (lists and texts with it),
// which the library's own hot paths cannot afford.
#pragma once

#include <velmor/sql/ast/AST.h>
#include <velmor/sql/ast/Traversal.h>

#include <typeinfo>

namespace velmor::sql::ast::detail {

template <class T>
class RecordFinder final : public NodeVisitor {
public:
  using NodeVisitor::visit;
  void visit(const T& record) override { found = &record; }
  void faultAction() override {}
  const T* found = nullptr;
};

/// Whether `typeName` is the type name of one of the library's own node classes (NodeImpl of
/// a record kind or of EmptyNode), compared by address: a name of another copy of the same
/// string is not recognised, and the callers then ask the node the slow way.
bool isLibraryNodeName(const char* typeName) noexcept;

/// The record of `node` when it holds a T, else null; valid while the node lives. The library's
/// own nodes are told apart by their dynamic type, without a visit (three indirect calls).
template <class T>
const T* recordOf(const Node& node) {
  const NodeInterface* impl = node.mImpl.get();
  if (!impl) return nullptr;
  const char* name = typeid(*impl).name();
  if (name == typeid(NodeImpl<T>).name()) return &static_cast<const NodeImpl<T>*>(impl)->value();
  if (isLibraryNodeName(name)) return nullptr;
  // A node class of the host's own.
  RecordFinder<T> finder;
  impl->accept(finder);
  return finder.found;
}

/// Whether nodeIs<T> holds for any of the kinds T, answered for the library's own nodes
/// without a visit. An empty handle throws NullNodeException, as nodeIs does.
template <class... T>
bool holds(const Node& node) {
  if (const NodeInterface* impl = node.mImpl.get()) {
    const char* name = typeid(*impl).name();
    if (((name == typeid(NodeImpl<T>).name()) || ...)) return true;
    if (isLibraryNodeName(name)) return false;
  }
  return (nodeIs<T>(node) || ...);
}

/// The record of a node known to hold a T (nodeIs<T> said so).
template <class T>
const T& recordIn(const Node& node) {
  return *recordOf<T>(node);
}

} // namespace velmor::sql::ast::detail
