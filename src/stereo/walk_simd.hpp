// The matcher's walk along one row, in stretches of 64 pixels: their costs, their four paths, the sums and the
// decisions. Nothing but the last row's path costs outlives a stretch.
#pragma once

#include <cstring>

#include "stereo/codes_simd.hpp"
#include "stereo/costs_simd.hpp"
#include "stereo/rows_simd.hpp"

namespace nadir {

template <class Simd>
struct SgmWalk {
  using Rules = PixelRules<Simd>;
  using Costs = nadir::Costs<Simd>;
  using U8 = typename Simd::U8;
  using U16 = typename Simd::U16;

  static Costs noneBefore() { return Costs::all(noPredecessor); }

  // What a predecessor's path costs bring to each disparity: its own cost, or that of a neighbour and P1. `lowest` are
  // the last block's numbers one lane up and `highest` the first block's one lane down, with 255 in the free lane. As
  // every disparity has a neighbour, 255 never wins, and adding P1 to the lesser neighbour wraps no more than adding it
  // to both.
  static Costs brought(const Costs& before, const U8& lowest, const U8& highest) {
    const U8 p1 = U8::all(penaltyOne);
    constexpr size_t last = Costs::blocks - 1;
    return Costs::each([&](size_t k) {
      const U8 below = k == 0 ? lowest : before.block[k - 1], above = k == last ? highest : before.block[k + 1];
      return min(before.block[k], min(below, above) + p1);
    });
  }

  // The path from the left. Its costs are kept as they come; the smallest, which takes longest to find, is subtracted
  // in the next step, where it is the last thing needed.
  struct LeftPath {
    Costs costs = noneBefore();
    U8 smallest = U8::all(0);

    Costs next(const Costs& cost, const U8& p2) const {
      const U8 none = U8::all(255);
      const Costs from = brought(costs, movedUp(none, costs.block[Costs::blocks - 1]), movedDown(costs.block[0], none));
      return cost + min(from - smallest, p2);
    }
  };

  // The next costs of a path from the row above, whose predecessor's, less their minimum, lie at `p`.
  static Costs next(const uint8_t* p, const Costs& cost, const U8& p2) {
    const Costs before = Costs::load(p);
    constexpr size_t last = Costs::blocks - 1;
    const Costs from =
        brought(before, againMovedUp(p + last * U8::lanes, before.block[last]), againMovedDown(p, before.block[0]));
    return cost + min(from, p2);
  }

  // The four penalties of each pixel side by side.
  static void interleave(const uint8_t* const (&rows)[4], size_t n, uint8_t* dst) {
    const bool done = forBlocks<U8::lanes>(n, [&](size_t i) {
      const auto even = zipped(U8::load(rows[0] + i), U8::load(rows[2] + i));
      const auto odd = zipped(U8::load(rows[1] + i), U8::load(rows[3] + i));
      const auto a = zipped(even.first, odd.first), b = zipped(even.second, odd.second);
      uint8_t* const p = dst + 4 * i;
      a.first.store(p);
      a.second.store(p + U8::lanes);
      b.first.store(p + 2 * U8::lanes);
      b.second.store(p + 3 * U8::lanes);
    });
    if (done) return;
    for (size_t i = 0; i < n; ++i) {
      for (size_t dir = 0; dir < 4; ++dir) dst[4 * i + dir] = rows[dir][i];
    }
  }

  // Extends the four paths over the n pixels from x and puts the sums of their costs where the pixels' costs are.
  static void extend(const SgmRowJob& job, LeftPath& path, size_t x, size_t n, uint8_t* costs) {
    LeftPath left = path;
    const uint8_t* p2 = job.p2Memory + 4 * x;
    const uint8_t* upLeftBefore = job.upLeftBefore + x * disparities;
    uint8_t *upLeft = job.upLeft + x * disparities, *up = job.up + x * disparities;
    uint8_t* upRight = job.upRight + x * disparities;
    for (uint8_t* const end = costs + n * disparities; costs < end; costs += disparities) {
      const Costs cost = Costs::load(costs);
      const auto jump = Simd::Four::of(p2);
      const Costs a = left.next(cost, jump.v[0]), b = next(upLeftBefore, cost, jump.v[1]),
                  c = next(up, cost, jump.v[2]), d = next(upRight + disparities, cost, jump.v[3]);
      (a + b + c + d).store(costs);
      const auto smallest =
          smallestInEach(a.smallestByLane(), b.smallestByLane(), c.smallestByLane(), d.smallestByLane());
      left = {a, smallest.v[0]};
      (b - smallest.v[1]).store(upLeft);
      (c - smallest.v[2]).store(up);
      (d - smallest.v[3]).store(upRight);
      p2 += 4;
      upLeftBefore += disparities;
      upLeft += disparities;
      up += disparities;
      upRight += disparities;
    }
    path = left;
  }

  // The first pixel from x whose candidates go beyond the other picture's end.
  static size_t firstCutShort(size_t width, size_t x) { return x + disparities <= width ? width - disparities + 1 : x; }

