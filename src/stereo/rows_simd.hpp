// Census, penalty, cost and path kernels of one row on the vectors of one instruction set.
#pragma once

#include "stereo/codes_simd.hpp"

namespace nadir {

// Calls step(i) for blocks of `lanes` that cover [0, n), the last one ending at n and so overlapping the one before it:
// not for outputs that are inputs. False, and no call, where n is less than a block.
template <size_t lanes, class Step>
inline bool forBlocks(size_t n, Step step) {
  if (n < lanes) return false;
  for (size_t i = 0; i + lanes < n; i += lanes) step(i);
  step(n - lanes);
  return true;
}

template <class Simd>
struct RowKernels : PixelRules<Simd> {
  using U8 = typename Simd::U8;
  using U16 = typename Simd::U16;
  using Rules = PixelRules<Simd>;

  // 16 bits of the code gather in one word per pixel, the first 8 in another: a comparison's mask is -1, so that
  // doubling and subtracting it shifts its bit in.
  static void census(const uint16_t* const rows[5], uint32_t* dst, size_t n) {
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
    for (size_t i = 0; i < n; ++i) dst[i] = Rules::censusCode(rows, i);
  }

  static void penalties(const uint16_t* pixels, const uint16_t* predecessors, uint8_t* dst, size_t n) {
    const auto some = [=](size_t i) {
      const U8 sixteenths =
          saturatedBytes(sixteenthOfDifference(pixels + i, predecessors + i),
                         sixteenthOfDifference(pixels + i + U16::lanes, predecessors + i + U16::lanes));
      return U8::all(flatPenalty) - min(sixteenths, U8::all(flatPenalty - edgePenalty));
    };
    const auto store = [=](size_t i) { some(i).store(dst + i); };
    const auto storeTwo = [=](size_t i) {
      const U8 first = some(i), second = some(i + U8::lanes);
      first.store(dst + i);
      second.store(dst + i + U8::lanes);
    };
    if (forBlocks<2 * U8::lanes>(n, storeTwo) || forBlocks<U8::lanes>(n, store)) return;
    for (size_t i = 0; i < n; ++i) dst[i] = Rules::penalty(pixels[i], predecessors[i]);
  }

 private:
  static U16 sixteenthOfDifference(const uint16_t* a, const uint16_t* b) {
    return dividedBy16(absoluteDifference(U16::load(a), U16::load(b)));
  }
};

template <class Simd>
struct CostKernels {
  static void costs(const uint32_t* first, const uint32_t* reference, size_t width, uint8_t* costs) {
    RowCosts<Simd> rowCosts(first, reference, width);
    for (size_t x = 0; x < width; x += stretch) {
      const size_t n = width - x < stretch ? width - x : stretch;
      uint8_t dealt[stretch * disparities];
      rowCosts.store(x, n, dealt);
      storeInOrder<Simd>(dealt, n, costs + x * disparities);
    }
  }
};

template <class Simd>
struct PathKernels {
  using U8 = typename Simd::U8;

  // A path's costs at one block of disparities. `below` and `above` are the predecessor's costs one disparity lower
  // and higher, `jump` the predecessor's minimum plus P2.
  static U8 step(const U8& cost, const U8& below, const U8& same, const U8& above, const U8& p1, const U8& jump,
                 const U8& smallest) {
    return cost + min(min(same, jump), min(below + p1, above + p1)) - smallest;
  }

  static void pixel(const PathRowJob& job, const uint8_t* costs, const uint8_t* before, uint8_t smallestBefore,
                    uint8_t p2, uint8_t* here, uint8_t* hereMin, uint8_t* sums) {
    const U8 p1 = U8::all(job.p1), smallest = U8::all(smallestBefore), jump = smallest + U8::all(p2);
    const U8 pad = U8::all(before[job.numDisparities]);
    U8 lower = U8::all(job.fill), same = U8::load(before), least = U8::all(255);
    for (size_t d = 0; d < job.numDisparities; d += U8::lanes) {
      const size_t next = d + U8::lanes;
      const U8 upper = next < job.numDisparities ? U8::load(before + next) : pad;
      const U8 path = step(U8::load(costs + d), movedUp(lower, same), same, movedDown(same, upper), p1, jump, smallest);
      path.store(here + d);
      (U8::load(sums + d) + path).store(sums + d);
      least = min(least, path);
      lower = same;
      same = upper;
    }
    *hereMin = firstLane(smallestInAll(least));
  }

  static void path(const PathRowJob& job) {
    for (size_t x = 0; x < job.width; ++x) {
      const size_t at = x * job.numDisparities, slot = x * job.stride, minimum = x * job.minStride;
      pixel(job, job.costs + at, job.before + slot, job.beforeMin[minimum], job.p2[x], job.here + slot,
            job.hereMin + minimum, job.sums + at);
    }
  }
};

}  // namespace nadir
