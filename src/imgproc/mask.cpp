// A mask keeps or clears the pixels of an image here.
#include <nadir/imgproc.h>

#include "core/pixels.hpp"
#include "imgproc/point_kernels.hpp"
#include "simd/cpu.hpp"

namespace nadir {
namespace {

template <class T>
uint32_t mask(const Img& src, const Img& selected, const Img& dst, uint32_t mode, const MaskRows<T>& rows) {
  const MaskRow<T> apply = mode == MASK_KEEP_SET ? rows.keepSet : rows.clearSet;
  apply(static_cast<const T*>(src.data), static_cast<const uint8_t*>(selected.data), static_cast<T*>(dst.data),
        pixelCount(src));
  return 1;
}

}  // namespace
}  // namespace nadir

uint32_t IP_Mask(const Img* src, const Img* selected, Img* dst, uint32_t mode) {
  if (!src || !selected || !dst || !nadir::matches(*src, *dst) || selected->type != IMG_TYPE_U8) return 0;
  if (!nadir::isType(src->type, IMG_TYPE_U8 | IMG_TYPE_U16)) return 0;
  const nadir::PointKernels& kernels = nadir::pointKernels(nadir::cpu());
  return src->type == IMG_TYPE_U8 ? nadir::mask(*src, *selected, *dst, mode, kernels.maskU8)
                                  : nadir::mask(*src, *selected, *dst, mode, kernels.maskU16);
}

uint32_t IP_Mask_I(Img* img, const Img* selected, uint32_t mode) { return IP_Mask(img, selected, img, mode); }
