// The automaton as SqlParser drives it: syntax errors go to the parser owner's error list.
#pragma once

#include "SqlGrammar.tab.hpp"
#include "parser/RangeRecorder.h"
#include "parser/ValueSlabs.h"

#include <velmor/sql/errors/SqlError.h>

#include <memory>
#include <string>
#include <vector>

namespace velmor::sql {

/// A syntax error found outside the automaton's own error detection (the nesting limit), at the
/// place of the token that the scanner returned last. Thrown through the automaton, which holds
/// nothing that needs releasing.
struct SyntaxError {
  Position at;
  std::string message;
};

/// Throws the SyntaxError "syntax error, nesting too deep (limit N)", N being the session's
/// limit, located at the token that the session's scanner returned last.
[[noreturn]] void nestingTooDeep(const ParseSession& session);

/// Appends an UnexpectedLexeme at the automaton's lookahead, which is always the token that the
/// session's scanner returned last.
void reportSyntaxError(const ParseSession& session, const std::string& message);

/// The automaton of one SqlParser, kept from parse to parse for the room of its lists.
class SqlParserPrivate final {
public:
  using ErrorList = std::vector<std::shared_ptr<SqlError>>;

  /// Parses the text of `lexer` into `result`; a syntax error goes to `errors`. Returns 0 when
  /// the text was accepted; lets std::bad_alloc and the scanner's errors pass.
  /// When `ranges` is not null, tokens and nodes are noted in it.
  int run(SqlLexer& lexer, ast::Node& result, ErrorList* errors, int nestingLimit, RangeRecorder* ranges = nullptr);

  /// What the automaton keeps for the next parse is room for this many entries per list at
  /// most: statements of a few thousand tokens reuse it, and a longer text's room goes.
  static constexpr std::size_t keptEntries = 8192;

private:
  std::vector<TextPiece> mTexts;
  ValueSlabs mValues;
  AutomatonStacks mStacks;

public:
  /// Notes of a parse that keeps source ranges; kept with the automaton for their room.
  RangeRecorder ranges;
};

} // namespace velmor::sql
