// Default assertion handler: report and abort.
#include <velmor/sql/Assert.h>

#include <atomic>
#include <cstdlib>
#include <iostream>

namespace velmor::sql {
namespace {

void defaultHandler(const char* expression, const char* source) {
  std::cerr << "Assertion failed: " << expression << " (" << source << ")" << std::endl;
  std::abort();
}

std::atomic<AssertionHandler> currentHandler{&defaultHandler};

} // namespace

AssertionHandler setAssertionHandler(AssertionHandler handler) noexcept {
  return currentHandler.exchange(handler ? handler : &defaultHandler);
}

void assertionFailed(const char* expression, const char* source) {
  currentHandler.load()(expression, source);
}

} // namespace velmor::sql
