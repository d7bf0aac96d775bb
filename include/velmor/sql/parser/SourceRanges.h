// Where each node of a parsed tree came from in its text: kept beside the tree, never in it.
#pragma once

#include <velmor/sql/Export.h>
#include <velmor/sql/ast/AST.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace velmor::sql {

/// Moves a line and column over one byte of UTF-8 text as the scanner counts: a line feed starts
/// the next line, a tab goes to the next stop of a grid of 4, a continuation byte counts with its
/// lead byte, any other byte is a column.
constexpr void advancePlace(std::size_t& line, std::size_t& column, unsigned char byte) noexcept {
  if (byte == '\n') {
    ++line;
    column = 1;
  } else if (byte == '\t') {
    column = ((column - 1) & ~std::size_t{3}) + 5;
  } else if ((byte & 0xC0) != 0x80) {
    ++column;
  }
}

/// A stretch of the parsed text. Lines and columns count as in token and syntax error positions
/// (from 1, a column per code point, a tab moves to the next stop of a grid of 4); `end` is the
/// place right after the last character. Offsets are bytes into the UTF-8 text, `endOffset` one
/// past the last byte.
struct SourceRange {
  std::size_t beginLine = 1;
  std::size_t beginColumn = 1;
  std::size_t endLine = 1;
  std::size_t endColumn = 1;
  std::size_t beginOffset = 0;
  std::size_t endOffset = 0;

  bool operator==(const SourceRange&) const = default;
};

/// The source range of every node that a rule of the grammar made from the text: statements,
/// queries, table references, joins and their conditions, expressions (a column reference, a
/// call, an operation over its operands), select list items. A node written in parentheses spans
/// what is inside them; an omitted part (an empty WHERE) and a node the parser adds by itself (the
/// TRUE of a CASE without subject, an INTO clause) have none.
///
/// Keyed by node identity. A map made by a parse holds its tree alive, so that no node of a later
/// tree can take the place of one of its own and be answered for. Immutable once made; may be
/// read from any thread.
class VELMOR_SQL_API SourceRanges {
public:
  using Entry = std::pair<const ast::NodeInterface*, SourceRange>;

  SourceRanges() = default;
  /// The ranges of the given nodes, each given once; `tree`, when given, is kept alive with the
  /// map (the nodes must be its own).
  explicit SourceRanges(std::vector<Entry> entries, ast::Node tree = {});

  /// The range of `node`, or null when the parse that made this map did not make it.
  const SourceRange* find(const ast::Node& node) const { return find(node.mImpl.get()); }
  const SourceRange* find(const ast::NodeInterface* node) const;

  /// Nodes with a range.
  std::size_t size() const noexcept { return mEntries.size(); }

private:
  std::vector<Entry> mEntries;
  ast::Node mTree;
  // An open-addressed table of positions in mEntries + 1 (0: free), a power of two in size:
  // made in one pass, with no sorting, since a parse makes one map and asks it a few times.
  std::vector<std::uint32_t> mSlots;
};

/// "LINE:COL-LINE:COL" of a range, the end being the place after its last character.
VELMOR_SQL_API std::string rangeText(const SourceRange& range);

} // namespace velmor::sql
