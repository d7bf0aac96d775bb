// Blocks for the parser's tree nodes, kept on per-thread free lists between trees.
#pragma once

#include <velmor/sql/ast/AST.h>

#include <cstddef>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

namespace velmor::sql::ast::detail {

/// Blocks larger than this bypass the free lists.
inline constexpr std::size_t poolBlockLimit = 256;

// Under AddressSanitizer every block goes straight back, so that a node used after its release
// is still caught.
#if defined(__SANITIZE_ADDRESS__)
inline constexpr bool kPooling = false;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
inline constexpr bool kPooling = false;
#else
inline constexpr bool kPooling = true;
#endif
#else
inline constexpr bool kPooling = true;
#endif

inline constexpr std::size_t kPoolGrain = 16;
inline constexpr std::size_t kPoolClasses = poolBlockLimit / kPoolGrain;
/// Bytes a thread keeps on its lists, whatever their sizes: enough for the largest trees of a
/// statement corpus, and a bound for a thread that releases what others built.
inline constexpr std::size_t kPoolKeepBytes = std::size_t{1} << 20;

/// The size class of a block of 1 to poolBlockLimit bytes.
constexpr std::size_t poolClassOf(std::size_t bytes) noexcept { return (bytes - 1) / kPoolGrain; }

/// A thread's free lists. Trivially destructible and zero-initialised, so that it needs no
/// guard and can still be used while the thread's other thread-locals die (a tree released from
/// one of their destructors).
struct PoolCache {
  struct FreeBlock {
    FreeBlock* next;
  };
  FreeBlock* heads[kPoolClasses];
  std::size_t keptBytes;
  bool armed;   // the drain that gives the blocks back at the thread's end is registered
  bool closed;  // the drain ran: blocks go straight back to operator delete

  void keep(void* block, std::size_t index) noexcept {
    auto* kept = static_cast<FreeBlock*>(block);
    kept->next = heads[index];
    heads[index] = kept;
    keptBytes += (index + 1) * kPoolGrain;
  }
};
// Initial-exec: taken on every node made or released; small enough for the static TLS room.
extern constinit thread_local PoolCache tPoolCache [[gnu::tls_model("initial-exec")]];

/// poolAllocate and poolDeallocate past their free lists.
void* poolAllocateSlow(std::size_t bytes);
void poolDeallocateSlow(void* block, std::size_t bytes) noexcept;

/// A block of at least `bytes`, aligned as operator new aligns. Blocks up to poolBlockLimit
/// come from the calling thread's free list when it has one. Throws std::bad_alloc.
inline void* poolAllocate(std::size_t bytes) {
  if (kPooling && bytes - 1 < poolBlockLimit) {
    PoolCache& cache = tPoolCache;
    const std::size_t index = poolClassOf(bytes);
    if (PoolCache::FreeBlock* block = cache.heads[index]) {
      cache.heads[index] = block->next;
      cache.keptBytes -= (index + 1) * kPoolGrain;
      return block;
    }
  }
  return poolAllocateSlow(bytes);
}

/// Gives back a block that poolAllocate(bytes) returned, on any thread: it joins the calling
/// thread's free list while that list is short, and goes back to operator delete otherwise.
inline void poolDeallocate(void* block, std::size_t bytes) noexcept {
  if (kPooling && bytes - 1 < poolBlockLimit) {
    PoolCache& cache = tPoolCache;
    const std::size_t index = poolClassOf(bytes);
    if (cache.armed && !cache.closed && cache.keptBytes + (index + 1) * kPoolGrain <= kPoolKeepBytes) {
      cache.keep(block, index);
      return;
    }
  }
  poolDeallocateSlow(block, bytes);
}

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

/// makePooledNode of the record that `make()` returns, made in place in the node.
template <class H = Node, class Make>
H makePooledNodeFrom(Make&& make) {
  using T = std::invoke_result_t<Make>;
  return H(std::allocate_shared<NodeImpl<T>>(PoolAllocator<NodeImpl<T>>(), std::in_place, std::forward<Make>(make)));
}

/// makeEmptyNode with a pooled block.
template <class H = Node>
H makePooledEmptyNode() {
  return H(std::allocate_shared<NodeImpl<EmptyNode>>(PoolAllocator<NodeImpl<EmptyNode>>()));
}

} // namespace velmor::sql::ast::detail
