// Where a camera's pixels meet the ground, and where things on it lie in its pictures.
#pragma once

#include <array>
#include <optional>

#include "tools/camera/camera.hpp"

namespace nadir::tool {

constexpr double degree = 3.14159265358979323846 / 180;  // in radians

struct GroundPoint {
  double xMm, yMm;  // world, from the foot of the left camera
};

struct Pixel {
  double column, row;
};

// A thing's point as the left camera sees it.
struct SeenPoint {
  Pixel left;
  double depthMm, disparityPx;  // as matched, the column shift taken off
};

// The left camera's, which is the world's origin; docs/coordinates.md draws the axes.
class CameraView {
 public:
  explicit CameraView(const Camera& camera);

  // Nothing where the ray does not meet the ground.
  std::optional<SeenPoint> groundAt(const Pixel& pixel) const;
  std::optional<GroundPoint> placeAt(const Pixel& pixel) const;

  // A point so high above the ground. Nothing behind the camera.
  std::optional<SeenPoint> seen(const GroundPoint& place, double heightMm) const;

  // Whether both pictures show it.
  bool isInBoth(const SeenPoint& point) const;

  // The column where the right picture's left edge shows the ground: what lies left of it, the right one lacks.
  double firstSharedColumn(double row) const;

  // The square millimetres of ground that a pixel sees.
  double groundOfPixel(const Pixel& pixel) const;

  const Camera& camera() const { return camera_; }

 private:
  struct Ray {
    double x, y;  // in the camera's axes, z being 1
  };
  Ray rayAt(const Pixel& pixel) const;
  double fall(const Ray& ray) const;  // how far a ray goes down for each mm along the optical axis

  Camera camera_;
  std::array<double, 9> toWorld_;  // by rows
};

}  // namespace nadir::tool
