// The linker's --wrap sends the library's malloc, calloc and free here. What the C++ runtime allocates for the tests
// themselves does not come this way.
#include "lab/heap.hpp"

#include <cstring>
#include <iterator>

extern "C" {
void* __real_malloc(size_t bytes);
void* __real_calloc(size_t count, size_t size);
void __real_free(void* block);
}

namespace nadir::lab::heap {
namespace {

struct State {
  Failing failing;
  size_t failAt, allocations, bytes, failures, live;
  size_t sizes[8];
};
State state{};

bool mayAllocate(size_t asked) {
  if (state.allocations < std::size(state.sizes)) state.sizes[state.allocations] = asked;
  ++state.allocations;
  state.bytes += asked;
  const bool fails = (state.failing == Failing::once && state.allocations == state.failAt) ||
                     (state.failing == Failing::fromThenOn && state.allocations >= state.failAt);
  if (fails) ++state.failures;
  return !fails;
}

void* counted(void* block) {
  if (block != nullptr) ++state.live;
  return block;
}

}  // namespace

void watch(Failing failing, size_t n) { state = {failing, n, 0, 0, 0, state.live, {}}; }
size_t allocations() { return state.allocations; }
size_t bytes() { return state.bytes; }
size_t bytes(size_t n) { return state.sizes[n - 1]; }
size_t failures() { return state.failures; }
size_t liveBlocks() { return state.live; }

}  // namespace nadir::lab::heap

namespace heap = nadir::lab::heap;

extern "C" {

// Fresh pages are 0, which hides that somebody reads what nobody wrote.
void* __wrap_malloc(size_t bytes) {
  if (!heap::mayAllocate(bytes)) return nullptr;
  void* block = heap::counted(__real_malloc(bytes));
  return block ? std::memset(block, 0xA5, bytes) : nullptr;
}

void* __wrap_calloc(size_t count, size_t size) {
  return heap::mayAllocate(count * size) ? heap::counted(__real_calloc(count, size)) : nullptr;
}

void __wrap_free(void* block) {
  if (block != nullptr) --heap::state.live;
  __real_free(block);
}

}  // extern "C"
