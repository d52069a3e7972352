// The texts that a picture of measurements carries, so that it can be read without asking where it came from.
#pragma once

#include <string>

#include "tools/base/map_place.hpp"
#include "tools/base/view.hpp"
#include "tools/pictures/raster.hpp"

namespace nadir::tool {

namespace chunks {
constexpr const char* description = "Description";  // keywords that PNG itself defines
constexpr const char* software = "Software";
constexpr const char* scale = "nadir:scale";
constexpr const char* noValue = "nadir:no-value";
constexpr const char* units = "nadir:units";
constexpr const char* grid = "nadir:grid";
constexpr const char* cell = "nadir:cell-mm";
constexpr const char* left = "nadir:left-mm";
constexpr const char* top = "nadir:top-mm";
}  // namespace chunks

// The text nadir:units says this of an elevation map, and something else of other pictures.
constexpr const char* elevationUnits = "mm";
constexpr const char* regionUnits = "region";

// The texts that every picture carries, what it shows and who made it, beside `more`.
TextChunks pictureTexts(const std::string& description, TextChunks more = {});

// scale  what 1 pixel of disparity is stored as.
// grid   the view whose pixels the disparities belong to.
TextChunks disparityTexts(unsigned scale, View grid);

// The texts of an elevation map in mm.
TextChunks elevationTexts(const MapPlace& place);

// The program and its version, as files say who made them.
std::string software();

}  // namespace nadir::tool
