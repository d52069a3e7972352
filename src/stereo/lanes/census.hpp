// The census codes of a row.
#pragma once

#include "stereo/lanes/blocks.hpp"
#include "stereo/pixel_rules.hpp"

namespace nadir {

template <class Simd>
struct CensusKernel {
  using U16 = typename Simd::U16;

  // 16 bits of the code gather in one word per pixel, the first 8 in another: a comparison's mask is -1, so that
  // doubling and subtracting it shifts its bit in.
  static void row(const uint16_t* const rows[5], uint32_t* dst, size_t n) {
    const bool done = forBlocks<U16::lanes>(n, [=](size_t i) {
      const U16 centre = U16::load(rows[2] + i + 2);
      U16 words[2] = {U16::all(0), U16::all(0)};
      size_t neighbour = 0;
      for (size_t y = 0; y < 5; ++y) {
        for (size_t x = 0; x < 5; ++x) {
          if (y == 2 && x == 2) continue;
          U16& word = words[neighbour++ < 8 ? 1 : 0];
          word = word + word - less(U16::load(rows[y] + i + x), centre);
        }
      }
      const U16 noData = equal(centre, U16::all(0));
      storeWords(dst + i, select(noData, U16::all(censusInvalid & 0xFFFF), words[0]),
                 select(noData, U16::all(censusInvalid >> 16), words[1]));
    });
    if (done) return;
    for (size_t i = 0; i < n; ++i) dst[i] = PixelRules<Simd>::censusCode(rows, i);
  }
};

}  // namespace nadir
