// Rays of a camera that is tilted and panned.
#include "tools/plan/view.hpp"

#include <algorithm>
#include <cmath>

namespace nadir::tool {

namespace {

// The pan turns the camera about its own y axis before the tilt does about the world's x axis.
std::array<double, 9> worldAxes(double tiltDeg, double panDeg) {
  const double ct = std::cos(tiltDeg * degree), st = std::sin(tiltDeg * degree);
  const double cp = std::cos(panDeg * degree), sp = std::sin(panDeg * degree);
  return {cp, 0, -sp, st * sp, ct, st * cp, ct * sp, -st, ct * cp};
}

}  // namespace

CameraView::CameraView(const Camera& camera) : camera_(camera), toWorld_(worldAxes(camera.tiltDeg, camera.panDeg)) {}

CameraView::Ray CameraView::rayAt(const Pixel& pixel) const {
  return {(pixel.column - camera_.principalXPx) / camera_.focalPx,
          (pixel.row - camera_.principalYPx) / camera_.focalPx};
}

double CameraView::fall(const Ray& ray) const { return toWorld_[6] * ray.x + toWorld_[7] * ray.y + toWorld_[8]; }

std::optional<SeenPoint> CameraView::groundAt(const Pixel& pixel) const {
  const double down = fall(rayAt(pixel));
  if (!(down > 0)) return {};
  const double depth = camera_.heightMm / down;
  return SeenPoint{pixel, depth, camera_.focalPx * camera_.baselineMm / depth - camera_.columnShiftPx};
}

std::optional<GroundPoint> CameraView::placeAt(const Pixel& pixel) const {
  const std::optional<SeenPoint> point = groundAt(pixel);
  if (!point) return {};
  const Ray ray = rayAt(pixel);
  const auto& w = toWorld_;
  return GroundPoint{(w[0] * ray.x + w[1] * ray.y + w[2]) * point->depthMm,
                     (w[3] * ray.x + w[4] * ray.y + w[5]) * point->depthMm};
}

std::optional<SeenPoint> CameraView::seen(const GroundPoint& place, double heightMm) const {
  const double z = camera_.heightMm - heightMm;
  const auto& w = toWorld_;
  const auto along = [&](size_t axis) { return w[axis] * place.xMm + w[3 + axis] * place.yMm + w[6 + axis] * z; };
  const double depth = along(2);
  if (!(depth > 0)) return {};
  return SeenPoint{{camera_.principalXPx + camera_.focalPx * along(0) / depth,
                    camera_.principalYPx + camera_.focalPx * along(1) / depth},
                   depth,
                   camera_.focalPx * camera_.baselineMm / depth - camera_.columnShiftPx};
}

bool CameraView::isInBoth(const SeenPoint& point) const {
  const double right = point.left.column - point.disparityPx, edge = camera_.widthPx - 0.5;
  return point.left.column >= -0.5 && point.left.column <= edge && right >= -0.5 && right <= edge &&
         point.left.row >= -0.5 && point.left.row <= camera_.heightPx - 0.5;
}

// The ground's disparity is linear along a row, a column of it being where it is as large as the column.
double CameraView::firstSharedColumn(double row) const {
  const auto disparity = [&](double column) {
    return camera_.focalPx * camera_.baselineMm * fall(rayAt({column, row})) / camera_.heightMm - camera_.columnShiftPx;
  };
  const double atFirst = disparity(0), slope = disparity(1) - atFirst;
  return std::clamp(slope < 1 ? atFirst / (1 - slope) : camera_.widthPx - 1.0, 0.0, camera_.widthPx - 1.0);
}

double CameraView::groundOfPixel(const Pixel& pixel) const {
  const double down = fall(rayAt(pixel)), depth = camera_.heightMm / down;
  return depth * depth / (down * camera_.focalPx * camera_.focalPx);
}

}  // namespace nadir::tool
