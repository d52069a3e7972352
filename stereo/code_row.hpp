// One row of census codes as the cost kernels want it.
#pragma once

#include "stereo/kernels.hpp"

namespace nadir {

// The codes of rows 0, 1, height - 2 and height - 1, and of columns that near to a side, do not exist.
inline bool isBorderRow(uint32_t row, uint32_t height) { return row < 2 || row >= height - 2; }

// False if a code is neither one that a census makes nor the invalid one.
bool areCensusCodes(const uint32_t* codes, size_t n);

// Memory for the planes of `codes` codes and the invalid ones behind them.
constexpr size_t planeBytes(size_t codes) { return 4 * (codes + disparities - 1); }

// Splits n codes into planes within `memory` (planeBytes(n) bytes), with disparities - 1 invalid codes behind them.
CodePlanes splitCodes(const uint32_t* codes, size_t n, uint8_t* memory);

}  // namespace nadir
