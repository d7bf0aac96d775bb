// SqlLexer::lexIdInline, for the translation unit that wants the scanner's automaton inlined.
#pragma once

#include "SqlLexer.re.h"
#include "sqllexer/SqlLexer.h"

namespace velmor::sql {

inline int SqlLexer::lexIdInline() { return lexed(scan(mToken), nullptr); }

} // namespace velmor::sql
