// The scanner as the parser sees it: ids, wide text, locations and the trace.
#include "sqllexer/SqlLexer.h"

#include <velmor/sql/Assert.h>

#include <iostream>

namespace velmor::sql {

SqlLexer::SqlLexer(const std::string& text, ErrorList* errors) : Lexer(text), mErrors(errors) {}

SqlLexer::~SqlLexer() = default;

int SqlLexer::lex(std::wstring* semantic, Location* location) {
  VELMOR_SQL_ASSERT(semantic != nullptr, "SqlLexer");
  const int id = lexId(location);
  if (carriesText(mToken.id)) assignWide(mToken.text, semantic ? *semantic : mScratch);
  return id;
}

int SqlLexer::lexId(Location* location) {
  if (!next(mToken)) {
    mToken.text = {};
    mToken.id = T_TERMINATION;
    mToken.line = line();
    mToken.column = column();
  }

  if (mToken.id == '(') {
    ++mOpenParentheses;
  } else if (mToken.id == ')' && mOpenParentheses > 0) {
    --mOpenParentheses;
  }

  if (mTrace) {
    // The token's text is kept in UTF-8 too, which is what the stream wants.
    std::cerr << tokenName(mToken.id) << ' ' << mToken.text << '\n' << std::flush;
  }

  if (location) {
    location->begin = Position(mToken.line, mToken.column);
    location->end = Position(mToken.line, mToken.column + static_cast<int>(mToken.text.size()) + 1);
    location->depth = 0;
  }
  return static_cast<int>(mToken.id);
}

void SqlLexer::unknownLexeme(const std::wstring& lexeme) {
  if (mErrors) mErrors->push_back(std::make_shared<UnknownLexeme>(lexeme));
}

} // namespace velmor::sql
