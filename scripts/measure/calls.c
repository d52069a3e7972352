/* Writes the names of the library's functions that a program calls, one a line, to the file that NADIR_CALLS names.
 * Loaded into a program whose library was compiled with -finstrument-functions. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#define MOST 1024
#define PLACES 65536

static const void* seen[MOST];
static size_t count;

/* Calls that were looked at already; one forgotten is only looked at again. */
static struct { const void *function, *caller; } known[PLACES];

void __cyg_profile_func_enter(void* function, void* caller);
void __cyg_profile_func_exit(void* function, void* caller);

/* What one function of a library calls another for is no call of the program's. */
static int is_from_program(const void* caller) {
  Dl_info calling;
  return dladdr(caller, &calling) && strcmp(calling.dli_fname, program_invocation_name) == 0;
}

static void see(const void* function) {
  for (size_t i = 0; i < count; ++i)
    if (seen[i] == function) return;
  if (count < MOST) seen[count++] = function;
}

void __cyg_profile_func_enter(void* function, void* caller) {
  const size_t place = ((uintptr_t)function * 31 + (uintptr_t)caller) % PLACES;
  if (known[place].function == function && known[place].caller == caller) return;
  known[place].function = function;
  known[place].caller = caller;
  if (is_from_program(caller)) see(function);
}

void __cyg_profile_func_exit(void* function, void* caller) {
  (void)function;
  (void)caller;
}

/* What a program's static objects call before main is no test's. */
typedef int Main(int, char**, char**);
static Main* program_main;

static int main_that_forgets(int argc, char** argv, char** environment) {
  count = 0;
  memset(known, 0, sizeof known);
  return program_main(argc, argv, environment);
}

int __libc_start_main(Main* main, int argc, char** argv, Main* init, void (*fini)(void), void (*rtld_fini)(void),
                      void* stack_end);
int __libc_start_main(Main* main, int argc, char** argv, Main* init, void (*fini)(void), void (*rtld_fini)(void),
                      void* stack_end) {
  int (*start)(Main*, int, char**, Main*, void (*)(void), void (*)(void), void*);
  void* next = dlsym(RTLD_NEXT, "__libc_start_main");
  memcpy(&start, &next, sizeof start);
  program_main = main;
  return start(main_that_forgets, argc, argv, init, fini, rtld_fini, stack_end);
}

__attribute__((destructor)) static void write_names(void) {
  const char* path = getenv("NADIR_CALLS");
  FILE* file = path ? fopen(path, "w") : NULL;
  if (!file) return;
  for (size_t i = 0; i < count; ++i) {
    Dl_info info;
    if (dladdr(seen[i], &info) && info.dli_sname) fprintf(file, "%s\n", info.dli_sname);
  }
  fclose(file);
}
