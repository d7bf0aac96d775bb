// Per-thread free lists of node blocks: a parse reuses the blocks of the tree released before it
// without going through malloc, whose own per-thread cache holds only a few blocks of a size.
#include "ast/NodePool.h"


namespace velmor::sql::ast::detail {
namespace {

void drain(PoolCache& cache) noexcept {
  for (std::size_t i = 0; i < kPoolClasses; ++i) {
    while (PoolCache::FreeBlock* block = cache.heads[i]) {
      cache.heads[i] = block->next;
      ::operator delete(block);
    }
  }
  cache.keptBytes = 0;
}

// Gives the thread's blocks back when the thread ends.
struct Drain {
  bool registered = false;
  ~Drain() {
    drain(tPoolCache);
    tPoolCache.closed = true;
  }
};
thread_local Drain tDrain;

} // namespace

[[gnu::tls_model("initial-exec")]] constinit thread_local PoolCache tPoolCache{};

void* poolAllocateSlow(std::size_t bytes) {
  if (!kPooling || bytes == 0 || bytes > poolBlockLimit) return ::operator new(bytes);
  // Every block of a class has the class's full size, whichever size asked for it first.
  return ::operator new((poolClassOf(bytes) + 1) * kPoolGrain);
}

void poolDeallocateSlow(void* block, std::size_t bytes) noexcept {
  PoolCache& cache = tPoolCache;
  const std::size_t index = poolClassOf(bytes);
  const std::size_t blockBytes = (index + 1) * kPoolGrain;
  if (!kPooling || bytes == 0 || bytes > poolBlockLimit || cache.closed || cache.keptBytes + blockBytes > kPoolKeepBytes) {
    ::operator delete(block);
    return;
  }
  if (!cache.armed) {
    // Touching the drain registers its destructor for this thread.
    cache.armed = true;
    tDrain.registered = true;
  }
  cache.keep(block, index);
}

} // namespace velmor::sql::ast::detail
