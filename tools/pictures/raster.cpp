// The limit of a picture's size.
#include "tools/pictures/raster.hpp"

#include "tools/base/error.hpp"
#include "tools/base/text.hpp"

namespace nadir::tool {

void checkRasterSize(uint32_t width, uint32_t height) {
  if (width > 65535 || height > 65535 || uint64_t{width} * height > 1u << 25)
    throw Error("it is too large (" + sizeText(width, height) + " pixels)");
}

}  // namespace nadir::tool
