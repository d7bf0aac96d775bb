// Positions in the client's code units over UTF-8 document texts.
#include "Text.h"

#include <algorithm>

namespace velmor::lsp {
namespace {

// The length of the character starting at `bytes[i]`, and its code units in UTF-16. A byte that
// starts no complete sequence is one character of one unit.
std::pair<std::size_t, std::size_t> character(std::string_view bytes, std::size_t i) {
  const auto lead = static_cast<unsigned char>(bytes[i]);
  std::size_t length = 1;
  if (lead >= 0xF0 && lead < 0xF8) {
    length = 4;
  } else if (lead >= 0xE0) {
    length = lead < 0xF0 ? 3 : 1;
  } else if (lead >= 0xC0) {
    length = 2;
  }
  if (length > 1) {
    if (i + length > bytes.size()) return {1, 1};
    for (std::size_t k = 1; k < length; ++k) {
      if ((static_cast<unsigned char>(bytes[i + k]) & 0xC0) != 0x80) return {1, 1};
    }
  }
  return {length, length == 4 ? 2 : 1};
}

// The end of line `start`'s content: before its line feed, and before a CR that precedes it.
std::size_t lineEnd(std::string_view text, std::size_t start) {
  std::size_t end = text.find('\n', start);
  if (end == std::string_view::npos) return text.size();
  if (end > start && text[end - 1] == '\r') --end;
  return end;
}

} // namespace

LineIndex::LineIndex(std::string_view text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\n') mStarts.push_back(i + 1);
  }
}

std::size_t unitCount(std::string_view bytes, Encoding encoding) {
  if (encoding == Encoding::Utf8) return bytes.size();
  std::size_t units = 0;
  for (std::size_t i = 0; i < bytes.size();) {
    const auto [length, width] = character(bytes, i);
    i += length;
    units += width;
  }
  return units;
}

std::size_t bytesForUnits(std::string_view bytes, std::size_t units, Encoding encoding) {
  std::size_t i = 0;
  std::size_t counted = 0;
  while (i < bytes.size()) {
    const auto [length, width] = character(bytes, i);
    const std::size_t step = encoding == Encoding::Utf8 ? length : width;
    if (counted + step > units) break;
    counted += step;
    i += length;
  }
  return i;
}

std::size_t LineIndex::offsetOf(std::string_view text, Position position, Encoding encoding) const {
  if (position.line >= mStarts.size()) return text.size();
  const std::size_t start = std::min(mStarts[position.line], text.size());
  const std::string_view line = text.substr(start, lineEnd(text, start) - start);
  return start + bytesForUnits(line, position.character, encoding);
}

Position LineIndex::positionOf(std::string_view text, std::size_t offset, Encoding encoding) const {
  offset = std::min(offset, text.size());
  const auto after = std::upper_bound(mStarts.begin(), mStarts.end(), offset);
  const std::size_t line = static_cast<std::size_t>(after - mStarts.begin()) - 1;
  const std::size_t start = mStarts[line];
  // Counting up to the offset stops at the start of a character the offset is inside of.
  const std::string_view prefix = text.substr(start, offset - start);
  std::size_t units = 0;
  for (std::size_t i = 0; i < prefix.size();) {
    const auto [length, width] = character(text, start + i);
    if (i + length > prefix.size()) break;
    i += length;
    units += encoding == Encoding::Utf8 ? length : width;
  }
  return {line, units};
}

} // namespace velmor::lsp
