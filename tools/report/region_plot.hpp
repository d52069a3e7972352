// Regions and areas of interest drawn where people can see whether they are right.
#pragma once

#include "tools/files/files.hpp"
#include "tools/road/road.hpp"

namespace nadir::tool {

// On the elevation map: regions outlined in white with their labels, areas outlined with their names.
Bytes encodeRegionMap(const GroundResult& result, const Findings& findings);

// On the measured view's picture: what belongs to a region is coloured.
Bytes encodeRegionPicture(const GroundResult& result, const Findings& findings);

}  // namespace nadir::tool
