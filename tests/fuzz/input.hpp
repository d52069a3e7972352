// The fuzzer's bytes as the inputs of functions, and the end of a run whose result is not the model's.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "simd/cpu.hpp"

namespace nadir::test {

// Hands out the fuzzer's bytes, again and again with a change each time round, so that few bytes make a picture.
class Input {
 public:
  Input(const uint8_t* data, size_t size) : data_(data), size_(size) {}

  uint8_t byte() {
    const size_t i = next_++;
    return size_ ? static_cast<uint8_t>(data_[i % size_] + i / size_) : uint8_t{0};
  }
  uint32_t below(uint32_t n) { return (byte() | uint32_t{byte()} << 8) % n; }

  template <class T>
  std::vector<T> values(size_t count) {
    std::vector<T> out(count);
    for (T& value : out) {
      for (size_t i = 0; i < sizeof(T); ++i) value = static_cast<T>(uint64_t{value} << 8 | byte());
    }
    return out;
  }

 private:
  const uint8_t* data_;
  size_t size_, next_ = 0;
};

template <class T>
void expect(const char* what, const T& want, const T& got) {
  if (want == got) return;
  std::fprintf(stderr, "%s differs from the model at level %s\n", what, cpuName(cpu()));
  std::abort();
}

}  // namespace nadir::test
