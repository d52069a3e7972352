// The image operations once more, pixel by pixel and as plainly as they can be said: the tests' measure of the library.
#pragma once

#include <nadir/imgproc.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

namespace nadir::test::model {

template <class T>
T threshold(T v, uint32_t word, uint32_t mode) {
  const T t = static_cast<T>(word);
  switch (mode) {
    case THRESH_ZERO_BELOW: return v < t ? T{0} : v;
    case THRESH_KEEP_ABOVE: return v > t ? v : T{0};
    case THRESH_ZERO_EQUAL: return v == t ? T{0} : v;
    case THRESH_KEEP_BELOW: return v < t ? v : T{0};
    case THRESH_ZERO_ABOVE: return v > t ? T{0} : v;
    default: std::abort();
  }
}

template <class T>
T thresholdRange(T v, uint32_t loWord, uint32_t hiWord, int32_t mode) {
  const bool inside = static_cast<T>(loWord) <= v && v <= static_cast<T>(hiWord);
  return inside == (mode == THRESH_ZERO_INSIDE) ? T{0} : v;
}

// 64 bits hold every sum, product and shift by up to 31 in full; the result is their low 16 bits.
template <class T>
T arithmetic(T a, T b, uint32_t op) {
  const int64_t wide = a;
  const uint32_t count = static_cast<uint8_t>(b);
  switch (op) {
    case IMGOP_ADD: return static_cast<T>(wide + b);
    case IMGOP_SUB: return static_cast<T>(wide - b);
    case IMGOP_MUL: return static_cast<T>(wide * b);
    case IMGOP_DIV: return b == 0 ? T{0} : static_cast<T>(wide / b);
    case IMGOP_SHR: return static_cast<T>(wide >> std::min(count, 63u));
    case IMGOP_SHL: return count > 31 ? T{0} : static_cast<T>(static_cast<uint64_t>(wide) << count);
    default: std::abort();
  }
}

template <class T>
T mask(T v, uint8_t maskByte, uint32_t mode) {
  return (maskByte != 0) == (mode == MASK_KEEP_SET) ? v : T{0};
}

template <class T>
using Window = std::array<T, 9>;  // row by row; the pixel itself is [4]

template <class T>
T median(Window<T> window) {
  std::sort(window.begin(), window.end());
  return window[4];
}

template <class T>
T maximum(const Window<T>& window) {
  return window[4] == 0 ? T{0} : *std::max_element(window.begin(), window.end());
}

template <class T>
int dataNeighbours(const Window<T>& window) {
  return static_cast<int>(9 - std::count(window.begin(), window.end(), T{0})) - (window[4] != 0);
}

template <class T>
T erode(const Window<T>& window) {
  return dataNeighbours(window) < 8 ? T{0} : *std::min_element(window.begin(), window.end());
}

template <class T>
T dilate(const Window<T>& window) {
  return *std::max_element(window.begin(), window.end());
}

// The hole's donors in the order of preference: the row below from right to left, right, left, the row above likewise.
template <class T>
T clean(const Window<T>& window) {
  if (window[4] != 0) return dataNeighbours(window) < 4 ? T{0} : window[4];
  for (size_t donor : {8u, 7u, 6u, 5u, 3u, 2u, 1u, 0u})
    if (window[donor] != 0) return window[donor];
  return 0;
}

template <class T>
struct Picture {
  uint32_t width, height;
  std::vector<T> pixels;

  T& at(uint32_t x, uint32_t y) { return pixels[size_t{y} * width + x]; }
  const T& at(uint32_t x, uint32_t y) const { return pixels[size_t{y} * width + x]; }
};

template <class T>
Window<T> windowAt(const Picture<T>& picture, uint32_t x, uint32_t y) {
  Window<T> window;
  for (uint32_t i = 0; i < 9; ++i) window[i] = picture.at(x - 1 + i % 3, y - 1 + i / 3);
  return window;
}

// Puts pixel(window) into `dst` for rows 1 to height - 2 and columns 1 to lastColumn, and leaves the rest alone.
template <class T, class Pixel>
void filterInterior(const Picture<T>& src, Picture<T>& dst, uint32_t lastColumn, Pixel pixel) {
  for (uint32_t y = 1; y + 1 < src.height; ++y)
    for (uint32_t x = 1; x <= lastColumn; ++x) dst.at(x, y) = pixel(windowAt(src, x, y));
}

template <class T>
uint32_t lastInnerColumn(const Picture<T>& picture) {
  return picture.width < 3 ? 0 : picture.width - 2;
}

// The median comes in pairs of columns: an odd width leaves one column without a partner.
template <class T>
void median3x3(const Picture<T>& src, Picture<T>& dst) {
  filterInterior(src, dst, src.width % 2 ? src.width - 3 : src.width - 2, median<T>);
}

template <class T>
void maximum3x3(const Picture<T>& src, Picture<T>& dst) {
  filterInterior(src, dst, lastInnerColumn(src), maximum<T>);
}

template <class T, class Pixel>
Picture<T> morphPass(const Picture<T>& src, Pixel pixel) {
  Picture<T> dst = src;
  filterInterior(src, dst, lastInnerColumn(src), pixel);
  return dst;
}

template <class T>
Picture<T> morph3x3(const Picture<T>& src, int32_t op) {
  switch (op) {
    case MORPH_ERODE: return morphPass(src, erode<T>);
    case MORPH_DILATE: return morphPass(src, dilate<T>);
    case MORPH_OPEN: return morphPass(morphPass(src, erode<T>), dilate<T>);
    case MORPH_CLOSE: return morphPass(morphPass(src, dilate<T>), erode<T>);
    case MORPH_CLEAN: return morphPass(src, clean<T>);
    default: std::abort();
  }
}

}  // namespace nadir::test::model
