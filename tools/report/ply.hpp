// Point clouds as binary PLY.
#pragma once

#include "ground/points.hpp"
#include "tools/files/files.hpp"

namespace nadir::tool {

// Little-endian vertices in mm: world x, y, z (z downwards), the height above the ground, and the picture's grey.
Bytes encodePly(const std::vector<ground::WorldPoint>& points, float groundZ);

}  // namespace nadir::tool
