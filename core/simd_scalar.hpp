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

inline U8 max(const U8& a, const U8& b) {
  return U8::each([&](size_t i) { return a.v[i] > b.v[i] ? a.v[i] : b.v[i]; });
}

// 255 in the lanes where a is at most b, 0 elsewhere.
inline U8 atMost(const U8& a, const U8& b) {
  return U8::each([&](size_t i) { return a.v[i] <= b.v[i] ? 255 : 0; });
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

// How many lanes of all blocks are at most those of `bound`.
template <size_t n>
unsigned countAtMost(const U8 (&blocks)[n], const U8& bound) {
  unsigned count = 0;
  for (const U8& block : blocks) {
    for (size_t i = 0; i < U8::lanes; ++i) count += block.v[i] <= bound.v[i];
  }
  return count;
}

// The smallest 256 * value + index of all lanes.
template <size_t n>
unsigned smallestKey(const U8 (&values)[n], const U8 (&indices)[n]) {
  unsigned least = 0xFFFF;
  for (size_t k = 0; k < n; ++k) {
    for (size_t i = 0; i < U8::lanes; ++i) {
      const unsigned key = values[k].v[i] * 256u + indices[k].v[i];
      least = key < least ? key : least;
    }
  }
  return least;
}

// What lies at p, loaded already, moved up or down by one lane with 255 in the free one. Some processors do better to
// load again from the byte before p or behind it.
inline U8 againMovedUp(const uint8_t*, const U8& a) { return movedUp(U8::all(255), a); }
inline U8 againMovedDown(const uint8_t*, const U8& a) { return movedDown(a, U8::all(255)); }

struct Pair {
  U8 first, second;
};

// One lane of a, one of b, and so on; and back.
inline Pair zipped(const U8& a, const U8& b) {
  const auto lane = [&](size_t i) { return i % 2 ? b.v[i / 2] : a.v[i / 2]; };
  return {U8::each(lane), U8::each([&](size_t i) { return lane(i + U8::lanes); })};
}
inline Pair unzipped(const U8& a, const U8& b) {
  const auto lane = [&](size_t i) { return i < U8::lanes ? a.v[i] : b.v[i - U8::lanes]; };
  return {U8::each([&](size_t i) { return lane(2 * i); }), U8::each([&](size_t i) { return lane(2 * i + 1); })};
}

// The bytes of U8::lanes words.
struct WordBytes {
  U8 low, mid, high, top;
  static WordBytes load(const uint32_t* p);
};

inline WordBytes WordBytes::load(const uint32_t* p) {
  const auto byte = [=](unsigned shift) {
    return U8::each([=](size_t i) { return p[i] >> shift & 255; });
  };
  return {byte(0), byte(8), byte(16), byte(24)};
}

struct Simd {
  static constexpr bool looksUp = false;
  using U8 = scalar::U8;
  using WordBytes = scalar::WordBytes;
};

}  // namespace nadir::scalar
