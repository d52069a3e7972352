// 32-bit integers that wrap around, and integers to try.
#pragma once

#include <cstdint>

#include "lab/random.hpp"

namespace nadir::test {

class Wrap {
 public:
  Wrap(int32_t value) : bits_(static_cast<uint32_t>(value)) {}
  int32_t value() const { return static_cast<int32_t>(bits_); }

  friend Wrap operator+(Wrap a, Wrap b) { return Wrap(static_cast<int32_t>(a.bits_ + b.bits_)); }
  friend Wrap operator-(Wrap a, Wrap b) { return Wrap(static_cast<int32_t>(a.bits_ - b.bits_)); }
  friend Wrap operator*(Wrap a, Wrap b) { return Wrap(static_cast<int32_t>(a.bits_ * b.bits_)); }

 private:
  uint32_t bits_;
};

// Small, of every size, or next to where the arithmetic wraps.
inline int32_t anyInteger(lab::Random& random) {
  static const int32_t edges[] = {INT32_MIN, INT32_MIN + 1, INT32_MAX, INT32_MAX - 1, -65536, 65536,
                                  -46341,    46341,         -32768,    32767,         -1,     0};
  switch (random.below(4)) {
    case 0: return random.between(-4, 4);
    case 1: return edges[random.below(sizeof edges / sizeof edges[0])];
    case 2: return static_cast<int32_t>(random.next());
    default: return random.between(-2000, 2000);
  }
}

}  // namespace nadir::test
