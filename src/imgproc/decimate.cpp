// This halves an image of 640x480 by taking every other pixel.
#include <nadir/imgproc.h>

#include "core/pixels.hpp"
#include "imgproc/smooth_kernels.hpp"
#include "simd/cpu.hpp"

namespace nadir {
namespace {

bool hasSize(const Img& img, uint32_t width, uint32_t height) { return img.width == width && img.height == height; }

// Img_Init gives no pixel size to a sum of types; one that contains U16 is taken for U16.
Img as16Bit(Img img) {
  if (img.bytesPerPixel == 0) img.bytesPerPixel = 2;
  return img;
}

void decimate(const Img& src, const Img& dst) {
  smoothKernels(cpu()).halve(row<uint16_t>(src, 0), rowBytes(src), row<uint16_t>(dst, 0), rowBytes(dst));
}

}  // namespace
}  // namespace nadir

uint32_t IP_ScaleVga2Qvga(const Img* src, Img* dst) {
  if (!src || !dst || !nadir::hasSize(*src, 2 * nadir::halvedWidth, 2 * nadir::halvedHeight) ||
      !nadir::hasSize(*dst, nadir::halvedWidth, nadir::halvedHeight))
    return 0;
  if (!(src->type & dst->type & IMG_TYPE_U16)) return 0;
  nadir::decimate(nadir::as16Bit(*src), nadir::as16Bit(*dst));
  return 1;
}
