// This is a Kalman filter of a position and its velocity.
#include <nadir/numeric.h>

namespace nadir {
namespace {

float squared(float v) { return v * v; }

}  // namespace
}  // namespace nadir

void IP_Kalman1d_Create(Kalman1d* filter, float xInit, float vInit, float sigmaZ, float sigmaV, float sigmaA) {
  Kalman1d& f = *filter;
  f.x = xInit;
  f.v = vInit;
  f.P[0] = nadir::squared(sigmaZ);
  f.P[1] = f.P[2] = 0;
  f.P[3] = nadir::squared(sigmaV);
  f.R = nadir::squared(sigmaZ);
  f.sigmaZ = sigmaZ;
  f.sigmaV = sigmaV;
  f.sigmaA = sigmaA;
}

void IP_Kalman1d_Predict(Kalman1d* filter, float dt) {
  Kalman1d& f = *filter;
  const float dt2 = nadir::squared(dt), noise = nadir::squared(f.sigmaA);
  const float q00 = dt2 * dt2 * 0.25f * noise, q01 = dt * dt2 * 0.5f * noise, q11 = dt2 * noise;
  f.Q[0] = q00;
  f.Q[1] = f.Q[2] = q01;
  f.Q[3] = q11;

  f.x = f.x + dt * f.v;

  const float p00 = f.P[0], p01 = f.P[1], p10 = f.P[2], p11 = f.P[3];
  f.P[0] = ((p00 + p10 * dt) + (p01 + p11 * dt) * dt) + q00;
  f.P[1] = (p01 + p11 * dt) + q01;
  f.P[2] = (p10 + p11 * dt) + q01;
  f.P[3] = p11 + q11;
}

void IP_Kalman1d_Update(Kalman1d* filter, float z) {
  Kalman1d& f = *filter;
  const float p00 = f.P[0], p01 = f.P[1], p10 = f.P[2], p11 = f.P[3];
  const float reciprocal = 1.0f / (p00 + f.R);
  const float k0 = p00 * reciprocal, k1 = p10 * reciprocal;
  const float innovation = z - f.x;

  f.x = f.x + innovation * k0;
  f.v = f.v + innovation * k1;

  const float rest = 1.0f - k0;
  f.P[0] = p00 * nadir::squared(rest) + nadir::squared(k0) * f.R;
  f.P[1] = rest * p01 - k1 * p00 * rest + k0 * k1 * f.R;
  f.P[2] = (p10 - k1 * p00) * rest + k0 * k1 * f.R;
  f.P[3] = (p11 - k1 * p01) - k1 * (p10 - k1 * p00) + k1 * k1 * f.R;
}
