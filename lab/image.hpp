// A grid as the library's image descriptor, over the same memory.
#pragma once

#include <nadir/nadir.h>

#include "lab/grid.hpp"

namespace nadir::lab {

inline Img imageOf(Grid<uint8_t>& grid) {
  Img image;
  Img_Init(&image, grid.width, grid.height, IMG_TYPE_U8, grid.pixels.data());
  return image;
}

inline Img imageOf(Grid<uint16_t>& grid) {
  Img image;
  Img_Init(&image, grid.width, grid.height, IMG_TYPE_U16, grid.pixels.data());
  return image;
}

inline ImgC imageOf(const Grid<uint16_t>& grid) {
  ImgC image;
  ImgC_Init(&image, grid.width, grid.height, IMG_TYPE_U16, grid.pixels.data());
  return image;
}

}  // namespace nadir::lab
