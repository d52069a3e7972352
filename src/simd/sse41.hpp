// Vectors for SSE4.1.
#pragma once

#include <smmintrin.h>

#include <cstddef>
#include <cstdint>

#include "simd/operations.hpp"

namespace nadir::sse41 {

struct U8 {
  static constexpr size_t lanes = 16;
  __m128i v;

  static U8 load(const uint8_t* p) { return {_mm_loadu_si128(reinterpret_cast<const __m128i*>(p))}; }
  static U8 all(uint8_t x) { return {_mm_set1_epi8(static_cast<char>(x))}; }
  static U8 allOf(const uint8_t* p) { return all(*p); }
  static U8 repeated16(const uint8_t* p) { return load(p); }
  void store(uint8_t* p) const { _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v); }
};

inline U8 operator+(U8 a, U8 b) { return {_mm_add_epi8(a.v, b.v)}; }
inline U8 operator-(U8 a, U8 b) { return {_mm_sub_epi8(a.v, b.v)}; }
inline U8 operator^(U8 a, U8 b) { return {_mm_xor_si128(a.v, b.v)}; }
inline U8 operator|(U8 a, U8 b) { return {_mm_or_si128(a.v, b.v)}; }
inline U8 min(U8 a, U8 b) { return {_mm_min_epu8(a.v, b.v)}; }
inline U8 atMost(U8 a, U8 b) { return {_mm_cmpeq_epi8(_mm_min_epu8(a.v, b.v), a.v)}; }

inline U8 movedUp(U8 below, U8 a) { return {_mm_alignr_epi8(a.v, below.v, 15)}; }
inline U8 movedDown(U8 a, U8 above) { return {_mm_alignr_epi8(above.v, a.v, 1)}; }

inline U8 smallestInAll(U8 a) {
  const __m128i ofPairs = _mm_min_epu8(a.v, _mm_srli_epi16(a.v, 8));  // 16-bit lanes below 256
  return {_mm_shuffle_epi8(_mm_minpos_epu16(ofPairs), _mm_setzero_si128())};
}

struct Four {
  U8 v[4];
  static Four of(const uint8_t* p) { return {{U8::allOf(p), U8::allOf(p + 1), U8::allOf(p + 2), U8::allOf(p + 3)}}; }
};
inline Four smallestInEach(U8 a, U8 b, U8 c, U8 d) {
  return {{smallestInAll(a), smallestInAll(b), smallestInAll(c), smallestInAll(d)}};
}

inline bool allZero(U8 a) { return _mm_testz_si128(a.v, a.v) != 0; }

inline uint8_t firstLane(U8 a) { return static_cast<uint8_t>(_mm_cvtsi128_si32(a.v)); }

inline uint64_t lanesAtMost(U8 a, U8 b) { return static_cast<uint32_t>(_mm_movemask_epi8(atMost(a, b).v)); }

struct U16 {
  static constexpr size_t lanes = 8;
  __m128i v;

  static U16 load(const uint16_t* p) { return {_mm_loadu_si128(reinterpret_cast<const __m128i*>(p))}; }
  static U16 all(uint16_t x) { return {_mm_set1_epi16(static_cast<short>(x))}; }
  void store(uint16_t* p) const { _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v); }
};

inline U16 operator+(U16 a, U16 b) { return {_mm_add_epi16(a.v, b.v)}; }
inline U16 operator-(U16 a, U16 b) { return {_mm_sub_epi16(a.v, b.v)}; }
inline U16 operator&(U16 a, U16 b) { return {_mm_and_si128(a.v, b.v)}; }
inline U16 operator*(U16 a, U16 b) { return {_mm_mullo_epi16(a.v, b.v)}; }
inline U16 min(U16 a, U16 b) { return {_mm_min_epu16(a.v, b.v)}; }
inline U16 max(U16 a, U16 b) { return {_mm_max_epu16(a.v, b.v)}; }

inline U16 absoluteDifference(U16 a, U16 b) {
  return {_mm_or_si128(_mm_subs_epu16(a.v, b.v), _mm_subs_epu16(b.v, a.v))};
}

inline U16 dividedBy256(U16 a) { return {_mm_srli_epi16(a.v, 8)}; }
inline U16 dividedBy16(U16 a) { return {_mm_srli_epi16(a.v, 4)}; }

inline U16 equal(U16 a, U16 b) { return {_mm_cmpeq_epi16(a.v, b.v)}; }

