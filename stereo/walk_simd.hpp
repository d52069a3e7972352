// The matcher's walk along one row: a pixel's 64 costs, its four paths, their sum and the decision are done before the
// next pixel begins, so that nothing but the last row's path costs lives in memory.
#pragma once

#include "stereo/codes_simd.hpp"
#include "stereo/costs_simd.hpp"
#include "stereo/rows_simd.hpp"

namespace nadir {

template <class Simd>
struct SgmWalk {
  using Rules = PixelRules<Simd>;
  using Costs = nadir::Costs<Simd>;
  using U8 = typename Simd::U8;

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

    void extend(const Costs& cost, const U8& p2) {
      const U8 none = U8::all(255);
      const Costs from =
          brought(costs, movedUp(none, costs.block[Costs::blocks - 1]), movedDown(costs.block[0], none));
      costs = cost + min(from - smallest, p2);
      smallest = costs.smallest();
    }
  };

  // A path from the row above: the predecessor's costs, less their minimum, give way to the pixel's.
  static Costs extended(const PathState& path, size_t x, const Costs& cost, const U8& p2) {
    const uint8_t* const p = path.before + x * disparities;
    const Costs before = Costs::load(p);
    constexpr size_t last = Costs::blocks - 1;
    const Costs from = brought(before, againMovedUp(p + last * U8::lanes, before.block[last]),
                               againMovedDown(p, before.block[0]));
    const Costs costs = cost + min(from, p2);
    (costs - costs.smallest()).store(path.here + x * disparities);
    return costs;
  }

  // The matching costs of a row's pixels.
  class MatchingCosts {
   public:
    explicit MatchingCosts(const SgmRowJob& job)
        : job_(job), codes_(job.first + 2, job.hasCosts && !job.exact ? job.width - 4 : 0, job.codeMemory) {}

    Costs at(size_t x) const {
      if (!job_.hasCosts || x < 2 || x + 2 >= job_.width) return Costs::all(worstCost);
      if (job_.exact) return ofAnyCodes(x);
      return codes_.costsOf(job_.reference[x], x - 2);
    }

   private:
    Costs ofAnyCodes(size_t x) const {
      const size_t comparable = job_.width - 2 - x;
      uint8_t costs[disparities];
      for (size_t d = 0; d < disparities; ++d) costs[d] = worstCost;
      Rules::costsOfAnyCodes(job_.first + x, job_.reference[x], comparable < disparities ? comparable : disparities,
                             costs);
      return Costs::load(costs).dealt();
    }

    const SgmRowJob& job_;
    const Codes<Simd> codes_;
  };

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

  // Calls decide(x, sums) for every pixel that gets a result.
  template <class Decide>
  static void walk(const SgmRowJob& row, Decide decide) {
    const SgmRowJob job = row;  // which no store through a pointer can change
    const MatchingCosts matching(job);
    interleave(job.p2, job.width, job.p2Memory);
    LeftPath left;
    for (size_t x = 0; x < job.width; ++x) {
      const Costs cost = matching.at(x);
      const auto p2 = [&](size_t dir) { return U8::all(job.p2Memory[4 * x + dir]); };
      left.extend(cost, p2(0));
      const Costs sums = left.costs + extended(job.upLeft, x, cost, p2(1)) + extended(job.up, x, cost, p2(2)) +
                         extended(job.upRight, x, cost, p2(3));
      if (job.costs) cost.inOrder().store(job.costs + x * disparities);
      if (job.sums) sums.inOrder().store(job.sums + x * disparities);
      if (x + 4 < job.width) decide(x, sums);
    }
  }

  // The sums with 255 from disparity `count` on.
  static Costs upTo(size_t count, const Costs& sums, const Costs& own) {
    const U8 end = U8::all(static_cast<uint8_t>(count));
    return Costs::each([&](size_t k) { return sums.block[k] | atMost(end, own.block[k]); });
  }

  struct Winner {
    unsigned index, below, cost, above;  // and the sums around it
    unsigned accepted;                   // all bits or none
  };

  // The winning disparity if nothing outside its neighbourhood comes close, else 0.
  //
  // The rule compares the winner with the three candidates that follow it in order of cost, and tolerates those beside
  // it. At most two lie beside it: so the first of the three that does not is the smallest number outside the
  // neighbourhood, and it alone decides. That one is close just when more numbers are close than the winner and the
  // close ones beside it. Ties change nothing, as they only order numbers that are alike close or not.
  static Winner distinctWinner(const Costs& sums, const Costs& own, const uint8_t* stored, size_t maxIndex,
                                 const uint8_t* lastClose) {
    const unsigned key = smallestKey(sums.block, own.block), winner = key & 255;
    const unsigned last = lastClose[key >> 8];
    const unsigned count = countAtMost(sums.block, U8::all(static_cast<uint8_t>(last)));
    const unsigned below = stored[placeOf(winner - 1)], above = stored[placeOf(winner + 1)];
    const unsigned expected = 1u + noMore(below, last) + noMore(above, last);
    const unsigned rejected = (count ^ expected) | noMore(winner, 1) | noMore(static_cast<unsigned>(maxIndex), winner + 1);
    return {winner, below, key >> 8, above, rejected ? 0u : ~0u};
  }

  // 1 where a is at most b, else 0, by way of the borrow: compilers like to jump where they see a comparison, and here
  // no processor can tell where to.
  static unsigned noMore(unsigned a, unsigned b) { return (a - b - 1) >> 31; }

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

  static void disparity(const SgmRowJob& row) {
    const SgmRowJob job = row;
    if (job.peaks) {
      for (size_t x = 0; x < job.width; ++x) job.peaks[x] = 0;
    }
    const Costs own = Costs::ownDisparities();
    walk(job, [=](size_t x, const Costs& all) {
      const size_t toTheEdge = job.width - 1 - x;
      const size_t maxIndex = toTheEdge < disparities - 1 ? toTheEdge : disparities - 1;
      const Costs sums = maxIndex < disparities - 1 ? upTo(maxIndex + 1, all, own) : all;
      uint8_t s[disparities];
      sums.store(s);
      const Winner w = distinctWinner(sums, own, s, maxIndex, job.lastClose);
      if (job.peaks) job.peaks[x] = static_cast<uint8_t>(w.accepted & w.index);
      job.disparity[x] = static_cast<uint16_t>(w.accepted & Rules::refined(w.index, w.below, w.cost, w.above));
    });
  }

  // The gap between the smallest sum and the smallest one outside its neighbourhood.
  static void distinctness(const SgmRowJob& job) {
    const Costs own = Costs::ownDisparities();
    walk(job, [&](size_t x, const Costs& all) {
      const size_t columns = job.width - x;
      const Costs sums = columns < disparities ? upTo(columns, all, own) : all;
      const unsigned key = smallestKey(sums.block, own.block);
      const U8 neighbour = U8::all(static_cast<uint8_t>((key & 255) - 1)), two = U8::all(2);
      const U8 runnerUp = Costs::each([&](size_t k) {
                            return sums.block[k] | atMost(own.block[k] - neighbour, two);
                          }).smallest();
      job.distinctness[x] = static_cast<uint8_t>(firstLane(runnerUp) - (key >> 8));
    });
  }
};

}  // namespace nadir
