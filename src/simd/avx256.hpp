// Vectors of 256 bits, in a form for each level that has them: `Level` keeps apart what is compiled for different
// processors.
//
// Most instructions work on the two halves of a register apart; where lanes cross from one to the other a permutation
// brings them over.
#pragma once

#include <immintrin.h>

#include <cstddef>
#include <cstdint>

namespace nadir::simd256 {

template <class Level>
struct U8 {
  static constexpr size_t lanes = 32;
  __m256i v;

  static U8 load(const uint8_t* p) { return {_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p))}; }
  static U8 all(uint8_t x) { return {_mm256_set1_epi8(static_cast<char>(x))}; }
  static U8 allOf(const uint8_t* p) { return all(*p); }
  static U8 repeated16(const uint8_t* p) {
    return {_mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)))};
  }
  void store(uint8_t* p) const { _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v); }
};

template <class Level>
inline U8<Level> operator+(U8<Level> a, U8<Level> b) {
  return {_mm256_add_epi8(a.v, b.v)};
}
template <class Level>
inline U8<Level> operator-(U8<Level> a, U8<Level> b) {
  return {_mm256_sub_epi8(a.v, b.v)};
}
template <class Level>
inline U8<Level> operator^(U8<Level> a, U8<Level> b) {
  return {_mm256_xor_si256(a.v, b.v)};
}
template <class Level>
inline U8<Level> operator|(U8<Level> a, U8<Level> b) {
  return {_mm256_or_si256(a.v, b.v)};
}
template <class Level>
inline U8<Level> min(U8<Level> a, U8<Level> b) {
  return {_mm256_min_epu8(a.v, b.v)};
}
template <class Level>
inline U8<Level> max(U8<Level> a, U8<Level> b) {
  return {_mm256_max_epu8(a.v, b.v)};
}
template <class Level>
inline U8<Level> atMost(U8<Level> a, U8<Level> b) {
  return {_mm256_cmpeq_epi8(_mm256_min_epu8(a.v, b.v), a.v)};
}

template <class Level>
inline U8<Level> movedUp(U8<Level> below, U8<Level> a) {
  const __m256i halfBelow = _mm256_permute2x128_si256(below.v, a.v, 0x21);
  return {_mm256_alignr_epi8(a.v, halfBelow, 15)};
}

template <class Level>
inline U8<Level> movedDown(U8<Level> a, U8<Level> above) {
  const __m256i halfAbove = _mm256_permute2x128_si256(a.v, above.v, 0x21);
  return {_mm256_alignr_epi8(halfAbove, a.v, 1)};
}

template <class Level>
inline U8<Level> smallestInAll(U8<Level> a) {
  const __m128i m = _mm_min_epu8(_mm256_castsi256_si128(a.v), _mm256_extracti128_si256(a.v, 1));
  const __m128i ofPairs = _mm_min_epu8(m, _mm_srli_epi16(m, 8));  // 16-bit lanes below 256
  return {_mm256_broadcastb_epi8(_mm_minpos_epu16(ofPairs))};
}

template <class Level>
struct Four {
  U8<Level> v[4];
  static Four of(const uint8_t* p) {
    return {{U8<Level>::allOf(p), U8<Level>::allOf(p + 1), U8<Level>::allOf(p + 2), U8<Level>::allOf(p + 3)}};
  }
};
template <class Level>
inline Four<Level> smallestInEach(U8<Level> a, U8<Level> b, U8<Level> c, U8<Level> d) {
  return {{smallestInAll(a), smallestInAll(b), smallestInAll(c), smallestInAll(d)}};
}

template <class Level>
inline bool allZero(U8<Level> a) {
  return _mm256_testz_si256(a.v, a.v) != 0;
}

template <class Level>
inline uint8_t firstLane(U8<Level> a) {
  return static_cast<uint8_t>(_mm_cvtsi128_si32(_mm256_castsi256_si128(a.v)));
}

