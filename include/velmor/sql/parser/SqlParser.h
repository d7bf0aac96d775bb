// The door of the library: one SQL text in, one syntax tree or one syntax error out.
#pragma once

#include <velmor/sql/Export.h>
#include <velmor/sql/ast/AST.h>
#include <velmor/sql/errors/SqlError.h>
#include <velmor/sql/parser/SourceRanges.h>

#include <memory>
#include <string>
#include <vector>

namespace velmor::sql {

class SqlParserPrivate;

/// The host's side of a parse. The grammar asks it nothing yet; it is kept so that a host can
/// hand its catalogue to later stages through the same object.
class VELMOR_SQL_API ParseContext {
public:
  virtual ~ParseContext();
};

/// Parses one UTF-8 text at a time. Used by one thread at a time; distinct parsers may run at
/// once.
class VELMOR_SQL_API SqlParser {
public:
  /// Keeps a reference to `context`, which must outlive the parser. `result` starts empty.
  explicit SqlParser(const ParseContext& context);
  /// A temporary context would dangle: refused.
  explicit SqlParser(ParseContext&& context) = delete;
  ~SqlParser();
  SqlParser(const SqlParser&) = delete;
  SqlParser& operator=(const SqlParser&) = delete;

  /// The default nesting limit. A text fails, with one UnexpectedLexeme "syntax error, nesting
  /// too deep (limit 10000)" at the token read last when the limit was crossed, if its tree
  /// would be more than this many nodes deep (a single leaf is 1, `a + b` is 2, `(a)` is 1 as
  /// well) or if more than this many '(' are open at once. Flat lists (select lists, IN lists,
  /// VALUES rows, function arguments) add no depth, however long. The later stages walk a tree
  /// recursively but need no more than about 150 KiB of the calling thread's stack at any
  /// depth: below that they go on on stack segments of their own (docs/limits.md).
  static constexpr int maxNestingDepth = 10000;

  /// Parses the whole `text` as one statement or one expression. True when `result` holds a
  /// tree afterwards; otherwise `errors` holds one UnexpectedLexeme and `result` is a node of
  /// EmptyNode. Never throws for a bad text; std::bad_alloc and the scanner's lexeme-size
  /// std::runtime_error pass through.
  bool parse(const std::string& text);

  /// `result` becomes a node of EmptyNode, `errors` empty and `sourceRanges` null. Trees handed
  /// out stay valid.
  void clear();

  const ParseContext* context;
  /// The tree of the last parse, or a node of EmptyNode.
  ast::Node result;
  /// What the last parse found, in order: at most one syntax error.
  std::vector<std::shared_ptr<SqlError>> errors;
  /// Writes each token to std::cerr during parse. Off after construction.
  bool debugTrace = false;
  /// The nesting limit of the next parse, maxNestingDepth after construction; the error text
  /// names the limit in force. A value below 1 counts as 1. A host may lower it to bound the
  /// memory of hostile texts, or raise it: a tree's depth then costs heap (stack segments of
  /// the walks, up to about 0.6 KiB a level), not stack.
  int nestingLimit = maxNestingDepth;
  /// When set, a parse that succeeds also fills `sourceRanges`. Off after construction, so that a
  /// plain parse pays nothing for it.
  bool keepSourceRanges = false;
  /// Where the nodes of `result` came from: a fresh map after each successful parse with
  /// keepSourceRanges, null otherwise. The host may keep it as long as it likes, with or
  /// without the tree.
  std::shared_ptr<const SourceRanges> sourceRanges;

private:
  // The automaton, made by the first parse and kept, with its stack, for the next ones.
  std::unique_ptr<SqlParserPrivate> mAutomaton;
};

} // namespace velmor::sql
