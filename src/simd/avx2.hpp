// Vectors for AVX2.
#pragma once

#include "simd/avx256.hpp"
#include "simd/operations.hpp"

namespace nadir::avx2 {

struct Simd {
  using U8 = simd256::U8<Simd>;
  using Four = simd256::Four<Simd>;
  using U16 = simd256::U16<Simd>;
  using WordBytes = simd256::WordBytes<Simd>;
  static constexpr bool findsEight = false;
  static constexpr bool looksUp = true;
};

static_assert(hasItsOperations<Simd>());

}  // namespace nadir::avx2
