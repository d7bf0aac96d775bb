// Source ranges: made from the tokens and nodes that a parse noted.
#include <velmor/sql/parser/SourceRanges.h>

#include "parser/RangeRecorder.h"

#include <algorithm>

namespace velmor::sql {

namespace {
std::size_t slotOf(const ast::NodeInterface* node, std::size_t mask) {
  // Nodes are at least 8-byte aligned: the low bits say nothing.
  std::uint64_t bits = reinterpret_cast<std::uintptr_t>(node) >> 3;  // 64 bits wide on 32-bit targets too
  bits *= 0x9E3779B97F4A7C15ull;
  return static_cast<std::size_t>(bits >> 32) & mask;
}
} // namespace

SourceRanges::SourceRanges(std::vector<Entry> entries, ast::Node tree)
    : mEntries(std::move(entries)), mTree(std::move(tree)) {
  std::size_t size = 16;
  while (size < mEntries.size() * 2) size *= 2;
  mSlots.assign(size, 0);
  for (std::size_t i = 0; i < mEntries.size(); ++i) {
    std::size_t slot = slotOf(mEntries[i].first, size - 1);
    while (mSlots[slot] != 0) slot = (slot + 1) & (size - 1);
    mSlots[slot] = static_cast<std::uint32_t>(i + 1);
  }
}

const SourceRange* SourceRanges::find(const ast::NodeInterface* node) const {
  if (mSlots.empty()) return nullptr;
  const std::size_t mask = mSlots.size() - 1;
  for (std::size_t slot = slotOf(node, mask); mSlots[slot] != 0; slot = (slot + 1) & mask) {
    const Entry& entry = mEntries[mSlots[slot] - 1];
    if (entry.first == node) return &entry.second;
  }
  return nullptr;
}

std::string rangeText(const SourceRange& range) {
  return std::to_string(range.beginLine) + ':' + std::to_string(range.beginColumn) + '-' +
         std::to_string(range.endLine) + ':' + std::to_string(range.endColumn);
}

std::shared_ptr<SourceRanges> RangeRecorder::finish(const ast::Node& tree) const {
  std::vector<SourceRanges::Entry> entries;
  entries.reserve(mNodes.size());
  const auto count = static_cast<int>(mTokens.size());
  for (const NodePlace& place : mNodes) {
    if (place.node == nullptr || place.first < 0 || place.last < place.first || place.last >= count) continue;
    const TokenPlace& first = mTokens[static_cast<std::size_t>(place.first)];
    const TokenPlace& last = mTokens[static_cast<std::size_t>(place.last)];
    entries.emplace_back(place.node, SourceRange{static_cast<std::size_t>(first.line), static_cast<std::size_t>(first.column),
                                                 static_cast<std::size_t>(last.endLine),
                                                 static_cast<std::size_t>(last.endColumn), first.begin, last.end});
  }
  return std::make_shared<SourceRanges>(std::move(entries), tree);
}

} // namespace velmor::sql
