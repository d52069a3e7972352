// The texts that a disparity picture carries, so that it can be read without asking where it came from.
#pragma once

#include <string>

#include "raster.hpp"

namespace nadir::tool {

namespace chunks {
constexpr const char* scale = "nadir:scale";
constexpr const char* noValue = "nadir:no-value";
constexpr const char* units = "nadir:units";
constexpr const char* grid = "nadir:grid";
}  // namespace chunks

// scale  what 1 pixel of disparity is stored as.
// grid   "left" or "right", the picture whose pixels the disparities belong to.
TextChunks disparityTexts(unsigned scale, const std::string& grid);

// Who made a file.
std::string software();

}  // namespace nadir::tool