template <class Level>
inline uint64_t lanesAtMost(U8<Level> a, U8<Level> b) {
  return static_cast<uint32_t>(_mm256_movemask_epi8(atMost(a, b).v));
}

template <class Level>
struct U16 {
  static constexpr size_t lanes = 16;
  __m256i v;

  static U16 load(const uint16_t* p) { return {_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p))}; }
  static U16 all(uint16_t x) { return {_mm256_set1_epi16(static_cast<short>(x))}; }
  void store(uint16_t* p) const { _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v); }
};

template <class Level>
inline U16<Level> operator+(U16<Level> a, U16<Level> b) {
  return {_mm256_add_epi16(a.v, b.v)};
}
template <class Level>
inline U16<Level> operator-(U16<Level> a, U16<Level> b) {
  return {_mm256_sub_epi16(a.v, b.v)};
}
template <class Level>
inline U16<Level> operator&(U16<Level> a, U16<Level> b) {
  return {_mm256_and_si256(a.v, b.v)};
}
template <class Level>
inline U16<Level> operator*(U16<Level> a, U16<Level> b) {
  return {_mm256_mullo_epi16(a.v, b.v)};
}
template <class Level>
inline U16<Level> min(U16<Level> a, U16<Level> b) {
  return {_mm256_min_epu16(a.v, b.v)};
}
template <class Level>
inline U16<Level> max(U16<Level> a, U16<Level> b) {
  return {_mm256_max_epu16(a.v, b.v)};
}

template <class Level>
inline U16<Level> absoluteDifference(U16<Level> a, U16<Level> b) {
  return {_mm256_or_si256(_mm256_subs_epu16(a.v, b.v), _mm256_subs_epu16(b.v, a.v))};
}

template <class Level>
inline U16<Level> dividedBy256(U16<Level> a) {
  return {_mm256_srli_epi16(a.v, 8)};
}
template <class Level>
inline U16<Level> dividedBy16(U16<Level> a) {
  return {_mm256_srli_epi16(a.v, 4)};
}

template <class Level>
inline U16<Level> equal(U16<Level> a, U16<Level> b) {
  return {_mm256_cmpeq_epi16(a.v, b.v)};
}

template <class Level>
inline U16<Level> less(U16<Level> a, U16<Level> b) {
  const __m256i top = _mm256_set1_epi16(-32768);  // makes the signed comparison an unsigned one
  return {_mm256_cmpgt_epi16(_mm256_xor_si256(b.v, top), _mm256_xor_si256(a.v, top))};
}

template <class Level>
inline U16<Level> select(U16<Level> mask, U16<Level> a, U16<Level> b) {
  return {_mm256_blendv_epi8(b.v, a.v, mask.v)};
}

template <class Level>
inline void storeWords(uint32_t* p, U16<Level> low, U16<Level> high) {
  const __m256i even = _mm256_unpacklo_epi16(low.v, high.v), odd = _mm256_unpackhi_epi16(low.v, high.v);
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), _mm256_permute2x128_si256(even, odd, 0x20));
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(p + 8), _mm256_permute2x128_si256(even, odd, 0x31));
}

template <class Level>
inline U8<Level> saturatedBytes(U16<Level> a, U16<Level> b) {
  return {_mm256_permute4x64_epi64(_mm256_packus_epi16(a.v, b.v), _MM_SHUFFLE(3, 1, 2, 0))};
}

template <class Level, size_t n>
inline unsigned countAtMost(const U8<Level> (&blocks)[n], U8<Level> bound) {
  unsigned count = 0;
  for (size_t k = 0; k < n; ++k) count += static_cast<unsigned>(__builtin_popcountll(lanesAtMost(blocks[k], bound)));
  return count;
}

