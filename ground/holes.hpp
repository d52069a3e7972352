// Small holes of an elevation map filled from around them.
#pragma once

#include "lab/grid.hpp"

namespace nadir::ground {

using lab::Grid;

// Fills patches of unseen cells (0), connected along sides and corners, that are no larger than `largest` cells.
// Larger ones stay: what nobody saw is not guessed. Returns how many cells were filled.
size_t fillHoles(Grid<uint16_t>& heights, size_t largest);

}  // namespace nadir::ground
