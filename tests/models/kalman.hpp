// The filter once more, one operation after the other: every intermediate value is stored as a float, so that no
// compiler can keep more digits, fuse a product with a sum or change an order.
#pragma once

#include <nadir/numeric.h>

namespace nadir::test::model {

class Stored {
 public:
  Stored(float value) : value_(value) {}
  Stored(const Stored& other) : value_(other.value()) {}
  Stored& operator=(const Stored& other) {
    value_ = other.value();
    return *this;
  }
  float value() const { return value_; }

  friend Stored operator+(Stored a, Stored b) { return Stored(a.value() + b.value()); }
  friend Stored operator-(Stored a, Stored b) { return Stored(a.value() - b.value()); }
  friend Stored operator*(Stored a, Stored b) { return Stored(a.value() * b.value()); }
  friend Stored operator/(Stored a, Stored b) { return Stored(a.value() / b.value()); }

 private:
  volatile float value_;
};

// Q keeps what it holds.
inline Kalman1d created(Kalman1d f, float x, float v, float sigmaZ, float sigmaV, float sigmaA) {
  const Stored z = sigmaZ, rate = sigmaV;
  f.x = x;
  f.v = v;
  f.P[0] = (z * z).value();
  f.P[1] = f.P[2] = 0;
  f.P[3] = (rate * rate).value();
  f.R = (z * z).value();
  f.sigmaZ = sigmaZ;
  f.sigmaV = sigmaV;
  f.sigmaA = sigmaA;
  return f;
}

inline Kalman1d predicted(Kalman1d f, float step) {
  const Stored dt = step, sigma = f.sigmaA, x = f.x, v = f.v;
  const Stored p00 = f.P[0], p01 = f.P[1], p10 = f.P[2], p11 = f.P[3];
  const Stored dt2 = dt * dt, variance = sigma * sigma;

  const Stored q00 = dt2 * dt2 * 0.25f * variance;
  const Stored q01 = dt * dt2 * 0.5f * variance;
  const Stored q11 = dt2 * variance;
  f.Q[0] = q00.value();
  f.Q[1] = f.Q[2] = q01.value();
  f.Q[3] = q11.value();

  f.x = (x + dt * v).value();
  f.P[0] = (((p00 + p10 * dt) + (p01 + p11 * dt) * dt) + q00).value();
  f.P[1] = ((p01 + p11 * dt) + q01).value();
  f.P[2] = ((p10 + p11 * dt) + q01).value();
  f.P[3] = (p11 + q11).value();
  return f;
}

inline Kalman1d updated(Kalman1d f, float measurement) {
  const Stored z = measurement, r = f.R, x = f.x, v = f.v;
  const Stored p00 = f.P[0], p01 = f.P[1], p10 = f.P[2], p11 = f.P[3];
  const Stored s = Stored(1.0f) / (p00 + r);
  const Stored k0 = p00 * s, k1 = p10 * s, y = z - x;
  const Stored rest = Stored(1.0f) - k0;

  f.x = (x + y * k0).value();
  f.v = (v + y * k1).value();
  f.P[0] = (p00 * (rest * rest) + (k0 * k0) * r).value();
  f.P[1] = (rest * p01 - k1 * p00 * rest + k0 * k1 * r).value();
  f.P[2] = ((p10 - k1 * p00) * rest + k0 * k1 * r).value();
  f.P[3] = ((p11 - k1 * p01) - k1 * (p10 - k1 * p00) + (k1 * k1) * r).value();
  return f;
}

}  // namespace nadir::test::model
