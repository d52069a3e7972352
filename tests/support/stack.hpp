// How much stack a call takes: it runs in a thread on a painted stack, and the paint that is gone tells.
#pragma once

#include <pthread.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>

#include "tests/support/guarded.hpp"
#include "tests/support/sanitized.hpp"

namespace nadir::test {

inline const bool stackIsPlain = !isSanitized;  // sanitizers put red zones and frames of their own on it

// A page that must not be touched lies below it: who takes far too much crashes.
class PaintedStack {
 public:
  PaintedStack() { std::memset(pages_.begin(), paint, pages_.size()); }

  template <class Call>
  void run(Call& call) {
    pthread_attr_t attributes;
    pthread_t thread;
    const auto start = [](void* argument) -> void* {
      (*static_cast<Call*>(argument))();
      return nullptr;
    };
    if (pthread_attr_init(&attributes) != 0 || pthread_attr_setstack(&attributes, pages_.begin(), pages_.size()) != 0 ||
        pthread_create(&thread, &attributes, start, &call) != 0 || pthread_join(thread, nullptr) != 0)
      std::abort();
    pthread_attr_destroy(&attributes);
  }

  // Stacks grow downwards on every processor that we support.
  size_t used() const {
    const unsigned char* last = std::find_if(pages_.begin(), pages_.end(), [](unsigned char c) { return c != paint; });
    return static_cast<size_t>(pages_.end() - last);
  }

 private:
  static constexpr unsigned char paint = 0xB7;

  GuardedPages pages_{size_t{1} << 20};
};

// Bytes of stack, without those that the thread itself takes.
template <class Call>
size_t stackOf(Call call) {
  auto nothing = [] {};
  PaintedStack ofNothing, ofCall;
  ofNothing.run(nothing);
  ofCall.run(call);
  return std::max(ofCall.used(), ofNothing.used()) - ofNothing.used();
}

}  // namespace nadir::test
