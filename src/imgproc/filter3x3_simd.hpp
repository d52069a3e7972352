// The 3x3 filters in strips as wide as one vector. A strip goes down the image and keeps what it made of the last two
// rows in registers: a row is loaded once, at three offsets, and whatever concerns its three columns is done once.
//
// Each instruction set includes this file once and names itself by a type of its own, so that the linker never takes
// one set's code for another's.
#pragma once

#include <cstring>

#include "imgproc/filter3x3_kernels.hpp"

namespace nadir {

template <class Target, size_t vectorBytes, class T>
struct Filter3x3Strips {
  typedef T Vector __attribute__((vector_size(vectorBytes)));
  static constexpr size_t vectorLanes = vectorBytes / sizeof(T);

  // How a strip's rows come from memory and go there: as whole vectors, or only their first lanes.
  struct WholeRow {
    Vector load(const T* from) const {
      Vector v;
      std::memcpy(&v, from, sizeof v);
      return v;
    }
    void store(T* to, const Vector& v) const { std::memcpy(to, &v, sizeof v); }
  };
  struct NarrowRow {
    size_t lanes;

    Vector load(const T* from) const {
      Vector v = {};
      std::memcpy(&v, from, lanes * sizeof(T));
      return v;
    }
    void store(T* to, const Vector& v) const { std::memcpy(to, &v, lanes * sizeof(T)); }
  };

  static Vector lesser(Vector a, Vector b) { return a < b ? a : b; }
  static Vector lesser(Vector a, Vector b, Vector c) { return lesser(lesser(a, b), c); }
  static Vector greater(Vector a, Vector b) { return a > b ? a : b; }
  static Vector greater(Vector a, Vector b, Vector c) { return greater(greater(a, b), c); }
  static Vector middle(Vector a, Vector b, Vector c) { return greater(lesser(a, b), lesser(greater(a, b), c)); }

  // The median of nine is the middle one of: the largest of the rows' minima, the middle of their medians, the
  // smallest of their maxima.
  struct Median {
    Vector lo, mid, hi;

    static Median ofRow(Vector a, Vector b, Vector c) {
      const Vector ab = lesser(a, b), ba = greater(a, b);
      return {lesser(ab, c), greater(ab, lesser(ba, c)), greater(ba, c)};
    }
    static Vector ofRows(const Median& a, const Median& b, const Median& c) {
      return middle(greater(a.lo, b.lo, c.lo), middle(a.mid, b.mid, c.mid), lesser(a.hi, b.hi, c.hi));
    }
  };

  struct Dilate {
    Vector hi;

    static Dilate ofRow(Vector a, Vector b, Vector c) { return {greater(a, b, c)}; }
    static Vector ofRows(const Dilate& a, const Dilate& b, const Dilate& c) { return greater(a.hi, b.hi, c.hi); }
  };

  // The maximum is one of pixels with data; those without stay so.
  struct Maximum {
    Vector hi, centre;

    static Maximum ofRow(Vector a, Vector b, Vector c) { return {greater(a, b, c), b}; }
    static Vector ofRows(const Maximum& a, const Maximum& b, const Maximum& c) {
      return greater(a.hi, b.hi, c.hi) & Vector(b.centre != 0);
    }
  };

  // A zero anywhere in the window makes the minimum 0, and the result is 0 in just that case.
  struct Erode {
    Vector lo;

    static Erode ofRow(Vector a, Vector b, Vector c) { return {lesser(a, b, c)}; }
    static Vector ofRows(const Erode& a, const Erode& b, const Erode& c) { return lesser(a.lo, b.lo, c.lo); }
  };

  // Counts the neighbours with data and remembers the last of them in raster order, which a hole takes. Comparisons
  // give -1 where they hold, so counts are negative.
  struct Clean {
    Vector sides, lastOfSides;  // the count and the last of the left and the right pixel
    Vector all, lastOfAll;      // and with the one between them
    Vector centre;

    static Clean ofRow(Vector a, Vector b, Vector c) {
      const Vector sides = Vector(a != 0) + Vector(c != 0);
      return {sides, c != 0 ? c : a, sides + Vector(b != 0), c != 0 ? c : b != 0 ? b : a, b};
    }
    static Vector ofRows(const Clean& a, const Clean& b, const Clean& c) {
      const Vector count = -(a.all + b.sides + c.all);
      const Vector last = c.lastOfAll != 0 ? c.lastOfAll : b.lastOfSides != 0 ? b.lastOfSides : a.lastOfAll;
      const Vector kept = count < 4 ? Vector{} : b.centre;
      return b.centre == 0 ? last : kept;
    }
  };

  template <class Filter, class Row>
  static void strip(const T* src, size_t srcStride, T* dst, size_t dstStride, size_t rows, Row row) {
    const auto ofRow = [=](size_t y) {
      const T* from = src + y * srcStride;
      return Filter::ofRow(row.load(from), row.load(from + 1), row.load(from + 2));
    };
    Filter above = ofRow(0), at = ofRow(1);
    for (size_t y = 0; y < rows; ++y) {
      const Filter below = ofRow(y + 2);
      row.store(dst + y * dstStride, Filter::ofRows(above, at, below));
      above = at;
      at = below;
    }
  }

  // The last strip is shifted back to end with the columns; what it makes once more comes out the same.
  template <class Filter>
  static void filter(const T* src, size_t srcStride, T* dst, size_t dstStride, size_t rows, size_t columns) {
    const auto stripAt = [=](size_t x, auto row) { strip<Filter>(src + x, srcStride, dst + x, dstStride, rows, row); };
    if (rows == 0 || columns == 0) return;
    if (columns < vectorLanes) return stripAt(0, NarrowRow{columns});
    const size_t whole = columns / vectorLanes * vectorLanes;
    for (size_t x = 0; x < whole; x += vectorLanes) stripAt(x, WholeRow());
    if (whole < columns) stripAt(columns - vectorLanes, WholeRow());
  }

  static constexpr MorphFilters<T> morphFilters() {
    MorphFilters<T> filters = {};
    filters.erode = filter<Erode>;
    filters.dilate = filter<Dilate>;
    filters.clean = filter<Clean>;
    return filters;
  }
};

template <class Target, size_t vectorBytes>
constexpr Filter3x3Kernels filter3x3Strips() {
  using U8 = Filter3x3Strips<Target, vectorBytes, uint8_t>;
  using U16 = Filter3x3Strips<Target, vectorBytes, uint16_t>;
  using S16 = Filter3x3Strips<Target, vectorBytes, int16_t>;
  Filter3x3Kernels kernels = {};
  kernels.medianU16 = U16::template filter<typename U16::Median>;
  kernels.medianS16 = S16::template filter<typename S16::Median>;
  kernels.maximum = U16::template filter<typename U16::Maximum>;
  kernels.morphU8 = U8::morphFilters();
  kernels.morphU16 = U16::morphFilters();
  return kernels;
}

}  // namespace nadir
