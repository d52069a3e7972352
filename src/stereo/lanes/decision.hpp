// This decides from the sums of a stretch of pixels: who wins, which winners are distinct, and where between two
// disparities they lie.
#pragma once

#include <cstring>

#include "stereo/lanes/per_disparity.hpp"

namespace nadir {

template <class Simd>
struct Decision {
  using Numbers = PerDisparity<Simd>;
  using U8 = typename Simd::U8;
  using U16 = typename Simd::U16;

  // The first pixel from x whose candidates go beyond the other picture's end.
  static size_t firstCutShort(size_t width, size_t x) { return x + disparities <= width ? width - disparities + 1 : x; }

  // Where the number of disparity d lies, for -1 to 64.
  static size_t placeOf(int d) {
    static constexpr struct Table {
      uint8_t v[disparities + 2] = {};
      constexpr Table() {
        for (size_t i = 0; i < disparities; ++i) v[i + 1] = static_cast<uint8_t>(Numbers::place(i));
      }
    } table;
    return table.v[static_cast<size_t>(d + 1)];
  }

  // These numbers decide over the pixels of a stretch.
  struct Candidates {
    Winners winners;
    uint16_t last[stretch];   // the largest sum that is close to the winner's
    uint16_t close[stretch];  // how many sums are
    uint16_t limit[stretch];  // the winner must lie below
  };

  static void find(const SgmRowJob& job, size_t x, size_t n, const uint8_t* sums, Candidates& found) {
    findWinners(sums, n, found.winners);
    for (size_t i = 0; i < stretch; i += U16::lanes) {
      lastClose(U16::load(found.winners.cost + i), job.uniquenessRatio).store(found.last + i);
    }
    lookAround(sums, n, found.winners);
    countClose(sums, n, found);
    for (size_t at = firstCutShort(job.width, x); at < x + n; ++at) {
      found.limit[at - x] = static_cast<uint16_t>(job.width - at - 2);
    }
  }

  static void findWinners(const uint8_t* sums, size_t n, Winners& winners) {
    const Numbers own = Numbers::ownDisparities();
    size_t i = 0;
    if constexpr (Simd::findsEight) {
      for (; i + 8 <= n; i += 8) {
        U16 keys[8];
        for (size_t k = 0; k < 8; ++k) {
          keys[k] = smallestKeys(Numbers::load(sums + (i + k) * disparities).block, own.block);
        }
        const U16 key = smallestInEach(keys);
        (key & U16::all(255)).store(winners.index + i);
        dividedBy256(key).store(winners.cost + i);
      }
    }
    for (; i < n; ++i) {
      const unsigned key = smallestKey(Numbers::load(sums + i * disparities).block, own.block);
      winners.index[i] = static_cast<uint16_t>(key & 255);
      winners.cost[i] = static_cast<uint16_t>(key >> 8);
    }
  }

  // PixelRules::lastClose. The product counts with its bits 7 to 14, which twice the ratio moves into a word's upper
  // byte.
  static U16 lastClose(const U16& cost, uint32_t uniquenessRatio) {
    const U16 margin = dividedBy256(cost * U16::all(static_cast<uint16_t>(2 * uniquenessRatio)));
    return min(cost + max(margin, U16::all(6)) - U16::all(1), U16::all(255));
  }

  // The sums beside the winners.
  static void lookAround(const uint8_t* sums, size_t n, Winners& winners) {
    size_t i = 0;
    for (; i + 8 <= n; i += 8) lookAround<8>(sums, i, winners);
    for (; i < n; ++i) lookAround<1>(sums, i, winners);
  }

  // Reads first and then writes: what is written could otherwise be, for all the compiler knows, what is read next.
  template <size_t count>
  static void lookAround(const uint8_t* sums, size_t i, Winners& winners) {
    uint8_t below[count], above[count];
    for (size_t k = 0; k < count; ++k) {
      const uint8_t* const own = sums + (i + k) * disparities;
      below[k] = own[placeOf(winners.index[i + k] - 1)];
      above[k] = own[placeOf(winners.index[i + k] + 1)];
    }
    for (size_t k = 0; k < count; ++k) {
      winners.below[i + k] = below[k];
      winners.above[i + k] = above[k];
    }
  }

