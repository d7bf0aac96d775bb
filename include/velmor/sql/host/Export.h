// Symbol visibility for the public API of the host kit (velmor-sql-host).
#pragma once

#if defined(VELMOR_SQL_HOST_STATIC)
#  define VELMOR_SQL_HOST_API
#elif defined(_WIN32)
#  if defined(VELMOR_SQL_HOST_BUILDING)
#    define VELMOR_SQL_HOST_API __declspec(dllexport)
#  else
#    define VELMOR_SQL_HOST_API __declspec(dllimport)
#  endif
#else
#  define VELMOR_SQL_HOST_API __attribute__((visibility("default")))
#endif
