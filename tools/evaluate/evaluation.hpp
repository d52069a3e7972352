// A disparity picture or an elevation map against the truth.
#pragma once

#include "lab/grid.hpp"

namespace nadir::tool {

using lab::Grid;

// Errors are value - truth in pixels or mm, taken where both are known. Shares are fractions of 1. What has no pixel to
// be computed from is NaN.
struct Evaluation {
  size_t pixels = 0;    // of the picture
  size_t truth = 0;     // of these with a known truth
  size_t compared = 0;  // of these with a value too
  double density = 0;   // compared / truth
  double bad05 = 0;     // share of the compared whose error exceeds 0.5
  double bad1 = 0;
  double bad2 = 0;
  double mean = 0;    // of the signed errors: the bias
  double median = 0;  // of the signed errors
  double meanAbsolute = 0;
  double medianAbsolute = 0;
  double percentile95 = 0;  // of the absolute errors: 95 percent are not larger
  double rms = 0;
};

// The truth of a left picture without the pixels that the right one does not show: those left of its border and those
// that a nearer one, by more than a pixel, hides. What hides must have a known truth itself.
Grid<float> visibleInRight(const Grid<float>& truth);

// Signed errors, NaN where there is no value or no truth.
Grid<float> errors(const Grid<float>& values, const Grid<float>& truth);

Evaluation evaluate(const Grid<float>& values, const Grid<float>& truth);

}  // namespace nadir::tool
