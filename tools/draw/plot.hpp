// Values drawn in colours, with a bar that tells which colour means what.
#pragma once

#include <utility>

#include "lab/grid.hpp"
#include "tools/draw/colours.hpp"

namespace nadir::tool {

using lab::Grid;

struct ColourScale {
  double low, high;  // the values at the two ends of the map; what lies beyond takes the end's colour
  Rgb (*map)(double t);
  const char* unit;
};

// The range of the values without the lowest 3 and the highest 1 percent, widened to whole numbers, so that a few wrong
// matches, most of which are too small, do not take the colours away from the rest. {0, 1} where there is no value.
std::pair<double, double> usualRange(const Grid<float>& values);

// The values pixel by pixel, NaN in grey, and the bar at their right. Where values lie beyond an end of the scale, the
// bar has an arrow there.
Grid<Rgb> plot(const Grid<float>& values, const ColourScale& scale);

}  // namespace nadir::tool
