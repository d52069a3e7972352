// A picture in memory: rows of pixels, top row first.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace nadir::lab {

template <class T>
struct Grid {
  uint32_t width = 0;
  uint32_t height = 0;
  std::vector<T> pixels;

  Grid() = default;
  Grid(uint32_t w, uint32_t h, T value = T{}) : width(w), height(h), pixels(size_t{w} * h, value) {}
  Grid(uint32_t w, uint32_t h, std::vector<T> values) : width(w), height(h), pixels(std::move(values)) {}

  T* row(uint32_t y) { return pixels.data() + size_t{y} * width; }
  const T* row(uint32_t y) const { return pixels.data() + size_t{y} * width; }
  T& at(uint32_t x, uint32_t y) { return row(y)[x]; }
  const T& at(uint32_t x, uint32_t y) const { return row(y)[x]; }
};

template <class A, class B>
bool sameSize(const Grid<A>& a, const Grid<B>& b) {
  return a.width == b.width && a.height == b.height;
}

// The same places with other pixels.
template <class T, class Of, class Convert>
Grid<T> converted(const Grid<Of>& grid, Convert convert) {
  Grid<T> out(grid.width, grid.height);
  for (size_t i = 0; i < out.pixels.size(); ++i) out.pixels[i] = static_cast<T>(convert(grid.pixels[i]));
  return out;
}

template <class T>
void mirror(Grid<T>& grid) {
  for (uint32_t y = 0; y < grid.height; ++y) std::reverse(grid.row(y), grid.row(y) + grid.width);
}

}  // namespace nadir::lab
