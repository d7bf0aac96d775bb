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

void SqlLexer::endOfText() {
  mToken.text = {};
  mToken.id = T_TERMINATION;
  mToken.line = line();
  mToken.column = column();
}

void SqlLexer::traceToken() const {
  // The token's text is kept in UTF-8 too, which is what the stream wants.
  std::cerr << tokenName(mToken.id) << ' ' << mToken.text << '\n' << std::flush;
}

void SqlLexer::unknownLexeme(const std::wstring& lexeme) {
  if (mErrors) mErrors->push_back(std::make_shared<UnknownLexeme>(lexeme));
}

} // namespace velmor::sql
