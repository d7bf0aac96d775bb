// Fresh stack segments for deep walks: ucontext on the calling thread, with the bounds of the
// thread's own stack read once per thread.
#include "common/DeepStack.h"

#if defined(__EMSCRIPTEN__)
// WebAssembly has no way to switch the engine's own call stack: walks recurse in place, and the
// web package bounds the depth with the parser's nesting limit instead.
namespace velmor::sql::detail {

// Known from the start and without bounds: no frame is ever taken for low.
constinit thread_local ThreadStack tStack{true, 0, 0, nullptr};

bool stackIsLow() noexcept { return false; }
WalkWatch* walkWatch() noexcept { return tStack.watch; }
WalkWatch* setWalkWatch(WalkWatch* watch) noexcept {
  WalkWatch* const previous = tStack.watch;
  tStack.watch = watch;
  return previous;
}
bool walkNeedsCareSlow() noexcept { return tStack.watch != nullptr; }
void runOnFreshStack(void (*body)(void*), void* argument) { body(argument); }

} // namespace velmor::sql::detail
#else

#include <pthread.h>
#include <sys/mman.h>
#include <ucontext.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <exception>
#include <new>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define VELMOR_SQL_ASAN 1
#endif
#if __has_feature(thread_sanitizer)
#define VELMOR_SQL_TSAN 1
#endif
#endif
#if defined(__SANITIZE_ADDRESS__)
#define VELMOR_SQL_ASAN 1
#endif
#if defined(__SANITIZE_THREAD__)
#define VELMOR_SQL_TSAN 1
#endif
#if VELMOR_SQL_ASAN
#include <sanitizer/common_interface_defs.h>
#endif

namespace velmor::sql::detail {
namespace {

// What must stay free below a frame before the next level may recurse in place: a level of any
// walk, the host's callbacks made from it, and the library's leaf work (allocation, text
// building, a thrown fault) fit well inside this.
constexpr std::size_t kReserve = 128u << 10;
// Each fresh segment; its lowest page is left unmapped so that an overrun faults at once.
constexpr std::size_t kSegment = 1u << 20;

} // namespace

constinit thread_local ThreadStack tStack{};

namespace {

void readBounds(ThreadStack& stack) noexcept {
  pthread_attr_t attributes;
  if (pthread_getattr_np(pthread_self(), &attributes) != 0) return;
  void* low = nullptr;
  std::size_t size = 0;
  const int failed = pthread_attr_getstack(&attributes, &low, &size);
  pthread_attr_destroy(&attributes);
  if (failed != 0 || low == nullptr) return;
  stack.low = reinterpret_cast<std::uintptr_t>(low);
  stack.limit = stack.low + kReserve;
}

struct Job {
  void (*body)(void*);
  void* argument;
  std::exception_ptr failure;
  ucontext_t caller;
  ucontext_t segment;
#if VELMOR_SQL_ASAN
  void* fakeStack = nullptr;
  const void* callerBottom = nullptr;
  std::size_t callerSize = 0;
#endif
};

thread_local Job* tStarting = nullptr;

void enterSegment() {
  Job* job = tStarting;
#if VELMOR_SQL_ASAN
  __sanitizer_finish_switch_fiber(nullptr, &job->callerBottom, &job->callerSize);
#endif
  try {
    job->body(job->argument);
  } catch (...) {
    job->failure = std::current_exception();
  }
#if VELMOR_SQL_ASAN
  // This segment is done for: nothing of its fake stack is kept.
  __sanitizer_start_switch_fiber(nullptr, job->callerBottom, job->callerSize);
#endif
  // Returning resumes job->caller through uc_link.
}

// A mapping released on every way out.
class Segment {
public:
  Segment() {
    const std::size_t page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    mSize = kSegment + page;
    mBase = mmap(nullptr, mSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_STACK, -1, 0);
    if (mBase == MAP_FAILED) throw std::bad_alloc();
    mprotect(mBase, page, PROT_NONE);
    mUsable = static_cast<char*>(mBase) + page;
  }
  ~Segment() { munmap(mBase, mSize); }
  Segment(const Segment&) = delete;
  Segment& operator=(const Segment&) = delete;
  char* low() const { return mUsable; }
  std::size_t size() const { return kSegment; }

private:
  void* mBase = nullptr;
  std::size_t mSize = 0;
  char* mUsable = nullptr;
};

} // namespace

namespace {
[[gnu::always_inline]] inline bool frameIsLow(ThreadStack& stack, std::uintptr_t frame) noexcept {
#if VELMOR_SQL_TSAN
  // ThreadSanitizer does not follow a switch of stacks on one thread.
  (void)stack;
  (void)frame;
  return false;
#else
  if (!stack.known) {
    readBounds(stack);
    stack.known = true;
  }
  // A frame below the stack's lowest address runs on a stack of someone else's (a host's
  // coroutine or fiber), whose bounds are unknown: it is never taken for low.
  return frame < stack.limit && frame >= stack.low;
#endif
}
} // namespace

bool stackIsLow() noexcept {
  return frameIsLow(tStack, reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0)));
}

WalkWatch* walkWatch() noexcept { return tStack.watch; }

WalkWatch* setWalkWatch(WalkWatch* watch) noexcept {
  WalkWatch* const previous = tStack.watch;
  tStack.watch = watch;
  return previous;
}

bool walkNeedsCareSlow() noexcept {
  ThreadStack& stack = tStack;
  return stack.watch != nullptr || frameIsLow(stack, reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0)));
}

void runOnFreshStack(void (*body)(void*), void* argument) {
  stackIsLow();  // the thread's own bounds are read before the limit is moved to the segment
  Segment segment;
  Job job{body, argument, nullptr, {}, {}};
  if (getcontext(&job.segment) != 0) throw std::bad_alloc();
  job.segment.uc_stack.ss_sp = segment.low();
  job.segment.uc_stack.ss_size = segment.size();
  job.segment.uc_link = &job.caller;
  makecontext(&job.segment, enterSegment, 0);

  ThreadStack& stack = tStack;
  const ThreadStack outer = stack;
  stack.low = reinterpret_cast<std::uintptr_t>(segment.low());
  stack.limit = stack.low + kReserve;
  tStarting = &job;
#if VELMOR_SQL_ASAN
  __sanitizer_start_switch_fiber(&job.fakeStack, segment.low(), segment.size());
#endif
  swapcontext(&job.caller, &job.segment);
#if VELMOR_SQL_ASAN
  __sanitizer_finish_switch_fiber(job.fakeStack, nullptr, nullptr);
#endif
  stack.low = outer.low;
  stack.limit = outer.limit;
  if (job.failure) std::rethrow_exception(job.failure);
}

} // namespace velmor::sql::detail

#endif
