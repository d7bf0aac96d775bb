// SqlParser over the scanner and the generated automaton, and the automaton's error report.
#include <velmor/sql/parser/SqlParser.h>

#include "parser/RangeRecorder.h"
#include "parser/SqlParserPrivate.h"
#include "sqllexer/SqlLexer.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace velmor::sql {

// The automaton copies its stack entries as plain bytes and destroys none of them.
static_assert(std::is_trivially_copyable_v<SemanticValue>);
static_assert(std::is_trivially_copyable_v<SymbolPlace>);

void nestingTooDeep(const ParseSession& session) {
  throw SyntaxError{Position(session.lexer->token().line, session.lexer->token().column),
                    "syntax error, nesting too deep (limit " + std::to_string(session.nestingLimit) + ")"};
}

void reportSyntaxError(const ParseSession& session, const std::string& message) {
  const Token& at = session.lexer->token();
  session.errors->push_back(std::make_shared<UnexpectedLexeme>(static_cast<std::size_t>(at.line),
                                                               static_cast<std::size_t>(at.column), message));
}

int SqlParserPrivate::run(SqlLexer& lexer, ast::Node& result, ErrorList* errors, int nestingLimit,
                          RangeRecorder* ranges) {
  ParseSession session{&lexer, &result, nestingLimit, &mTexts, &mValues, errors, &mStacks, ranges};
  struct Reset {
    SqlParserPrivate& automaton;
    const ParseSession& session;
    ~Reset() {
      // Texts and values that no rule took (a failed parse) go; the lists' room stays for the
      // next text, up to a bound. A token makes a few values and stack entries at most, so only
      // a text of many tokens can have grown a list past it.
      automaton.mTexts.clear();
      automaton.mValues.clear();
      if (session.tokens > keptEntries / 8) {
        ValueSlabs::trimRoom(automaton.mTexts, keptEntries);
        automaton.mValues.trim(keptEntries);
        if (automaton.mStacks.size > static_cast<std::ptrdiff_t>(keptEntries)) automaton.mStacks = AutomatonStacks();
      }
    }
  } reset{*this, session};
  try {
    return velmor_sql_yyparse(session);
  } catch (const SyntaxError& error) {
    errors->push_back(std::make_shared<UnexpectedLexeme>(static_cast<std::size_t>(error.at.line),
                                                         static_cast<std::size_t>(error.at.column), error.message));
    return 1;
  }
}

ParseContext::~ParseContext() = default;

SqlParser::SqlParser(const ParseContext& context_) : context(&context_) {}

SqlParser::~SqlParser() = default;

void SqlParser::clear() {
  result = ast::makeEmptyNode();
  errors.clear();
  sourceRanges.reset();
}

bool SqlParser::parse(const std::string& text) {
  clear();
  ast::Node tree;
  {
    SqlLexer lexer(text, &errors);
    lexer.setTrace(debugTrace);
    if (!mAutomaton) mAutomaton = std::make_unique<SqlParserPrivate>();
    RangeRecorder* ranges = keepSourceRanges ? &mAutomaton->ranges : nullptr;
    if (ranges) ranges->clear();
    mAutomaton->run(lexer, tree, &errors, std::max(nestingLimit, 1), ranges);
    if (errors.empty()) {
      result = std::move(tree);
      if (ranges) sourceRanges = ranges->finish(result);
    }
    if (ranges) {
      ranges->clear();
      ranges->trim(SqlParserPrivate::keptEntries);
    }
  }
  return !result.isNull();
}

} // namespace velmor::sql
