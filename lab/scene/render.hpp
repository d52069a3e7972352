// Pictures of a scene, and the truth about them. Everything is found by following single rays; nothing is warped,
// resampled or taken from the library, so that the library can be judged by it. Only +, -, *, / and square roots of
// doubles are used, which give the same bits on every machine.
#pragma once

#include <functional>

#include "lab/grid.hpp"
#include "lab/scene/camera.hpp"
#include "lab/scene/scene.hpp"

namespace nadir::scene {

using lab::Grid;

// Called after every finished row.
using RowDone = std::function<void()>;

struct Sensor {
  double noise = 0;       // standard deviation, intensity levels
  bool deadArea = false;  // a disc of the sensor, right of and below the centre, that gives no data
  uint32_t frame = 0;     // every frame has other noise
};

constexpr uint16_t darkest = 16, brightest = 4080, noData = 0;

// Intensities like those of a 12-bit camera, from darkest to brightest; noData in the dead area alone. A pixel is the
// mean over its area.
Grid<uint16_t> picture(const Scene& scene, const Rig& rig, Side side, const Sensor& sensor, const RowDone& rowDone);

// The truth about one picture: of what the rays through the pixels' centres meet.
struct ViewTruth {
  Grid<double> disparity;  // pixels; 0 above the horizon
  Grid<double> height;     // mm above the ground; NaN above the horizon
  Grid<uint8_t> occluded;  // 1: the other camera does not see this point, or not within its picture
};

ViewTruth truth(const Scene& scene, const Rig& rig, Side side, const RowDone& rowDone);

// A grid of square cells on the ground. Columns follow world x, rows world y; the first cell's corner has the lowest of
// both. The corner lies half the width, in whole cells and on both axes, before the ground point of the optical axis
// (of the principal point).
struct MapLayout {
  uint32_t width = 128, height = 128;  // cells
  uint32_t cell = 40;                  // mm
};

struct MapTruth {
  double cornerX, cornerY;  // mm, world
  Grid<double> elevation;   // mm above the ground, of the topmost surface at the cell's centre
  Grid<uint16_t> region;    // what that surface belongs to
  Grid<uint8_t> inPicture;  // 1: the reference picture has that point within its borders, be it hidden or not
};

// The optical axis must meet the ground.
MapTruth mapTruth(const Scene& scene, const Rig& rig, const MapLayout& layout);

}  // namespace nadir::scene
