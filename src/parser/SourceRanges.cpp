// Source ranges: made from the tokens and nodes that a parse noted.
#include <velmor/sql/parser/SourceRanges.h>

#include "parser/RangeRecorder.h"

#include <algorithm>

namespace velmor::sql {

namespace {
constexpr auto byNode = [](const SourceRanges::Entry& a, const SourceRanges::Entry& b) { return a.first < b.first; };
} // namespace

SourceRanges::SourceRanges(std::vector<Entry> entries) : mEntries(std::move(entries)) {
  std::sort(mEntries.begin(), mEntries.end(), byNode);
}

const SourceRange* SourceRanges::find(const ast::NodeInterface* node) const {
  const auto found = std::lower_bound(mEntries.begin(), mEntries.end(), Entry{node, {}}, byNode);
  return found == mEntries.end() || found->first != node ? nullptr : &found->second;
}

std::string rangeText(const SourceRange& range) {
  return std::to_string(range.beginLine) + ':' + std::to_string(range.beginColumn) + '-' +
         std::to_string(range.endLine) + ':' + std::to_string(range.endColumn);
}

std::shared_ptr<SourceRanges> RangeRecorder::finish(const std::string& text) const {
  std::vector<SourceRanges::Entry> entries;
  entries.reserve(mNodes.size());
  for (const NodePlace& place : mNodes) {
    if (place.node == nullptr) continue;
    const auto count = static_cast<int>(mTokens.size());
    if (place.first < 0 || place.last < place.first || place.last >= count) continue;
    const TokenPlace* first = &mTokens[static_cast<std::size_t>(place.first)];
    const TokenPlace* last = &mTokens[static_cast<std::size_t>(place.last)];
    // The place after the last token: its bytes counted as the scanner counts them.
    auto line = static_cast<std::size_t>(last->line);
    auto column = static_cast<std::size_t>(last->column);
    for (std::size_t i = last->begin; i < last->end && i < text.size(); ++i)
      advancePlace(line, column, static_cast<unsigned char>(text[i]));
    entries.emplace_back(place.node, SourceRange{static_cast<std::size_t>(first->line), static_cast<std::size_t>(first->column),
                                        line, column, first->begin,
                                        last->end});
  }
  return std::make_shared<SourceRanges>(std::move(entries));
}

} // namespace velmor::sql
