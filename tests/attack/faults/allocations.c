/* Loaded before the C library: lets allocations of a program fail, and counts them. */
#define _GNU_SOURCE
#include <errno.h>
#include <stdatomic.h>
#include <stddef.h>

#include "tests/attack/faults/plan.h"

void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* memory, size_t size);
void* __libc_memalign(size_t alignment, size_t size);

static atomic_long calls;
static Plan plan;

/* It is the first thing of the process that runs, before the constructors of the libraries that it needs. */
__attribute__((constructor(101))) static void prepare(void) { plan = readPlan(); }

__attribute__((destructor)) static void count(void) { writeCount("allocation", atomic_load(&calls)); }

static int mustFail(void) {
  const long call = atomic_fetch_add(&calls, 1) + 1;
  if (plan.kind[0] == 0 || !isDue(&plan, call)) return 0;
  errno = ENOMEM;
  return 1;
}

void* malloc(size_t size) { return mustFail() ? NULL : __libc_malloc(size); }
void* calloc(size_t number, size_t size) { return mustFail() ? NULL : __libc_calloc(number, size); }
void* realloc(void* memory, size_t size) { return mustFail() ? NULL : __libc_realloc(memory, size); }
void* aligned_alloc(size_t alignment, size_t size) { return mustFail() ? NULL : __libc_memalign(alignment, size); }

int posix_memalign(void** memory, size_t alignment, size_t size) {
  void* block = mustFail() ? NULL : __libc_memalign(alignment, size);
  if (!block) return ENOMEM;
  *memory = block;
  return 0;
}
