// The record a node holds, read in place: getNodeValue gives a copy (lists and texts with it),
// which the library's own hot paths cannot afford.
#pragma once

#include <velmor/sql/ast/AST.h>
#include <velmor/sql/ast/Traversal.h>

#include <array>
#include <cstddef>
#include <cstdint>
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

/// The type names of the library's own node classes (NodeImpl of each record kind and of
/// EmptyNode) by their addresses, in an open-addressed table: a name of another copy of the same
/// string is not found, and the callers then ask the node the slow way.
inline constexpr unsigned kLibraryNodeSlotBits = 7;
using LibraryNodeNames = std::array<const char*, std::size_t{1} << kLibraryNodeSlotBits>;
extern const LibraryNodeNames libraryNodeNames;

inline std::size_t libraryNodeSlot(const char* typeName) noexcept {
  const auto address = static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(typeName));
  return static_cast<std::size_t>((address * 0x9E3779B97F4A7C15u) >> (64 - kLibraryNodeSlotBits));
}

inline bool isLibraryNodeName(const char* typeName) noexcept {
  for (std::size_t slot = libraryNodeSlot(typeName);; slot = (slot + 1) % libraryNodeNames.size()) {
    if (libraryNodeNames[slot] == typeName) return true;
    if (!libraryNodeNames[slot]) return false;
  }
}

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
