// A camera of the tests' own, worked out from rotation matrices and the mathematics library, against which the
// renderer's is held.
#pragma once

#include <cmath>

#include "lab/scene/render.hpp"

namespace nadir::test {

using scene::CameraSettings;
using scene::Side;
using scene::Vec;

class Eye {
 public:
  Eye(const CameraSettings& settings, Side side)
      : s_(settings), tilt_(settings.tilt * std::acos(-1) / 180), pan_(settings.pan * std::acos(-1) / 180) {
    const double along = side == settings.reference ? 0 : side == Side::right ? s_.baseline : -s_.baseline;
    centre_ = turned({along, 0, 0});
  }

  Vec centre() const { return centre_; }

  // What a pixel shows at a depth.
  Vec at(double x, double y, double depth) const {
    return centre_ + turned({(x - cx()) / s_.focal * depth, (y - cy()) / s_.focal * depth, depth});
  }

  double depth(const Vec& point) const { return back(point - centre_).z; }

  scene::ImagePoint image(const Vec& point) const {
    const Vec p = back(point - centre_);
    return {cx() + s_.focal * p.x / p.z, cy() + s_.focal * p.y / p.z};
  }

 private:
  double cx() const { return (s_.width - 1) / 2.0; }
  double cy() const { return (s_.height - 1) / 2.0; }

  // Camera to world: about the camera's y by -pan, then about x by -tilt.
  Vec turned(const Vec& v) const {
    const double c = std::cos(-pan_), s = std::sin(-pan_), ct = std::cos(-tilt_), st = std::sin(-tilt_);
    const Vec p{c * v.x + s * v.z, v.y, c * v.z - s * v.x};
    return {p.x, ct * p.y - st * p.z, st * p.y + ct * p.z};
  }

  // World to camera: the same turns undone in the opposite order.
  Vec back(const Vec& v) const {
    const double c = std::cos(pan_), s = std::sin(pan_), ct = std::cos(tilt_), st = std::sin(tilt_);
    const Vec p{v.x, ct * v.y - st * v.z, st * v.y + ct * v.z};
    return {c * p.x + s * p.z, p.y, c * p.z - s * p.x};
  }

  CameraSettings s_;
  double tilt_, pan_;
  Vec centre_;
};

inline double length(const Vec& v) { return std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z); }

inline CameraSettings cameraAt(double tilt, double pan, Side reference = Side::left) {
  CameraSettings settings;
  settings.width = 97;
  settings.height = 73;
  settings.focal = 80;
  settings.tilt = tilt;
  settings.pan = pan;
  settings.reference = reference;
  return settings;
}

inline const auto nothing = [] {};

}  // namespace nadir::test
