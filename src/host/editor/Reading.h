// The statement at a cursor, read as the parser reads it even when it is unfinished: the text is
// mended token by token until it parses, and offsets map back to the text as written.
#pragma once

#include <velmor/sql/ast/AST.h>
#include <velmor/sql/ast/Traversal.h>
#include <velmor/sql/parser/Completion.h>
#include <velmor/sql/parser/SourceRanges.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace velmor::sql::host::editor {

/// The statement of a document around a cursor: the bytes from after the ';' before it to its own
/// ';' (or the document's end), comments blanked so that offsets agree with the document.
struct Segment {
  std::size_t begin = 0;
  std::string text;
  /// The cursor stands inside a comment.
  bool inComment = false;
};

Segment segmentAt(const std::string& document, std::size_t offset);

/// Insertions into a text, in order: what was at `before` is at `after` once they are made.
class Insertions {
public:
  /// `length` bytes put in at `before` (a place in the text before any insertion).
  void add(std::size_t before, std::size_t length);
  /// A place of the text after the insertions, in the text before them; a place inside an
  /// inserted piece maps to where the piece went in.
  std::size_t toBefore(std::size_t after) const;
  /// A place of the text before the insertions, in the text after them (before any piece put
  /// in at that very place).
  std::size_t toAfter(std::size_t before) const;

private:
  struct Piece {
    std::size_t before;
    std::size_t after;
    std::size_t length;
  };
  std::vector<Piece> mPieces;
};

/// The name that repair puts in where a name is missing.
inline constexpr const char* fillName = "zq_velmor_fill";

/// How a token is written when repair puts it in.
std::string spelling(std::uint32_t id);

/// A statement text mended to parse.
class Reading {
public:
  /// Reads `text`, first putting `with` in place of its bytes [replaceBegin, replaceEnd) when
  /// `with` is not empty. None when no mending within a few fixes makes it parse, or when its
  /// scanner fails (an over-long lexeme).
  static std::optional<Reading> read(const std::string& text, std::size_t replaceBegin = 0,
                                     std::size_t replaceEnd = 0, const std::string& with = {});

  const ast::Node& tree() const { return mTree; }
  const SourceRanges& ranges() const { return *mRanges; }
  /// The mended text and its tokens.
  const std::string& text() const { return mText; }
  const std::vector<TokenPlace>& tokens() const { return mTokens; }

  /// A place of the mended text in the text as given, and back.
  std::size_t toGiven(std::size_t offset) const;
  std::size_t fromGiven(std::size_t offset) const;

  /// The range of `node` in the mended text, or null.
  const SourceRange* range(const ast::Node& node) const { return mRanges->find(node); }
  /// The first token that begins at or after `offset` of the mended text.
  std::size_t tokenAt(std::size_t offset) const;
  /// The innermost node whose range holds [begin, end) of the mended text, found by going down
  /// only through nodes that hold it; the tree itself when no node below does.
  ast::Node innermost(std::size_t begin, std::size_t end) const;

private:
  std::string mText;
  std::vector<TokenPlace> mTokens;
  ast::Node mTree;
  std::shared_ptr<const SourceRanges> mRanges;
  // The replacement, then the tokens that repair put in.
  std::size_t mReplaceBegin = 0;
  std::size_t mReplaceEnd = 0;
  std::size_t mWithLength = 0;
  Insertions mInserted;
};

/// Calls `visit(node)` for every node of `root`, parents first; iterative.
template <class Visit>
void forEachNode(const ast::Node& root, Visit&& visit) {
  std::vector<ast::Node> stack{root};
  while (!stack.empty()) {
    ast::Node node = std::move(stack.back());
    stack.pop_back();
    if (node.isNull()) continue;
    visit(node);
    std::vector<ast::Node> below = ast::children(node);
    for (auto child = below.rbegin(); child != below.rend(); ++child) stack.push_back(std::move(*child));
  }
}

} // namespace velmor::sql::host::editor
