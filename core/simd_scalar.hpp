// A "vector" of bytes for processors without vectors, so that a kernel written once for all of them also runs there:
// plain loops, in a form that compilers may vectorise. The other simd_*.hpp give the same operations on registers.
#pragma once

#include <cstddef>
#include <cstdint>

namespace nadir::scalar {

struct U8 {
  static constexpr size_t lanes = 64;
  uint8_t v[lanes];

  static U8 load(const uint8_t* p) {
    return each([=](size_t i) { return p[i]; });
  }
  static U8 all(uint8_t x) {
    return each([=](size_t) { return x; });
  }
  void store(uint8_t* p) const {
    for (size_t i = 0; i < lanes; ++i) p[i] = v[i];
  }

  // f(i) for every lane i.
  template <class F>
  static U8 each(F f) {
    U8 out;
    for (size_t i = 0; i < lanes; ++i) out.v[i] = static_cast<uint8_t>(f(i));
    return out;
  }
};

inline U8 operator+(const U8& a, const U8& b) {
  return U8::each([&](size_t i) { return a.v[i] + b.v[i]; });
}
inline U8 operator-(const U8& a, const U8& b) {
  return U8::each([&](size_t i) { return a.v[i] - b.v[i]; });
}
inline U8 operator^(const U8& a, const U8& b) {
  return U8::each([&](size_t i) { return a.v[i] ^ b.v[i]; });
}
inline U8 operator|(const U8& a, const U8& b) {
  return U8::each([&](size_t i) { return a.v[i] | b.v[i]; });
}
inline U8 min(const U8& a, const U8& b) {
  return U8::each([&](size_t i) { return a.v[i] < b.v[i] ? a.v[i] : b.v[i]; });
}

// The number of bits set in each lane.
inline U8 bitCount(const U8& a) {
  return U8::each([&](size_t i) {
    unsigned x = a.v[i];
    x = x - ((x >> 1) & 0x55);
    x = (x & 0x33) + ((x >> 2) & 0x33);
    return (x + (x >> 4)) & 0x0F;
  });
}

// The lanes moved up by one: the last lane of `below`, then all but the last of `a`.
inline U8 movedUp(const U8& below, const U8& a) {
  return U8::each([&](size_t i) { return i ? a.v[i - 1] : below.v[U8::lanes - 1]; });
}

// The lanes moved down by one: all but the first of `a`, then the first lane of `above`.
inline U8 movedDown(const U8& a, const U8& above) {
  return U8::each([&](size_t i) { return i + 1 < U8::lanes ? a.v[i + 1] : above.v[0]; });
}

// The smallest lane, in every lane.
inline U8 smallestInAll(const U8& a) {
  uint8_t m = 255;
  for (size_t i = 0; i < U8::lanes; ++i) m = a.v[i] < m ? a.v[i] : m;
  return U8::all(m);
}

inline uint8_t firstLane(const U8& a) { return a.v[0]; }

// Bit i is set where lane i of a is at most that of b.
inline uint64_t lanesAtMost(const U8& a, const U8& b) {
  uint64_t bits = 0;
  for (size_t i = 0; i < U8::lanes; ++i) bits |= uint64_t{a.v[i] <= b.v[i]} << i;
  return bits;
}

struct Simd {
  using U8 = scalar::U8;
};

}  // namespace nadir::scalar
