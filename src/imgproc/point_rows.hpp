// Thresholds, arithmetic and masks of one row as plain loops that the compiler turns into vectors of whatever it
// compiles for. Each instruction set includes this file once and names itself by a type of its own, so that the linker
// never takes one set's code for another's.
#pragma once

#include "core/pixels.hpp"
#include "imgproc/point_kernels.hpp"

namespace nadir {

template <class Target>
struct PointRows {
  static bool isInside(uint16_t v, PixelRange range) { return static_cast<uint16_t>(v - range.lo) <= range.span; }

  static void zeroInside(const uint16_t* src, uint16_t* dst, size_t n, PixelRange range) {
    forEachPixel(n, [=](size_t i) {
      const uint16_t v = src[i];
      dst[i] = isInside(v, range) ? uint16_t{0} : v;
    });
  }

  static void zeroOutside(const uint16_t* src, uint16_t* dst, size_t n, PixelRange range) {
    forEachPixel(n, [=](size_t i) {
      const uint16_t v = src[i];
      dst[i] = isInside(v, range) ? v : uint16_t{0};
    });
  }

  static void add(const uint16_t* a, const uint16_t* b, uint16_t* out, size_t n) {
    forEachPixel(n, [=](size_t i) { out[i] = static_cast<uint16_t>(a[i] + b[i]); });
  }

  static void subtract(const uint16_t* a, const uint16_t* b, uint16_t* out, size_t n) {
    forEachPixel(n, [=](size_t i) { out[i] = static_cast<uint16_t>(a[i] - b[i]); });
  }

  static void multiply(const uint16_t* a, const uint16_t* b, uint16_t* out, size_t n) {
    forEachPixel(n, [=](size_t i) { out[i] = static_cast<uint16_t>(uint32_t{a[i]} * b[i]); });
  }

  // A count of shifts is the low 8 bits of b. Shifts by 1, 2, 4 and 8 make up any below 16: not all instruction sets
  // can shift every pixel by an amount of its own.
  template <class T>
  static T shiftedRight(T v, uint16_t count) {
    v = count & 1 ? static_cast<T>(v >> 1) : v;
    v = count & 2 ? static_cast<T>(v >> 2) : v;
    v = count & 4 ? static_cast<T>(v >> 4) : v;
    return count & 8 ? static_cast<T>(v >> 8) : v;
  }

  static uint16_t shiftedLeft(uint16_t v, uint16_t count) {
    v = count & 1 ? static_cast<uint16_t>(v << 1) : v;
    v = count & 2 ? static_cast<uint16_t>(v << 2) : v;
    v = count & 4 ? static_cast<uint16_t>(v << 4) : v;
    return count & 8 ? static_cast<uint16_t>(v << 8) : v;
  }

  static void shiftLeft(const uint16_t* a, const uint16_t* b, uint16_t* out, size_t n) {
    forEachPixel(n, [=](size_t i) {
      const uint16_t count = b[i] & 0xFF, v = shiftedLeft(a[i], count);
      out[i] = count < 16 ? v : uint16_t{0};
    });
  }

  static void shiftRightU16(const uint16_t* a, const uint16_t* b, uint16_t* out, size_t n) {
    forEachPixel(n, [=](size_t i) {
      const uint16_t count = b[i] & 0xFF, v = shiftedRight(a[i], count);
      out[i] = count < 16 ? v : uint16_t{0};
    });
  }

  // Shifts by 15 or more leave nothing but the sign.
  static void shiftRightS16(const uint16_t* a, const uint16_t* b, uint16_t* out, size_t n) {
    forEachPixel(n, [=](size_t i) {
      const uint16_t count = b[i] & 0xFF, most = count < 15 ? count : uint16_t{15};
      out[i] = static_cast<uint16_t>(shiftedRight(static_cast<int16_t>(a[i]), most));
    });
  }

  // Floats are divided several at once. A quotient that is no whole number lies at least 1 / |b| below the
  // next one, which is more than the 2^-24 of it that rounding can add, so it is cut to the same number.
  template <class T>
  static void divide(const uint16_t* a, const uint16_t* b, uint16_t* out, size_t n) {
    forEachPixel(n, [=](size_t i) {
      const float quotient = static_cast<float>(static_cast<T>(a[i])) / static_cast<float>(static_cast<T>(b[i]));
      out[i] = static_cast<uint16_t>(static_cast<int32_t>(quotient));
    });
  }

  template <class T>
  static void keepSet(const T* src, const uint8_t* set, T* dst, size_t n) {
    forEachPixel(n, [=](size_t i) {
      const T v = src[i];
      dst[i] = set[i] != 0 ? v : T{0};
    });
  }

  template <class T>
  static void clearSet(const T* src, const uint8_t* set, T* dst, size_t n) {
    forEachPixel(n, [=](size_t i) {
      const T v = src[i];
      dst[i] = set[i] != 0 ? T{0} : v;
    });
  }

  static constexpr PointKernels table() {
    PointKernels kernels = {};
    kernels.zeroInside = zeroInside;
    kernels.zeroOutside = zeroOutside;
    kernels.add = add;
    kernels.subtract = subtract;
    kernels.multiply = multiply;
    kernels.shiftLeft = shiftLeft;
    kernels.shiftRightU16 = shiftRightU16;
    kernels.shiftRightS16 = shiftRightS16;
    kernels.divideU16 = divide<uint16_t>;
    kernels.divideS16 = divide<int16_t>;
    kernels.maskU8.keepSet = keepSet<uint8_t>;
    kernels.maskU8.clearSet = clearSet<uint8_t>;
    kernels.maskU16.keepSet = keepSet<uint16_t>;
    kernels.maskU16.clearSet = clearSet<uint16_t>;
    return kernels;
  }
};

}  // namespace nadir