inline U16 less(U16 a, U16 b) {
  const __m128i top = _mm_set1_epi16(-32768);  // makes the signed comparison an unsigned one
  return {_mm_cmplt_epi16(_mm_xor_si128(a.v, top), _mm_xor_si128(b.v, top))};
}

inline U16 select(U16 mask, U16 a, U16 b) { return {_mm_blendv_epi8(b.v, a.v, mask.v)}; }

inline void storeWords(uint32_t* p, U16 low, U16 high) {
  _mm_storeu_si128(reinterpret_cast<__m128i*>(p), _mm_unpacklo_epi16(low.v, high.v));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(p + 4), _mm_unpackhi_epi16(low.v, high.v));
}

inline U8 saturatedBytes(U16 a, U16 b) { return {_mm_packus_epi16(a.v, b.v)}; }

template <size_t n>
inline unsigned countAtMost(const U8 (&blocks)[n], U8 bound) {
  __m128i count = _mm_setzero_si128();
  for (const U8& block : blocks) count = _mm_sub_epi8(count, atMost(block, bound).v);
  const __m128i halves = _mm_sad_epu8(count, _mm_setzero_si128());
  return static_cast<unsigned>(_mm_cvtsi128_si32(_mm_add_epi32(halves, _mm_unpackhi_epi64(halves, halves))));
}

template <size_t n>
inline unsigned smallestKey(const U8 (&values)[n], const U8 (&indices)[n]) {
  __m128i least = _mm_unpacklo_epi8(indices[0].v, values[0].v);
  for (size_t k = 0; k < n; ++k) {
    least = _mm_min_epu16(least, _mm_unpacklo_epi8(indices[k].v, values[k].v));
    least = _mm_min_epu16(least, _mm_unpackhi_epi8(indices[k].v, values[k].v));
  }
  return static_cast<unsigned>(_mm_cvtsi128_si32(_mm_minpos_epu16(least))) & 0xFFFF;
}

inline U8 againMovedUp(const uint8_t*, U8 a) { return movedUp(U8::all(255), a); }
inline U8 againMovedDown(const uint8_t*, U8 a) { return movedDown(a, U8::all(255)); }

inline U8 lookedUp(U8 table, U8 index) { return {_mm_shuffle_epi8(table.v, index.v)}; }

inline U8 wordsDividedBy16(U8 a) { return {_mm_srli_epi16(a.v, 4)}; }
inline U8 operator&(U8 a, U8 b) { return {_mm_and_si128(a.v, b.v)}; }

struct Pair {
  U8 first, second;
};

inline Pair zipped(U8 a, U8 b) { return {{_mm_unpacklo_epi8(a.v, b.v)}, {_mm_unpackhi_epi8(a.v, b.v)}}; }
inline Pair unzipped(U8 a, U8 b) {
  const __m128i low = _mm_set1_epi16(255);
  return {{_mm_packus_epi16(_mm_and_si128(a.v, low), _mm_and_si128(b.v, low))},
          {_mm_packus_epi16(_mm_srli_epi16(a.v, 8), _mm_srli_epi16(b.v, 8))}};
}

struct WordBytes {
  U8 low, mid, high, top;
  static WordBytes load(const uint32_t* p);
};

inline WordBytes WordBytes::load(const uint32_t* p) {
  const __m128i byBytes = _mm_setr_epi8(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15);
  const auto load = [=](size_t i) {
    return _mm_shuffle_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 4 * i)), byBytes);
  };
  const __m128i a = load(0), b = load(1), c = load(2), d = load(3);
  const __m128i lowerAb = _mm_unpacklo_epi32(a, b), lowerCd = _mm_unpacklo_epi32(c, d);
  const __m128i upperAb = _mm_unpackhi_epi32(a, b), upperCd = _mm_unpackhi_epi32(c, d);
  return {{_mm_unpacklo_epi64(lowerAb, lowerCd)},
          {_mm_unpackhi_epi64(lowerAb, lowerCd)},
          {_mm_unpacklo_epi64(upperAb, upperCd)},
          {_mm_unpackhi_epi64(upperAb, upperCd)}};
}

struct Simd {
  static constexpr bool findsEight = false;
  static constexpr bool looksUp = true;
  using U8 = sse41::U8;
  using Four = sse41::Four;
  using WordBytes = sse41::WordBytes;
  using U16 = sse41::U16;
};

static_assert(hasItsOperations<Simd>());

}  // namespace nadir::sse41
