// The penalties of one row for the four directions.
#pragma once

#include "stereo/kernels.hpp"

namespace nadir {

// Fills p2[0] to p2[3] (width bytes each, by PathDir) from an image row and the row above it, null for the first row.
void penaltiesOfRow(PenaltyRow penalties, const uint16_t* pixels, const uint16_t* above, size_t width,
                    uint8_t* const p2[4]);

}  // namespace nadir
