// The scanner's automaton out of line, for every caller but the parser, which inlines it.
#include "SqlLexer.re.h"

namespace velmor::sql {

bool Lexer::next(Token& token) { return scan(token); }

} // namespace velmor::sql
