// Vectors for AVX-512 (F, BW, DQ, VL). See simd_scalar.hpp for what each operation does.
#pragma once

#include <immintrin.h>

#include <cstddef>
#include <cstdint>

namespace nadir::avx512 {

struct U8 {
  static constexpr size_t lanes = 64;
  __m512i v;

  static U8 load(const uint8_t* p) { return {_mm512_loadu_si512(p)}; }
  static U8 all(uint8_t x) { return {_mm512_set1_epi8(static_cast<char>(x))}; }
  void store(uint8_t* p) const { _mm512_storeu_si512(p, v); }
};

inline U8 operator+(U8 a, U8 b) { return {_mm512_add_epi8(a.v, b.v)}; }
inline U8 operator-(U8 a, U8 b) { return {_mm512_sub_epi8(a.v, b.v)}; }
inline U8 operator^(U8 a, U8 b) { return {_mm512_xor_si512(a.v, b.v)}; }
inline U8 operator|(U8 a, U8 b) { return {_mm512_or_si512(a.v, b.v)}; }
inline U8 min(U8 a, U8 b) { return {_mm512_min_epu8(a.v, b.v)}; }

inline U8 bitCount(U8 a) {
  const __m512i ofNibble = _mm512_broadcast_i32x4(_mm_setr_epi8(0, 1, 1, 2, 1, 2, 2, 3, 1, 2, 2, 3, 2, 3, 3, 4));
  const __m512i low = _mm512_set1_epi8(0x0F);
  const __m512i lower = _mm512_shuffle_epi8(ofNibble, _mm512_and_si512(a.v, low));
  const __m512i upper = _mm512_shuffle_epi8(ofNibble, _mm512_and_si512(_mm512_srli_epi16(a.v, 4), low));
  return {_mm512_add_epi8(lower, upper)};
}

// Byte shifts stay within quarters of 16 bytes; the quarter below or above comes by a shift of whole words.
inline U8 movedUp(U8 below, U8 a) {
  const __m512i quarterBelow = _mm512_alignr_epi32(a.v, below.v, 12);
  return {_mm512_alignr_epi8(a.v, quarterBelow, 15)};
}

inline U8 movedDown(U8 a, U8 above) {
  const __m512i quarterAbove = _mm512_alignr_epi32(above.v, a.v, 4);
  return {_mm512_alignr_epi8(quarterAbove, a.v, 1)};
}

inline U8 smallestInAll(U8 a) {
  const __m256i half = _mm256_min_epu8(_mm512_castsi512_si256(a.v), _mm512_extracti64x4_epi64(a.v, 1));
  const __m128i m = _mm_min_epu8(_mm256_castsi256_si128(half), _mm256_extracti128_si256(half, 1));
  const __m128i ofPairs = _mm_min_epu8(m, _mm_srli_epi16(m, 8));  // 16-bit lanes below 256
  return {_mm512_broadcastb_epi8(_mm_minpos_epu16(ofPairs))};
}

inline uint8_t firstLane(U8 a) { return static_cast<uint8_t>(_mm_cvtsi128_si32(_mm512_castsi512_si128(a.v))); }

inline uint64_t lanesAtMost(U8 a, U8 b) { return _mm512_cmple_epu8_mask(a.v, b.v); }

struct U16 {
  static constexpr size_t lanes = 32;
  __m512i v;

  static U16 load(const uint16_t* p) { return {_mm512_loadu_si512(p)}; }
  static U16 all(uint16_t x) { return {_mm512_set1_epi16(static_cast<short>(x))}; }
};

inline U16 operator+(U16 a, U16 b) { return {_mm512_add_epi16(a.v, b.v)}; }
inline U16 operator-(U16 a, U16 b) { return {_mm512_sub_epi16(a.v, b.v)}; }
inline U16 min(U16 a, U16 b) { return {_mm512_min_epu16(a.v, b.v)}; }

inline U16 absoluteDifference(U16 a, U16 b) {
  return {_mm512_or_si512(_mm512_subs_epu16(a.v, b.v), _mm512_subs_epu16(b.v, a.v))};
}

inline U16 dividedBy16(U16 a) { return {_mm512_srli_epi16(a.v, 4)}; }

inline U16 equal(U16 a, U16 b) { return {_mm512_movm_epi16(_mm512_cmpeq_epu16_mask(a.v, b.v))}; }
inline U16 less(U16 a, U16 b) { return {_mm512_movm_epi16(_mm512_cmplt_epu16_mask(a.v, b.v))}; }
inline U16 select(U16 mask, U16 a, U16 b) { return {_mm512_ternarylogic_epi32(mask.v, a.v, b.v, 0xCA)}; }

inline void storeWords(uint32_t* p, U16 low, U16 high) {
  const __m512i even = _mm512_unpacklo_epi16(low.v, high.v), odd = _mm512_unpackhi_epi16(low.v, high.v);
  const __m512i first = _mm512_setr_epi64(0, 1, 8, 9, 2, 3, 10, 11),
                second = _mm512_setr_epi64(4, 5, 12, 13, 6, 7, 14, 15);
  _mm512_storeu_si512(p, _mm512_permutex2var_epi64(even, first, odd));
  _mm512_storeu_si512(p + 16, _mm512_permutex2var_epi64(even, second, odd));
}

inline void storeBytes(uint8_t* p, U16 a) {
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), _mm512_cvtepi16_epi8(a.v));
}

struct Simd {
  using U8 = avx512::U8;
  using U16 = avx512::U16;
};

}  // namespace nadir::avx512