  // Puts 255 where the other picture ends.
  static void hideMissing(size_t width, size_t x, size_t n, uint8_t* sums) {
    const Costs own = Costs::ownDisparities();
    for (size_t at = firstCutShort(width, x); at < x + n; ++at) {
      const U8 columns = U8::all(static_cast<uint8_t>(width - at));
      uint8_t* const p = sums + (at - x) * disparities;
      (Costs::load(p) | Costs::each([&](size_t k) { return atMost(columns, own.block[k]); })).store(p);
    }
  }

  // Calls decide(x, n, sums) for the row, stretch by stretch. Each step is done for a whole stretch before the next
  // begins: what takes long in one pixel then overlaps with the next pixels.
  template <class Decide>
  static void walk(const SgmRowJob& job, Decide decide) {
    alignas(64) uint8_t costs[stretch * disparities];
    RowCosts<Simd> rowCosts(job.first, job.reference, job.width);
    interleave(job.p2, job.width, job.p2Memory);
    LeftPath left;
    for (size_t x = 0; x < job.width; x += stretch) {
      const size_t n = job.width - x < stretch ? job.width - x : stretch;
      if (job.hasCosts) {
        rowCosts.store(x, n, costs);
      } else {
        std::memset(costs, worstCost, sizeof costs);
      }
      if (job.costs) storeInOrder<Simd>(costs, n, job.costs + x * disparities);
      extend(job, left, x, n, costs);
      if (job.sums) storeInOrder<Simd>(costs, n, job.sums + x * disparities);
      hideMissing(job.width, x, n, costs);
      const size_t decided = x + n + 4 <= job.width ? n : x + 4 < job.width ? job.width - 4 - x : 0;
      decide(x, decided, costs);
    }
  }

  // Where the number of disparity d lies, for -1 to 64.
  static size_t placeOf(unsigned d) {
    static constexpr struct Table {
      uint8_t v[disparities + 2] = {};
      constexpr Table() {
        for (size_t i = 0; i < disparities; ++i) v[i + 1] = static_cast<uint8_t>(Costs::place(i));
      }
    } table;
    return table.v[d + 1];
  }

  // What decides over the pixels of a stretch.
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
    const Costs own = Costs::ownDisparities();
    size_t i = 0;
    if constexpr (Simd::findsEight) {
      for (; i + 8 <= n; i += 8) {
        U16 keys[8];
        for (size_t k = 0; k < 8; ++k)
          keys[k] = smallestKeys(Costs::load(sums + (i + k) * disparities).block, own.block);
        const U16 key = smallestInEach(keys);
        (key & U16::all(255)).store(winners.index + i);
        dividedBy256(key).store(winners.cost + i);
      }
    }
    for (; i < n; ++i) {
      const unsigned key = smallestKey(Costs::load(sums + i * disparities).block, own.block);
      winners.index[i] = static_cast<uint16_t>(key & 255);
      winners.cost[i] = static_cast<uint16_t>(key >> 8);
    }
  }

  // PixelRules::lastClose. Of the product's bits 7 to 14 count, which twice the ratio moves into a word's upper byte.
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
      below[k] = own[placeOf(winners.index[i + k] - 1u)];
      above[k] = own[placeOf(winners.index[i + k] + 1u)];
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
          counts[k] = countsAtMost(Costs::load(sums + (i + k) * disparities).block, last);
        }
        countOfEach(counts).store(found.close + i);
      }
    }
    for (; i < n; ++i) {
      const U8 last = U8::all(static_cast<uint8_t>(found.last[i]));
      found.close[i] = static_cast<uint16_t>(countAtMost(Costs::load(sums + i * disparities).block, last));
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
    const auto both = [&](U16 p, U16 q) { return less(p, d16) + less(q, d16); };
    const U16 minusShift = both(m, m3) + both(m5, m7) + (both(m + m8, m3 + m8) + both(m5 + m8, m7 + m8));
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

  static void disparity(const SgmRowJob& job) {
    if (job.peaks) std::memset(job.peaks, 0, job.width);
    Candidates found = {};
    for (uint16_t& limit : found.limit) limit = disparities - 2;
    walk(job, [&](size_t x, size_t n, const uint8_t* sums) {
      find(job, x, n, sums, found);
      decide(found, n, job.disparity + x, job.peaks ? job.peaks + x : nullptr);
    });
  }

  // The gap between the smallest sum and the smallest one outside its neighbourhood.
  static void distinctness(const SgmRowJob& job) {
    walk(job, [&](size_t x, size_t n, const uint8_t* sums) {
      const Costs own = Costs::ownDisparities();
      uint8_t* const out = job.distinctness + x;
      for (size_t i = 0; i < n; ++i, sums += disparities) {
        const Costs s = Costs::load(sums);
        const unsigned key = smallestKey(s.block, own.block);
        const U8 neighbour = U8::all(static_cast<uint8_t>((key & 255) - 1)), two = U8::all(2);
        const Costs others = Costs::each([&](size_t k) { return s.block[k] | atMost(own.block[k] - neighbour, two); });
        out[i] = static_cast<uint8_t>(firstLane(others.smallest()) - (key >> 8));
      }
    });
  }
};

}  // namespace nadir
