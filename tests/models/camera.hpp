// The matrices and the camera once more, written for clearness only, for the tests to compare with.
// Sums are formed in the order that the library promises, so that the bits agree.
#pragma once

#include <nadir/camera.h>

#include <array>
#include <cmath>
#include <cstdint>

namespace nadir::test::model {

using Matrix = std::array<float, 9>;
using Vec = std::array<float, 3>;

inline Vec product(const Matrix& m, const Vec& v) {
  Vec w;
  for (size_t i = 0; i < 3; i++) w[i] = (m[3 * i + 1] * v[1] + m[3 * i] * v[0]) + m[3 * i + 2] * v[2];
  return w;
}

inline Matrix product(const Matrix& a, const Matrix& b) {
  Matrix c;
  for (size_t i = 0; i < 3; i++) {
    for (size_t j = 0; j < 3; j++) {
      c[3 * i + j] = (a[3 * i + 1] * b[3 + j] + a[3 * i] * b[j]) + a[3 * i + 2] * b[6 + j];
    }
  }
  return c;
}

inline Matrix transposed(const Matrix& m) { return {m[0], m[3], m[6], m[1], m[4], m[7], m[2], m[5], m[8]}; }

inline Matrix rotationOf(const ExtCalib& e) {
  return {e.R[0], e.R[1], e.R[2], e.R[3], e.R[4], e.R[5], e.R[6], e.R[7], e.R[8]};
}

inline ExtCalib externalOf(const Matrix& r, const Vec& t) {
  return {{r[0], r[1], r[2], r[3], r[4], r[5], r[6], r[7], r[8]}, {t[0], t[1], t[2]}};
}

inline IntCalib internalCalib(const IntCalibParams& p) {
  return {static_cast<float>(p.baseline) * 0.00390625f, static_cast<float>(p.focalLength) * 0.00390625f,
          static_cast<float>(p.principalX) * 0.0625f, static_cast<float>(p.principalY) * 0.0625f};
}

inline float radians(float degrees) { return -(degrees * 3.1415927f) / 180.0f; }
inline float sine(float angle) { return static_cast<float>(std::sin(static_cast<double>(angle))); }
inline float cosine(float angle) { return static_cast<float>(std::cos(static_cast<double>(angle))); }

inline ExtCalib externalCalib(const Orientation& o) {
  const float s1 = sine(radians(o.tilt)), c1 = cosine(radians(o.tilt));
  const float s2 = sine(radians(o.pan)), c2 = cosine(radians(o.pan));
  const Matrix tilt = {1, 0, 0, 0, c1, s1, 0, -s1, c1};
  const Matrix pan = {c2, 0, -s2, 0, 1, 0, s2, 0, c2};
  return externalOf(transposed(product(pan, tilt)), {0, 0, 0});
}

inline Point3_f32 world2cam(Point3_f32 w, const ExtCalib& e) {
  const Vec v = product(transposed(rotationOf(e)), Vec{w.x, w.y, w.z});
  return {v[0] + e.T[0], v[1] + e.T[1], v[2] + e.T[2]};
}

inline Point3_f32 cam2world(Point3_f32 c, const ExtCalib& e) {
  const Vec v = product(rotationOf(e), Vec{c.x - e.T[0], c.y - e.T[1], c.z - e.T[2]});
  return {v[0], v[1], v[2]};
}

inline Point_f32 cam2img(Point3_f32 c, const IntCalib& i) {
  const float z = c.z > 50 ? c.z : 50.0f;
  return {i.focalLength * c.x / z + i.principalX, i.focalLength * c.y / z + i.principalY};
}

inline Point3_f32 img2cam(Point_f32 p, const IntCalib& i, float z) {
  return {(p.x - i.principalX) / i.focalLength * z, (p.y - i.principalY) / i.focalLength * z, z};
}

inline Point3_f32 img2world(Point_f32 p, const ExtCalib& e, const IntCalib& i, float h) {
  const float rx = (p.x - i.principalX) / i.focalLength, ry = (p.y - i.principalY) / i.focalLength;
  const float lambda = h / (e.R[7] * ry + e.R[6] * rx + e.R[8]);
  return cam2world({rx * lambda, ry * lambda, lambda}, e);
}

}  // namespace nadir::test::model
