// Integers that wrap around at 32 bits.
#pragma once

#include <cstdint>

namespace nadir {

// A signed 32-bit integer whose sums and products wrap around: they are done unsigned, where overflow is defined.
class Wrap32 {
 public:
  constexpr Wrap32(int32_t value) : bits_(static_cast<uint32_t>(value)) {}

  constexpr int32_t value() const { return static_cast<int32_t>(bits_); }

  friend constexpr Wrap32 operator+(Wrap32 a, Wrap32 b) { return fromBits(a.bits_ + b.bits_); }
  friend constexpr Wrap32 operator-(Wrap32 a, Wrap32 b) { return fromBits(a.bits_ - b.bits_); }
  friend constexpr Wrap32 operator*(Wrap32 a, Wrap32 b) { return fromBits(a.bits_ * b.bits_); }

 private:
  static constexpr Wrap32 fromBits(uint32_t bits) { return static_cast<int32_t>(bits); }

  uint32_t bits_;
};

// |v|; that of -2^31 is -2^31 again.
constexpr int32_t wrapAbs(int32_t v) { return v < 0 ? (Wrap32(0) - v).value() : v; }

constexpr int32_t signOf(int32_t v) { return (v > 0) - (v < 0); }

}  // namespace nadir
