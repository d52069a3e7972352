#include <nadir/imgproc.h>

#include "core/pixels.hpp"

namespace nadir {
namespace {

template <class T, class Zero>
uint32_t zeroWhere(const Img& src, const Img& dst, Zero zero) {
  for (size_t y = 0; y < src.height; ++y) {
    const T* in = row<T>(src, y);
    T* out = row<T>(dst, y);
    forEachPixel(src.width, [=](size_t i) { out[i] = zero(in[i]) ? T{0} : in[i]; });
  }
  return 1;
}

template <class T>
uint32_t threshold(const Img& src, const Img& dst, T t, uint32_t mode) {
  switch (mode) {
    case THRESH_ZERO_BELOW: return zeroWhere<T>(src, dst, [=](T v) { return v < t; });
    case THRESH_KEEP_ABOVE: return zeroWhere<T>(src, dst, [=](T v) { return v <= t; });
    case THRESH_ZERO_EQUAL: return zeroWhere<T>(src, dst, [=](T v) { return v == t; });
    case THRESH_KEEP_BELOW: return zeroWhere<T>(src, dst, [=](T v) { return v >= t; });
    case THRESH_ZERO_ABOVE: return zeroWhere<T>(src, dst, [=](T v) { return v > t; });
    default: return 0;
  }
}

template <class T>
uint32_t thresholdRange(const Img& src, const Img& dst, T lo, T hi, int32_t mode) {
  switch (mode) {
    case THRESH_ZERO_INSIDE: return zeroWhere<T>(src, dst, [=](T v) { return (v >= lo) & (v <= hi); });
    case THRESH_ZERO_OUTSIDE: return zeroWhere<T>(src, dst, [=](T v) { return (v < lo) | (v > hi); });
    default: return 0;
  }
}

bool canThreshold(const Img* src, const Img* dst) {
  return src && dst && matches(*src, *dst) && isType(src->type, IMG_TYPE_U16 | IMG_TYPE_S16);
}

int16_t low16Signed(uint32_t word) { return static_cast<int16_t>(word); }
uint16_t low16(uint32_t word) { return static_cast<uint16_t>(word); }

}  // namespace
}  // namespace nadir

using namespace nadir;

uint32_t IP_Threshold(const Img* src, Img* dst, uint32_t t, uint32_t mode) {
  if (!canThreshold(src, dst)) return 0;
  return src->type == IMG_TYPE_S16 ? threshold(*src, *dst, low16Signed(t), mode)
                                   : threshold(*src, *dst, low16(t), mode);
}

uint32_t IP_Threshold_I(Img* img, uint32_t t, uint32_t mode) { return IP_Threshold(img, img, t, mode); }

uint32_t IP_ThresholdRange(const Img* src, Img* dst, uint32_t lo, uint32_t hi, int32_t mode) {
  if (!canThreshold(src, dst)) return 0;
  return src->type == IMG_TYPE_S16 ? thresholdRange(*src, *dst, low16Signed(lo), low16Signed(hi), mode)
                                   : thresholdRange(*src, *dst, low16(lo), low16(hi), mode);
}

uint32_t IP_ThresholdRange_I(Img* img, uint32_t lo, uint32_t hi, int32_t mode) {
  return IP_ThresholdRange(img, img, lo, hi, mode);
}
