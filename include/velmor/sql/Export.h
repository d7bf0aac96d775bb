// Symbol visibility for the public API of velmor-sql.
#pragma once

#if defined(VELMOR_SQL_STATIC)
#  define VELMOR_SQL_API
#elif defined(_WIN32)
#  if defined(VELMOR_SQL_BUILDING)
#    define VELMOR_SQL_API __declspec(dllexport)
#  else
#    define VELMOR_SQL_API __declspec(dllimport)
#  endif
#else
#  define VELMOR_SQL_API __attribute__((visibility("default")))
#endif
