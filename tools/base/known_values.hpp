// Grids of measurements in their unit, where not-a-number says that there is none.
#pragma once

#include <algorithm>
#include <cmath>

#include "lab/grid.hpp"

namespace nadir::tool {

using lab::Grid;

// Whole numbers are stored as `scale` for one unit, and 0 stands for no measurement.
inline Grid<float> unpacked(const Grid<uint16_t>& stored, double scale) {
  Grid<float> values(stored.width, stored.height, std::nanf(""));
  for (size_t i = 0; i < stored.pixels.size(); ++i)
    if (stored.pixels[i] != 0) values.pixels[i] = static_cast<float>(stored.pixels[i] / scale);
  return values;
}

// The number of cells that are not NaN.
inline size_t countKnown(const Grid<float>& grid) {
  const auto isKnown = [](float value) { return !std::isnan(value); };
  return static_cast<size_t>(std::count_if(grid.pixels.begin(), grid.pixels.end(), isKnown));
}

}  // namespace nadir::tool
