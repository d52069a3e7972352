// The library places the points; here it is told about the camera.
#include "ground/points.hpp"

#include <cmath>

namespace nadir::ground {

namespace {

int32_t fixedPoint(double value, double scale) { return static_cast<int32_t>(std::lround(value * scale)); }

}  // namespace

StereoCtx stereoContext(const Camera& camera, View view) {
  const double principalX = camera.principalXPx + (view == View::right ? camera.columnShiftPx : 0);
  const IntCalibParams inner = {fixedPoint(camera.baselineMm, 256), fixedPoint(camera.focalPx, 256),
                                fixedPoint(principalX, 16), fixedPoint(camera.principalYPx, 16)};
  const Orientation mount = {static_cast<float>(camera.heightMm), static_cast<float>(camera.tiltDeg),
                             static_cast<float>(camera.panDeg)};
  const auto cell = static_cast<uint16_t>(camera.cellMm);
  const ElevMapParams map = {static_cast<uint16_t>(camera.mapWidthCells), static_cast<uint16_t>(camera.mapHeightCells),
                             cell, cell};
  StereoCtx context;
  ip_stereo_init(&context, &inner, &mount, &map);
  return context;
}

std::vector<WorldPoint> worldPoints(const Grid<float>& disparity, const Grid<uint16_t>& picture,
                                    const StereoCtx& context, float columnShift) {
  std::vector<WorldPoint> points;
  for (uint32_t y = 0; y < disparity.height; ++y)
    for (uint32_t x = 0; x < disparity.width; ++x) {
      if (std::isnan(disparity.at(x, y))) continue;
      WorldPoint p{
          {}, {static_cast<float>(x), static_cast<float>(y)}, disparity.at(x, y) + columnShift, picture.at(x, y)};
      if (ip_stereo_disp2world(&context, &p.image, &p.world, p.disparity)) points.push_back(p);
    }
  return points;
}

}  // namespace nadir::ground
