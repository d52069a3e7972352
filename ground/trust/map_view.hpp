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

// context  its lowerLeft is the map's corner.
MapView mapView(const StereoCtx& context, double columnShift, uint32_t width, uint32_t height);

}  // namespace nadir::ground
