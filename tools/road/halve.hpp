// Pictures of a half, a quarter and so on of their size, for cameras with more pixels than the matcher needs.
#pragma once

#include <string>

#include "tools/camera/camera.hpp"
#include "tools/camera/rectification.hpp"
#include "tools/road/pair_input.hpp"

namespace nadir::tool {

// Half the size, an odd last row or column left out: each pixel is the mean of those with data (not 0) in its block of
// 2 x 2, and 0 where there is none.
Grid<uint16_t> halved(const Grid<uint16_t>& picture);

// The camera that takes pictures of half the size.
Camera halved(Camera camera);

// A pixel is left out where any of its block of 2 x 2 is.
Grid<uint8_t> halvedMask(const Grid<uint8_t>& mask);

// What pictures are scaled down by: 1, 2, 4 and so on.
constexpr uint32_t automaticScaleDown = 0;
constexpr uint32_t largestScaleDown = 64;

// What makes pictures of this width have at most as many columns as maps of disparities need.
uint32_t scaleDownForWidth(uint32_t width);

// Throws where too little is left.
Pair scaledDown(Pair pair, uint32_t scaleDown);

// What became of the pictures, for the user, who may have left it to the program.
std::string scaleDownSentence(const PictureSize& size, uint32_t scaleDown);

}  // namespace nadir::tool
