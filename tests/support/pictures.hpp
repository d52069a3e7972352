// Pictures of 16-bit values: from drawings, from shapes, as drawings for a report, and as images in tight memory.
#pragma once

#include <nadir/image.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

#include "tests/support/images.hpp"
#include "tests/support/models/image_ops.hpp"
#include "tests/support/random.hpp"
#include "tests/support/shapes.hpp"
#include "tests/support/tight_words.hpp"

namespace nadir::test {

// Rows of equal length; every character but '.' is `on`.
template <class T = uint16_t>
model::Picture<T> drawn(const std::vector<std::string>& rows, T on = 9) {
  model::Picture<T> picture{static_cast<uint32_t>(rows[0].size()), static_cast<uint32_t>(rows.size()), {}};
  for (const std::string& row : rows) {
    for (const char c : row) picture.pixels.push_back(c == '.' ? T{0} : on);
  }
  return picture;
}

// One row.
template <class T = uint16_t>
model::Picture<T> row(const std::vector<T>& values) {
  return {static_cast<uint32_t>(values.size()), 1, values};
}

template <class T = uint16_t>
model::Picture<T> constant(uint32_t width, uint32_t height, T value) {
  return {width, height, std::vector<T>(size_t{width} * height, value)};
}

// Every picture of this many pixels is one number: its bits are the pixels.
inline model::Picture<uint16_t> ofBits(uint32_t width, uint32_t height, uint32_t bits) {
  model::Picture<uint16_t> picture = constant<uint16_t>(width, height, 0);
  for (uint32_t i = 0; i < width * height; ++i) picture.pixels[i] = bits >> i & 1 ? uint16_t(5 + i) : uint16_t{0};
  return picture;
}

// Random values above `threshold` inside the shape, at most `threshold` outside. T must have both.
template <class T>
model::Picture<T> valued(Random& random, const Shape& shape, int32_t threshold) {
  using Limits = std::numeric_limits<T>;
  model::Picture<T> picture{shape.width, shape.height, {}};
  for (const uint8_t inside : shape.pixels) {
    const int32_t lo = inside ? threshold + 1 : Limits::min(), hi = inside ? Limits::max() : threshold;
    const uint32_t nearEdge = random.below(4);
    const int32_t value = nearEdge == 0   ? (inside ? lo : hi)
                          : nearEdge == 1 ? (inside ? hi : lo)
                                          : random.between(lo, hi);
    picture.pixels.push_back(static_cast<T>(value));
  }
  return picture;
}

// Small pictures as text, for reports.
template <class T>
std::string text(const model::Picture<T>& picture) {
  std::string out = std::to_string(picture.width) + " x " + std::to_string(picture.height) + "\n";
  if (picture.pixels.size() > 400) return out;
  for (size_t i = 0; i < picture.pixels.size(); ++i) {
    out += std::to_string(picture.pixels[i]) + ((i + 1) % picture.width == 0 ? '\n' : ' ');
  }
  return out;
}

// A picture's pixels in tight memory, with their descriptor.
template <class T>
class TightImage {
 public:
  TightImage(const model::Picture<T>& picture, Place place) : words_(picture.pixels, place) {
    Img_Init(&img, picture.width, picture.height, typeOf<T>, words_.data());
  }

  operator Img*() { return &img; }
  operator const Img*() const { return &img; }
  ImgC readOnly() const { return {img.width, img.height, img.bytesPerPixel, img.type, img.data}; }
  std::vector<T> pixels() const { return words_.template values<T>(); }
  void store(const std::vector<T>& pixels) { words_.store(pixels); }

  Img img;

 private:
  TightWords words_;
};

template <class T>
TightImage(const model::Picture<T>&, Place) -> TightImage<T>;

}  // namespace nadir::test
