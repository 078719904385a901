// SPDX-License-Identifier: MIT
//
// How the headers of the records fit the language that includes them: C99 and later, C++11 and
// later.
//
// ZVISP_RECORD_OPERATIONS is defined where the records have constructors and operations: in C++,
// for the tool and for hosts, which link them. A plug-in does not link them; zvisp_plugin.h defines
// ZVISP_PLAIN_RECORDS first, and the records are then the plain structs that they are in C. Both
// views have the same layout, and each is checked wherever it is compiled.
#ifndef ZVISP_PLUGIN_RECORD_LANGUAGE_H_
#define ZVISP_PLUGIN_RECORD_LANGUAGE_H_

#include <stddef.h>

#if defined(__cplusplus) && __cplusplus < 201103L
#error "The headers of zvisp need C++11 or later: compile with -std=c++11"
#endif

#if defined(__cplusplus) && !defined(ZVISP_PLAIN_RECORDS)
#define ZVISP_RECORD_OPERATIONS 1
#endif

// Refuses to compile where the condition is false. The name, an identifier that says what must
// hold, is what the compiler then shows: C99 has no message, and an array of -1 elements instead.
#ifdef __cplusplus
#define ZVISP_RECORD_CHECK(name, condition) static_assert(condition, #name)
#else
#define ZVISP_RECORD_CHECK(name, condition) typedef char name[(condition) ? 1 : -1]
#endif

#define ZVISP_RECORD_CHECK_AT(record, field, offset)                  \
  ZVISP_RECORD_CHECK(record##_##field##_must_stay_at_offset_##offset, \
                     offsetof(record, field) == (offset))
#define ZVISP_RECORD_CHECK_SIZE(record, size) \
  ZVISP_RECORD_CHECK(record##_must_stay_##size##_bytes, sizeof(record) == (size))

#endif  // ZVISP_PLUGIN_RECORD_LANGUAGE_H_
