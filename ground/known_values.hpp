// Grids of measurements in their unit, where not-a-number says that there is none.
#pragma once

#include "lab/grid.hpp"

namespace nadir::ground {

using lab::Grid;

// Whole numbers are stored as `scale` for one unit, and 0 stands for no measurement.
Grid<float> unpacked(const Grid<uint16_t>& stored, double scale);

// The number of cells that are not NaN.
size_t countKnown(const Grid<float>& grid);

}  // namespace nadir::ground
