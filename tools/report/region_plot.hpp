// Regions and areas of interest drawn where people can see whether they are right.
#pragma once

#include "tools/files/files.hpp"
#include "tools/pictures/pictures.hpp"
#include "tools/road/road.hpp"

namespace nadir::tool {

// Both want a result with findings. On the elevation map: regions outlined in white with their labels, areas outlined
// with their names.
Bytes encodeRegionMap(const Road& road, const PairResult& result);

// The measured view's picture, where what belongs to a region is coloured.
Bytes encodeRegionPicture(const Road& road, const PairResult& result);

// A map of regions, each in a colour and with its number; grey: none.
Bytes encodeLabelMap(const LabelPicture& map);

}  // namespace nadir::tool
