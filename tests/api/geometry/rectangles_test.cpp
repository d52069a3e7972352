// Rectangles: whether they meet, their union and common part, and growing one.
#include <gtest/gtest.h>
#include <nadir/geometry.h>

#include <string>
#include <type_traits>
#include <vector>

#include "tests/support/integers.hpp"

namespace nadir::test {
namespace {

template <class Rect>
struct RectOps;
template <>
struct RectOps<Rect_s32> {
  using Coordinate = int32_t;
  static int32_t overlap(const Rect_s32& a, const Rect_s32& b) { return IP_Geom_Intersects_s32(&a, &b); }
  static void unite(const Rect_s32& a, const Rect_s32& b, Rect_s32* out) { IP_Geom_SetUnion_s32(&a, &b, out); }
};
template <>
struct RectOps<Rect_u32> {
  using Coordinate = uint32_t;
  static int32_t overlap(const Rect_u32& a, const Rect_u32& b) { return IP_Geom_Intersects_u32(&a, &b); }
  static void unite(const Rect_u32& a, const Rect_u32& b, Rect_u32* out) { IP_Geom_SetUnion_u32(&a, &b, out); }
};

template <class Rect>
auto sides(const Rect& r) {
  return std::vector<decltype(r.x0)>{r.x0, r.y0, r.x1, r.y1};
}

template <class Rect>
bool isEmpty(const Rect& r) {
  return r.x0 == r.x1 || r.y0 == r.y1;
}

template <class Rect>
Rect anyRect(lab::Random& random) {
  using C = typename RectOps<Rect>::Coordinate;
  auto side = [&] { return static_cast<C>(random.below(2) ? anyInteger(random) : random.between(-3, 3)); };
  return {side(), side(), side(), side()};
}

template <class Rect>
class Rectangles : public testing::Test {};
using RectTypes = testing::Types<Rect_s32, Rect_u32>;
struct RectNames {
  template <class Rect>
  static std::string GetName(int) {
    return std::is_same_v<Rect, Rect_s32> ? "Signed" : "Unsigned";
  }
};
TYPED_TEST_SUITE(Rectangles, RectTypes, RectNames);

TYPED_TEST(Rectangles, OverlapWhereTheyShareACell) {
  EXPECT_EQ(RectOps<TypeParam>::overlap({0, 0, 4, 4}, {3, 3, 9, 9}), 1);
  EXPECT_EQ(RectOps<TypeParam>::overlap({3, 3, 9, 9}, {0, 0, 4, 4}), 1);
  EXPECT_EQ(RectOps<TypeParam>::overlap({0, 0, 9, 9}, {3, 3, 4, 4}), 1);
}

TYPED_TEST(Rectangles, DoNotOverlapWhereTheyOnlyTouch) {
  const TypeParam centre = {4, 4, 8, 8};
  for (const TypeParam& r : {TypeParam{0, 4, 4, 8}, {8, 4, 9, 8}, {4, 0, 8, 4}, {4, 8, 8, 9}, {8, 8, 9, 9}}) {
    EXPECT_EQ(RectOps<TypeParam>::overlap(centre, r), 0);
    EXPECT_EQ(RectOps<TypeParam>::overlap(r, centre), 0);
  }
}

TYPED_TEST(Rectangles, DoNotOverlapWhereOneIsEmpty) {
  EXPECT_EQ(RectOps<TypeParam>::overlap({2, 2, 2, 3}, {0, 0, 9, 9}), 0);
  EXPECT_EQ(RectOps<TypeParam>::overlap({0, 0, 9, 9}, {2, 2, 3, 2}), 0);
}

TYPED_TEST(Rectangles, OverlapIsTheFourStrictComparisonsForAnySides) {
  lab::Random random(24);
  int hits = 0;
  for (int round = 0; round < 4000; round++) {
    const TypeParam a = anyRect<TypeParam>(random), b = anyRect<TypeParam>(random);
    const bool wanted = !isEmpty(a) && !isEmpty(b) && b.x0 < a.x1 && b.x1 > a.x0 && a.y0 < b.y1 && a.y1 > b.y0;
    ASSERT_EQ(RectOps<TypeParam>::overlap(a, b), wanted);
    hits += wanted;
  }
  EXPECT_GT(hits, 100);
}

TYPED_TEST(Rectangles, UnionIsTheBoxAroundBoth) {
  TypeParam out = {};
  RectOps<TypeParam>::unite({0, 5, 2, 7}, {4, 1, 9, 3}, &out);
  EXPECT_EQ(sides(out), sides(TypeParam{0, 1, 9, 7}));
}

TYPED_TEST(Rectangles, UnionWithAnEmptyOneIsTheOther) {
  const TypeParam full = {4, 4, 8, 8};
  for (const TypeParam& empty : {TypeParam{1, 1, 1, 9}, {1, 1, 9, 1}}) {
    TypeParam out = {};
    RectOps<TypeParam>::unite(full, empty, &out);
    EXPECT_EQ(sides(out), sides(full));
    out = {};
    RectOps<TypeParam>::unite(empty, full, &out);
    EXPECT_EQ(sides(out), sides(full));
  }
}

TYPED_TEST(Rectangles, UnionOfTwoEmptyOnesLeavesTheResult) {
  TypeParam out = {11, 12, 13, 14};
  RectOps<TypeParam>::unite({1, 1, 1, 9}, {2, 2, 9, 2}, &out);
  EXPECT_EQ(sides(out), sides(TypeParam{11, 12, 13, 14}));
}

TYPED_TEST(Rectangles, UnionMayBeWrittenOverEitherOperand) {
  TypeParam a = {0, 5, 2, 7}, b = {4, 1, 9, 3};
  RectOps<TypeParam>::unite(a, b, &a);
  EXPECT_EQ(sides(a), sides(TypeParam{0, 1, 9, 7}));
  a = {0, 5, 2, 7};
  RectOps<TypeParam>::unite(a, b, &b);
  EXPECT_EQ(sides(b), sides(TypeParam{0, 1, 9, 7}));
}

TYPED_TEST(Rectangles, UnionUsesInvertedOnesAsTheyStand) {
  TypeParam out = {};
  RectOps<TypeParam>::unite({9, 9, 5, 5}, {6, 6, 7, 7}, &out);
  EXPECT_EQ(sides(out), sides(TypeParam{6, 6, 7, 7}));
}

TYPED_TEST(Rectangles, UnionTakesTheOuterSidesOfAny) {
  lab::Random random(25);
  for (int round = 0; round < 4000; round++) {
    const TypeParam a = anyRect<TypeParam>(random), b = anyRect<TypeParam>(random);
    TypeParam out = {11, 12, 13, 14}, wanted = out;
    RectOps<TypeParam>::unite(a, b, &out);
    if (!isEmpty(a)) wanted = a;
    if (!isEmpty(b)) wanted = b;
    if (!isEmpty(a) && !isEmpty(b)) {
      wanted = {std::min(a.x0, b.x0), std::min(a.y0, b.y0), std::max(a.x1, b.x1), std::max(a.y1, b.y1)};
    }
    ASSERT_EQ(sides(out), sides(wanted));
  }
}

TEST(RectanglesSigned, CompareNegativeSidesBelowZero) {
  EXPECT_EQ(RectOps<Rect_s32>::overlap({-5, -5, 1, 1}, {-1, -1, 9, 9}), 1);
}

TEST(RectanglesUnsigned, CompareSidesAboveTheSignBitAsLarge) {
  EXPECT_EQ(RectOps<Rect_u32>::overlap({1, 1, 0x80000005u, 0x80000005u}, {0x80000000u, 0x80000000u, ~0u, ~0u}), 1);
}

Rect_s32 intersection(const Rect_s32& a, const Rect_s32& b) {
  Rect_s32 out = {11, 12, 13, 14};
  IP_Geom_SetIntersection_s32(&a, &b, &out);
  return out;
}

TEST(RectIntersection, IsTheCommonPart) {
  EXPECT_EQ(sides(intersection({0, 0, 4, 5}, {3, 2, 9, 9})), sides(Rect_s32{3, 2, 4, 5}));
}

TEST(RectIntersection, OfTouchingOnesIsAllZero) {
  EXPECT_EQ(sides(intersection({1, 1, 4, 4}, {4, 1, 9, 4})), sides(Rect_s32{0, 0, 0, 0}));
}

TEST(RectIntersection, WrittenOverAnOperandIsAllZero) {
  const Rect_s32 whole = {1, 1, 9, 9};
  Rect_s32 a = {2, 2, 7, 7}, b = a;
  IP_Geom_SetIntersection_s32(&a, &whole, &a);
  IP_Geom_SetIntersection_s32(&whole, &b, &b);
  EXPECT_EQ(sides(a), sides(Rect_s32{0, 0, 0, 0}));
  EXPECT_EQ(sides(b), sides(Rect_s32{0, 0, 0, 0}));
}

TEST(RectIntersection, OfAnEmptyOneInsideAnotherIsThatEmptyOne) {
  // A column without width passes the four strict comparisons where it lies inside the other.
  EXPECT_EQ(sides(intersection({0, 0, 9, 9}, {2, 1, 2, 3})), sides(Rect_s32{2, 1, 2, 3}));
}

TEST(RectIntersection, OfAnySidesFollowsTheFourComparisons) {
  lab::Random random(26);
  for (int round = 0; round < 4000; round++) {
    const Rect_s32 a = anyRect<Rect_s32>(random), b = anyRect<Rect_s32>(random);
    Rect_s32 wanted = {0, 0, 0, 0};
    if (a.x1 > b.x0 && a.x0 < b.x1 && a.y1 > b.y0 && a.y0 < b.y1) {
      wanted = {std::max(a.x0, b.x0), std::max(a.y0, b.y0), std::min(a.x1, b.x1), std::min(a.y1, b.y1)};
    }
    ASSERT_EQ(sides(intersection(a, b)), sides(wanted));
  }
}

TEST(RectGrow, MovesEverySideOutwards) {
  Rect_s32 r = {10, 20, 30, 40};
  IP_Geom_RectGrow_s32(&r, 1, 2);
  EXPECT_EQ(sides(r), sides(Rect_s32{9, 18, 31, 42}));
}

TEST(RectGrow, ByANegativeAmountShrinksEvenPastItself) {
  Rect_s32 r = {10, 20, 30, 40};
  IP_Geom_RectGrow_s32(&r, -15, -1);
  EXPECT_EQ(sides(r), sides(Rect_s32{25, 21, 15, 39}));
}

TEST(RectGrow, WrapsAround) {
  Rect_s32 r = {INT32_MIN, 0, INT32_MAX, 0};
  IP_Geom_RectGrow_s32(&r, 1, INT32_MIN);
  EXPECT_EQ(sides(r), sides(Rect_s32{INT32_MAX, INT32_MIN, INT32_MIN, INT32_MIN}));
}

}  // namespace
}  // namespace nadir::test