template <class Level, size_t n>
inline unsigned smallestKey(const U8<Level> (&values)[n], const U8<Level> (&indices)[n]) {
  __m256i least = _mm256_unpacklo_epi8(indices[0].v, values[0].v);
  for (size_t k = 0; k < n; ++k) {
    least = _mm256_min_epu16(least, _mm256_unpacklo_epi8(indices[k].v, values[k].v));
    least = _mm256_min_epu16(least, _mm256_unpackhi_epi8(indices[k].v, values[k].v));
  }
  const __m128i half = _mm_min_epu16(_mm256_castsi256_si128(least), _mm256_extracti128_si256(least, 1));
  return static_cast<unsigned>(_mm_cvtsi128_si32(_mm_minpos_epu16(half))) & 0xFFFF;
}

template <class Level>
inline U8<Level> againMovedUp(const uint8_t* p, U8<Level>) {
  return U8<Level>::load(p - 1) | U8<Level>{_mm256_zextsi128_si256(_mm_cvtsi32_si128(255))};
}
template <class Level>
inline U8<Level> againMovedDown(const uint8_t* p, U8<Level>) {
  return U8<Level>::load(p + 1) | U8<Level>{_mm256_setr_epi64x(0, 0, 0, static_cast<long long>(0xFF00000000000000u))};
}

template <class Level>
inline U8<Level> lookedUp(U8<Level> table, U8<Level> index) {
  return {_mm256_shuffle_epi8(table.v, index.v)};
}

template <class Level>
inline U8<Level> wordsDividedBy16(U8<Level> a) {
  return {_mm256_srli_epi16(a.v, 4)};
}
template <class Level>
inline U8<Level> operator&(U8<Level> a, U8<Level> b) {
  return {_mm256_and_si256(a.v, b.v)};
}

template <class Level>
struct Pair {
  U8<Level> first, second;
};

template <class Level>
inline Pair<Level> zipped(U8<Level> a, U8<Level> b) {
  const __m256i low = _mm256_unpacklo_epi8(a.v, b.v), high = _mm256_unpackhi_epi8(a.v, b.v);
  return {{_mm256_permute2x128_si256(low, high, 0x20)}, {_mm256_permute2x128_si256(low, high, 0x31)}};
}

template <class Level>
inline Pair<Level> unzipped(U8<Level> a, U8<Level> b) {
  const __m256i low = _mm256_set1_epi16(255);
  const __m256i even = _mm256_packus_epi16(_mm256_and_si256(a.v, low), _mm256_and_si256(b.v, low));
  const __m256i odd = _mm256_packus_epi16(_mm256_srli_epi16(a.v, 8), _mm256_srli_epi16(b.v, 8));
  return {{_mm256_permute4x64_epi64(even, 0xD8)}, {_mm256_permute4x64_epi64(odd, 0xD8)}};
}

template <class Level>
struct WordBytes {
  U8<Level> low, mid, high, top;
  static WordBytes load(const uint32_t* p);
};

template <class Level>
inline WordBytes<Level> WordBytes<Level>::load(const uint32_t* p) {
  const __m256i byBytes =
      _mm256_broadcastsi128_si256(_mm_setr_epi8(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15));
  const __m256i halvesInOrder = _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7);
  const auto load = [=](size_t i) {
    return _mm256_shuffle_epi8(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p + 8 * i)), byBytes);
  };
  const auto joined = [=](__m256i x) { return U8<Level>{_mm256_permutevar8x32_epi32(x, halvesInOrder)}; };
  const __m256i a = load(0), b = load(1), c = load(2), d = load(3);
  const __m256i lowerAb = _mm256_unpacklo_epi32(a, b), lowerCd = _mm256_unpacklo_epi32(c, d);
  const __m256i upperAb = _mm256_unpackhi_epi32(a, b), upperCd = _mm256_unpackhi_epi32(c, d);
  return {joined(_mm256_unpacklo_epi64(lowerAb, lowerCd)), joined(_mm256_unpackhi_epi64(lowerAb, lowerCd)),
          joined(_mm256_unpacklo_epi64(upperAb, upperCd)), joined(_mm256_unpackhi_epi64(upperAb, upperCd))};
}

}  // namespace nadir::simd256
