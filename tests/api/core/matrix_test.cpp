// Products, sums and copies of small matrices, to the bit.
#include <gtest/gtest.h>
#include <nadir/matrix.h>

#include <cfloat>
#include <cmath>
#include <cstring>
#include <vector>

#include "tests/models/camera.hpp"
#include "tests/support/floats.hpp"
#include "tests/support/guarded.hpp"

namespace nadir::test {
namespace {

using model::Matrix;
using model::Vec;

constexpr float untouched = -777.0f;

Matrix anyMatrix(lab::Random& random) {
  Matrix m;
  for (float& v : m) v = anyWithin(random, 1000);
  return m;
}

TEST(MatrixCopy, KeepsEveryBit) {
  // Both zeros, a subnormal, infinities and quiet and signalling NaNs with payloads.
  const uint32_t source[9] = {0x80000000u, 0u,          1u,          0x7F800000u, 0xFF800000u,
                              0x7FC12345u, 0x7F812345u, 0xFFABCDEFu, 0x3F800000u};
  Guarded<float> src(9), dst(9);
  std::memcpy(src.data(), source, sizeof source);
  mCopy(src.data(), dst.data());
  EXPECT_EQ(std::memcmp(source, dst.data(), sizeof source), 0);
}

TEST(MatrixProduct, AddsTheFirstTwoTermsBeforeTheThird) {
  // 100000001 is no float: the 1 is lost where it meets 1e8 and kept where the 1e8 have cancelled first.
  const float a[9] = {1e8f, 1, -1e8f, 1, 1e8f, -1e8f, 1e8f, -1e8f, 1};
  const float b[9] = {1, 1, 1, 1, 1, 1, 1, 1, 1};
  float c[9];
  mmMul(a, b, c);
  EXPECT_EQ(floats(c), (Floats{0, 0, 0, 0, 0, 0, 1, 1, 1}));
}

TEST(MatrixProduct, HasTheBitsOfTheDocumentedSum) {
  lab::Random random(1);
  for (int round = 0; round < 300; round++) {
    const Matrix a = anyMatrix(random), b = anyMatrix(random);
    Matrix c;
    mmMul(a.data(), b.data(), c.data());
    ASSERT_EQ(floats(c), floats(model::product(a, b)));
  }
}

TEST(MatrixProduct, KeepsInfinitiesAndSubnormals) {
  lab::Random random(2);
  for (int round = 0; round < 300; round++) {
    Matrix a, b, c;
    for (float& v : a) v = anyNumber(random);
    for (float& v : b) v = anyNumber(random);
    mmMul(a.data(), b.data(), c.data());
    ASSERT_EQ(floats(c), floats(model::product(a, b)));
  }
}

TEST(MatrixProduct, ByTheIdentityIsTheOtherFactor) {
  const Matrix identity = {1, 0, 0, 0, 1, 0, 0, 0, 1};
  lab::Random random(3);
  const Matrix a = anyMatrix(random);
  Matrix left, right;
  mmMul(identity.data(), a.data(), left.data());
  mmMul(a.data(), identity.data(), right.data());
  EXPECT_EQ(floats(a), floats(left));
  EXPECT_EQ(floats(a), floats(right));
}

TEST(MatrixProduct, TouchesNothingBehindItsNineElements) {
  const Guarded<float> a(std::vector<float>(9, 2)), b(std::vector<float>(9, 3)), c(9);
  mmMul(a.data(), b.data(), c.data());
  EXPECT_EQ(c.values(), std::vector<float>(9, 18));
}

TEST(MatrixVectorProduct, AddsTheFirstTwoTermsBeforeTheThird) {
  const float m[9] = {1e8f, 1, -1e8f, 1, 1e8f, -1e8f, 1e8f, -1e8f, 1};
  const float v[3] = {1, 1, 1};
  float w[3];
  mvMul(m, v, w);
  EXPECT_EQ(floats(w), (Floats{0, 0, 1}));
}

TEST(MatrixVectorProduct, HasTheBitsOfTheDocumentedSum) {
  lab::Random random(4);
  for (int round = 0; round < 500; round++) {
    const Matrix m = anyMatrix(random);
    const Vec v = {anyWithin(random, 1e4f), anyWithin(random, 1), anyWithin(random, 1e-3f)};
    Vec w;
    mvMul(m.data(), v.data(), w.data());
    ASSERT_EQ(floats(w), floats(model::product(m, v)));
  }
}

TEST(MatrixVectorProduct, TouchesNothingBehindItsThreeElements) {
  const Guarded<float> m(std::vector<float>(9, 2)), v(std::vector<float>(3, 5)), w(3);
  mvMul(m.data(), v.data(), w.data());
  EXPECT_EQ(w.values(), std::vector<float>(3, 30));
}

TEST(MatrixTranspose, SwapsRowsAndColumns) {
  const Guarded<float> src(std::vector<float>{1, 2, 3, 4, 5, 6, 7, 8, 9}), dst(9);
  mTrans(src.data(), dst.data());
  EXPECT_EQ(dst.values(), (std::vector<float>{1, 4, 7, 2, 5, 8, 3, 6, 9}));
}

TEST(MatrixTranspose, OfTheIdentityIsTheIdentity) {
  const std::vector<float> identity = {1, 0, 0, 0, 1, 0, 0, 0, 1};
  std::vector<float> out(9, untouched);
  mTrans(identity.data(), out.data());
  EXPECT_EQ(out, identity);
}

TEST(VectorSum, IsElementByElement) {
  const Guarded<float> a(std::vector<float>{1, -2, 0.5f}), b(std::vector<float>{10, 20, 0.25f}), c(3);
  vvAdd(a.data(), b.data(), c.data());
  EXPECT_EQ(c.values(), (std::vector<float>{11, 18, 0.75f}));
}

TEST(VectorSum, MayBeWrittenOverEitherOperand) {
  float a[3] = {1, 2, 3};
  float b[3] = {10, 20, 30};
  vvAdd(a, b, a);
  EXPECT_EQ(floats(a), (Floats{11, 22, 33}));
  vvAdd(a, b, b);
  EXPECT_EQ(floats(b), (Floats{21, 42, 63}));
}

TEST(VectorDifference, IsFirstMinusSecond) {
  const Guarded<float> a(std::vector<float>{1, -2, 0.5f}), b(std::vector<float>{10, 20, 0.25f}), c(3);
  vvSub(a.data(), b.data(), c.data());
  EXPECT_EQ(c.values(), (std::vector<float>{-9, -22, 0.25f}));
}

TEST(VectorDifference, MayBeWrittenOverEitherOperand) {
  float a[3] = {1, 2, 3};
  float b[3] = {10, 20, 30};
  vvSub(a, b, b);
  EXPECT_EQ(floats(b), (Floats{-9, -18, -27}));
  vvSub(a, b, a);
  EXPECT_EQ(floats(a), (Floats{10, 20, 30}));
}

uint32_t covarianceOf(const std::vector<uint16_t>& points, float* out) {
  const Guarded<uint16_t> guarded(points);
  const uint32_t status = IP_Alg_Covar_2x2(guarded.data(), static_cast<int32_t>(points.size() / 2), out);
  EXPECT_EQ(guarded.values(), points);
  return status;
}

// The documented two passes in single precision.
Floats expectedCovariance(const std::vector<uint16_t>& points) {
  const size_t count = points.size() / 2;
  const float n = static_cast<float>(count), n1 = static_cast<float>(count - 1);
  float sx = 0, sy = 0, xx = 0, xy = 0, yy = 0;
  for (size_t i = 0; i < count; i++) {
    sx += static_cast<float>(points[2 * i]);
    sy += static_cast<float>(points[2 * i + 1]);
  }
  const float mx = sx / n, my = sy / n;
  for (size_t i = 0; i < count; i++) {
    const float dx = static_cast<float>(points[2 * i]) - mx, dy = static_cast<float>(points[2 * i + 1]) - my;
    xx += dx * dx;
    xy += dx * dy;
    yy += dy * dy;
  }
  return {xx / n1, xy / n1, xy / n1, yy / n1};
}

TEST(Covariance, OfTwoPointsUsesTheUnbiasedEstimator) {
  float out[4];
  EXPECT_EQ(covarianceOf({0, 0, 2, 2}, out), 1u);
  EXPECT_EQ(floats(out), (Floats{2, 2, 2, 2}));
}

TEST(Covariance, KeepsTheVariancesOfXAndYApart) {
  float out[4];
  EXPECT_EQ(covarianceOf({0, 5, 4, 5, 8, 5}, out), 1u);
  EXPECT_EQ(floats(out), (Floats{16, 0, 0, 0}));
}

TEST(Covariance, OfFallingPointsIsNegative) {
  float out[4];
  EXPECT_EQ(covarianceOf({0, 2, 2, 0}, out), 1u);
  EXPECT_EQ(floats(out), (Floats{2, -2, -2, 2}));
}

TEST(Covariance, RefusesCountsBelowTwo) {
  const uint16_t point[2] = {3, 4};
  for (int32_t count : {1, 0, -1, INT32_MIN}) {
    float out[4] = {untouched, untouched, untouched, untouched};
    EXPECT_EQ(IP_Alg_Covar_2x2(point, count, out), 0u) << count;
    EXPECT_EQ(floats(out), (Floats{untouched, untouched, untouched, untouched})) << count;
  }
}

TEST(Covariance, ReadsNoPointWhereThereIsNone) {
  const Guarded<uint16_t> nothing(0);
  float out[4];
  EXPECT_EQ(IP_Alg_Covar_2x2(nothing.data(), 0, out), 0u);
}

TEST(Covariance, HasTheBitsOfTwoSinglePrecisionPasses) {
  lab::Random random(5);
  for (size_t count : {2u, 3u, 7u, 8u, 9u, 33u, 1000u}) {
    const std::vector<uint16_t> points = random.values<uint16_t>(2 * count, 65536);
    float out[4];
    ASSERT_EQ(covarianceOf(points, out), 1u);
    EXPECT_EQ(floats(out), expectedCovariance(points)) << count;
  }
}

struct Eigen {
  uint32_t status;
  Floats values, vectors;
};

Eigen eigenOf(std::initializer_list<float> matrix) {
  const Guarded<float> in{std::vector<float>(matrix)};
  const Guarded<float> values(std::vector<float>(2, untouched)), vectors(std::vector<float>(4, untouched));
  const uint32_t status = IP_Alg_Eigen_2x2(in.data(), values.data(), vectors.data());
  return {status, Floats(values.data(), 2), Floats(vectors.data(), 4)};
}

TEST(Eigen2x2, OfARotationIsRefused) {
  const Eigen e = eigenOf({0, 1, -1, 0});
  EXPECT_EQ(e.status, 0u);
  EXPECT_EQ(e.values, (Floats{untouched, untouched}));
  EXPECT_EQ(e.vectors, (Floats{untouched, untouched, untouched, untouched}));
}

TEST(Eigen2x2, OfAFallingDiagonalPairsEachValueWithItsAxis) {
  const Eigen e = eigenOf({3, 0, 0, 1});
  EXPECT_EQ(e.status, 1u);
  EXPECT_EQ(e.values, (Floats{3, 1}));
  EXPECT_EQ(e.vectors, (Floats{1, 0, 0, 1}));
}

TEST(Eigen2x2, OfARisingDiagonalStillPairsTheLargerValueWithTheFirstAxis) {
  const Eigen e = eigenOf({1, 0, 0, 3});
  EXPECT_EQ(e.status, 1u);
  EXPECT_EQ(e.values, (Floats{3, 1}));
  EXPECT_EQ(e.vectors, (Floats{1, 0, 0, 1}));
}

TEST(Eigen2x2, OfASymmetricMatrix) {
  const Eigen e = eigenOf({2, 1, 1, 2});
  EXPECT_EQ(e.status, 1u);
  EXPECT_EQ(e.values, (Floats{3, 1}));
  EXPECT_EQ(e.vectors, (Floats{1, 1, -1, 1}));
}

TEST(Eigen2x2, OfAnUpperTriangleTakesItsVectorsFromTheFirstRow) {
  const Eigen e = eigenOf({1, 2, 0, 3});
  EXPECT_EQ(e.values, (Floats{3, 1}));
  EXPECT_EQ(e.vectors, (Floats{2, 2, 2, 0}));
}

TEST(Eigen2x2, OfADoubleValueGivesTheSameVectorTwice) {
  const Eigen e = eigenOf({2, 1, 0, 2});
  EXPECT_EQ(e.status, 1u);
  EXPECT_EQ(e.values, (Floats{2, 2}));
  EXPECT_EQ(e.vectors, (Floats{1, 0, 1, 0}));
}

TEST(Eigen2x2, TakesAnEntryOfExactlyTheMachineEpsilonForZero) {
  EXPECT_EQ(eigenOf({3, FLT_EPSILON, FLT_EPSILON, 1}).vectors, (Floats{1, 0, 0, 1}));
}

TEST(Eigen2x2, TakesAnEntryJustAboveTheMachineEpsilonForItself) {
  const float entry = std::nextafter(FLT_EPSILON, 1.0f);
  EXPECT_EQ(eigenOf({3, 0, entry, 1}).vectors, (Floats{2, entry, 0, entry}));
  EXPECT_EQ(eigenOf({3, entry, 0, 1}).vectors, (Floats{entry, 0, entry, -2}));
}

TEST(Eigen2x2, TakesANegativeEntryByItsMagnitude) { EXPECT_EQ(eigenOf({3, 0, -1, 1}).vectors, (Floats{2, -1, 0, -1})); }

TEST(Eigen2x2, MayBeWrittenOverTheMatrix) {
  float matrix[4] = {2, 1, 1, 2}, values[2];
  EXPECT_EQ(IP_Alg_Eigen_2x2(matrix, values, matrix), 1u);
  EXPECT_EQ(floats(values), (Floats{3, 1}));
  EXPECT_EQ(floats(matrix), (Floats{1, 1, -1, 1}));
}

TEST(Eigen2x2, OfANaNIsNoFailure) {
  const Eigen e = eigenOf({NAN, 1, 1, 2});
  EXPECT_EQ(e.status, 1u);
  EXPECT_EQ(e.values, (Floats{NAN, NAN}));
}

TEST(Eigen2x2, HasTheBitsOfTheDocumentedFormulas) {
  lab::Random random(6);
  int complexOnes = 0;
  for (int round = 0; round < 500; round++) {
    const float a = anyWithin(random, 10), b = anyWithin(random, 10), c = anyWithin(random, 10),
                d = anyWithin(random, 10);
    const float tr = a + d, det = a * d - b * c, disc = tr * tr * 0.25f - det;
    const Eigen e = eigenOf({a, b, c, d});
    ASSERT_EQ(e.status, disc < 0 ? 0u : 1u);
    if (disc < 0) {
      complexOnes++;
      continue;
    }
    const float s = std::sqrt(disc), l1 = tr * 0.5f + s, l2 = tr * 0.5f - s;
    ASSERT_EQ(e.values, (Floats{l1, l2}));
    ASSERT_EQ(e.vectors, (Floats{l1 - d, c, l2 - d, c}));
  }
  EXPECT_GT(complexOnes, 50);
}

}  // namespace
}  // namespace nadir::test
