// The numbers of a picture as files that other programs read: PFM and NumPy's NPY.
#pragma once

#include "lab/grid.hpp"
#include "tools/files/files.hpp"

namespace nadir::tool {

using lab::Grid;

// Little endian, rows from the bottom up; infinity where there is no value, as the field's data sets have it
// (https://www.pauldebevec.com/Research/HDR/PFM).
Bytes encodePfm(const Grid<float>& numbers);

// Version 1.0, little endian, rows from the top down; NaN where there is no value
// (https://numpy.org/doc/stable/reference/generated/numpy.lib.format.html).
Bytes encodeNpy(const Grid<float>& numbers);
Bytes encodeNpy(const Grid<uint16_t>& numbers);
Bytes encodeNpy(const Grid<uint8_t>& numbers);

}  // namespace nadir::tool
