// Stored whole numbers become measurements here, and nowhere else.
#include "ground/known_values.hpp"

#include <algorithm>
#include <cmath>

namespace nadir::ground {

Grid<float> unpacked(const Grid<uint16_t>& stored, double scale) {
  Grid<float> values(stored.width, stored.height, std::nanf(""));
  for (size_t i = 0; i < stored.pixels.size(); ++i)
    if (stored.pixels[i] != 0) values.pixels[i] = static_cast<float>(stored.pixels[i] / scale);
  return values;
}

size_t countKnown(const Grid<float>& grid) {
  return static_cast<size_t>(
      std::count_if(grid.pixels.begin(), grid.pixels.end(), [](float v) { return !std::isnan(v); }));
}

}  // namespace nadir::ground
