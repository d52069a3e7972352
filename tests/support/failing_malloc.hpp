// Allocations that fail on purpose and are counted. Include it in one source file of a test program.
//
// malloc, calloc and free of the program stand in front of the C library's, also for the shared library under test.
// They are weak, so that a second file that includes this does no harm. Sanitizers bring an allocator of their own:
// with them there is nothing to count, and kCanFailAllocations says so.
#pragma once

#include <cstddef>

#if defined(__SANITIZE_ADDRESS__)
#define NADIR_TEST_OWN_MALLOC 0
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(memory_sanitizer) || __has_feature(thread_sanitizer)
#define NADIR_TEST_OWN_MALLOC 0
#endif
#endif
#ifndef NADIR_TEST_OWN_MALLOC
#define NADIR_TEST_OWN_MALLOC 1
#endif

namespace nadir::test {

inline constexpr bool kCanFailAllocations = NADIR_TEST_OWN_MALLOC;

// While one lives, allocations of the whole program are counted, and the failing-th (from 1) gets no memory; with 0
// none fails. Keep the guarded scope down to the one call under test.
class Allocations {
 public:
  explicit Allocations(int failing = 0) : failing_(failing) { watching = this; }
  ~Allocations() { stop(); }
  Allocations(const Allocations&) = delete;
  Allocations& operator=(const Allocations&) = delete;

  void stop() { watching = nullptr; }
  int made() const { return made_; }  // asked for, the failed one included
  int live() const { return live_; }  // not yet given back

  bool mayAllocate() {
    const bool granted = ++made_ != failing_;
    live_ += granted;
    return granted;
  }
  void released() { --live_; }

  static inline Allocations* watching = nullptr;

 private:
  int failing_;
  int made_ = 0;
  int live_ = 0;
};

}  // namespace nadir::test

#if NADIR_TEST_OWN_MALLOC
extern "C" {
void* __libc_malloc(size_t bytes);
void* __libc_calloc(size_t count, size_t bytes);
void __libc_free(void* block);

__attribute__((weak)) void* malloc(size_t bytes) {
  auto* const watch = nadir::test::Allocations::watching;
  return watch && !watch->mayAllocate() ? nullptr : __libc_malloc(bytes);
}

__attribute__((weak)) void* calloc(size_t count, size_t bytes) {
  auto* const watch = nadir::test::Allocations::watching;
  return watch && !watch->mayAllocate() ? nullptr : __libc_calloc(count, bytes);
}

__attribute__((weak)) void free(void* block) {
  if (auto* const watch = nadir::test::Allocations::watching; watch && block) watch->released();
  __libc_free(block);
}
}
#endif
