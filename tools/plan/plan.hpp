// What a stereo camera will see and measure from where it is to hang.
#pragma once

#include <string>
#include <vector>

#include "tools/plan/view.hpp"

namespace nadir::tool {

// A row of the picture, in the middle of the columns that both pictures share.
struct PlannedPlace {
  const char* name;  // "near", "middle", "far"
  Pixel pixel;
  GroundPoint ground;
  double forwardMm;  // on the ground, before the camera; negative behind it
  double disparityPx;
  double stepMm;            // of height, for 1/16 pixel of disparity
  double greatestHeightMm;  // of a thing that stands there and can be measured up to its top
  bool rangeEndsIt;         // else the picture's edge does
  double pointsPerCell;     // pixels that see the ground of a cell
};

struct Plan {
  Camera camera;  // with the map that is proposed
  double tallestMm;
  uint32_t rangePx;                  // the least that measures the tallest things over the map, or the longest
  std::vector<GroundPoint> outline;  // of the ground that both pictures show with 2 pixels of disparity or more
  bool reachesHorizon;               // the outline ends where disparities do, not at the picture's edge
  double areaM2;
  std::vector<PlannedPlace> places;   // near, middle, far, on the map
  double tallestFromMm, tallestToMm;  // before the camera: where the tallest things are measured; NaN for nowhere
  double cellsPerPerson;
};

// Disparities below it are not found.
constexpr double leastDisparityPx = 2;

// A person from above, an ellipse of so many mm.
constexpr double personWidthMm = 500, personDepthMm = 300;

// The side of a cell that enough pixels see, and of which a map has few enough.
//
// pixelMm2  of ground that a pixel sees where the map is farthest
// sideMm    of the map, the longer one
uint32_t usefulCellMm(double pixelMm2, double sideMm);

// The corner of smallest world x and y, as docs/coordinates.md lays the map out. Throws Error where it has no place.
GroundPoint mapCorner(const Camera& camera);

// Plans for a camera whose map, if it has no cells yet, is laid over the ground that is seen well. Throws Error where
// it sees no ground.
Plan planOf(Camera camera, double tallestMm);

}  // namespace nadir::tool
