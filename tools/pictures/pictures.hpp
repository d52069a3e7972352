// Picture files as the commands want them.
#pragma once

#include <optional>
#include <string>

#include "lab/grid.hpp"
#include "tools/base/map_place.hpp"
#include "tools/base/view.hpp"
#include "tools/base/warnings.hpp"
#include "tools/pictures/raster.hpp"

namespace nadir::tool {

using lab::Grid;

// A picture for the matcher. 16-bit grey values stay as they are, 0 meaning "no data". 8-bit values are multiplied by
// 16, because the matcher's penalties follow intensity steps of a 12-bit camera; their 0 becomes 1, since black is a
// measurement there (and a border that is black all over is rejected for having no texture), but in a PNG whose text
// nadir:no-value says otherwise, as in those of nadir rectify. Colours become luminance with the weights of ITU-R
// BT.601.
Grid<uint16_t> readIntensity(const std::string& path);

// A picture in its own depth; black of 8 bits becomes 1 there, too.
struct GreyPicture {
  Grid<uint16_t> pixels;
  uint32_t bits;  // 8 or 16
};
GreyPicture readGrey(const std::string& path);

// Reads an 8-bit picture, in which every value but 0 means "discard".
Grid<uint8_t> readMask(const std::string& path);

// Disparities in pixels, NaN where there is none. The file is a 16-bit grey PNG of pixels * scale, 0 for none.
//
// scale  what to divide by; 0 asks for what the file says of itself, and `fallback` where it says nothing.
Grid<float> readDisparity(const std::string& path, double scale, double fallback);

// Whose pixels the disparities belong to, where the picture says it of itself.
std::optional<View> gridOfDisparity(const std::string& path);

// Whether it contradicts what `teller`, an option or another picture, takes its pixels for.
Warnings gridWarnings(const std::string& path, View taken, const std::string& teller);

// What a picture holds. Its texts tell; one without any is what cameras took.
enum class PictureKind { disparities, elevationMap, regionMap, heights, intensities, colours };
PictureKind pictureKind(const std::string& path);

// An elevation map.
struct HeightPicture {
  Grid<float> heights;  // mm above the ground, at least 1 as in every map of the tool; NaN: unseen
  MapPlace place;
};

// A map of regions.
struct LabelPicture {
  Grid<uint16_t> labels;  // 0 for none
  MapPlace place;
};

LabelPicture readLabels(const std::string& path);

// The heights as they are stored: mm, 0 for unseen, where nadir ground has written the file.
Grid<uint16_t> readElevation(const std::string& path);

// Unseen cells hold the value that the file names, 0 where it names none; what 1 mm is stored as, it names, too.
HeightPicture readHeights(const std::string& path);

}  // namespace nadir::tool
