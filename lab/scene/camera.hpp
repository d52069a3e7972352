// The stereo camera that looks at a scene: two equal pinholes, side by side.
//
// The world is in millimetres, its z axis points straight down. The origin is the centre of one of the two cameras, the
// reference; the ground is the plane z = mounting height. With tilt and pan 0 both look straight down, with the
// picture's columns along world x and its rows along world y.
#pragma once

#include <cstdint>

#include "lab/scene/vector.hpp"

namespace nadir::scene {

enum class Side { left, right };

struct CameraSettings {
  uint32_t width = 640, height = 480;  // pixels
  double baseline = 130;               // mm, between the two centres
  double focal = 500;                  // pixels
  double mountingHeight = 3000;        // mm, of the reference camera above the ground
  double tilt = -30;                   // degrees; negative raises the optical axis towards the picture's upper edge
  double pan = 0;                      // degrees; positive turns it towards the picture's left edge
  Side reference = Side::left;
};

struct ImagePoint {
  double x = 0, y = 0;  // pixels; the centre of the top left pixel is (0, 0)
};

// One of the two cameras: where it is, and which way its picture lies in the world.
struct Pinhole {
  Vec centre, right, down, forward;  // the directions have length 1
  double focal, principalX, principalY;
  uint32_t width, height;

  // Its distances are depths, measured along the optical axis.
  Ray ray(double x, double y) const;
  // The point must lie in front of the camera.
  ImagePoint project(const Vec& point) const;
  bool shows(const ImagePoint& point) const;
};

struct Rig {
  Pinhole left, right;
  double baseline, mountingHeight;
  Side reference;

  const Pinhole& camera(Side side) const { return side == Side::left ? left : right; }
};

Rig makeRig(const CameraSettings& settings);

}  // namespace nadir::scene
