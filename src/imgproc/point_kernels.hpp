// The row kernels of thresholds, arithmetic and masks: what happens to a pixel depends on no other pixel.
#pragma once

#include <cstddef>
#include <cstdint>

namespace nadir {

// Pixels v with (v - lo) mod 2^16 <= span. That is lo <= v <= lo + span, for signed pixels as for unsigned ones.
struct PixelRange {
  uint16_t lo, span;
};

using RangeRow = void (*)(const uint16_t* src, uint16_t* dst, size_t n, PixelRange range);
using CombineRow = void (*)(const uint16_t* a, const uint16_t* b, uint16_t* out, size_t n);
template <class T>
using MaskRow = void (*)(const T* src, const uint8_t* set, T* dst, size_t n);

template <class T>
struct MaskRows {
  MaskRow<T> keepSet, clearSet;
};

// Each writes [0, n) of its output, any n including 0, any alignment of the elements' own. The output may be an input.
struct PointKernels {
  RangeRow zeroInside, zeroOutside;
  CombineRow add, subtract, multiply, shiftLeft;
  CombineRow shiftRightU16, shiftRightS16;
  CombineRow divideU16, divideS16;  // no divisor is 0
  MaskRows<uint8_t> maskU8;
  MaskRows<uint16_t> maskU16;
};

// The fastest kernels among the levels `cpu` (a set of Cpu bits).
const PointKernels& pointKernels(unsigned cpu);

extern const PointKernels pointScalar, pointAvx2;

}  // namespace nadir
