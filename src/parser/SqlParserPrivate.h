// The automaton as SqlParser drives it: syntax errors go to the parser owner's error list.
#pragma once

#include "SqlGrammar.tab.hpp"
#include "parser/RangeRecorder.h"
#include "parser/ValueSlabs.h"

#include <velmor/sql/errors/SqlError.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace velmor::sql {

/// The message of a syntax error in the state at the top of `context`'s stack: the lookahead's
/// name and, when the state's own action row accepts one to four terminals, their names in
/// symbol order ("error" and the error entries of nonassociative operators left out).
std::string syntaxErrorMessage(const Parser::context& context);

/// Throws the automaton's syntax_error "syntax error, nesting too deep (limit N)", N being the
/// session's limit, located at the token that the session's scanner returned last.
[[noreturn]] void nestingTooDeep(const ParseSession& session);

/// A question to the automaton's tables: which terminals may follow `ids`. The error report
/// answers it in `accepted` (nullopt when `ids` hold a syntax error).
struct CompletionQuery {
  const std::vector<std::uint32_t>* ids = nullptr;
  std::optional<std::vector<std::uint32_t>> accepted;
};

/// The automaton of one SqlParser, kept from parse to parse.
class SqlParserPrivate final : public Parser {
public:
  using ErrorList = std::vector<std::shared_ptr<SqlError>>;

  // The base keeps a reference to mSession, which is only read once run() has filled it.
  SqlParserPrivate() : Parser(mSession) {}

  /// Parses the text of `lexer` into `result`; syntax errors go to `errors`. Returns what
  /// Parser::parse returns; lets what it lets through pass.
  /// When `ranges` is not null, tokens and nodes are noted in it.
  int run(SqlLexer& lexer, ast::Node& result, const ParseContext& context, ErrorList* errors, int nestingLimit,
          RangeRecorder* ranges = nullptr);

  /// The token ids the automaton accepts right after `ids`, in symbol order; nullopt when `ids`
  /// are no beginning of a text that it accepts.
  std::optional<std::vector<std::uint32_t>> acceptedAfter(const std::vector<std::uint32_t>& ids);

  /// Appends an UnexpectedLexeme at the location's begin.
  void error(const location_type& location, const std::string& message) override;

private:
  ParseSession mSession;
  ErrorList* mErrors = nullptr;
  std::vector<std::wstring> mTexts;
  ValueSlabs mValues;

public:
  /// Notes of a parse that keeps source ranges; kept with the automaton for their room.
  RangeRecorder ranges;
};

} // namespace velmor::sql
