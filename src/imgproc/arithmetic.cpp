// Two images are combined pixel by pixel here.
#include <nadir/imgproc.h>

#include <algorithm>
#include <csignal>

#include "core/pixels.hpp"
#include "imgproc/point_kernels.hpp"
#include "simd/cpu.hpp"

namespace nadir {
namespace {

constexpr size_t divisionBlock = 1024;

// Processors differ in what dividing by zero does. Programs on those that stop there count on the signal, so it is
// raised by hand on all.
template <class T>
uint16_t divided(T a, T b) {
  if (b != 0) return static_cast<uint16_t>(a / b);
  std::raise(SIGFPE);
  return 0;
}

template <class T>
void divideOneByOne(const uint16_t* a, const uint16_t* b, uint16_t* out, size_t n) {
  for (size_t i = 0; i < n; ++i) out[i] = divided(static_cast<T>(a[i]), static_cast<T>(b[i]));
}

// The row is divided block by block, so that only blocks with a zero among the divisors take the slow way.
template <class T>
void divideRow(const uint16_t* a, const uint16_t* b, uint16_t* out, size_t n, CombineRow divide) {
  for (size_t i = 0; i < n; i += divisionBlock) {
    const size_t count = std::min(n - i, divisionBlock);
    const bool hasZero = std::find(b + i, b + i + count, 0) != b + i + count;
    (hasZero ? divideOneByOne<T> : divide)(a + i, b + i, out + i, count);
  }
}

uint32_t combine(const Img& a, const Img& b, const Img& out, CombineRow apply) {
  forEachRow<uint16_t>([=](size_t n, const uint16_t* pa, const uint16_t* pb, uint16_t* po) { apply(pa, pb, po, n); }, a,
                       b, out);
  return 1;
}

template <class T>
uint32_t divide(const Img& a, const Img& b, const Img& out, CombineRow apply) {
  forEachRow<uint16_t>(
      [=](size_t n, const uint16_t* pa, const uint16_t* pb, uint16_t* po) { divideRow<T>(pa, pb, po, n, apply); }, a, b,
      out);
  return 1;
}

}  // namespace
}  // namespace nadir

uint32_t IP_ImgOpImg(const Img* a, const Img* b, Img* out, uint32_t op) {
  if (!a || !b || !out || !nadir::matches(*a, *b) || !nadir::matches(*a, *out)) return 0;
  if (!nadir::isType(a->type, IMG_TYPE_U16 | IMG_TYPE_S16)) return 0;
  const bool isSigned = a->type == IMG_TYPE_S16;
  const nadir::PointKernels& kernels = nadir::pointKernels(nadir::cpu());
  switch (op) {
    case IMGOP_ADD: return nadir::combine(*a, *b, *out, kernels.add);
    case IMGOP_SUB: return nadir::combine(*a, *b, *out, kernels.subtract);
    case IMGOP_MUL: return nadir::combine(*a, *b, *out, kernels.multiply);
    case IMGOP_DIV:
      return isSigned ? nadir::divide<int16_t>(*a, *b, *out, kernels.divideS16)
                      : nadir::divide<uint16_t>(*a, *b, *out, kernels.divideU16);
    case IMGOP_SHR: return nadir::combine(*a, *b, *out, isSigned ? kernels.shiftRightS16 : kernels.shiftRightU16);
    case IMGOP_SHL: return nadir::combine(*a, *b, *out, kernels.shiftLeft);
    default: return 0;
  }
}

uint32_t IP_ImgOpImg_I(Img* a, const Img* b, uint32_t op) { return IP_ImgOpImg(a, b, a, op); }
