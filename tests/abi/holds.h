/* What the checks of records say, at compile time. */
#ifndef NADIR_TESTS_ABI_HOLDS_H
#define NADIR_TESTS_ABI_HOLDS_H

#include <stddef.h>

/* A macro, because C99 has no static assertion: an array of a negative size does not compile. */
#define HOLDS(condition) extern const char holds[(condition) ? 1 : -1]

#define HERE(on32, on64) (sizeof(void*) == 4 ? (on32) : (on64))
#define SIZE(record, on32, on64) HOLDS(sizeof(record) == HERE(on32, on64))

/* Both branches of the inner ?: must have the same pointer type, or compilers complain. */
#define FIELD(record, type, field, on32, on64) \
  HOLDS(offsetof(record, field) == HERE(on32, on64) && sizeof(1 ? &((record*)0)->field : (type*)0) == sizeof(void*))

#endif
