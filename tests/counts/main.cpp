// Calls every exported function with fixed inputs. calls_plugin.c counts the instructions; this file takes out what
// would make them differ from run to run.
//
//   nadir_counts         makes the calls
//   nadir_counts --libc  prints the C library's version, on which the counts depend
#include <alloca.h>
#include <gnu/libc-version.h>

#include <cstring>
#include <ctime>

#include "tests/counts/calls.hpp"

namespace nadir::test::counts {
namespace {

// The library's memory comes from here, so that the state of libc's heap, which depends on everything before, costs
// nothing. Blocks begin at a multiple of 64: how libc fills and copies memory depends on that.
alignas(4096) unsigned char arena[size_t{96} << 20];
size_t arenaUsed = 0;

// How deep in its page the stack begins depends on the environment and the program's path. Here it does not.
__attribute__((noinline)) void callEverything() {
  callImages();
  callStereo();
  callSegments();
  callGeometry();
  callCamera();
  callNumbers();
  callGround();
  callRectify();
  callCheck();
}

}  // namespace

extern "C" {

// The linker sends malloc, calloc, free and clock_gettime here.
void* __wrap_malloc(size_t bytes);
void* __wrap_calloc(size_t count, size_t bytes);
void __wrap_free(void* block);
int __wrap_clock_gettime(clockid_t clock, timespec* now);

void* __wrap_malloc(size_t bytes) {
  if (bytes > sizeof arena - arenaUsed) return nullptr;
  void* const block = arena + arenaUsed;
  arenaUsed += (bytes + 63) / 64 * 64;
  return block;
}

// No block is handed out twice, so that all are still 0.
void* __wrap_calloc(size_t count, size_t bytes) { return __wrap_malloc(count * bytes); }

void __wrap_free(void*) {}

int __wrap_clock_gettime(clockid_t, timespec* now) {
  *now = {1234567, 890123456};
  return 0;
}
}

}  // namespace nadir::test::counts

int main(int argc, char** argv) {
  static char output[1 << 16];
  std::setvbuf(stdout, output, _IOFBF, sizeof output);
  if (argc == 2 && std::strcmp(argv[1], "--libc") == 0) {
    std::printf("glibc %s\n", gnu_get_libc_version());
    return 0;
  }
  volatile char* const skipped =
      static_cast<char*>(alloca(reinterpret_cast<uintptr_t>(__builtin_frame_address(0)) % 4096 + 16));
  *skipped = 0;
  nadir::test::counts::callEverything();
  return 0;
}
