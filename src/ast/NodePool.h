// Blocks for the parser's tree nodes, kept on per-thread free lists between trees.
#pragma once

#include <velmor/sql/ast/AST.h>

#include <cstddef>
#include <memory>
#include <new>

namespace velmor::sql::ast::detail {

/// A block of at least `bytes`, aligned as operator new aligns. Blocks up to poolBlockLimit
/// come from the calling thread's free list when it has one. Throws std::bad_alloc.
void* poolAllocate(std::size_t bytes);

/// Gives back a block that poolAllocate(bytes) returned, on any thread: it joins the calling
/// thread's free list while that list is short, and goes back to operator delete otherwise.
void poolDeallocate(void* block, std::size_t bytes) noexcept;

/// Blocks larger than this bypass the free lists.
inline constexpr std::size_t poolBlockLimit = 256;

/// The allocator that std::allocate_shared takes: each node and its control block in one
/// pooled block. Stateless, so a tree may die on any thread.
template <class T>
struct PoolAllocator {
  static_assert(alignof(T) <= __STDCPP_DEFAULT_NEW_ALIGNMENT__, "pooled blocks have operator new's alignment");
  using value_type = T;

  PoolAllocator() = default;
  template <class U>
  PoolAllocator(const PoolAllocator<U>&) noexcept {}

  T* allocate(std::size_t n) { return static_cast<T*>(poolAllocate(n * sizeof(T))); }
  void deallocate(T* block, std::size_t n) noexcept { poolDeallocate(block, n * sizeof(T)); }

  template <class U>
  bool operator==(const PoolAllocator<U>&) const noexcept { return true; }
};

/// makeNode with a pooled block: the handle and the node are what makeNode gives.
template <class H = Node, class T>
H makePooledNode(T&& record) {
  return H(std::allocate_shared<NodeImpl<std::decay_t<T>>>(PoolAllocator<NodeImpl<std::decay_t<T>>>(),
                                                           std::forward<T>(record)));
}

/// makeEmptyNode with a pooled block.
template <class H = Node>
H makePooledEmptyNode() {
  return H(std::allocate_shared<NodeImpl<EmptyNode>>(PoolAllocator<NodeImpl<EmptyNode>>()));
}

} // namespace velmor::sql::ast::detail
