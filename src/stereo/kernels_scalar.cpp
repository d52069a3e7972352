// The law: plain loops that every vector kernel must agree with, written from the formulas and sharing nothing with
// them but the per-pixel rules.
#include <nadir/stereo.h>

#include <algorithm>
#include <cstring>

#include "stereo/pixel_rules.hpp"

namespace nadir {
namespace {

struct Baseline;
using Rules = PixelRules<Baseline>;

void census(const uint16_t* const rows[5], uint32_t* dst, size_t n) {
  for (size_t i = 0; i < n; ++i) dst[i] = Rules::censusCode(rows, i);
}

void penalties(const uint16_t* pixels, const uint16_t* predecessors, uint8_t* dst, size_t n) {
  for (size_t i = 0; i < n; ++i) dst[i] = Rules::penalty(pixels[i], predecessors[i]);
}

void pixelCosts(const uint32_t* first, const uint32_t* reference, size_t width, size_t x, uint8_t* costs) {
  std::memset(costs, worstCost, disparities);
  if (x < 2 || x + 2 >= width) return;
  Rules::costsOfAnyCodes(first + x, reference[x], std::min(width - 2 - x, disparities), costs);
}

void costs(const uint32_t* first, const uint32_t* reference, size_t width, uint8_t* costs) {
  for (size_t x = 0; x < width; ++x) pixelCosts(first, reference, width, x, costs + x * disparities);
}

uint8_t wrapped(int x) { return static_cast<uint8_t>(x); }

// Old path costs are read before the new ones replace them: `before` and `here` may be the same slot.
uint8_t pathPixel(const PathRowJob& job, size_t x, const uint8_t* before, uint8_t smallest, uint8_t* here) {
  const uint8_t* cost = job.costs + x * job.numDisparities;
  uint8_t* sum = job.sums + x * job.numDisparities;
  const uint8_t jump = wrapped(smallest + job.p2[x]);
  uint8_t below = job.fill, same = before[0], least = 255;
  for (size_t d = 0; d < job.numDisparities; ++d) {
    const uint8_t above = before[d + 1];
    const uint8_t step = std::min(wrapped(below + job.p1), wrapped(above + job.p1));
    const uint8_t path = wrapped(cost[d] + std::min(std::min(same, jump), step) - smallest);
    sum[d] = wrapped(sum[d] + path);
    here[d] = path;
    least = std::min(least, path);
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
    if (candidate >= smallest[3]) continue;
    for (unsigned& place : smallest) {
      const unsigned displaced = place;
      if (candidate >= displaced) continue;
      place = candidate;
      candidate = displaced;
    }
  }
}

// The winner if none of the three that follow it is close without being its neighbour, else 0.
unsigned distinct(const unsigned (&smallest)[4], size_t maxIndex, unsigned lastClose) {
  const unsigned winner = smallest[0] & 255;
  for (unsigned k = 1; k < 4; ++k) {
    const unsigned rival = smallest[k] & 255;
    const bool neighbour = rival + 1 == winner || winner + 1 == rival || rival == winner;
    if (smallest[k] >> 8 <= lastClose && !neighbour) return 0;
  }
  return winner < 2 || winner + 1 >= maxIndex ? 0 : winner;
}

uint32_t peakCheck(const uint8_t* costs, size_t maxIndex, uint32_t uniquenessRatio) {
  unsigned smallest[4];
  fourSmallest(costs, maxIndex, smallest);
  return distinct(smallest, maxIndex, Rules::lastClose(static_cast<uint8_t>(smallest[0] >> 8), uniquenessRatio));
}

void refine(const Winners& winners, size_t n, uint16_t* disparity) {
  for (size_t i = 0; i < n; ++i) {
    disparity[i] = Rules::refined(winners.index[i], winners.below[i], winners.cost[i], winners.above[i]);
  }
}

// ---- the walk ----

// Extends a path by a pixel and adds its costs to the sums. Path costs are kept less their minimum, here and in the
// vector kernels: a successor's are relative to it anyway.
void extend(const uint8_t* before, const uint8_t* costs, uint8_t p2, uint8_t* here, uint8_t* sums) {
  uint8_t from[disparities + 2], path[disparities];
  from[0] = from[disparities + 1] = noPredecessor;
  std::memcpy(from + 1, before, disparities);
  for (size_t d = 0; d < disparities; ++d) {
    const uint8_t neighbour = wrapped(std::min(from[d], from[d + 2]) + penaltyOne);
    path[d] = wrapped(costs[d] + std::min(std::min(from[d + 1], p2), neighbour));
  }
  uint8_t least = 255;
  for (size_t d = 0; d < disparities; ++d) least = std::min(least, path[d]);
  for (size_t d = 0; d < disparities; ++d) here[d] = wrapped(path[d] - least);
  for (size_t d = 0; d < disparities; ++d) sums[d] = wrapped(sums[d] + path[d]);
}

// Calls decide(x, sums) for every pixel that gets a result.
template <class Decide>
void walk(const SgmRowJob& job, Decide decide) {
  uint8_t left[disparities];
  std::memset(left, noPredecessor, disparities);
  for (size_t x = 0; x < job.width; ++x) {
    const size_t at = x * disparities;
    uint8_t costs[disparities], sums[disparities] = {};
    std::memset(costs, worstCost, disparities);
    if (job.hasCosts) pixelCosts(job.first, job.reference, job.width, x, costs);
    extend(left, costs, job.p2[PC_DIR_LEFT][x], left, sums);
    extend(job.upLeftBefore + at, costs, job.p2[PC_DIR_UPLEFT][x], job.upLeft + at, sums);
    extend(job.up + at, costs, job.p2[PC_DIR_UP][x], job.up + at, sums);
    extend(job.upRight + at + disparities, costs, job.p2[PC_DIR_UPRIGHT][x], job.upRight + at, sums);
    if (job.costs) std::memcpy(job.costs + at, costs, disparities);
    if (job.sums) std::memcpy(job.sums + at, sums, disparities);
    if (x + 4 < job.width) decide(x, sums);
  }
}

void walkDisparity(const SgmRowJob& job) {
  if (job.peaks) std::memset(job.peaks, 0, job.width);
  walk(job, [&](size_t x, const uint8_t* sums) {
    const size_t maxIndex = std::min(job.width - 1 - x, disparities - 1);
    unsigned smallest[4];
    fourSmallest(sums, maxIndex, smallest);
    const unsigned k =
        distinct(smallest, maxIndex, Rules::lastClose(static_cast<uint8_t>(smallest[0] >> 8), job.uniquenessRatio));
    if (job.peaks) job.peaks[x] = static_cast<uint8_t>(k);
    if (k) job.disparity[x] = Rules::refined(k, sums[k - 1], sums[k], sums[k + 1]);
  });
}

void walkDistinctness(const SgmRowJob& job) {
  walk(job, [&](size_t x, uint8_t* sums) {
    const size_t count = std::min(job.width - x, disparities);
    uint8_t least, next;
    uint32_t winner, runnerUp;
    findMin(sums, count, &least, &winner);
    for (size_t d = winner ? winner - 1 : 0; d <= winner + 1 && d < count; ++d) sums[d] = 255;
    findMin(sums, count, &next, &runnerUp);
    job.distinctness[x] = wrapped(next - least);
  });
}

constexpr StereoKernels scalarKernels() {
  StereoKernels kernels = {};
  kernels.census = census;
  kernels.penalties = penalties;
  kernels.costs = costs;
  kernels.path = path;
  kernels.pathLanes = 1;
  kernels.findMin = findMin;
  kernels.peakCheck = peakCheck;
  kernels.refine = refine;
  kernels.walkDisparity = walkDisparity;
  kernels.walkDistinctness = walkDistinctness;
  return kernels;
}

}  // namespace

const StereoKernels stereoScalar = scalarKernels();

}  // namespace nadir
