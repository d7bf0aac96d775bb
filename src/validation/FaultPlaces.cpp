// Fault places: the walks' watch, read when the Validator lists a fault.
#include <velmor/sql/validation/FaultPlaces.h>

#include "common/DeepStack.h"

namespace velmor::sql {

struct FaultPlaces::State : detail::WalkWatch {
  std::unordered_map<const SqlError*, const ast::NodeInterface*> places;
  const void* marked = nullptr;
};

FaultPlaces::FaultPlaces() : mState(std::make_unique<State>()), mOuter(detail::setWalkWatch(mState.get())) {}

FaultPlaces::~FaultPlaces() { detail::setWalkWatch(static_cast<detail::WalkWatch*>(mOuter)); }

const ast::NodeInterface* FaultPlaces::nodeOf(const SqlError& fault) const {
  const auto found = mState->places.find(&fault);
  return found == mState->places.end() ? nullptr : found->second;
}

namespace detail {
namespace {
// Only FaultPlaces sets a watch.
FaultPlaces::State* watching() noexcept { return static_cast<FaultPlaces::State*>(walkWatch()); }

void note(const SqlError& fault, const void* node) noexcept {
  FaultPlaces::State* state = watching();
  if (!state || !node) return;
  try {
    state->places[&fault] = static_cast<const ast::NodeInterface*>(node);
  } catch (...) {
    // Out of memory: the fault goes without a place.
  }
}
} // namespace

void noteCaughtFault(const SqlError& fault) noexcept {
  FaultPlaces::State* state = watching();
  if (!state || state->thrown != std::current_exception()) return;
  note(fault, state->thrownAt);
}

void noteListedFault(const SqlError& fault) noexcept {
  if (FaultPlaces::State* state = watching()) note(fault, state->current);
}

void noteFaultAt(const SqlError& fault, const ast::Node& node) noexcept { note(fault, node.mImpl.get()); }

void markFaultPlace() noexcept {
  if (FaultPlaces::State* state = watching()) state->marked = state->current;
}

void noteMarkedFault(const SqlError& fault) noexcept {
  if (FaultPlaces::State* state = watching()) {
    note(fault, state->marked);
    state->marked = nullptr;
  }
}
} // namespace detail

} // namespace velmor::sql
