// Per-thread free lists of node blocks: a parse reuses the blocks of the tree released before it
// without going through malloc, whose own per-thread cache holds only a few blocks of a size.
#include "ast/NodePool.h"


namespace velmor::sql::ast::detail {
namespace {

// Under AddressSanitizer every block goes straight back, so that a node used after its release
// is still caught.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool kPooling = false;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
constexpr bool kPooling = false;
#else
constexpr bool kPooling = true;
#endif
#else
constexpr bool kPooling = true;
#endif

constexpr std::size_t kGrain = 16;
constexpr std::size_t kClasses = poolBlockLimit / kGrain;
// Bytes a thread keeps on its lists, whatever their sizes: enough for the largest trees of a
// statement corpus, and a bound for a thread that releases what others built.
constexpr std::size_t kKeepBytes = std::size_t{1} << 20;

struct FreeBlock {
  FreeBlock* next;
};

// Trivially destructible and zero-initialised, so that it needs no guard and can still be used
// while the thread's other thread-locals die (a tree released from one of their destructors).
struct Cache {
  FreeBlock* heads[kClasses];
  std::size_t keptBytes;
  bool armed;   // the drain below is registered
  bool closed;  // the drain ran: blocks go straight back to operator delete
};
thread_local Cache tCache;

void drain(Cache& cache) noexcept {
  for (std::size_t i = 0; i < kClasses; ++i) {
    while (FreeBlock* block = cache.heads[i]) {
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
    drain(tCache);
    tCache.closed = true;
  }
};
thread_local Drain tDrain;

std::size_t classOf(std::size_t bytes) noexcept { return (bytes - 1) / kGrain; }

} // namespace

void* poolAllocate(std::size_t bytes) {
  if (!kPooling || bytes == 0 || bytes > poolBlockLimit) return ::operator new(bytes);
  const std::size_t index = classOf(bytes);
  Cache& cache = tCache;
  if (FreeBlock* block = cache.heads[index]) {
    cache.heads[index] = block->next;
    cache.keptBytes -= (index + 1) * kGrain;
    return block;
  }
  // Every block of a class has the class's full size, whichever size asked for it first.
  return ::operator new((index + 1) * kGrain);
}

void poolDeallocate(void* block, std::size_t bytes) noexcept {
  if (!kPooling || bytes == 0 || bytes > poolBlockLimit) {
    ::operator delete(block);
    return;
  }
  const std::size_t index = classOf(bytes);
  Cache& cache = tCache;
  const std::size_t blockBytes = (index + 1) * kGrain;
  if (cache.closed || cache.keptBytes + blockBytes > kKeepBytes) {
    ::operator delete(block);
    return;
  }
  if (!cache.armed) {
    // Touching the drain registers its destructor for this thread.
    cache.armed = true;
    tDrain.registered = true;
  }
  auto* kept = static_cast<FreeBlock*>(block);
  kept->next = cache.heads[index];
  cache.heads[index] = kept;
  cache.keptBytes += blockBytes;
}

} // namespace velmor::sql::ast::detail
