// The law: plain loops that every vector kernel must agree with, written from the formulas and sharing nothing with
// them but the per-pixel rules.
#include "core/simd_scalar.hpp"
#include "stereo/rows.hpp"
#include "stereo/walk_simd.hpp"

namespace nadir {
namespace {

using Rules = PixelRules<scalar::Simd>;

void census(const uint16_t* const rows[5], uint32_t* dst, size_t n) {
  for (size_t i = 0; i < n; ++i) dst[i] = Rules::censusCode(rows, i);
}

void penalties(const uint16_t* pixels, const uint16_t* predecessors, uint8_t* dst, size_t n) {
  for (size_t i = 0; i < n; ++i) dst[i] = Rules::penalty(pixels[i], predecessors[i]);
}

void costs(const uint32_t* first, size_t codes, const uint32_t* reference, size_t n, uint8_t*, uint8_t* costs) {
  for (size_t i = 0; i < n; ++i) {
    for (size_t d = 0; d < disparities; ++d) {
      *costs++ = i + d < codes ? Rules::cost(first[i + d], reference[i]) : worstCost;
    }
  }
}

uint8_t lesser(unsigned a, unsigned b) { return static_cast<uint8_t>(a < b ? a : b); }
uint8_t wrapped(unsigned x) { return static_cast<uint8_t>(x); }

// Old path costs are read before the new ones replace them: `before` and `here` may be the same slot.
uint8_t pathPixel(const PathRowJob& job, size_t x, const uint8_t* before, uint8_t smallest, uint8_t* here) {
  const uint8_t* cost = job.costs + x * job.numDisparities;
  uint8_t* sum = job.sums + x * job.numDisparities;
  const uint8_t jump = wrapped(smallest + job.p2[x] + 0u);
  uint8_t below = job.fill, same = before[0], least = 255;
  for (size_t d = 0; d < job.numDisparities; ++d) {
    const uint8_t above = before[d + 1];
    const uint8_t step = lesser(wrapped(below + job.p1 + 0u), wrapped(above + job.p1 + 0u));
    const uint8_t path = wrapped(cost[d] + lesser(lesser(same, jump), step) - smallest + 0u);
    sum[d] = wrapped(sum[d] + path + 0u);
    here[d] = path;
    least = lesser(least, path);
    below = same;
    same = above;
  }
  return least;
}

void path(const PathRowJob& job) {
  for (size_t x = 0; x < job.width; ++x) {
    const size_t minimum = x * job.minStride;
    job.hereMin[minimum] =
        pathPixel(job, x, job.before + x * job.stride, job.beforeMin[minimum], job.here + x * job.stride);
  }
}

// Keys order candidates: the smaller cost first, and the smaller index among equal costs.
unsigned key(const uint8_t* costs, size_t i) { return costs[i] * 256u + static_cast<uint8_t>(i); }

void findMin(const uint8_t* costs, size_t count, uint8_t* minValue, uint32_t* minIndex) {
  unsigned least = 255 * 256;
  for (size_t i = 0; i < count; ++i) least = key(costs, i) < least ? key(costs, i) : least;
  *minValue = static_cast<uint8_t>(least >> 8);
  *minIndex = least & 255;
}

// The four smallest candidates in order; where there are fewer, the rest cost 255.
void fourSmallest(const uint8_t* costs, size_t maxIndex, unsigned (&smallest)[4]) {
  for (unsigned k = 0; k < 4; ++k) smallest[k] = ~0u;
  for (size_t i = 0; i <= maxIndex || i < 4; ++i) {
    unsigned candidate = i <= maxIndex ? key(costs, i) : 255 * 256u + static_cast<unsigned>(i);
    for (unsigned& place : smallest) {
      const unsigned displaced = place;
      if (candidate >= displaced) continue;
      place = candidate;
      candidate = displaced;
    }
  }
}

uint32_t peakCheck(const uint8_t* costs, size_t maxIndex, uint32_t uniquenessRatio) {
  unsigned smallest[4];
  fourSmallest(costs, maxIndex, smallest);
  const unsigned winner = smallest[0] & 255;
  const unsigned limit = Rules::closeBelow(static_cast<uint8_t>(smallest[0] >> 8), uniquenessRatio);
  for (unsigned k = 1; k < 4; ++k) {
    const unsigned rival = smallest[k] & 255;
    const bool neighbour = rival + 1 == winner || winner + 1 == rival || rival == winner;
    if (smallest[k] >> 8 < limit && !neighbour) return 0;
  }
  return winner < 2 || winner + 1 >= maxIndex ? 0 : winner;
}

}  // namespace

const StereoKernels stereoScalar = {census,
                                    penalties,
                                    costs,
                                    path,
                                    1,
                                    findMin,
                                    peakCheck,
                                    SgmWalk<scalar::Simd>::disparity,
                                    SgmWalk<scalar::Simd>::distinctness};

}  // namespace nadir
