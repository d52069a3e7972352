// The texts that a picture of measurements carries, so that it can be read without asking where it came from.
#pragma once

#include <string>

#include "tools/pictures/raster.hpp"

namespace nadir::tool {

namespace chunks {
constexpr const char* scale = "nadir:scale";
constexpr const char* noValue = "nadir:no-value";
constexpr const char* units = "nadir:units";
constexpr const char* grid = "nadir:grid";
constexpr const char* cell = "nadir:cell-mm";
constexpr const char* left = "nadir:left-mm";
constexpr const char* top = "nadir:top-mm";
}  // namespace chunks

// What an elevation map's text nadir:units says; other pictures say something else.
constexpr const char* elevationUnits = "mm";
constexpr const char* regionUnits = "region";

// A seen cell stores 1 to 65535 mm, because 0 means unseen: what lies lower, the bare ground's noise included, is 1.
constexpr float lowestStoredMm = 1;
constexpr float highestStoredMm = 65535;

// scale  what 1 pixel of disparity is stored as.
// grid   "left" or "right", the picture whose pixels the disparities belong to.
TextChunks disparityTexts(unsigned scale, const std::string& grid);

// Of an elevation map in mm.
//
// cellMm       the side of a cell.
// leftMm, topMm  world x and y of the first cell's outer corner.
TextChunks elevationTexts(double cellMm, double leftMm, double topMm);

// Who made a file.
std::string software();

}  // namespace nadir::tool
