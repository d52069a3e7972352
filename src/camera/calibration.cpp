// This file turns the parameters of a camera and its angles into calibrations.
#include <nadir/camera.h>
#include <nadir/matrix.h>

#include <cmath>

namespace nadir {
namespace {

struct SineCosine {
  float sine, cosine;
};

// Gives those of the angle turned the other way. The functions of single precision differ between processors; those of
// double precision, narrowed, do not.
SineCosine sineCosineOfOpposite(float degrees) {
  const double radians = -(degrees * 3.1415927f) / 180.0f;
  return {static_cast<float>(std::sin(radians)), static_cast<float>(std::cos(radians))};
}

}  // namespace
}  // namespace nadir

void ip_params2internalCalib(const IntCalibParams* params, IntCalib* calib) {
  *calib = {static_cast<float>(params->baseline) * 0.00390625f, static_cast<float>(params->focalLength) * 0.00390625f,
            static_cast<float>(params->principalX) * 0.0625f, static_cast<float>(params->principalY) * 0.0625f};
}

uint32_t ip_orientation2externalCalib(const Orientation* orientation, ExtCalib* ext) {
  const nadir::SineCosine t = nadir::sineCosineOfOpposite(orientation->tilt),
                          p = nadir::sineCosineOfOpposite(orientation->pan);
  const float tilt[9] = {1, 0, 0, 0, t.cosine, t.sine, 0, -t.sine, t.cosine};
  const float pan[9] = {p.cosine, 0, -p.sine, 0, 1, 0, p.sine, 0, p.cosine};
  float worldToCamera[9];
  mmMul(pan, tilt, worldToCamera);
  mTrans(worldToCamera, ext->R);
  ext->T[0] = ext->T[1] = ext->T[2] = 0;
  return 1;
}
