// Regions and areas of interest drawn where people can see whether they are right.
#pragma once

#include "ground/road.hpp"
#include "tools/files/files.hpp"

namespace nadir::tool {

// Both want a result with findings. On the elevation map: regions outlined in white with their labels, areas outlined
// with their names.
Bytes encodeRegionMap(const ground::Setup& setup, const ground::Result& result);

// The measured view's picture, where what belongs to a region is coloured.
Bytes encodeRegionPicture(const ground::Setup& setup, const ground::Result& result);

}  // namespace nadir::tool
