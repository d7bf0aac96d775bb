// Notes tokens and nodes during a parse that keeps source ranges, and makes the ranges after it.
#pragma once

#include <velmor/sql/ast/AST.h>
#include <velmor/sql/parser/SourceRanges.h>

#include "parser/SymbolPlace.h"
#include "sqllexer/Location.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace velmor::sql {

/// A rule's SymbolPlace names its first and last token by number; the tokens noted here, in
/// the same order, know their place and bytes.
class RangeRecorder {
public:
  /// Notes the next token: `at` is its first character, `after` the place right after it,
  /// where the scanner stands once it has read it.
  void token(Position at, Position after, std::size_t beginOffset, std::size_t endOffset) {
    mTokens.push_back({at.line, at.column, after.line, after.column, beginOffset, endOffset});
  }
  void node(const ast::NodeInterface* node, const SymbolPlace& place) {
    mNodes.push_back({node, static_cast<int>(place.first), static_cast<int>(place.last)});
  }

  /// The ranges of the noted nodes, keeping `tree` (the one they belong to) alive.
  std::shared_ptr<SourceRanges> finish(const ast::Node& tree) const;
  /// Forgets the notes and keeps the room for the next parse.
  void clear() {
    mTokens.clear();
    mNodes.clear();
  }
  /// Gives back room for more than `entries` tokens or nodes.
  void trim(std::size_t entries) {
    if (mTokens.capacity() > entries) std::vector<TokenPlace>().swap(mTokens);
    if (mNodes.capacity() > entries) std::vector<NodePlace>().swap(mNodes);
  }

private:
  struct TokenPlace {
    int line;
    int column;
    int endLine;
    int endColumn;
    std::size_t begin;
    std::size_t end;
  };
  struct NodePlace {
    const ast::NodeInterface* node;
    int first;
    int last;
  };

  std::vector<TokenPlace> mTokens;
  std::vector<NodePlace> mNodes;
};

} // namespace velmor::sql
