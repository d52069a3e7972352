// Binary PGM (P5) and PPM (P6) in memory.
#pragma once

#include "tools/files/files.hpp"
#include "tools/pictures/raster.hpp"

namespace nadir::tool {

bool isPnm(const Bytes& bytes);

// 8-bit samples are stretched from 0..maximum to 0..255, 16-bit ones (maximum above 255) are taken as they are. Throws
// Error with the reason alone.
Raster decodePnm(const Bytes& bytes);

}  // namespace nadir::tool
