// Vectors for NEON, 32- and 64-bit ARM alike.
#pragma once

#include <arm_neon.h>

#include <cstddef>
#include <cstdint>

#include "simd/operations.hpp"

namespace nadir::neon {

struct U8 {
  static constexpr size_t lanes = 16;
  uint8x16_t v;

  static U8 load(const uint8_t* p) { return {vld1q_u8(p)}; }
  static U8 all(uint8_t x) { return {vdupq_n_u8(x)}; }
  static U8 allOf(const uint8_t* p) { return {vld1q_dup_u8(p)}; }
  void store(uint8_t* p) const { vst1q_u8(p, v); }
};

inline U8 operator+(U8 a, U8 b) { return {vaddq_u8(a.v, b.v)}; }
inline U8 operator-(U8 a, U8 b) { return {vsubq_u8(a.v, b.v)}; }
inline U8 operator^(U8 a, U8 b) { return {veorq_u8(a.v, b.v)}; }
inline U8 operator|(U8 a, U8 b) { return {vorrq_u8(a.v, b.v)}; }
inline U8 min(U8 a, U8 b) { return {vminq_u8(a.v, b.v)}; }
inline U8 max(U8 a, U8 b) { return {vmaxq_u8(a.v, b.v)}; }
inline U8 atMost(U8 a, U8 b) { return {vcleq_u8(a.v, b.v)}; }

inline U8 bitCount(U8 a) { return {vcntq_u8(a.v)}; }

inline U8 movedUp(U8 below, U8 a) { return {vextq_u8(below.v, a.v, 15)}; }

inline U8 movedDown(U8 a, U8 above) { return {vextq_u8(a.v, above.v, 1)}; }

inline U8 smallestInAll(U8 a) {
  uint8x8_t m = vpmin_u8(vget_low_u8(a.v), vget_high_u8(a.v));
  m = vpmin_u8(m, m);
  m = vpmin_u8(m, m);
  return {vdupq_lane_u8(vpmin_u8(m, m), 0)};
}

// The lesser of each two neighbouring lanes: those of a, then those of b. sumOfPairs adds them instead.
inline U8 lesserOfPairs(U8 a, U8 b) {
#ifdef __aarch64__
  return {vpminq_u8(a.v, b.v)};
#else
  return {vcombine_u8(vpmin_u8(vget_low_u8(a.v), vget_high_u8(a.v)), vpmin_u8(vget_low_u8(b.v), vget_high_u8(b.v)))};
#endif
}
inline U8 sumOfPairs(U8 a, U8 b) {
#ifdef __aarch64__
  return {vpaddq_u8(a.v, b.v)};
#else
  return {vcombine_u8(vpadd_u8(vget_low_u8(a.v), vget_high_u8(a.v)), vpadd_u8(vget_low_u8(b.v), vget_high_u8(b.v)))};
#endif
}

struct Four {
  U8 v[4];
  static Four of(const uint8_t* p) {
#ifdef __aarch64__
    const uint8x16x4_t bytes = vld4q_dup_u8(p);
    return {{{bytes.val[0]}, {bytes.val[1]}, {bytes.val[2]}, {bytes.val[3]}}};
#else
    return {{U8::allOf(p), U8::allOf(p + 1), U8::allOf(p + 2), U8::allOf(p + 3)}};
#endif
  }
};

inline Four smallestInEach(U8 a, U8 b, U8 c, U8 d) {
  U8 m = lesserOfPairs(lesserOfPairs(a, b), lesserOfPairs(c, d));
  m = lesserOfPairs(m, m);
  const uint8x8_t least = vget_low_u8(lesserOfPairs(m, m).v);
  return {{{vdupq_lane_u8(least, 0)}, {vdupq_lane_u8(least, 1)}, {vdupq_lane_u8(least, 2)}, {vdupq_lane_u8(least, 3)}}};
}

inline bool allZero(U8 a) {
  return vget_lane_u64(vreinterpret_u64_u8(vorr_u8(vget_low_u8(a.v), vget_high_u8(a.v))), 0) == 0;
}

inline uint8_t firstLane(U8 a) { return vgetq_lane_u8(a.v, 0); }

inline uint64_t lanesAtMost(U8 a, U8 b) {
  static const uint8_t bitOfLane[16] = {1, 2, 4, 8, 16, 32, 64, 128, 1, 2, 4, 8, 16, 32, 64, 128};
  const uint8x16_t bits = vandq_u8(atMost(a, b).v, vld1q_u8(bitOfLane));
  uint8x8_t sum = vpadd_u8(vget_low_u8(bits), vget_high_u8(bits));
  sum = vpadd_u8(sum, sum);
  return vget_lane_u16(vreinterpret_u16_u8(vpadd_u8(sum, sum)), 0);
}

struct U16 {
  static constexpr size_t lanes = 8;
  uint16x8_t v;

