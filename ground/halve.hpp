#pragma once

#include "lab/grid.hpp"

namespace nadir::ground {

using lab::Grid;

// A picture of 640 x 480 pixels to 320 x 240: the mean of the pixels with data (not 0) in each block of 2 x 2, 0 where
// there is none.
Grid<uint16_t> halved(const Grid<uint16_t>& picture);

}  // namespace nadir::ground
