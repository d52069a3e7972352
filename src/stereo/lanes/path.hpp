// The path costs of a row in one direction, for any number of disparities that fills whole registers.
#pragma once

#include "stereo/kernels.hpp"

namespace nadir {

template <class Simd>
struct PathKernel {
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

  static void row(const PathRowJob& job) {
    for (size_t x = 0; x < job.width; ++x) {
      const size_t at = x * job.numDisparities, slot = x * job.stride, minimum = x * job.minStride;
      pixel(job, job.costs + at, job.before + slot, job.beforeMin[minimum], job.p2[x], job.here + slot,
            job.hereMin + minimum, job.sums + at);
    }
  }
};

}  // namespace nadir
