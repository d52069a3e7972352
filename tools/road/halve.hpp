// Pictures of half the size, for cameras with more pixels than the matcher needs.
#pragma once

#include "lab/grid.hpp"

namespace nadir::tool {

using lab::Grid;

// Makes 320 x 240 pixels of 640 x 480: each is the mean of the pixels with data (not 0) in its block of 2 x 2, and 0
// where there is none.
Grid<uint16_t> halved(const Grid<uint16_t>& picture);

}  // namespace nadir::tool
