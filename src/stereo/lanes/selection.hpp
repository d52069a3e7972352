// The search for a pixel's smallest cost and the check that it is distinct, for any number of costs up to 256.
#pragma once

#include "stereo/pixel_rules.hpp"

namespace nadir {

template <class Simd>
struct SelectionKernels {
  using U8 = typename Simd::U8;

  static uint8_t smallest(const uint8_t* costs, size_t count) {
    uint8_t m = 255;
    size_t i = 0;
    if (count >= U8::lanes) {
      U8 least = U8::all(255);
      for (; i + U8::lanes <= count; i += U8::lanes) least = min(least, U8::load(costs + i));
      m = firstLane(smallestInAll(least));
    }
    for (; i < count; ++i) m = costs[i] < m ? costs[i] : m;
    return m;
  }

  // Calls found(index) for every cost that is at most `bound`, in order, until it returns true; tells whether it did.
  template <class Found>
  static bool anyAtMost(const uint8_t* costs, size_t count, uint8_t bound, Found found) {
    size_t i = 0;
    for (; i + U8::lanes <= count; i += U8::lanes) {
      for (uint64_t bits = lanesAtMost(U8::load(costs + i), U8::all(bound)); bits; bits &= bits - 1) {
        if (found(i + static_cast<size_t>(__builtin_ctzll(bits)))) return true;
      }
    }
    for (; i < count; ++i) {
      if (costs[i] <= bound && found(i)) return true;
    }
    return false;
  }

  static void findMin(const uint8_t* costs, size_t count, uint8_t* minValue, uint32_t* minIndex) {
    const uint8_t m = smallest(costs, count);
    *minValue = m;
    anyAtMost(costs, count, m, [=](size_t i) {
      *minIndex = static_cast<uint32_t>(i);
      return true;
    });
  }

  // At most two of the three candidates behind the winner are its neighbours. So one of them is a close competitor
  // just when any cost at all outside the neighbourhood is close.
  static uint32_t peakCheck(const uint8_t* costs, size_t maxIndex, uint32_t uniquenessRatio) {
    uint8_t m0;
    uint32_t winner = 0;
    findMin(costs, maxIndex + 1, &m0, &winner);
    if (winner < 2 || winner + 1 >= maxIndex) return 0;
    const uint8_t last = PixelRules<Simd>::lastClose(m0, uniquenessRatio);
    const bool rivalled =
        anyAtMost(costs, maxIndex + 1, last, [=](size_t i) { return i + 1 < winner || i > winner + 1; });
    return rivalled ? 0 : winner;
  }
};

}  // namespace nadir
