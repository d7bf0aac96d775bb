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

/// During such a parse a token's location holds, in place of its line, the token's number in
/// the order read (begin and end alike), so that a rule's location names its first and last
/// token; the noted tokens know their place and bytes. Syntax errors ask for the place back.
class RangeRecorder {
public:
  /// Notes a token and gives the location that stands for it.
  /// `after` is the place right after the token, where the scanner stands once it has read it.
  Location token(const Location& read, Position after, std::size_t beginOffset, std::size_t endOffset) {
    const Position number(static_cast<int>(mTokens.size()), 0);
    mTokens.push_back({read.begin.line, read.begin.column, after.line, after.column, beginOffset, endOffset});
    return Location(number, number);
  }
  void node(const ast::NodeInterface* node, const Location& location) {
    mNodes.push_back({node, location.begin.line, location.end.line});
  }
  /// The place of the token that `location` stands for.
  Position place(const Location& location) const {
    const auto number = static_cast<std::size_t>(location.begin.line);
    if (number >= mTokens.size()) return location.begin;
    return Position(mTokens[number].line, mTokens[number].column);
  }

  /// The ranges of the noted nodes.
  std::shared_ptr<SourceRanges> finish() const;
  /// Forgets the notes and keeps the room for the next parse.
  void clear() {
    mTokens.clear();
    mNodes.clear();
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
