#include <nadir/imgproc.h>

#include <csignal>

#include "core/pixels.hpp"

namespace nadir {
namespace {

// Operations take pixels widened to 32 bits, signed or unsigned as the image is; the caller stores the low 16 bits.

// Processors differ in what dividing by zero does; the signal is part of the interface, so it is raised by hand.
template <class T>
T divided(T a, T b) {
  if (b != 0) return static_cast<T>(a / b);
  std::raise(SIGFPE);
  return 0;
}

template <class W>
W shiftedRight(W a, uint8_t n) {
  return a >> (n < 31 ? n : 31);  // 16-bit pixels: 31 leaves the sign or nothing, as any larger count does
}

uint32_t shiftedLeft(uint32_t a, uint8_t n) { return n < 16 ? a << n : 0; }

// A loop of its own: with a signal in it there is nothing to vectorise.
template <class T>
uint32_t divide(const Img& a, const Img& b, const Img& out) {
  for (size_t y = 0; y < a.height; ++y) {
    for (size_t x = 0; x < a.width; ++x) {
      row<T>(out, y)[x] = divided(row<T>(a, y)[x], row<T>(b, y)[x]);
    }
  }
  return 1;
}

template <class T, class Op>
uint32_t combine(const Img& a, const Img& b, const Img& out, Op op) {
  for (size_t y = 0; y < a.height; ++y) {
    const T* pa = row<T>(a, y);
    const T* pb = row<T>(b, y);
    T* po = row<T>(out, y);
    forEachPixel(a.width, [=](size_t i) { po[i] = static_cast<T>(op(pa[i], pb[i])); });
  }
  return 1;
}

template <class T, class W>
uint32_t imgOpImg(const Img& a, const Img& b, const Img& out, uint32_t op) {
  switch (op) {
    case IMGOP_ADD: return combine<T>(a, b, out, [](W x, W y) { return x + y; });
    case IMGOP_SUB: return combine<T>(a, b, out, [](W x, W y) { return x - y; });
    case IMGOP_MUL: return combine<T>(a, b, out, [](W x, W y) { return x * y; });
    case IMGOP_DIV: return divide<T>(a, b, out);
    case IMGOP_SHR: return combine<T>(a, b, out, [](W x, W y) { return shiftedRight(x, static_cast<uint8_t>(y)); });
    case IMGOP_SHL:
      return combine<T>(a, b, out,
                        [](W x, W y) { return shiftedLeft(static_cast<uint32_t>(x), static_cast<uint8_t>(y)); });
    default: return 0;
  }
}

}  // namespace
}  // namespace nadir

using namespace nadir;

uint32_t IP_ImgOpImg(const Img* a, const Img* b, Img* out, uint32_t op) {
  if (!a || !b || !out || !matches(*a, *b) || !matches(*a, *out)) return 0;
  if (!isType(a->type, IMG_TYPE_U16 | IMG_TYPE_S16)) return 0;
  return a->type == IMG_TYPE_S16 ? imgOpImg<int16_t, int32_t>(*a, *b, *out, op)
                                 : imgOpImg<uint16_t, uint32_t>(*a, *b, *out, op);
}

uint32_t IP_ImgOpImg_I(Img* a, const Img* b, uint32_t op) { return IP_ImgOpImg(a, b, a, op); }
