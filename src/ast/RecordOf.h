// The record a node holds, read in place: getNodeValue gives a copy (lists and texts with it),
// which the library's own hot paths cannot afford.
#pragma once

#include <velmor/sql/ast/AST.h>

namespace velmor::sql::ast::detail {

template <class T>
class RecordFinder final : public NodeVisitor {
public:
  using NodeVisitor::visit;
  void visit(const T& record) override { found = &record; }
  void faultAction() override {}
  const T* found = nullptr;
};

/// The record of `node` when it holds a T, else null; valid while the node lives.
template <class T>
const T* recordOf(const Node& node) {
  if (!node.mImpl) return nullptr;
  RecordFinder<T> finder;
  node.mImpl->accept(finder);
  return finder.found;
}

/// The record of a node known to hold a T (nodeIs<T> said so).
template <class T>
const T& recordIn(const Node& node) {
  return *recordOf<T>(node);
}

} // namespace velmor::sql::ast::detail
