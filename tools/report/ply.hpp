// Point clouds as binary PLY.
#pragma once

#include <nadir/ground.h>

#include "lab/grid.hpp"
#include "tools/files/files.hpp"

namespace nadir::tool {

using lab::Grid;

// Little-endian vertices in mm: world x, y, z (z downwards), the height above the ground, and the picture's grey.
//
// picture  whose pixels the points are.
Bytes encodePly(const std::vector<NadirPoint>& points, const Grid<uint16_t>& picture, float groundZ);

}  // namespace nadir::tool
