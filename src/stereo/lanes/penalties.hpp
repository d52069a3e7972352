// The penalties of a row for jumps of more than one disparity.
#pragma once

#include "stereo/lanes/blocks.hpp"
#include "stereo/pixel_rules.hpp"

namespace nadir {

template <class Simd>
struct PenaltyKernel {
  using U8 = typename Simd::U8;
  using U16 = typename Simd::U16;

  static void row(const uint16_t* pixels, const uint16_t* predecessors, uint8_t* dst, size_t n) {
    const auto penaltiesAt = [=](size_t i) {
      const U8 sixteenths =
          saturatedBytes(sixteenthOfDifference(pixels + i, predecessors + i),
                         sixteenthOfDifference(pixels + i + U16::lanes, predecessors + i + U16::lanes));
      return U8::all(flatPenalty) - min(sixteenths, U8::all(flatPenalty - edgePenalty));
    };
    const auto store = [=](size_t i) { penaltiesAt(i).store(dst + i); };
    const auto storeTwo = [=](size_t i) {
      const U8 first = penaltiesAt(i), second = penaltiesAt(i + U8::lanes);
      first.store(dst + i);
      second.store(dst + i + U8::lanes);
    };
    if (forBlocks<2 * U8::lanes>(n, storeTwo) || forBlocks<U8::lanes>(n, store)) return;
    for (size_t i = 0; i < n; ++i) dst[i] = PixelRules<Simd>::penalty(pixels[i], predecessors[i]);
  }

 private:
  static U16 sixteenthOfDifference(const uint16_t* a, const uint16_t* b) {
    return dividedBy16(absoluteDifference(U16::load(a), U16::load(b)));
  }
};

}  // namespace nadir
