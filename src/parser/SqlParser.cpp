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

namespace {
// Texts up to this size keep the automaton and its stacks for the next parse.
constexpr std::size_t keptStackTextSize = 16384;
} // namespace

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
    ~Reset() {
      // Texts and values that no rule took (a failed parse) go; the lists' room stays for the
      // next text.
      automaton.mTexts.clear();
      automaton.mValues.clear();
    }
  } reset{*this};
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
    // A long text may grow the automaton's stack far beyond what statements need: drop it
    // afterwards, also when an exception passes.
    struct DropLongStack {
      std::unique_ptr<SqlParserPrivate>& automaton;
      bool longText;
      ~DropLongStack() {
        if (longText) automaton.reset();
      }
    } dropLongStack{mAutomaton, text.size() > keptStackTextSize};
    RangeRecorder* ranges = keepSourceRanges ? &mAutomaton->ranges : nullptr;
    if (ranges) ranges->clear();
    mAutomaton->run(lexer, tree, &errors, std::max(nestingLimit, 1), ranges);
    if (errors.empty()) {
      result = std::move(tree);
      if (ranges) sourceRanges = ranges->finish();
    }
  }
  return !result.isNull();
}

} // namespace velmor::sql
