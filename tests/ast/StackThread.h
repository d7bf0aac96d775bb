// Runs a function on a thread with a stack of exactly the given size, for the deep-input tests.
#pragma once

#include <pthread.h>

#include <cstddef>
#include <exception>
#include <functional>
#include <stdexcept>

namespace velmor::sql::test {

/// Runs `body` to its end on a new thread whose stack is `stackBytes` large and rethrows what it
/// throws. Unlike std::thread, the stack size does not depend on the process's limits.
inline void runWithStack(std::size_t stackBytes, const std::function<void()>& body) {
  struct Job {
    const std::function<void()>* body;
    std::exception_ptr failure;
  } job{&body, nullptr};
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setstacksize(&attributes, stackBytes);
  pthread_t thread;
  const int started = pthread_create(
      &thread, &attributes,
      [](void* data) -> void* {
        auto* running = static_cast<Job*>(data);
        try {
          (*running->body)();
        } catch (...) {
          running->failure = std::current_exception();
        }
        return nullptr;
      },
      &job);
  pthread_attr_destroy(&attributes);
  if (started != 0) throw std::runtime_error("pthread_create failed");
  pthread_join(thread, nullptr);
  if (job.failure) std::rethrow_exception(job.failure);
}

inline constexpr std::size_t kDefaultStack = 8u << 20;

} // namespace velmor::sql::test
