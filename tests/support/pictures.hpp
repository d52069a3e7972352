// Pictures of 16-bit values: from drawings, from shapes, as text for a report, and as images.
#pragma once

#include <nadir/image.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

#include "lab/random.hpp"
#include "tests/models/image_ops.hpp"
#include "tests/support/images.hpp"
#include "tests/support/shapes.hpp"

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
model::Picture<T> valued(lab::Random& random, const Shape& shape, int32_t threshold) {
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

// The picture as an image with a guard page on one side.
template <class T>
Image<T> imageOf(const model::Picture<T>& picture, Guard side = Guard::behind) {
  return Image<T>(picture.width, picture.height, picture.pixels, side);
}

inline Guard anySide(lab::Random& random) { return random.below(2) ? Guard::before : Guard::behind; }

}  // namespace nadir::test
