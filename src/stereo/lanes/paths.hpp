// The four paths of the matcher over a stretch of pixels, and the sums of their costs.
#pragma once

#include "stereo/lanes/blocks.hpp"
#include "stereo/lanes/per_disparity.hpp"

namespace nadir {

template <class Simd>
struct FourPaths {
  using Numbers = PerDisparity<Simd>;
  using U8 = typename Simd::U8;

  static Numbers noneBefore() { return Numbers::all(noPredecessor); }

  // Each disparity gets the least of what its predecessor has: its own path cost, or that of a neighbour and P1.
  // `lowest` are the last block's numbers one lane up and `highest` the first block's one lane down, with 255 in the
  // free lane. As every disparity has a neighbour, 255 never wins, and adding P1 to the lesser neighbour wraps no more
  // than adding it to both.
  static Numbers costsOfPredecessor(const Numbers& before, const U8& lowest, const U8& highest) {
    const U8 p1 = U8::all(penaltyOne);
    constexpr size_t last = Numbers::blocks - 1;
    return Numbers::each([&](size_t k) {
      const U8 below = k == 0 ? lowest : before.block[k - 1], above = k == last ? highest : before.block[k + 1];
      return min(before.block[k], min(below, above) + p1);
    });
  }

  // The path from the left. Its costs are kept as they come; the smallest, which takes longest to find, is subtracted
  // in the next step, where it is the last thing needed.
  struct LeftPath {
    Numbers pathCosts = noneBefore();
    U8 smallest = U8::all(0);

    Numbers nextCosts(const Numbers& cost, const U8& p2) const {
      const U8 none = U8::all(255);
      const Numbers from = costsOfPredecessor(pathCosts, movedUp(none, pathCosts.block[Numbers::blocks - 1]),
                                              movedDown(pathCosts.block[0], none));
      return cost + min(from - smallest, p2);
    }
  };

  // The next costs of a path from the row above, whose predecessor's, less their minimum, lie at `p`.
  static Numbers nextCosts(const uint8_t* p, const Numbers& cost, const U8& p2) {
    const Numbers before = Numbers::load(p);
    constexpr size_t last = Numbers::blocks - 1;
    const Numbers from = costsOfPredecessor(before, againMovedUp(p + last * U8::lanes, before.block[last]),
                                            againMovedDown(p, before.block[0]));
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
      const Numbers cost = Numbers::load(costs);
      const auto jump = Simd::Four::of(p2);
      const Numbers a = left.nextCosts(cost, jump.v[0]), b = nextCosts(upLeftBefore, cost, jump.v[1]),
                    c = nextCosts(up, cost, jump.v[2]), d = nextCosts(upRight + disparities, cost, jump.v[3]);
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
};

}  // namespace nadir
