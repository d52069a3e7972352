#include <nadir/imgproc.h>

#include "core/pixels.hpp"

namespace nadir {
namespace {

template <class T>
uint32_t mask(const Img& src, const Img& selected, const Img& dst, bool clearSet) {
  const T* in = static_cast<const T*>(src.data);
  const uint8_t* set = static_cast<const uint8_t*>(selected.data);
  T* out = static_cast<T*>(dst.data);
  if (clearSet) {
    forEachPixel(pixelCount(src), [=](size_t i) { out[i] = set[i] ? T{0} : in[i]; });
  } else {
    forEachPixel(pixelCount(src), [=](size_t i) { out[i] = set[i] ? in[i] : T{0}; });
  }
  return 1;
}

}  // namespace
}  // namespace nadir

using namespace nadir;

uint32_t IP_Mask(const Img* src, const Img* selected, Img* dst, uint32_t mode) {
  if (!src || !selected || !dst || !matches(*src, *dst) || selected->type != IMG_TYPE_U8) return 0;
  if (!isType(src->type, IMG_TYPE_U8 | IMG_TYPE_U16)) return 0;
  const bool clearSet = mode != MASK_KEEP_SET;
  return src->type == IMG_TYPE_U8 ? mask<uint8_t>(*src, *selected, *dst, clearSet)
                                  : mask<uint16_t>(*src, *selected, *dst, clearSet);
}

uint32_t IP_Mask_I(Img* img, const Img* selected, uint32_t mode) { return IP_Mask(img, selected, img, mode); }
