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

/// The library's own node classes (NodeImpl of each record kind and of EmptyNode) by the
/// addresses of their type_info objects, in an open-addressed table. A class whose type_info
/// has another copy in the process is not found, and the callers then ask the node the slow
/// way, which answers the same.
inline constexpr unsigned kLibraryNodeSlotBits = 7;
using LibraryNodeKinds = std::array<const std::type_info*, std::size_t{1} << kLibraryNodeSlotBits>;
extern const LibraryNodeKinds libraryNodeKinds;

inline std::size_t libraryNodeSlot(const std::type_info* kind) noexcept {
  const auto address = static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(kind));
  return static_cast<std::size_t>((address * 0x9E3779B97F4A7C15u) >> (64 - kLibraryNodeSlotBits));
}

inline bool isLibraryNodeKind(const std::type_info* kind) noexcept {
  for (std::size_t slot = libraryNodeSlot(kind);; slot = (slot + 1) % libraryNodeKinds.size()) {
    if (libraryNodeKinds[slot] == kind) return true;
    if (!libraryNodeKinds[slot]) return false;
  }
}

// The answers for a node class of a host's own, through a visit.
template <class T>
[[gnu::noinline]] const T* visitedRecordOf(const NodeInterface& impl) {
  RecordFinder<T> finder;
  impl.accept(finder);
  return finder.found;
}
template <class... T>
[[gnu::noinline]] bool visitedHolds(const Node& node) {
  return (nodeIs<T>(node) || ...);
}

/// The record of `node` when it holds a T, else null; valid while the node lives. The library's
/// own nodes are told apart by their dynamic type, without a visit (three indirect calls).
template <class T>
const T* recordOf(const Node& node) {
  const NodeInterface* impl = node.mImpl.get();
  if (!impl) return nullptr;
  const std::type_info* kind = &typeid(*impl);
  if (kind == &typeid(NodeImpl<T>)) return &static_cast<const NodeImpl<T>*>(impl)->value();
  if (isLibraryNodeKind(kind)) return nullptr;
  return visitedRecordOf<T>(*impl);
}

/// Whether nodeIs<T> holds for any of the kinds T, answered for the library's own nodes
/// without a visit. An empty handle throws NullNodeException, as nodeIs does.
template <class... T>
bool holds(const Node& node) {
  if (const NodeInterface* impl = node.mImpl.get()) {
    const std::type_info* kind = &typeid(*impl);
    if (((kind == &typeid(NodeImpl<T>)) || ...)) return true;
    if (isLibraryNodeKind(kind)) return false;
  }
  return visitedHolds<T...>(node);
}

/// The record of a node known to hold a T (nodeIs<T> said so).
template <class T>
const T& recordIn(const Node& node) {
  return *recordOf<T>(node);
}

} // namespace velmor::sql::ast::detail
