// What the files of a map say of themselves.
#pragma once

#include <nadir/camera.h>

#include "tools/base/map_place.hpp"
#include "tools/pictures/raster.hpp"

namespace nadir::tool {

// Where the map of a context lies.
MapPlace placeOf(const StereoCtx& context);

// The texts of a map of heights that are this percentile of their cells' points.
TextChunks mapTexts(const StereoCtx& context, double percentile);

// The texts of the map that holds the label of each cell's region.
TextChunks regionTexts(const StereoCtx& context, double percentile);

}  // namespace nadir::tool
