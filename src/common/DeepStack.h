// Recursion that never runs out of stack: the walks of a tree recurse once per level, and a
// host may call them on a small thread stack; when little is left, the walk goes on on a fresh
// segment of its own, on the same thread.
#pragma once

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

/// The thread's watch, or null (the common case).
WalkWatch* walkWatch() noexcept;
/// Makes `watch` (or null) the thread's watch; returns the one before.
WalkWatch* setWalkWatch(WalkWatch* watch) noexcept;
/// stackIsLow() or a watch is set: the one test a level of a walk makes.
bool walkNeedsCare() noexcept;

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
