// Recursion that never runs out of stack: the walks of a tree recurse once per level, and a
// host may call them on a small thread stack; when little is left, the walk goes on on a fresh
// segment of its own, on the same thread.
#pragma once

#include <cstdint>
#include <exception>
#include <type_traits>
#include <utility>

namespace velmor::sql::detail {

/// What the walks of a thread note for a fault watcher (FaultPlaces): the node whose visit runs
/// innermost, and the innermost node that the exception in flight has left.
struct WalkWatch {
  const void* current = nullptr;
  std::exception_ptr thrown;
  const void* thrownAt = nullptr;
};

/// Called from a handler as the exception in flight leaves the visit of `node`: the first node
/// it leaves is the innermost, and the one it is about.
inline void noteLeft(WalkWatch& watch, const void* node) noexcept {
  std::exception_ptr thrown = std::current_exception();
  if (watch.thrown != thrown) {
    watch.thrown = std::move(thrown);
    watch.thrownAt = node;
  }
}

/// The thread's watch, or null (the common case).
WalkWatch* walkWatch() noexcept;
/// Makes `watch` (or null) the thread's watch; returns the one before.
WalkWatch* setWalkWatch(WalkWatch* watch) noexcept;

/// What a thread knows of the stack it runs on, and its watch.
struct ThreadStack {
  bool known = false;
  // The stack's lowest address, and the lowest at which a frame may still recurse in place;
  // both 0 when unknown.
  std::uintptr_t low = 0;
  std::uintptr_t limit = 0;
  // Kept here so that a walk learns both what its stack allows and whether faults are watched
  // from one look at the thread's state.
  WalkWatch* watch = nullptr;
};
// Initial-exec: read on every level of every walk, and small enough for the static TLS room
// that a module loaded at run time (the Python extension) still gets.
extern constinit thread_local ThreadStack tStack [[gnu::tls_model("initial-exec")]];

/// walkNeedsCare() for a thread whose bounds are not read yet (or never are) or that is watched.
bool walkNeedsCareSlow() noexcept;

/// stackIsLow() or a watch is set: the one test a level of a walk makes, inline.
[[gnu::always_inline]] inline bool walkNeedsCare() noexcept {
  const ThreadStack& stack = tStack;
  if (stack.watch != nullptr || !stack.known) [[unlikely]] return walkNeedsCareSlow();
  // A frame below the stack's lowest address runs on a stack of someone else's (a host's
  // coroutine or fiber), whose bounds are unknown: it is never taken for low.
  const auto frame = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
  return frame < stack.limit && frame >= stack.low;
}

/// True when less than the reserve is left below the caller's frame on this thread's stack
/// (or on the segment it runs on). A thread whose bounds are unknown, and a frame outside them
/// (a host's own coroutine stack), never report low.
bool stackIsLow() noexcept;

/// Runs `body(argument)` on a newly mapped stack segment and returns when it does; what it
/// throws is thrown again here, on the caller's stack. Calls on the same thread, so thread-local
/// state and the host's callbacks see no difference.
void runOnFreshStack(void (*body)(void*), void* argument);

/// Calls `f()` in place, or on a fresh segment when the stack is nearly used up. Recursive walks
/// call this once per level; the test costs a compare.
template <class F>
void withStack(F&& f) {
  if (!stackIsLow()) {
    std::forward<F>(f)();
    return;
  }
  using Callable = std::remove_reference_t<F>;
  runOnFreshStack([](void* callable) { (*static_cast<Callable*>(callable))(); },
                  const_cast<void*>(static_cast<const void*>(&f)));
}

/// The same for a call that gives a value.
template <class R, class F>
R withStackResult(F&& f) {
  if (!stackIsLow()) return std::forward<F>(f)();
  R result{};
  withStack([&] { result = std::forward<F>(f)(); });
  return result;
}

} // namespace velmor::sql::detail
