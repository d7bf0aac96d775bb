// Texts of open documents: protocol positions (UTF-16 or UTF-8 units) to byte offsets and back,
// and the edits a client sends.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace velmor::lsp {

/// How the client counts characters in a line.
enum class Encoding { Utf16, Utf8 };

/// A protocol position: a line from 0 and a character in code units of the encoding.
struct Position {
  std::size_t line = 0;
  std::size_t character = 0;

  bool operator==(const Position&) const = default;
};

/// A stretch of a text in bytes: its first byte and one past its last.
struct Span {
  std::size_t begin = 0;
  std::size_t end = 0;

  bool operator==(const Span&) const = default;
};

/// The byte offsets where each line of a text starts; a line ends at a line feed.
class LineIndex {
public:
  LineIndex() = default;
  explicit LineIndex(std::string_view text);

  /// The byte offset of `position` in `text` (the text this index was made of). A line past the
  /// last gives the end of the text; a character past the line's end gives the line's end (before
  /// its CR LF); one inside a character (half of a surrogate pair) its start.
  std::size_t offsetOf(std::string_view text, Position position, Encoding encoding) const;
  /// The position of byte `offset` (clamped to the text's end; inside a character: its start).
  Position positionOf(std::string_view text, std::size_t offset, Encoding encoding) const;

  std::size_t lines() const noexcept { return mStarts.size(); }

private:
  std::vector<std::size_t> mStarts{0};
};

/// Code units of `bytes` (UTF-8) in `encoding`: a byte that starts no complete character counts
/// as one unit, as the library reads it.
std::size_t unitCount(std::string_view bytes, Encoding encoding);

/// The byte length of the prefix of `bytes` that is `units` code units long (at most all of it;
/// never inside a character).
std::size_t bytesForUnits(std::string_view bytes, std::size_t units, Encoding encoding);

} // namespace velmor::lsp
