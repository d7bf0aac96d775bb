// The automaton as SqlParser drives it: syntax errors go to the parser owner's error list.
#pragma once

#include "SqlGrammar.tab.hpp"

#include <velmor/sql/parser/SqlError.h>

#include <memory>
#include <string>
#include <vector>

namespace velmor::sql {

/// The message of a syntax error in the state at the top of `context`'s stack: the lookahead's
/// name and, when the state's own action row accepts one to four terminals, their names in
/// symbol order ("error" and the error entries of nonassociative operators left out).
std::string syntaxErrorMessage(const Parser::context& context);

/// Throws the automaton's syntax_error "syntax error, nesting too deep (limit N)" located at
/// the token that `lexer` returned last.
[[noreturn]] void nestingTooDeep(const SqlLexer& lexer);

class SqlParserPrivate final : public Parser {
public:
  using ErrorList = std::vector<std::shared_ptr<SqlError>>;

  SqlParserPrivate(SqlLexer& lexer, ast::Node& result, const ParseContext& context, ErrorList* errors)
      : Parser(lexer, result, context), mErrors(errors) {}

  /// Appends an UnexpectedLexeme at the location's begin.
  void error(const location_type& location, const std::string& message) override;

private:
  ErrorList* mErrors;
};

} // namespace velmor::sql