  static U16 load(const uint16_t* p) { return {vld1q_u16(p)}; }
  static U16 all(uint16_t x) { return {vdupq_n_u16(x)}; }
  void store(uint16_t* p) const { vst1q_u16(p, v); }
};

inline U16 operator+(U16 a, U16 b) { return {vaddq_u16(a.v, b.v)}; }
inline U16 operator-(U16 a, U16 b) { return {vsubq_u16(a.v, b.v)}; }
inline U16 operator&(U16 a, U16 b) { return {vandq_u16(a.v, b.v)}; }
inline U16 operator*(U16 a, U16 b) { return {vmulq_u16(a.v, b.v)}; }
inline U16 min(U16 a, U16 b) { return {vminq_u16(a.v, b.v)}; }
inline U16 max(U16 a, U16 b) { return {vmaxq_u16(a.v, b.v)}; }
inline U16 lesserOfPairs(U16 a, U16 b) {
#ifdef __aarch64__
  return {vpminq_u16(a.v, b.v)};
#else
  return {
      vcombine_u16(vpmin_u16(vget_low_u16(a.v), vget_high_u16(a.v)), vpmin_u16(vget_low_u16(b.v), vget_high_u16(b.v)))};
#endif
}
inline U16 absoluteDifference(U16 a, U16 b) { return {vabdq_u16(a.v, b.v)}; }

inline U16 dividedBy256(U16 a) { return {vshrq_n_u16(a.v, 8)}; }
inline U16 dividedBy16(U16 a) { return {vshrq_n_u16(a.v, 4)}; }

inline U16 equal(U16 a, U16 b) { return {vceqq_u16(a.v, b.v)}; }
inline U16 less(U16 a, U16 b) { return {vcltq_u16(a.v, b.v)}; }
inline U16 select(U16 mask, U16 a, U16 b) { return {vbslq_u16(mask.v, a.v, b.v)}; }

inline void storeWords(uint32_t* p, U16 low, U16 high) {
  const uint16x8x2_t words = vzipq_u16(low.v, high.v);
  vst1q_u32(p, vreinterpretq_u32_u16(words.val[0]));
  vst1q_u32(p + 4, vreinterpretq_u32_u16(words.val[1]));
}

inline U8 saturatedBytes(U16 a, U16 b) { return {vcombine_u8(vqmovn_u16(a.v), vqmovn_u16(b.v))}; }

template <size_t n>
inline unsigned countAtMost(const U8 (&blocks)[n], U8 bound) {
  uint8x16_t count = vdupq_n_u8(0);
  for (const U8& block : blocks) count = vsubq_u8(count, atMost(block, bound).v);
  uint8x8_t sum = vpadd_u8(vget_low_u8(count), vget_high_u8(count));
  sum = vpadd_u8(sum, sum);
  sum = vpadd_u8(sum, sum);
  return vget_lane_u8(vpadd_u8(sum, sum), 0);
}

template <size_t n>
inline unsigned smallestKey(const U8 (&values)[n], const U8 (&indices)[n]) {
  uint16x8_t least = vdupq_n_u16(0xFFFF);
  for (size_t k = 0; k < n; ++k) {
    const uint8x16x2_t keys = vzipq_u8(indices[k].v, values[k].v);
    least = vminq_u16(least, vreinterpretq_u16_u8(keys.val[0]));
    least = vminq_u16(least, vreinterpretq_u16_u8(keys.val[1]));
  }
  uint16x4_t m = vpmin_u16(vget_low_u16(least), vget_high_u16(least));
  m = vpmin_u16(m, m);
  return vget_lane_u16(vpmin_u16(m, m), 0);
}

// A value in each lane with the index that it came with.
struct Indexed {
  U8 value, index;
};
inline U16 smallestKeys(const U8 (&values)[4], const U8 (&indices)[4]) {
  const auto least = [](U8 a, U8 ia, U8 b, U8 ib) {
    return Indexed{min(a, b), {vbslq_u8(vcltq_u8(b.v, a.v), ib.v, ia.v)}};
  };
  const Indexed a = least(values[0], indices[0], values[1], indices[1]),
                b = least(values[2], indices[2], values[3], indices[3]), m = least(a.value, a.index, b.value, b.index);
  const uint8x16x2_t keys = vzipq_u8(m.index.v, m.value.v);
  return min(U16{vreinterpretq_u16_u8(keys.val[0])}, U16{vreinterpretq_u16_u8(keys.val[1])});
}
inline U16 smallestInEach(const U16 (&a)[8]) {
  const U16 b[] = {lesserOfPairs(a[0], a[1]), lesserOfPairs(a[2], a[3]), lesserOfPairs(a[4], a[5]),
                   lesserOfPairs(a[6], a[7])};
  return lesserOfPairs(lesserOfPairs(b[0], b[1]), lesserOfPairs(b[2], b[3]));
}

inline U8 countsAtMost(const U8 (&blocks)[4], U8 bound) {
  return (atMost(blocks[0], bound) + atMost(blocks[1], bound)) + (atMost(blocks[2], bound) + atMost(blocks[3], bound));
}
inline U16 countOfEach(const U8 (&a)[8]) {
  const U8 b = sumOfPairs(sumOfPairs(a[0], a[1]), sumOfPairs(a[2], a[3])),
           c = sumOfPairs(sumOfPairs(a[4], a[5]), sumOfPairs(a[6], a[7])), sums = sumOfPairs(b, c);
  return {vreinterpretq_u16_s16(vnegq_s16(vpaddlq_s8(vreinterpretq_s8_u8(sums.v))))};
}

inline U8 againMovedUp(const uint8_t*, U8 a) { return movedUp(U8::all(255), a); }
inline U8 againMovedDown(const uint8_t*, U8 a) { return movedDown(a, U8::all(255)); }

struct Pair {
  U8 first, second;
};

inline Pair zipped(U8 a, U8 b) {
  const uint8x16x2_t both = vzipq_u8(a.v, b.v);
  return {{both.val[0]}, {both.val[1]}};
}
inline Pair unzipped(U8 a, U8 b) {
  const uint8x16x2_t both = vuzpq_u8(a.v, b.v);
  return {{both.val[0]}, {both.val[1]}};
}

struct WordBytes {
  U8 low, mid, high, top;
  static WordBytes load(const uint32_t* p);
};

inline WordBytes WordBytes::load(const uint32_t* p) {
  const uint8x16x4_t bytes = vld4q_u8(reinterpret_cast<const uint8_t*>(p));
  return {{bytes.val[0]}, {bytes.val[1]}, {bytes.val[2]}, {bytes.val[3]}};
}

struct Simd {
  static constexpr bool findsEight = true;
  static constexpr bool looksUp = false;
  using U8 = neon::U8;
  using Four = neon::Four;
  using WordBytes = neon::WordBytes;
  using U16 = neon::U16;
};

static_assert(hasItsOperations<Simd>());

}  // namespace nadir::neon
