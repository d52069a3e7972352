// JPEG in memory.
#pragma once

#include "tools/files/files.hpp"
#include "tools/pictures/raster.hpp"

namespace nadir::tool {

bool isJpeg(const Bytes& bytes);

// A picture of 8 bits, grey or colour. It is taken as its pixels lie: how the camera was held, which Exif may tell,
// turns nothing. What can be seen to be damaged is refused, but a JPEG has no checksum. Throws Error with the reason
// alone.
Raster decodeJpeg(const Bytes& bytes);

}  // namespace nadir::tool
