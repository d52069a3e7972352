// The row kernels of smoothing, hole filling, halving and averaging.
#pragma once

#include <cstddef>
#include <cstdint>

namespace nadir {

// Weighted sums of pixels, those of the upper and of the lower bytes apart. With the weights 1 4 6 4 1 in both
// directions neither is more than 256 * 255: they fit in 16 bits, which processors add twice as many of at once as of
// 32 bits.
struct GaussSums {
  uint16_t *high, *low;
};

// Rows of such sums that follow each other.
constexpr size_t gaussRowCount = 6;
struct GaussRows {
  GaussSums row[gaussRowCount];
};

constexpr uint16_t halvedWidth = 320, halvedHeight = 240;

// Each writes the whole of its output and nothing else; any alignment of the elements' own; any n including 0. Outputs
// overlap no input but where it is said.
struct SmoothKernels {
  // Both of sums[0, n) from pixels[0, n + 4): the pixels i to i + 4 weighted 1 4 6 4 1.
  void (*gaussAcross)(const uint16_t* pixels, const GaussSums& sums, size_t n);
  // first[0, n): the first five rows weighted 1 4 6 4 1, divided by 256 and rounded; second[0, n): the last five. Two
  // at once need fewer loads. The sums in the rows are at most 16 * 255.
  void (*gaussDown)(const GaussRows& rows, uint16_t* first, uint16_t* second, size_t n);
  // coarse[0, n) from above[0, 2n) and below[0, 2n): of each four pixels the rounded mean of those that are not 0.
  void (*pull)(const uint16_t* above, const uint16_t* below, uint16_t* coarse, size_t n);
  // dst[0, 2n): src[i], or coarse[i / 2] where that is 0. dst may be src.
  void (*push)(const uint16_t* coarse, const uint16_t* src, uint16_t* dst, size_t n);
  // From 640x480 pixels to 320x240, each the upper left one of four. Steps are bytes from row to row, multiples of 2. A
  // size that compilers know and a whole picture in a call save processors without wide vectors a quarter of the work.
  void (*halve)(const uint16_t* src, size_t srcStep, uint16_t* coarse, size_t coarseStep);
  // means[0, n): sums[i] / counts[i] rounded toward zero and cut to 16 bits where counts[i] > limit, and otherwise 0;
  // the limit is not negative.
  void (*mean)(const int32_t* sums, const uint16_t* counts, int32_t limit, uint16_t* means, size_t n);
};

// The fastest kernels among the levels `cpu` (a set of Cpu bits).
const SmoothKernels& smoothKernels(unsigned cpu);

extern const SmoothKernels smoothScalar, smoothAvx2;

}  // namespace nadir
