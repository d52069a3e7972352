// Thresholds set the pixels inside or outside of a range to 0 here.
#include <nadir/imgproc.h>

#include <limits>

#include "core/pixels.hpp"
#include "imgproc/point_kernels.hpp"
#include "simd/cpu.hpp"

namespace nadir {
namespace {

enum class Zero { inside, outside };

// Sets the pixels lo <= v <= hi, or all others, to 0. Where lo > hi no pixel lies inside, and so those outside are all.
template <class T>
uint32_t zero(Zero where, T lo, T hi, const Img& src, const Img& dst) {
  if (lo > hi) {
    return zero(where == Zero::inside ? Zero::outside : Zero::inside, std::numeric_limits<T>::min(),
                std::numeric_limits<T>::max(), src, dst);
  }
  const PixelRange range = {static_cast<uint16_t>(lo), static_cast<uint16_t>(hi - lo)};
  const PointKernels& kernels = pointKernels(cpu());
  const RangeRow apply = where == Zero::inside ? kernels.zeroInside : kernels.zeroOutside;
  forEachRow<uint16_t>([=](size_t n, const uint16_t* in, uint16_t* out) { apply(in, out, n, range); }, src, dst);
  return 1;
}

template <class T>
uint32_t threshold(const Img& src, const Img& dst, T t, uint32_t mode) {
  constexpr T lowest = std::numeric_limits<T>::min(), highest = std::numeric_limits<T>::max();
  switch (mode) {
    case THRESH_ZERO_BELOW: return zero(Zero::outside, t, highest, src, dst);
    case THRESH_KEEP_ABOVE: return zero(Zero::inside, lowest, t, src, dst);
    case THRESH_ZERO_EQUAL: return zero(Zero::inside, t, t, src, dst);
    case THRESH_KEEP_BELOW: return zero(Zero::inside, t, highest, src, dst);
    case THRESH_ZERO_ABOVE: return zero(Zero::outside, lowest, t, src, dst);
    default: return 0;
  }
}

template <class T>
uint32_t thresholdRange(const Img& src, const Img& dst, T lo, T hi, int32_t mode) {
  switch (mode) {
    case THRESH_ZERO_INSIDE: return zero(Zero::inside, lo, hi, src, dst);
    case THRESH_ZERO_OUTSIDE: return zero(Zero::outside, lo, hi, src, dst);
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

uint32_t IP_Threshold(const Img* src, Img* dst, uint32_t t, uint32_t mode) {
  if (!nadir::canThreshold(src, dst)) return 0;
  return src->type == IMG_TYPE_S16 ? nadir::threshold(*src, *dst, nadir::low16Signed(t), mode)
                                   : nadir::threshold(*src, *dst, nadir::low16(t), mode);
}

uint32_t IP_Threshold_I(Img* img, uint32_t t, uint32_t mode) { return IP_Threshold(img, img, t, mode); }

uint32_t IP_ThresholdRange(const Img* src, Img* dst, uint32_t lo, uint32_t hi, int32_t mode) {
  if (!nadir::canThreshold(src, dst)) return 0;
  return src->type == IMG_TYPE_S16
             ? nadir::thresholdRange(*src, *dst, nadir::low16Signed(lo), nadir::low16Signed(hi), mode)
             : nadir::thresholdRange(*src, *dst, nadir::low16(lo), nadir::low16(hi), mode);
}

uint32_t IP_ThresholdRange_I(Img* img, uint32_t lo, uint32_t hi, int32_t mode) {
  return IP_ThresholdRange(img, img, lo, hi, mode);
}
