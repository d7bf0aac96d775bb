// Assertions that stay active in every build type.
#pragma once

#include <velmor/sql/Export.h>

namespace velmor::sql {

/// Called when an assertion fails, with the asserted expression's text and the name of the
/// source that asserted ("AST", "TernaryLogic", ...). The default handler writes both to
/// std::cerr and aborts. A handler that returns lets the caller go on with the documented
/// fallback behaviour, which is what tests of those fallbacks rely on.
using AssertionHandler = void (*)(const char* expression, const char* source);

/// Installs a handler and returns the previous one; nullptr restores the default.
/// Not synchronised: set it before other threads use the library.
VELMOR_SQL_API AssertionHandler setAssertionHandler(AssertionHandler handler) noexcept;

/// Reports a failed assertion through the current handler.
VELMOR_SQL_API void assertionFailed(const char* expression, const char* source);

} // namespace velmor::sql

/// Checks `expr`; on failure reports its text and `source` and, if the handler returns, goes on.
#define VELMOR_SQL_ASSERT(expr, source)                                                             \
  do {                                                                                              \
    if (!(expr)) ::velmor::sql::assertionFailed(#expr, source);                                    \
  } while (false)
