// The custom frame is laid through two pixels of the picture, on the ground below the camera.
#include <nadir/camera.h>
#include <nadir/matrix.h>

#include <cmath>

#include "core/constants.hpp"
#include "core/matrix.hpp"

namespace nadir {
namespace {

constexpr float leastSquaredLength = floatEpsilon;  // mm^2

constexpr float identity[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
constexpr float halfTurnAboutX[9] = {1, 0, 0, 0, -1, 0, 0, 0, -1};  // world z down to custom z up

struct Camera {
  IntCalib intCalib;
  ExtCalib extCalib;
  float height;
};

Point3_f32 groundUnder(uint16_t x, uint16_t y, const Camera& camera) {
  const Point_f32 img = {static_cast<float>(x), static_cast<float>(y)};
  Point3_f32 ground;
  ip_img2world(&img, &ground, &camera.extCalib, &camera.intCalib, camera.height);
  return ground;
}

// T such that rotation * (world - T) is the offset at the ground point.
void placeOrigin(const Point3_f32& ground, const CustomFrameParams& frame, ExtCalib& ext) {
  const float* rotation = ext.R;
  const float x = dot(rotation, 1, ground.x, ground.y, ground.z) - static_cast<float>(frame.offsetX);
  const float y = dot(rotation + 3, 1, ground.x, ground.y, ground.z) - static_cast<float>(frame.offsetY);
  const float z = dot(rotation + 6, 1, ground.x, ground.y, ground.z);
  for (size_t i = 0; i < 3; ++i) ext.T[i] = dot(rotation + i, 3, x, y, z);
}

uint32_t groundFrame(const Camera& camera, const CustomFrameParams& frame, ExtCalib& ext) {
  const Point3_f32 origin = groundUnder(frame.originX, frame.originY, camera);
  const Point3_f32 target = groundUnder(frame.directionX, frame.directionY, camera);
  const float dx = target.x - origin.x, dy = origin.y - target.y;  // y of the turned frame
  const float squaredLength = dx * dx + dy * dy;
  if (squaredLength < leastSquaredLength) return 0;
  const float length = std::sqrt(squaredLength), ux = dx / length, uy = dy / length;
  const float turn[9] = {ux, uy, 0, -uy, ux, 0, 0, 0, 1};
  mmMul(turn, halfTurnAboutX, ext.R);
  placeOrigin(origin, frame, ext);
  return 1;
}

}  // namespace
}  // namespace nadir

uint32_t ip_params2extCalibCustom(const IntCalibParams* params, const Orientation* orientation,
                                  const CustomFrameParams* frame, ExtCalib* ext) {
  if (!frame->enabled) {
    mCopy(nadir::identity, ext->R);
    ext->T[0] = ext->T[1] = ext->T[2] = 0;
    return 1;
  }
  nadir::Camera camera;
  ip_params2internalCalib(params, &camera.intCalib);
  ip_orientation2externalCalib(orientation, &camera.extCalib);
  camera.height = orientation->height;
  return groundFrame(camera, *frame, *ext);
}
