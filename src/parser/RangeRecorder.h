// Notes tokens and nodes during a parse that keeps source ranges, and makes the ranges after it.
#pragma once

#include <velmor/sql/ast/AST.h>
#include <velmor/sql/parser/SourceRanges.h>

#include "sqllexer/Location.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace velmor::sql {

/// During such a parse a token's location ends at its own begin, so that a rule's location runs
/// from the begin of its first token to the begin of its last: both are found again among the
/// noted tokens, which know their bytes.
class RangeRecorder {
public:
  void token(const Position& begin, std::size_t beginOffset, std::size_t endOffset) {
    mTokens.push_back({begin.line, begin.column, beginOffset, endOffset});
  }
  void node(const ast::NodeInterface* node, const Location& location) {
    mNodes.push_back({node, location.begin, location.end});
  }

  /// The ranges of the noted nodes in `text`, the text that was parsed.
  std::shared_ptr<SourceRanges> finish(const std::string& text) const;

private:
  struct TokenPlace {
    int line;
    int column;
    std::size_t begin;
    std::size_t end;
  };
  struct NodePlace {
    const ast::NodeInterface* node;
    Position first;
    Position last;
  };
  const TokenPlace* tokenAt(const Position& position) const;

  std::vector<TokenPlace> mTokens;
  std::vector<NodePlace> mNodes;
};

} // namespace velmor::sql
