// What the camera sees of its map, and how high it can measure there. All of it follows from the mount alone.
#pragma once

#include <nadir/camera.h>

#include <cstdint>

namespace nadir::ground {

// Shares are those of the map's cells whose ground lies within the picture.
struct MapView {
  double seen;
  double leastTop, mostTop;  // greatest height that can be measured above the seen cells, mm, up to the camera.
                             // Below 0 where the ground itself is too near; not-a-number where no cell is seen
  double bestSeen;           // of the map moved to where the camera sees nearly most of it, as near as may be
  double offsetX, offsetY;   // what moves it there, mm in world x and y
};

// The largest disparity that is found in pictures that are halved so often: 61 and a half for the fit between whole
// ones.
constexpr double largestDisparityOf(uint32_t halvings) { return 61.5 * (1u << halvings); }

// context  its lowerLeft is the map's corner.
MapView mapView(const StereoCtx& context, double columnShift, double largestDisparity, uint32_t width, uint32_t height);

// The same view's leastTop alone.
double leastTop(const StereoCtx& context, double columnShift, double largestDisparity, uint32_t width, uint32_t height);

}  // namespace nadir::ground
