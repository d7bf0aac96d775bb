// Source ranges: made from the tokens and nodes that a parse noted.
#include <velmor/sql/parser/SourceRanges.h>

#include "parser/RangeRecorder.h"

#include <algorithm>

namespace velmor::sql {

const SourceRange* SourceRanges::find(const ast::NodeInterface* node) const {
  const auto found = mRanges.find(node);
  return found == mRanges.end() ? nullptr : &found->second;
}

std::string rangeText(const SourceRange& range) {
  return std::to_string(range.beginLine) + ':' + std::to_string(range.beginColumn) + '-' +
         std::to_string(range.endLine) + ':' + std::to_string(range.endColumn);
}

const RangeRecorder::TokenPlace* RangeRecorder::tokenAt(const Position& position) const {
  // Tokens were noted in text order, and each starts after the one before it.
  const auto found = std::lower_bound(mTokens.begin(), mTokens.end(), position, [](const TokenPlace& token, const Position& at) {
    return token.line < at.line || (token.line == at.line && token.column < at.column);
  });
  if (found == mTokens.end() || found->line != position.line || found->column != position.column) return nullptr;
  return &*found;
}

std::shared_ptr<SourceRanges> RangeRecorder::finish(const std::string& text) const {
  auto ranges = std::make_shared<SourceRanges>();
  for (const NodePlace& place : mNodes) {
    if (place.node == nullptr || place.node->isNull()) continue;
    const TokenPlace* first = tokenAt(place.first);
    const TokenPlace* last = tokenAt(place.last);
    if (first == nullptr || last == nullptr) continue;
    // The place after the last token: its bytes counted as the scanner counts them.
    int line = last->line;
    int column = last->column;
    for (std::size_t i = last->begin; i < last->end && i < text.size(); ++i) {
      const auto c = static_cast<unsigned char>(text[i]);
      if (c == '\n') {
        ++line;
        column = 1;
      } else if (c == '\t') {
        column = ((column - 1) & ~3) + 5;
      } else if ((c & 0xC0) != 0x80) {
        ++column;
      }
    }
    ranges->add(place.node, SourceRange{static_cast<std::size_t>(first->line), static_cast<std::size_t>(first->column),
                                        static_cast<std::size_t>(line), static_cast<std::size_t>(column), first->begin,
                                        last->end});
  }
  return ranges;
}

} // namespace velmor::sql
