// Every filter as a plain loop over a row, which compilers also turn into whatever vectors the plain processor has.
#include "core/pixels.hpp"
#include "imgproc/filter3x3_kernels.hpp"

namespace nadir {
namespace {

// These take values: with the references of std::min and std::max the compiler makes no vectors of most loops here.
template <class T>
T lesser(T a, T b) {
  return a < b ? a : b;
}

template <class T>
T greater(T a, T b) {
  return a > b ? a : b;
}

template <class T>
T middle(T a, T b, T c) {
  return greater(lesser(a, b), lesser(greater(a, b), c));
}

// The median of nine is the middle one of: the largest of the columns' minima, the middle of their medians, the
// smallest of their maxima.
template <class T>
void median(const T* above, const T* at, const T* below, T* dst, size_t n) {
  forEachPixel(n, [=](size_t i) {
    T lo[3], mid[3], hi[3];
    for (size_t k = 0; k < 3; ++k) {
      const T a = above[i + k], b = at[i + k], c = below[i + k];
      const T ab = lesser(a, b), ba = greater(a, b);
      lo[k] = lesser(ab, c);
      mid[k] = greater(ab, lesser(ba, c));
      hi[k] = greater(ba, c);
    }
    dst[i] = middle(greater(greater(lo[0], lo[1]), lo[2]), middle(mid[0], mid[1], mid[2]),
                    lesser(lesser(hi[0], hi[1]), hi[2]));
  });
}

void maximum(const uint16_t* above, const uint16_t* at, const uint16_t* below, uint16_t* dst, size_t n) {
  forEachPixel(n, [=](size_t i) {
    uint16_t hi = 0;
    for (size_t k = 0; k < 3; ++k) hi = greater(hi, greater(greater(above[i + k], at[i + k]), below[i + k]));
    dst[i] = at[i + 1] == 0 ? uint16_t{0} : hi;
  });
}

// A zero anywhere in the window makes the minimum 0, and the result is 0 in just that case.
template <class T>
void erode(const T* above, const T* at, const T* below, T* dst, size_t n) {
  forEachPixel(n, [=](size_t i) {
    T lo = at[i];
    for (size_t k = 0; k < 3; ++k) lo = lesser(lo, lesser(lesser(above[i + k], at[i + k]), below[i + k]));
    dst[i] = lo;
  });
}

template <class T>
void dilate(const T* above, const T* at, const T* below, T* dst, size_t n) {
  forEachPixel(n, [=](size_t i) {
    T hi = 0;
    for (size_t k = 0; k < 3; ++k) hi = greater(hi, greater(greater(above[i + k], at[i + k]), below[i + k]));
    dst[i] = hi;
  });
}

// Counts the neighbours with data and remembers the last of them in raster order, which a hole takes.
template <class T>
void clean(const T* above, const T* at, const T* below, T* dst, size_t n) {
  forEachPixel(n, [=](size_t i) {
    const T neighbours[8] = {above[i],  above[i + 1], above[i + 2], at[i],
                             at[i + 2], below[i],     below[i + 1], below[i + 2]};
    T count = 0, last = 0;
    for (size_t k = 0; k < 8; ++k) {
      count = static_cast<T>(count + (neighbours[k] != 0));
      last = neighbours[k] != 0 ? neighbours[k] : last;
    }
    const T centre = at[i + 1];
    const T kept = count < 4 ? T{0} : centre;
    dst[i] = centre == 0 ? last : kept;
  });
}

template <class T>
using FilterRow = void (*)(const T* above, const T* at, const T* below, T* dst, size_t n);

template <class T, FilterRow<T> filterRow>
void filter(const T* src, size_t srcStride, T* dst, size_t dstStride, size_t rows, size_t columns) {
  for (; rows > 0; --rows, src += srcStride, dst += dstStride) {
    filterRow(src, src + srcStride, src + 2 * srcStride, dst, columns);
  }
}

template <class T>
constexpr MorphFilters<T> morphFilters() {
  MorphFilters<T> filters = {};
  filters.erode = filter<T, erode<T>>;
  filters.dilate = filter<T, dilate<T>>;
  filters.clean = filter<T, clean<T>>;
  return filters;
}

constexpr Filter3x3Kernels scalarKernels() {
  Filter3x3Kernels kernels = {};
  kernels.medianU16 = filter<uint16_t, median<uint16_t>>;
  kernels.medianS16 = filter<int16_t, median<int16_t>>;
  kernels.maximum = filter<uint16_t, maximum>;
  kernels.morphU8 = morphFilters<uint8_t>();
  kernels.morphU16 = morphFilters<uint16_t>();
  return kernels;
}

}  // namespace

const Filter3x3Kernels filter3x3Scalar = scalarKernels();

}  // namespace nadir
