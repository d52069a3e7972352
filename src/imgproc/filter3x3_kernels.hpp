// The kernels of the 3x3 filters.
#pragma once

#include <cstddef>
#include <cstdint>

namespace nadir {

// Writes `rows` rows of `columns` pixels. Pixel x of row y is made of columns x to x + 2 of rows y to y + 2 of `src`, a
// row's pixels being `stride` elements behind those of the row above it. dst overlaps none of them; any alignment; any
// numbers of rows and columns including 0.
template <class T>
using Filter3x3 = void (*)(const T* src, size_t srcStride, T* dst, size_t dstStride, size_t rows, size_t columns);

template <class T>
struct MorphFilters {
  Filter3x3<T> erode, dilate, clean;
};

struct Filter3x3Kernels {
  Filter3x3<uint16_t> medianU16;
  Filter3x3<int16_t> medianS16;
  Filter3x3<uint16_t> maximum;
  MorphFilters<uint8_t> morphU8;
  MorphFilters<uint16_t> morphU16;
};

// The fastest kernels among the levels `cpu` (a set of Cpu bits).
const Filter3x3Kernels& filter3x3Kernels(unsigned cpu);

extern const Filter3x3Kernels filter3x3Scalar, filter3x3Neon, filter3x3Sse41, filter3x3Avx2, filter3x3Avx512;

}  // namespace nadir
