// What the files of a map say of themselves.
#pragma once

#include "ground/map.hpp"
#include "tools/pictures/raster.hpp"

namespace nadir::tool {

// The texts of a map of heights.
TextChunks mapTexts(const ground::MapFrame& frame, const ground::CellRule& rule);

// The texts of the map that holds the label of each cell's region.
TextChunks regionTexts(const ground::MapFrame& frame, const ground::CellRule& rule);

}  // namespace nadir::tool
