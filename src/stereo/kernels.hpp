// This states what the stereo kernels of every instruction set do, and declares the table that holds one set's.
//
// Kernels check nothing. Each reads and writes exactly what is stated here, at any alignment.
#pragma once

#include <nadir/stereo.h>

#include <cstddef>
#include <cstdint>

namespace nadir {

constexpr size_t disparities = 64;  // what the vector kernels and the drivers search
constexpr uint8_t worstCost = 24;   // the bits of a census code; also the cost where there is nothing to compare
constexpr uint32_t censusInvalid = CENSUS_INVALID;
constexpr uint8_t penaltyOne = 7;                      // P1 of the drivers
constexpr uint8_t flatPenalty = 39, edgePenalty = 17;  // the range of P2

// The codes of rows 0, 1, height - 2 and height - 1, and of columns that near to a side, do not exist.
inline bool isBorderRow(uint32_t row, uint32_t height) { return row < 2 || row >= height - 2; }

// Writes the census codes of n pixels to dst[0, n). rows are five image rows, read at [0, n + 4); the window of code i
// is columns i to i + 4.
using CensusRow = void (*)(const uint16_t* const rows[5], uint32_t* dst, size_t n);

// Writes the penalties of n pixels, from their intensities and those of their predecessors, to dst[0, n).
using PenaltyRow = void (*)(const uint16_t* pixels, const uint16_t* predecessors, uint8_t* dst, size_t n);

// Writes width * 64 costs: of each pixel of `reference` with itself and the 63 behind it in `first`. Two columns at
// either side have no codes: the costs there and with those are the worst ones. The width is at least 5.
using CostRow = void (*)(const uint32_t* first, const uint32_t* reference, size_t width, uint8_t* costs);

// One row of PC_NextRow for a path record.
struct PathRowJob {
  size_t width, numDisparities;
  uint8_t p1, fill;
  const uint8_t *costs, *p2;
  uint8_t* sums;
  const uint8_t *before, *beforeMin;  // the predecessors' path costs and minima
  uint8_t *here, *hereMin;            // where this row's go; may be the same memory
  size_t stride, minStride;
};

// numDisparities must be a multiple of 64, 32 or 16, as the level's `lanes` says; the scalar kernel takes any number.
using PathRow = void (*)(const PathRowJob& job);

// SGM_FindMinIdx_neon for 1 to 256 costs, and SGM_PeakCheckExtended for a maxIndex up to 255.
using FindMin = void (*)(const uint8_t* costs, size_t count, uint8_t* minValue, uint32_t* minIndex);
using PeakCheck = uint32_t (*)(const uint8_t* costs, size_t maxIndex, uint32_t uniquenessRatio);

// This stands for all path costs of a predecessor that would lie outside the picture.
constexpr uint8_t noPredecessor = 255 - penaltyOne;

// One row of a driver: costs, four paths, their sum and the decision, a stretch of pixels at a time.
struct SgmRowJob {
  size_t width;
  const uint32_t* first;      // codes of the first picture
  const uint32_t* reference;  // of the second picture
  bool hasCosts;              // false in the border rows, where every cost is the worst one
  const uint8_t* p2[4];       // by PathDir
  uint8_t* p2Memory;          // 4 * width bytes for the kernel's own use
  // The path costs from above, 64 bytes for each pixel in an order of the kernel's own, or noPredecessor throughout
  // where there is no pixel: read at the predecessors' places, written at the pixels' own.
  const uint8_t* upLeftBefore;  // from the pixel left of the row on
  uint8_t *upLeft, *up, *upRight;
  uint32_t uniquenessRatio;  // walkDisparity
  uint8_t *costs, *sums;     // null, or width * 64 bytes to fill
  uint8_t* peaks;            // null, or width bytes to fill
  uint16_t* disparity;       // walkDisparity: width values, all 0 before
  uint8_t* distinctness;     // walkDistinctness: width values, all 255 before
};
using SgmRow = void (*)(const SgmRowJob& job);

// The winning disparities of some pixels.
constexpr size_t stretch = 64;
struct Winners {
  uint16_t index[stretch], cost[stretch], below[stretch], above[stretch];  // and the sums of costs at and beside it
};

// Writes the disparities, in 1/16 pixel, of n winners.
using Refine = void (*)(const Winners& winners, size_t n, uint16_t* disparity);

struct StereoKernels {
  CensusRow census;
  PenaltyRow penalties;
  CostRow costs;
  PathRow path;
  size_t pathLanes;
  FindMin findMin;
  PeakCheck peakCheck;
  Refine refine;
  SgmRow walkDisparity, walkDistinctness;
};

// The fastest kernels among the levels `cpu` (a set of Cpu bits).
const StereoKernels& stereoKernels(unsigned cpu);

// The fastest path kernel among them that takes this number of disparities.
PathRow pathKernel(unsigned cpu, uint32_t numDisparities);

extern const StereoKernels stereoScalar, stereoNeon, stereoSse41, stereoAvx2, stereoAvx512;

}  // namespace nadir
