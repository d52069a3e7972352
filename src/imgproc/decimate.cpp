// This halves an image of 640x480 by taking every other pixel.
#include <nadir/imgproc.h>

#include "core/pixels.hpp"

namespace nadir {
namespace {

constexpr uint16_t outputWidth = 320, outputHeight = 240;

bool hasSize(const Img& img, uint32_t width, uint32_t height) { return img.width == width && img.height == height; }

// Img_Init gives no pixel size to a sum of types; one that contains U16 is taken for U16.
Img as16Bit(Img img) {
  if (img.bytesPerPixel == 0) img.bytesPerPixel = 2;
  return img;
}

void decimate(const Img& src, const Img& dst) {
  for (size_t y = 0; y < outputHeight; ++y) {
    const uint16_t* in = row<uint16_t>(src, 2 * y);
    uint16_t* out = row<uint16_t>(dst, y);
    forEachPixel(outputWidth, [=](size_t i) { out[i] = in[2 * i]; });
  }
}

}  // namespace
}  // namespace nadir

uint32_t IP_ScaleVga2Qvga(const Img* src, Img* dst) {
  if (!src || !dst || !nadir::hasSize(*src, 2 * nadir::outputWidth, 2 * nadir::outputHeight) ||
      !nadir::hasSize(*dst, nadir::outputWidth, nadir::outputHeight))
    return 0;
  if (!(src->type & dst->type & IMG_TYPE_U16)) return 0;
  nadir::decimate(nadir::as16Bit(*src), nadir::as16Bit(*dst));
  return 1;
}
