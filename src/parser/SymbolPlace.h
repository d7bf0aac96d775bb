// Where a grammar symbol stands, as the automaton's location stack carries it.
#pragma once

#include <cstdint>

namespace velmor::sql {

/// A grammar symbol's first and last token, by number in reading order, and the levels of tree
/// nodes that its value holds: 0 for a token, one more than its deepest part for a symbol whose
/// rule makes a node (compared with the nesting limit). Copied on every shift and reduction, so
/// it holds no more: a token's place in the text is asked of the scanner or the RangeRecorder.
struct SymbolPlace {
  std::uint32_t first = 0;
  std::uint32_t last = 0;
  int depth = 0;
};

} // namespace velmor::sql
