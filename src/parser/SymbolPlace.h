// Where a grammar symbol stands, as the automaton's location stack carries it.
#pragma once

#include <cstdint>

namespace velmor::sql {

/// A grammar symbol's first and last token, by number in reading order, and the levels of tree
/// nodes that its value holds: 0 for a token, one more than its deepest part for a symbol whose
/// rule makes a node (compared with the nesting limit). Copied on every shift and reduction, so
/// it holds no more: a token's place in the text is asked of the scanner or the RangeRecorder.
/// Trivial, without member initialisers: the automaton's stack of them in the parse function's
/// frame is then left as it is rather than zeroed at every parse; every entry is written before
/// it is read.
struct SymbolPlace {
  std::uint32_t first;
  std::uint32_t last;
  int depth;
};

} // namespace velmor::sql