  static void countClose(const uint8_t* sums, size_t n, Candidates& found) {
    size_t i = 0;
    if constexpr (Simd::findsEight) {
      for (; i + 8 <= n; i += 8) {
        U8 counts[8];
        for (size_t k = 0; k < 8; ++k) {
          const U8 last = U8::all(static_cast<uint8_t>(found.last[i + k]));
          counts[k] = countsAtMost(Numbers::load(sums + (i + k) * disparities).block, last);
        }
        countOfEach(counts).store(found.close + i);
      }
    }
    for (; i < n; ++i) {
      const U8 last = U8::all(static_cast<uint8_t>(found.last[i]));
      found.close[i] = static_cast<uint16_t>(countAtMost(Numbers::load(sums + i * disparities).block, last));
    }
  }

  // All bits set where a winner stands.
  //
  // The rule compares the winner with the three candidates that follow it in order of cost, and tolerates those beside
  // it. At most two lie beside it: so the first of the three that does not is the smallest number outside the
  // neighbourhood, and it alone decides. That one is close just when more numbers are close than the winner and the
  // close ones beside it. Ties change nothing, as they only order numbers that are alike close or not. Where fewer than
  // four numbers are considered none can win. The numbers that are not considered are 255: close only where all are,
  // and there are then more than three anyway.
  static U16 accepted(const Candidates& c, size_t i) {
    const U16 last = U16::load(c.last + i), winner = U16::load(c.winners.index + i);
    const U16 expected =
        U16::all(3) + less(last, U16::load(c.winners.below + i)) + less(last, U16::load(c.winners.above + i));
    return equal(U16::load(c.close + i), expected) & less(U16::all(1), winner) & less(winner, U16::load(c.limit + i));
  }

  // (a - b) / max(a, b) half pixels, see PixelRules, without a division: the shift in 1/16 pixel, 8 * d / m for
  // d = max - min and m = max, rounded with halves down, is the number of odd multiples of m below 16 * d.
  static U16 refined(const Winners& winners, size_t i) {
    const U16 cost = U16::load(winners.cost + i), a = U16::load(winners.below + i) - cost,
              b = U16::load(winners.above + i) - cost, lesser = min(a, b), m = a + b - lesser;
    const U16 sixteen = U16::all(16), d16 = (m - lesser) * sixteen, value = U16::load(winners.index + i) * sixteen;
    const U16 m2 = m + m, m4 = m2 + m2, m3 = m + m2, m5 = m + m4, m7 = m3 + m4, m8 = m4 + m4;
    const auto multiplesBelow = [&](U16 p, U16 q) { return less(p, d16) + less(q, d16); };
    const U16 minusShift = multiplesBelow(m, m3) + multiplesBelow(m5, m7) +
                           (multiplesBelow(m + m8, m3 + m8) + multiplesBelow(m5 + m8, m7 + m8));
    return select(less(b, a), value - minusShift, value + minusShift);
  }

  static void refine(const Winners& winners, size_t n, uint16_t* disparity) {
    uint16_t refinedOnes[stretch];
    for (size_t i = 0; i < n; i += U16::lanes) refined(winners, i).store(refinedOnes + i);
    std::memcpy(disparity, refinedOnes, n * sizeof(uint16_t));
  }

  static void decide(const Candidates& found, size_t n, uint16_t* disparity, uint8_t* peaks) {
    uint16_t refinedOnes[stretch];
    uint8_t indices[stretch];
    struct Decided {
      U16 disparity, index;
    };
    const auto decided = [&](size_t i) {
      const U16 valid = accepted(found, i);
      return Decided{refined(found.winners, i) & valid, U16::load(found.winners.index + i) & valid};
    };
    for (size_t i = 0; i < stretch; i += U8::lanes) {
      const Decided first = decided(i), second = decided(i + U16::lanes);
      first.disparity.store(refinedOnes + i);
      second.disparity.store(refinedOnes + i + U16::lanes);
      saturatedBytes(first.index, second.index).store(indices + i);
    }
    std::memcpy(disparity, refinedOnes, n * sizeof(uint16_t));
    if (peaks) std::memcpy(peaks, indices, n);
  }
};

}  // namespace nadir
