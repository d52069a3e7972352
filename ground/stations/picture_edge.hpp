// Which regions reach the edge of what both pictures show: what stands there may go on where nothing is measured.
#pragma once

#include "ground/stations/map.hpp"

namespace nadir::ground {

struct PictureEdge {
  uint32_t pixels;       // from an edge, which count as being at it
  float towards;         // -1 where the other picture has points further left, by their disparity, else 1
  float shift;           // what rows of disparities have more than that
  uint32_t left, right;  // columns that may show what lies at the other picture's edge, and those at this one's
};

// largestDisparity  pixels, before the column shift.
PictureEdge pictureEdge(const NadirSettings& settings, const Shape& shape, uint32_t halvings, float columnShift,
                        double largestDisparity);

// Sets at_picture_edge of regions that have a point at an edge of either picture.
//
// memory  as mapHeights leaves it.
void markAtPictureEdge(const DisparityRows& rows, const PictureEdge& edge, const Shape& shape, const SortMemory& memory,
                       const uint16_t* labels, NadirRegion* regions);

}  // namespace nadir::ground
