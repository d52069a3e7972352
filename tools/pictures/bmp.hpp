// BMP in memory.
#pragma once

#include "tools/files/files.hpp"
#include "tools/pictures/raster.hpp"

namespace nadir::tool {

bool isBmp(const Bytes& bytes);

// A picture of three channels of 8 bits. Throws Error with the reason alone.
Raster decodeBmp(const Bytes& bytes);

}  // namespace nadir::tool
