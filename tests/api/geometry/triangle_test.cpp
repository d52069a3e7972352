// Barycentric weights in a triangle.
#include <gtest/gtest.h>
#include <nadir/geometry.h>

#include <vector>

#include "tests/support/points.hpp"

namespace nadir::test {
namespace {

struct Weights {
  int32_t status;
  float w[3];
};

Weights weigh(const std::vector<Point_s32>& triangle, Point_s32 p) {
  Weights out = {-7, {-77, -78, -79}};
  out.status = IP_Geom_Barycentric(triangle.data(), &p, out.w);
  return out;
}

// The model reasons on 32-bit integers.
Weights expectedWeights(const std::vector<Point_s32>& t, Point_s32 p) {
  const Point_s32 &a = t[0], &b = t[1], &c = t[2];
  const Wrap abx = Wrap(b.x) - a.x, aby = Wrap(b.y) - a.y, acx = Wrap(c.x) - a.x, acy = Wrap(c.y) - a.y;
  const Wrap d = acy * abx - acx * aby;
  if (d.value() == 0) return {-1, {-77, -78, -79}};
  const Wrap qx = Wrap(p.x) - a.x, qy = Wrap(p.y) - a.y;
  const Wrap u = qx * acy - qy * acx, v = qy * abx - qx * aby, w = d - (u + v);
  const float r = 1.0f / static_cast<float>(d.value());
  Weights out = {
      0, {static_cast<float>(w.value()) * r, static_cast<float>(u.value()) * r, static_cast<float>(v.value()) * r}};
  if (u.value() < 0 || v.value() < 0 || w.value() < 0 || d.value() < w.value()) return out;
  out.status = d.value() >= std::max(u.value(), v.value());
  return out;
}

const std::vector<Point_s32> rightTriangle = {{0, 0}, {10, 0}, {0, 10}};

TEST(Barycentric, WeighsTheCornersInTheirOrder) {
  const Weights out = weigh(rightTriangle, {1, 2});
  EXPECT_EQ(out.status, 1);
  const float tenth = 1.0f / 100;
  EXPECT_EQ(floats(out.w), (Floats{70 * tenth, 10 * tenth, 20 * tenth}));
}

TEST(Barycentric, OfTheOtherVertexOrderIsNeverInside) {
  const Weights out = weigh({{0, 0}, {0, 10}, {10, 0}}, {1, 1});
  EXPECT_EQ(out.status, 0);
  const float tenth = 1.0f / -100;
  EXPECT_EQ(floats(out.w), (Floats{-80 * tenth, -10 * tenth, -10 * tenth}));
}

TEST(Barycentric, HoldsOnTheBoundaryAndAtTheCorners) {
  for (Point_s32 p : {Point_s32{0, 0}, {10, 0}, {0, 10}, {5, 5}, {0, 3}, {3, 0}}) {
    EXPECT_EQ(weigh(rightTriangle, p).status, 1) << p.x << "," << p.y;
  }
}

TEST(Barycentric, WritesTheWeightsOfAPointOutside) {
  const Weights out = weigh(rightTriangle, {-10, 0});
  EXPECT_EQ(out.status, 0);
  const float tenth = 1.0f / 100;
  EXPECT_EQ(floats(out.w), (Floats{200 * tenth, -100 * tenth, 0}));
}

TEST(Barycentric, FailsBeyondEachSide) {
  for (Point_s32 p : {Point_s32{-1, 5}, {5, -1}, {6, 5}})
    EXPECT_EQ(weigh(rightTriangle, p).status, 0) << p.x << "," << p.y;
}

TEST(Barycentric, RefusesADegenerateTriangle) {
  const Weights out = weigh({{0, 0}, {1, 1}, {2, 2}}, {1, 1});
  EXPECT_EQ(out.status, -1);
  EXPECT_EQ(floats(out.w), (Floats{-77, -78, -79}));
}

TEST(Barycentric, RefusesATriangleWhoseAreaWrapsToZero) {
  EXPECT_EQ(weigh({{0, 0}, {65536, 0}, {0, 65536}}, {1, 1}).status, -1);
}

TEST(Barycentric, RefusesEachNullPointer) {
  const Point_s32 p = {1, 1};
  float w[3] = {-77, -78, -79};
  EXPECT_EQ(IP_Geom_Barycentric(nullptr, &p, w), -1);
  EXPECT_EQ(IP_Geom_Barycentric(rightTriangle.data(), nullptr, w), -1);
  EXPECT_EQ(IP_Geom_Barycentric(rightTriangle.data(), &p, nullptr), -1);
  EXPECT_EQ(floats(w), (Floats{-77, -78, -79}));
}

TEST(Barycentric, OfAnyIntegersWrapsAround) {
  lab::Random random(23);
  int inside = 0;
  for (int round = 0; round < 5000; round++) {
    const bool small = round % 2 == 0;
    auto point = [&] { return small ? Point_s32{random.between(0, 6), random.between(0, 6)} : anyPoint(random); };
    const std::vector<Point_s32> t = {point(), point(), point()};
    const Point_s32 p = point();
    const Weights wanted = expectedWeights(t, p), out = weigh(t, p);
    ASSERT_EQ(out.status, wanted.status) << t[0].x << "," << t[0].y << " " << t[1].x << "," << t[1].y << " " << t[2].x
                                         << "," << t[2].y << " at " << p.x << "," << p.y;
    ASSERT_EQ(floats(out.w), floats(wanted.w));
    inside += out.status == 1;
  }
  EXPECT_GT(inside, 100);
}

}  // namespace
}  // namespace nadir::test
