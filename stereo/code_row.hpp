// One row of census codes as the cost kernels want it.
#pragma once

#include "stereo/kernels.hpp"

namespace nadir {

// The codes of rows 0, 1, height - 2 and height - 1, and of columns that near to a side, do not exist.
inline bool isBorderRow(uint32_t row, uint32_t height) { return row < 2 || row >= height - 2; }

// False if a code is neither one that a census makes nor the invalid one.
bool areCensusCodes(const uint32_t* codes, size_t n);

}  // namespace nadir
