// The matcher's walk along one row: a pixel's 64 costs, its four paths, their sum and the decision are done before the
// next pixel begins, so that nothing but the last row's path costs lives in memory.
#pragma once

#include "stereo/rows_simd.hpp"

namespace nadir {

template <class Simd>
struct SgmWalk {
  using Rules = PixelRules<Simd>;
  using Path = PathKernels<Simd>;
  using U8 = typename Simd::U8;
  static constexpr size_t blocks = disparities / U8::lanes;
  static constexpr uint8_t noPredecessor = 255 - penaltyOne;

  // The 64 numbers of one pixel.
  struct Costs {
    U8 block[blocks];

    template <class F>
    static Costs each(F f) {
      Costs out;
      for (size_t k = 0; k < blocks; ++k) out.block[k] = f(k);
      return out;
    }
    static Costs all(uint8_t x) {
      return each([=](size_t) { return U8::all(x); });
    }
    static Costs load(const uint8_t* p) {
      return each([=](size_t k) { return U8::load(p + k * U8::lanes); });
    }
    void store(uint8_t* p) const {
      for (size_t k = 0; k < blocks; ++k) block[k].store(p + k * U8::lanes);
    }
    Costs operator+(const Costs& other) const {
      return each([&](size_t k) { return block[k] + other.block[k]; });
    }
    Costs operator|(const Costs& other) const {
      return each([&](size_t k) { return block[k] | other.block[k]; });
    }
    U8 smallest() const {
      U8 least = block[0];
      for (size_t k = 1; k < blocks; ++k) least = min(least, block[k]);
      return smallestInAll(least);
    }
    // Bit d is set where number d is at most the bound.
    uint64_t atMost(const U8& bound) const {
      uint64_t bits = 0;
      for (size_t k = 0; k < blocks; ++k) bits |= lanesAtMost(block[k], bound) << (k * U8::lanes);
      return bits;
    }
  };

  // A pixel's path costs and their minimum in every lane.
  struct PathEnd {
    Costs costs;
    U8 smallest;
  };

  static PathEnd pathStart() { return {Costs::all(noPredecessor), U8::all(0)}; }

  static PathEnd extended(const PathEnd& before, const Costs& cost, uint8_t p2) {
    const U8 none = U8::all(noPredecessor), p1 = U8::all(penaltyOne), jump = before.smallest + U8::all(p2);
    const Costs& from = before.costs;
    const Costs costs = Costs::each([&](size_t k) {
      const U8 below = movedUp(k ? from.block[k - 1] : none, from.block[k]);
      const U8 above = movedDown(from.block[k], k + 1 < blocks ? from.block[k + 1] : none);
      return Path::step(cost.block[k], below, from.block[k], above, p1, jump, before.smallest);
    });
    return {costs, costs.smallest()};
  }

  static PathEnd load(const PathState& state, size_t x) {
    return {Costs::load(state.costs + x * disparities), U8::all(state.minima[x])};
  }

  static void store(const PathState& state, size_t x, const PathEnd& end) {
    end.costs.store(state.costs + x * disparities);
    state.minima[x] = firstLane(end.smallest);
  }

  static Costs matchingCosts(const SgmRowJob& job, size_t x) {
    if (!job.hasCosts || x < 2 || x + 2 >= job.width) return Costs::all(worstCost);
    if (job.exact) return costsOfAnyCodes(job, x);
    const typename CostKernels<Simd>::Reference reference(job.reference[x]);
    return Costs::each([&](size_t k) { return reference.costs(job.planes, x - 2 + k * U8::lanes); });
  }

  static Costs costsOfAnyCodes(const SgmRowJob& job, size_t x) {
    const size_t comparable = job.width - 2 - x;
    uint8_t costs[disparities];
    for (size_t d = 0; d < disparities; ++d) costs[d] = worstCost;
    Rules::costsOfAnyCodes(job.first + x, job.reference[x], comparable < disparities ? comparable : disparities, costs);
    return Costs::load(costs);
  }

