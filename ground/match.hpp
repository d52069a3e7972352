// Matching: from a rectified pair to a disparity picture, on either view's grid.
#pragma once

#include "ground/records/stages.hpp"
#include "ground/records/view.hpp"
#include "lab/grid.hpp"

namespace nadir::ground {

using lab::Grid;

struct Pair {
  Grid<uint16_t> left, right;
};

struct MatchOptions {
  View grid = View::left;    // whose pixels get the disparities
  uint32_t uniqueness = 48;  // of the peak check, 1/128; see docs/accuracy.md for why 48
  bool postprocess = true;
  Grid<uint8_t> mask;  // on the wanted grid, not 0 discards; without pixels: nothing is discarded
};

// Every pixel is counted in one of the first five.
struct PixelCounts {
  size_t value = 0;
  size_t ambiguous = 0;  // rejected by the peak check
  size_t removed = 0;    // by the post-processing
  size_t masked = 0;
  size_t border = 0;  // the frame in which the matcher cannot work
  size_t filled = 0;  // of the pixels with a value, those that got it from a neighbour
};

struct Match {
  Grid<uint16_t> disparity;  // SGM_DISP_SCALE per pixel, 0 for none
  PixelCounts counts;
};

// Wants two pictures of one size, at least 5 x 5 pixels.
Match match(Pair pair, MatchOptions options, const StageRunner& run = runStage);

}  // namespace nadir::ground
