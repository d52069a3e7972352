// Where the two pinholes stand and look, and the way between a pixel and its ray.
#include "lab/scene/camera.hpp"

#include "lab/scene/angle.hpp"

namespace nadir::scene {

namespace {

// The camera begins with its axes along the world's. Tilting it swings the optical axis and the picture's downward
// direction around world x; panning then swings the optical axis and the rightward direction around the downward one.
Pinhole turned(const CameraSettings& settings) {
  const Angle tilt = angle(settings.tilt), pan = angle(settings.pan);
  const Vec right{1, 0, 0}, down{0, tilt.cosine, -tilt.sine}, forward{0, tilt.sine, tilt.cosine};
  Pinhole camera{};
  camera.right = right * pan.cosine + forward * pan.sine;
  camera.down = down;
  camera.forward = forward * pan.cosine - right * pan.sine;
  return camera;
}

}  // namespace

Ray Pinhole::ray(double x, double y) const {
  return {centre, forward + right * ((x - principalX) / focal) + down * ((y - principalY) / focal)};
}

ImagePoint Pinhole::project(const Vec& point) const {
  const Vec seen = point - centre;
  const double scale = focal / dot(seen, forward);
  return {principalX + dot(seen, right) * scale, principalY + dot(seen, down) * scale};
}

bool Pinhole::shows(const ImagePoint& p) const {
  return p.x >= -0.5 && p.x < width - 0.5 && p.y >= -0.5 && p.y < height - 0.5;
}

Rig makeRig(const CameraSettings& settings) {
  Pinhole reference = turned(settings);
  reference.focal = settings.focal;
  reference.principalX = (settings.width - 1) / 2.0;
  reference.principalY = (settings.height - 1) / 2.0;
  reference.width = settings.width;
  reference.height = settings.height;
  const bool leftFirst = settings.reference == Side::left;
  Pinhole other = reference;
  other.centre = reference.right * (leftFirst ? settings.baseline : -settings.baseline);
  return {leftFirst ? reference : other, leftFirst ? other : reference, settings.baseline, settings.mountingHeight,
          settings.reference};
}

}  // namespace nadir::scene