  // Calls decide(x, sums, stored) for every pixel; `stored` are the sums in memory.
  template <class Decide>
  static void walk(const SgmRowJob& job, Decide decide) {
    PathEnd left = pathStart(), upLeft = pathStart();
    for (size_t x = 0; x < job.width; ++x) {
      const Costs cost = matchingCosts(job, x);
      if (job.costs) cost.store(job.costs + x * disparities);

      left = extended(left, cost, job.p2[0][x]);
      const PathEnd nextUpLeft = load(job.upLeft, x);
      const PathEnd fromUpLeft = extended(upLeft, cost, job.p2[1][x]);
      const PathEnd fromUp = extended(load(job.up, x), cost, job.p2[2][x]);
      const PathEnd fromUpRight = extended(load(job.upRight, x + 1), cost, job.p2[3][x]);
      store(job.upLeft, x, fromUpLeft);
      store(job.up, x, fromUp);
      store(job.upRight, x, fromUpRight);
      upLeft = nextUpLeft;

      const Costs sums = left.costs + fromUpLeft.costs + fromUp.costs + fromUpRight.costs;
      uint8_t local[disparities];
      uint8_t* stored = job.sums ? job.sums + x * disparities : local;
      sums.store(stored);
      if (x + 4 < job.width) decide(x, sums, stored);
    }
  }

  // 64 numbers that are 255 from index `count` on and 0 before: or-ed in, they take the rest out of the competition.
  static Costs beyond(size_t count) {
    static constexpr struct Table {
      uint8_t v[2 * disparities] = {};
      constexpr Table() {
        for (size_t i = disparities; i < 2 * disparities; ++i) v[i] = 255;
      }
    } table;
    return Costs::load(table.v + disparities - count);
  }

  // The same for the winner and its two neighbours.
  static Costs near(size_t winner) {
    static constexpr struct Table {
      uint8_t v[2 * disparities + 1] = {};
      constexpr Table() {
        for (size_t i = 0; i < 3; ++i) v[disparities - 1 + i] = 255;
      }
    } table;
    return Costs::load(table.v + disparities - winner);
  }

  // The winning disparity if nothing outside its neighbourhood comes close, else 0. As SelectKernels::peakCheck, with
  // all costs in registers.
  static size_t distinctWinner(const Costs& sums, size_t maxIndex, uint32_t uniquenessRatio) {
    const uint64_t valid = ~uint64_t{0} >> (disparities - 1 - maxIndex);
    const U8 smallest = (maxIndex < disparities - 1 ? sums | beyond(maxIndex + 1) : sums).smallest();
    const auto winner = static_cast<size_t>(__builtin_ctzll(sums.atMost(smallest) & valid));
    if (winner < 2 || winner + 1 >= maxIndex) return 0;
    const unsigned last = Rules::closeBelow(firstLane(smallest), uniquenessRatio) - 1;
    const uint64_t close = sums.atMost(U8::all(static_cast<uint8_t>(last < 255 ? last : 255))) & valid;
    return close & ~(uint64_t{7} << (winner - 1)) ? 0 : winner;
  }

  static void disparity(const SgmRowJob& job) {
    if (job.peaks) {
      for (size_t x = 0; x < job.width; ++x) job.peaks[x] = 0;
    }
    walk(job, [&job](size_t x, const Costs& sums, const uint8_t* s) {
      const size_t toTheEdge = job.width - 1 - x;
      const size_t maxIndex = toTheEdge < disparities - 1 ? toTheEdge : disparities - 1;
      const size_t k = distinctWinner(sums, maxIndex, job.uniquenessRatio);
      if (job.peaks) job.peaks[x] = static_cast<uint8_t>(k);
      if (k) job.disparity[x] = Rules::refined(k, s[k - 1], s[k], s[k + 1]);
    });
  }

  // The gap between the smallest sum and the smallest one outside its neighbourhood.
  static void distinctness(const SgmRowJob& job) {
    walk(job, [&job](size_t x, const Costs& sums, const uint8_t*) {
      const size_t columns = job.width - x, count = columns < disparities ? columns : disparities;
      const Costs considered = sums | beyond(count);
      const U8 smallest = considered.smallest();
      const auto winner = static_cast<size_t>(__builtin_ctzll(considered.atMost(smallest)));
      const U8 runnerUp = (considered | near(winner)).smallest();
      job.distinctness[x] = firstLane(runnerUp - smallest);
    });
  }
};

}  // namespace nadir
