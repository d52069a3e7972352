// Random numbers that are the same on every machine and with every library.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace nadir::lab {

// xorshift64* (S. Vigna, "An experimental exploration of Marsaglia's xorshift generators, scrambled", 2016).
class Random {
 public:
  explicit Random(uint64_t seed) : state_(seed * 0x9E3779B97F4A7C15u + 0xD1B54A32D192ED03u) {}

  uint32_t next() {
    state_ ^= state_ >> 12;
    state_ ^= state_ << 25;
    state_ ^= state_ >> 27;
    return static_cast<uint32_t>((state_ * 0x2545F4914F6CDD1Du) >> 32);
  }

  // A number in [0, n); n must not be 0.
  uint32_t below(uint32_t n) { return next() % n; }

  // A number in [lo, hi].
  int32_t between(int32_t lo, int32_t hi) {
    return lo + static_cast<int32_t>(below(static_cast<uint32_t>(hi - lo) + 1));
  }

  template <class T>
  std::vector<T> values(size_t count, uint32_t bound) {
    std::vector<T> out(count);
    for (T& v : out) v = static_cast<T>(below(bound));
    return out;
  }

 private:
  uint64_t state_;
};

}  // namespace nadir::lab
