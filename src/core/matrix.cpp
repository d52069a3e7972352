// This is the algebra of 3x3 matrices and vectors, with covariances and eigenvectors in the plane.
#include "core/matrix.hpp"

#include <nadir/matrix.h>

#include <cmath>
#include <cstring>

#include "core/constants.hpp"

namespace nadir {
namespace {

struct Mean {
  float x, y;
};

Mean meanOf(const uint16_t* points, int32_t count) {
  float x = 0, y = 0;
  for (int32_t i = 0; i < count; ++i, points += 2) {
    x += static_cast<float>(points[0]);
    y += static_cast<float>(points[1]);
  }
  return {x / static_cast<float>(count), y / static_cast<float>(count)};
}

void storeEigenvectors(float x1, float y1, float x2, float y2, float* vectors) {
  vectors[0] = x1;
  vectors[1] = y1;
  vectors[2] = x2;
  vectors[3] = y2;
}

}  // namespace
}  // namespace nadir

void mCopy(const float* src, float* dst) { std::memmove(dst, src, 9 * sizeof(float)); }

void mmMul(const float* a, const float* b, float* c) {
  for (size_t i = 0; i < 3; ++i) {
    for (size_t j = 0; j < 3; ++j) c[3 * i + j] = nadir::dot(a + 3 * i, 1, b[j], b[3 + j], b[6 + j]);
  }
}

void mvMul(const float* m, const float* v, float* w) {
  for (size_t i = 0; i < 3; ++i) w[i] = nadir::dot(m + 3 * i, 1, v[0], v[1], v[2]);
}

void mTrans(const float* src, float* dst) {
  for (size_t i = 0; i < 3; ++i) {
    for (size_t j = 0; j < 3; ++j) dst[3 * j + i] = src[3 * i + j];
  }
}

void vvAdd(const float* a, const float* b, float* c) {
  for (size_t i = 0; i < 3; ++i) c[i] = a[i] + b[i];
}

void vvSub(const float* a, const float* b, float* c) {
  for (size_t i = 0; i < 3; ++i) c[i] = a[i] - b[i];
}

uint32_t IP_Alg_Covar_2x2(const uint16_t* points, int32_t count, float* covariance) {
  if (count < 2) return 0;
  const nadir::Mean mean = nadir::meanOf(points, count);
  float xx = 0, xy = 0, yy = 0;
  for (int32_t i = 0; i < count; ++i, points += 2) {
    const float dx = static_cast<float>(points[0]) - mean.x;
    const float dy = static_cast<float>(points[1]) - mean.y;
    xx += dx * dx;
    xy += dx * dy;
    yy += dy * dy;
  }
  const float freedom = static_cast<float>(count - 1);
  covariance[0] = xx / freedom;
  covariance[1] = covariance[2] = xy / freedom;
  covariance[3] = yy / freedom;
  return 1;
}

uint32_t IP_Alg_Eigen_2x2(const float* matrix, float* eigenvalues, float* eigenvectors) {
  const float a = matrix[0], b = matrix[1], c = matrix[2], d = matrix[3];
  const float trace = a + d;
  const float discriminant = trace * trace * 0.25f - (a * d - b * c);
  if (discriminant < 0) return 0;
  const float s = std::sqrt(discriminant);
  const float l1 = trace * 0.5f + s, l2 = trace * 0.5f - s;
  if (std::fabs(c) > nadir::floatEpsilon) {
    nadir::storeEigenvectors(l1 - d, c, l2 - d, c, eigenvectors);
  } else if (std::fabs(b) > nadir::floatEpsilon) {
    nadir::storeEigenvectors(b, l1 - a, b, l2 - a, eigenvectors);
  } else {
    nadir::storeEigenvectors(1, 0, 0, 1, eigenvectors);
  }
  eigenvalues[0] = l1;
  eigenvalues[1] = l2;
  return 1;
}
