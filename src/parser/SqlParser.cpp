// SqlParser over the scanner and the generated automaton, and the automaton's error report.
#include <velmor/sql/parser/SqlParser.h>

#include "parser/Recognizer.h"
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
static_assert(std::is_trivially_copyable_v<Parser::value_type>);

namespace {
// Texts up to this size keep the automaton and its stack for the next parse.
constexpr std::size_t keptStackTextSize = 16384;
} // namespace

int yylex(Parser::value_type* value, Location* location, ParseSession& session) {
  SqlLexer& lexer = *session.lexer;
  const int id = lexer.lexId(location);
  if (session.ranges) [[unlikely]] {
    const std::size_t end = lexer.lexemeEnd();
    *location = session.ranges->token(*location, Position(lexer.line(), lexer.column()),
                                      id == T_TERMINATION ? end : lexer.lexemeBegin(), end);
  }
  // Only the five text tokens have a value. Their text waits in the session, and the slot holds
  // where.
  if (carriesText(static_cast<std::uint32_t>(id))) {
    const std::string_view bytes = lexer.token().text;
    value->text = session.texts->size();
    std::wstring& text = session.texts->emplace_back();
    Lexer::assignWide(bytes, text);
    // Widening sizes the text by its bytes; non-ASCII text needs fewer units than that.
    if (text.size() != bytes.size()) text.shrink_to_fit();
  } else if (lexer.openParentheses() > session.nestingLimit) {
    // Parentheses that leave no node behind still take a place on the automaton's stack each.
    nestingTooDeep(session);
  }
  return id;
}

void nestingTooDeep(const ParseSession& session) {
  const Position at(session.lexer->token().line, session.lexer->token().column);
  throw Parser::syntax_error(Location(at, at), "syntax error, nesting too deep (limit " +
                                                   std::to_string(session.nestingLimit) + ")");
}

// The automaton's own error hook is only a stand-in: SqlParserPrivate decides where errors go.
void Parser::error(const location_type&, const std::string&) {}

void Parser::report_syntax_error(const context& ctx) const {
  if (session.completion) {
    // Completion reads an empty text only to get here: the tables are private to the
    // generated class, and a local class of one of its members may read them.
    struct Tables {
      static int pact(int state) { return yypact_[state]; }
      static int defact(int state) { return yydefact_[state]; }
      static int table(int index) { return yytable_[index]; }
      static int check(int index) { return yycheck_[index]; }
      static int r1(int rule) { return yyr1_[rule]; }
      static int r2(int rule) { return yyr2_[rule]; }
      static int gotoState(int state, int symbol) {
        return yy_lr_goto_state_(static_cast<state_type>(state), symbol);
      }
      static int translate(std::uint32_t id) { return yytranslate_(static_cast<int>(id)); }
      static bool pactIsDefault(int value) { return yy_pact_value_is_default_(value); }
      static bool tableIsError(int value) { return yy_table_value_is_error_(value); }
      static int last() { return yylast_; }
      static int tokenCount() { return YYNTOKENS; }
      static std::uint32_t tokenIdLimit() { return T_MOD + 1; }
    };
    CompletionQuery& query = *session.completion;
    recognizer::Recognizer<Tables> recognizer;
    if (recognizer.run(*query.ids)) query.accepted = recognizer.acceptedIds();
    return;
  }
  // error() is the automaton's one non-const hook; reporting changes nothing the parse reads.
  const_cast<Parser*>(this)->error(ctx.location(), syntaxErrorMessage(ctx));
}

std::string syntaxErrorMessage(const Parser::context& context) {
  const Parser::symbol_kind_type lookahead = context.token();
  if (lookahead == Parser::symbol_kind::S_YYEMPTY) return "syntax error";
  // Room for one more than the four that a message may name: more than four are dropped.
  constexpr int maxExpected = 4;
  std::array<Parser::symbol_kind_type, maxExpected + 1> expected{};
  const int count = context.expected_tokens(expected.data(), maxExpected + 1);
  std::string message = "syntax error, unexpected ";
  message += Parser::symbol_name(lookahead);
  if (count > maxExpected) return message;
  for (int i = 0; i < count; ++i) {
    message += i == 0 ? ", expecting " : " or ";
    message += Parser::symbol_name(expected[static_cast<std::size_t>(i)]);
  }
  return message;
}

void SqlParserPrivate::error(const location_type& location, const std::string& message) {
  const Position at = mSession.ranges ? mSession.ranges->place(location) : location.begin;
  mErrors->push_back(std::make_shared<UnexpectedLexeme>(static_cast<std::size_t>(at.line),
                                                        static_cast<std::size_t>(at.column), message));
}

std::optional<std::vector<std::uint32_t>> SqlParserPrivate::acceptedAfter(const std::vector<std::uint32_t>& ids) {
  const std::string empty;
  SqlLexer lexer(empty, nullptr);
  ast::Node result;
  CompletionQuery query{&ids, std::nullopt};
  mSession = ParseSession{&lexer, &result, nullptr, 1, &mTexts, &mValues};
  mSession.completion = &query;
  struct Reset {
    SqlParserPrivate& automaton;
    ~Reset() { automaton.mSession = {}; }
  } reset{*this};
  // An empty text is a syntax error in state 0, before any action runs.
  parse();
  return std::move(query.accepted);
}

int SqlParserPrivate::run(SqlLexer& lexer, ast::Node& result, const ParseContext& context, ErrorList* errors,
                          int nestingLimit, RangeRecorder* ranges) {
  mSession = ParseSession{&lexer, &result, &context, nestingLimit, &mTexts, &mValues, ranges};
  mErrors = errors;
  struct Reset {
    SqlParserPrivate& automaton;
    ~Reset() {
      automaton.mSession = {};
      automaton.mErrors = nullptr;
      // Texts and values that no rule took (a failed parse) go; the lists' room stays for the
      // next text.
      automaton.mTexts.clear();
      automaton.mValues.clear();
    }
  } reset{*this};
  return parse();
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
    mAutomaton->run(lexer, tree, *context, &errors, std::max(nestingLimit, 1), ranges);
    if (errors.empty()) {
      result = std::move(tree);
      if (ranges) sourceRanges = ranges->finish();
    }
  }
  return !result.isNull();
}

} // namespace velmor::sql
