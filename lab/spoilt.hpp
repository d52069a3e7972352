// Pairs of pictures as cameras that were set up wrongly would have given them.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "lab/grid.hpp"
#include "lab/random.hpp"

namespace nadir::lab {

using Intensities = Grid<uint16_t>;

struct PicturePair {
  Intensities left, right;
};

// Intensities of a 12-bit camera; 0 is for no data.
inline uint16_t intensity(double value) {
  return static_cast<uint16_t>(std::lround(std::min(std::max(value, 1.0), 4095.0)));
}

template <class Value>
Intensities changed(const Intensities& picture, Value value) {
  return converted<uint16_t>(picture, [&](uint16_t v) { return v == 0 ? 0 : intensity(value(double(v))); });
}

inline Intensities amplified(const Intensities& picture, double gain) {
  return changed(picture, [&](double v) { return gain * v; });
}

inline double meanOf(const Intensities& picture) {
  double sum = 0;
  for (const uint16_t v : picture.pixels) sum += v;
  return sum / static_cast<double>(picture.pixels.size());
}

// The sum of twelve even numbers is nearly normal.
inline Intensities noisy(const Intensities& picture, double deviation, uint64_t seed) {
  Random random(seed);
  return changed(picture, [&](double v) {
    double sum = -6;
    for (int i = 0; i < 12; ++i) sum += random.next() / 4294967296.0;
    return v + deviation * sum;
  });
}

// What is left of the contrast about the mean.
inline Intensities faded(const Intensities& picture, double contrast) {
  const double mean = meanOf(picture);
  return changed(picture, [&](double v) { return mean + contrast * (v - mean); });
}

// Between four pixels; no data where any of them has none or lies outside.
inline uint16_t between(const Intensities& p, double x, double y) {
  if (!(x >= 0 && y >= 0 && x <= p.width - 1.0 && y <= p.height - 1.0)) return 0;
  const auto left = static_cast<uint32_t>(x), top = static_cast<uint32_t>(y);
  const uint32_t right = std::min(left + 1, p.width - 1), bottom = std::min(top + 1, p.height - 1);
  const double a = p.at(left, top), b = p.at(right, top), c = p.at(left, bottom), d = p.at(right, bottom);
  if (a * b * c * d == 0) return 0;
  const double u = x - left, v = y - top;
  return intensity((1 - v) * ((1 - u) * a + u * b) + v * ((1 - u) * c + u * d));
}

// Where each pixel comes from: source(x, y) with both counted from the picture's centre, like what it returns.
struct Place {
  double x, y;
};
template <class Source>
Intensities warped(const Intensities& picture, Source source) {
  Intensities out(picture.width, picture.height);
  const double middleX = (picture.width - 1) / 2.0, middleY = (picture.height - 1) / 2.0;
  for (uint32_t y = 0; y < out.height; ++y)
    for (uint32_t x = 0; x < out.width; ++x) {
      const Place from = source(x - middleX, y - middleY);
      out.at(x, y) = between(picture, from.x + middleX, from.y + middleY);
    }
  return out;
}

inline Intensities moved(const Intensities& picture, double columns, double rows) {
  return warped(picture, [&](double x, double y) { return Place{x - columns, y - rows}; });
}

inline Intensities turned(const Intensities& picture, double degrees) {
  const double sine = std::sin(degrees * 0.017453292519943295), cosine = std::cos(degrees * 0.017453292519943295);
  return warped(picture, [&](double x, double y) { return Place{cosine * x + sine * y, cosine * y - sine * x}; });
}

inline Intensities scaled(const Intensities& picture, double factor) {
  return warped(picture, [&](double x, double y) { return Place{x / factor, y / factor}; });
}

// The right edge becomes higher by `rows` at its corners, the left one lower.
inline Intensities keystoned(const Intensities& picture, double rows) {
  const double area = (picture.width / 2.0) * (picture.height / 2.0);
  return warped(picture, [&](double x, double y) { return Place{x, y - rows * x * y / area}; });
}

inline Intensities blurred(const Intensities& picture, double sigma) {
  const int reach = static_cast<int>(3 * sigma) + 1;
  const auto width = static_cast<int>(picture.width), height = static_cast<int>(picture.height);
  Grid<double> rows(picture.width, picture.height);
  Intensities out(picture.width, picture.height);
  const auto along = [&](auto value, int at, int end) {
    double sum = 0, weights = 0;
    for (int i = -reach; i <= reach; ++i) {
      const double weight = std::exp(-i * i / (2 * sigma * sigma));
      sum += weight * value(std::clamp(at + i, 0, end - 1));
      weights += weight;
    }
    return sum / weights;
  };
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x)
      rows.row(uint32_t(y))[x] = along([&](int i) { return double(picture.row(uint32_t(y))[i]); }, x, width);
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x)
      out.row(uint32_t(y))[x] = intensity(along([&](int i) { return rows.row(uint32_t(i))[x]; }, y, height));
  return out;
}

}  // namespace nadir::lab
