// Grids as the library's image descriptors, over the same memory.
#pragma once

#include <nadir/nadir.h>

#include <utility>
#include <vector>

#include "lab/grid.hpp"

namespace nadir::lab {

// The library's code of a pixel type.
template <class T>
inline constexpr uint32_t typeOf = 0;
template <>
inline constexpr uint32_t typeOf<uint8_t> = IMG_TYPE_U8;
template <>
inline constexpr uint32_t typeOf<int8_t> = IMG_TYPE_S8;
template <>
inline constexpr uint32_t typeOf<uint16_t> = IMG_TYPE_U16;
template <>
inline constexpr uint32_t typeOf<int16_t> = IMG_TYPE_S16;
template <>
inline constexpr uint32_t typeOf<uint32_t> = IMG_TYPE_U32;
template <>
inline constexpr uint32_t typeOf<int32_t> = IMG_TYPE_S32;
template <>
inline constexpr uint32_t typeOf<float> = IMG_TYPE_F32;

// Made without the library, so that a program that counts its calls counts none for this.
template <class T>
Img imageOf(Grid<T>& grid) {
  return {static_cast<uint16_t>(grid.width), static_cast<uint16_t>(grid.height), sizeof(T), typeOf<T>,
          grid.pixels.data()};
}

template <class T>
ImgC imageOf(const Grid<T>& grid) {
  return {static_cast<uint16_t>(grid.width), static_cast<uint16_t>(grid.height), sizeof(T), typeOf<T>,
          grid.pixels.data()};
}

// Pixels with the library's descriptor of them; it can be handed to the library as if it were the descriptor's address.
template <class T>
struct Picture {
  explicit Picture(Grid<T> pixels) : grid(std::move(pixels)), image(imageOf(grid)) {}
  Picture(uint32_t width, uint32_t height, T value = T{}) : Picture(Grid<T>(width, height, value)) {}
  // The descriptor names another type of the same size where one is given.
  Picture(uint32_t width, uint32_t height, std::vector<T> values, uint32_t type = typeOf<T>)
      : Picture(Grid<T>(width, height, std::move(values))) {
    image.type = type;
  }
  Picture(const Picture&) = delete;
  Picture& operator=(const Picture&) = delete;
  operator Img*() { return &image; }

  Grid<T> grid;
  Img image;
};

}  // namespace nadir::lab
