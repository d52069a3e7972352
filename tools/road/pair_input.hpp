// The pictures that the matching commands take.
#pragma once

#include <string>

#include "lab/grid.hpp"
#include "tools/camera/rectification.hpp"

namespace nadir::tool {

using lab::Grid;

constexpr uint32_t smallestSide = 5;  // of a picture that the matcher can work on, pixels

struct Pair {
  Grid<uint16_t> left, right;
};

// Two pictures of one size that the matcher can work on.
Pair readPair(const std::string& left, const std::string& right);

// The same, or where `right` is empty both from the left file, which holds them side by side.
Pair readFrame(const std::string& left, const std::string& right);

// Both halves of a picture that holds two side by side; the path is for messages.
Pair halvesOf(const Grid<uint16_t>& both, const std::string& path);

// Of pictures of this size. An empty path means no mask.
Grid<uint8_t> readMaskFor(const PictureSize& size, const std::string& path);

}  // namespace nadir::tool
