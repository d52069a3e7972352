// Vectors for AVX-512 (F, BW, DQ, VL and BITALG).
//
// They are no wider than those for AVX2: the matcher's state, laid out for two registers, needs fewer moves of lanes
// than in one, and half as wide instructions run on more ports. What counts is what the new instructions do: count bits
// and compare into masks.
#pragma once

#include "simd/avx256.hpp"
#include "simd/operations.hpp"

namespace nadir::avx512 {

struct Simd {
  using U8 = simd256::U8<Simd>;
  using Four = simd256::Four<Simd>;
  using U16 = simd256::U16<Simd>;
  using WordBytes = simd256::WordBytes<Simd>;
  static constexpr bool findsEight = false;
  static constexpr bool looksUp = false;
};

using U8 = Simd::U8;

// Calls with this U8 find these three, since its template argument Simd brings in this namespace; where simd256 has a
// template of the same name, as for the last two, the plain function wins over it.
inline U8 bitCount(U8 a) { return {_mm256_popcnt_epi8(a.v)}; }
inline U8 atMost(U8 a, U8 b) { return {_mm256_movm_epi8(_mm256_cmple_epu8_mask(a.v, b.v))}; }
inline uint64_t lanesAtMost(U8 a, U8 b) { return _mm256_cmple_epu8_mask(a.v, b.v); }

static_assert(hasItsOperations<Simd>());

}  // namespace nadir::avx512
