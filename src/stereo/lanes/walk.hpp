// The matcher's walk along one row, in stretches of 64 pixels: their costs, their four paths, the sums and the
// decisions. Nothing but the last row's path costs outlives a stretch.
#pragma once

#include <cstring>

#include "stereo/lanes/decision.hpp"
#include "stereo/lanes/paths.hpp"
#include "stereo/lanes/row_costs.hpp"

namespace nadir {

template <class Simd>
struct SgmWalk {
  using Numbers = PerDisparity<Simd>;
  using Paths = FourPaths<Simd>;
  using Choice = Decision<Simd>;
  using U8 = typename Simd::U8;

  // Puts 255 where the other picture ends.
  static void hideMissing(size_t width, size_t x, size_t n, uint8_t* sums) {
    const Numbers own = Numbers::ownDisparities();
    for (size_t at = Choice::firstCutShort(width, x); at < x + n; ++at) {
      const U8 columns = U8::all(static_cast<uint8_t>(width - at));
      uint8_t* const p = sums + (at - x) * disparities;
      (Numbers::load(p) | Numbers::each([&](size_t k) { return atMost(columns, own.block[k]); })).store(p);
    }
  }

  // Calls decide(x, n, sums) for the row, stretch by stretch. Each step is done for a whole stretch before the next
  // begins: what takes long in one pixel then overlaps with the next pixels.
  template <class Decide>
  static void walk(const SgmRowJob& job, Decide decide) {
    alignas(64) uint8_t costs[stretch * disparities];
    RowCosts<Simd> rowCosts(job.first, job.reference, job.width);
    Paths::interleave(job.p2, job.width, job.p2Memory);
    typename Paths::LeftPath left;
    for (size_t x = 0; x < job.width; x += stretch) {
      const size_t n = job.width - x < stretch ? job.width - x : stretch;
      if (job.hasCosts) {
        rowCosts.store(x, n, costs);
      } else {
        std::memset(costs, worstCost, sizeof costs);
      }
      if (job.costs) storeInOrder<Simd>(costs, n, job.costs + x * disparities);
      Paths::extend(job, left, x, n, costs);
      if (job.sums) storeInOrder<Simd>(costs, n, job.sums + x * disparities);
      hideMissing(job.width, x, n, costs);
      const size_t decided = x + n + 4 <= job.width ? n : x + 4 < job.width ? job.width - 4 - x : 0;
      decide(x, decided, costs);
    }
  }

  static void disparity(const SgmRowJob& job) {
    if (job.peaks) std::memset(job.peaks, 0, job.width);
    typename Choice::Candidates found = {};
    for (uint16_t& limit : found.limit) limit = disparities - 2;
    walk(job, [&](size_t x, size_t n, const uint8_t* sums) {
      Choice::find(job, x, n, sums, found);
      Choice::decide(found, n, job.disparity + x, job.peaks ? job.peaks + x : nullptr);
    });
  }

  // The gap between the smallest sum and the smallest one outside its neighbourhood.
  static void distinctness(const SgmRowJob& job) {
    walk(job, [&](size_t x, size_t n, const uint8_t* sums) {
      const Numbers own = Numbers::ownDisparities();
      uint8_t* const out = job.distinctness + x;
      for (size_t i = 0; i < n; ++i, sums += disparities) {
        const Numbers s = Numbers::load(sums);
        const unsigned key = smallestKey(s.block, own.block);
        const U8 neighbour = U8::all(static_cast<uint8_t>((key & 255) - 1)), two = U8::all(2);
        const Numbers others =
            Numbers::each([&](size_t k) { return s.block[k] | atMost(own.block[k] - neighbour, two); });
        out[i] = static_cast<uint8_t>(firstLane(others.smallest()) - (key >> 8));
      }
    });
  }
};

}  // namespace nadir
