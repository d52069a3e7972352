// The row kernels of the 3x3 filters.
#pragma once

#include <cstddef>
#include <cstdint>

namespace nadir {

// Writes dst[0, n), where dst[i] is made of columns i, i + 1 and i + 2 of three rows of n + 2 pixels. dst overlaps none
// of them; any alignment; any n including 0.
template <class T>
using Filter3x3Row = void (*)(const T* above, const T* at, const T* below, T* dst, size_t n);

template <class T>
struct MorphRows {
  Filter3x3Row<T> erode, dilate, clean;
};

struct Filter3x3Kernels {
  Filter3x3Row<uint16_t> medianU16;
  Filter3x3Row<int16_t> medianS16;
  Filter3x3Row<uint16_t> maximum;
  MorphRows<uint8_t> morphU8;
  MorphRows<uint16_t> morphU16;
};

// The fastest kernels among the levels `cpu` (a set of Cpu bits).
const Filter3x3Kernels& filter3x3Kernels(unsigned cpu);

extern const Filter3x3Kernels filter3x3Scalar, filter3x3Sse41, filter3x3Avx2;

}  // namespace nadir
