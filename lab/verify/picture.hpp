// Pixels with the library's descriptor of them.
#pragma once

#include <nadir/nadir.h>

#include <utility>

#include "lab/grid.hpp"

namespace nadir::verify {

using lab::Grid;

inline uint32_t typeOf(uint8_t) { return IMG_TYPE_U8; }
inline uint32_t typeOf(uint16_t) { return IMG_TYPE_U16; }
inline uint32_t typeOf(int16_t) { return IMG_TYPE_S16; }
inline uint32_t typeOf(uint32_t) { return IMG_TYPE_U32; }
inline uint32_t typeOf(int32_t) { return IMG_TYPE_S32; }

template <class T>
struct Picture {
  explicit Picture(Grid<T> pixels) : grid(std::move(pixels)) {
    Img_Init(&image, grid.width, grid.height, typeOf(T{}), grid.pixels.data());
  }
  Picture(uint32_t width, uint32_t height) : Picture(Grid<T>(width, height)) {}
  Picture(const Picture&) = delete;
  Picture& operator=(const Picture&) = delete;

  Grid<T> grid;
  Img image;
};

// The same places with other pixels.
template <class T, class Of, class Convert>
Grid<T> converted(const Grid<Of>& grid, Convert convert) {
  Grid<T> out(grid.width, grid.height);
  for (size_t i = 0; i < out.pixels.size(); ++i) out.pixels[i] = static_cast<T>(convert(grid.pixels[i]));
  return out;
}

}  // namespace nadir::verify
