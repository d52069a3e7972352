// The cells that a line visits.
#include <gtest/gtest.h>
#include <nadir/geometry.h>

#include <algorithm>
#include <csetjmp>
#include <cstdlib>
#include <utility>
#include <vector>

#include "lab/random.hpp"

namespace nadir::test {
namespace {

using Cells = std::vector<std::pair<int32_t, int32_t>>;

// The callback has no room for a pointer.
Cells visited;
int32_t lastUserData;

void visit(int32_t x, int32_t y, int32_t userData) {
  visited.emplace_back(x, y);
  lastUserData = userData;
}

Cells line(Point_s32 from, Point_s32 to) {
  visited.clear();
  IP_Utils_Bresenham(&from, &to, 0, visit);
  return visited;
}

// The steps with 64-bit numbers.
Cells expectedLine(Point_s32 from, Point_s32 to) {
  const int64_t dx = std::llabs(int64_t{to.x} - from.x), dy = std::llabs(int64_t{to.y} - from.y);
  const int sx = from.x < to.x ? 1 : -1, sy = from.y < to.y ? 1 : -1;
  int64_t err = dx - dy, x = from.x, y = from.y;
  Cells cells;
  for (;;) {
    cells.emplace_back(static_cast<int32_t>(x), static_cast<int32_t>(y));
    const int64_t e2 = 2 * err;
    if (x == to.x && y == to.y) return cells;
    if (e2 > -dy) {
      err -= dy;
      x += sx;
    }
    if (e2 < dx) {
      err += dx;
      y += sy;
    }
  }
}

TEST(Bresenham, OfAFlatLine) { EXPECT_EQ(line({0, 0}, {3, 1}), (Cells{{0, 0}, {1, 0}, {2, 1}, {3, 1}})); }

TEST(Bresenham, OfASteepLine) { EXPECT_EQ(line({0, 0}, {1, 3}), (Cells{{0, 0}, {0, 1}, {1, 2}, {1, 3}})); }

TEST(Bresenham, FromAPointToItselfVisitsItOnce) { EXPECT_EQ(line({0, 0}, {0, 0}), (Cells{{0, 0}})); }

TEST(Bresenham, GoesBackwardsAlongARow) { EXPECT_EQ(line({2, 5}, {-1, 5}), (Cells{{2, 5}, {1, 5}, {0, 5}, {-1, 5}})); }

TEST(Bresenham, GoesUpAColumn) { EXPECT_EQ(line({-3, 1}, {-3, -1}), (Cells{{-3, 1}, {-3, 0}, {-3, -1}})); }

TEST(Bresenham, OfADiagonalMovesOnBothAxesAtOnce) {
  EXPECT_EQ(line({0, 0}, {3, 3}), (Cells{{0, 0}, {1, 1}, {2, 2}, {3, 3}}));
  EXPECT_EQ(line({0, 0}, {-2, 2}), (Cells{{0, 0}, {-1, 1}, {-2, 2}}));
}

TEST(Bresenham, TakesAnotherWayBackWhereItPassesHalfWay) {
  EXPECT_EQ(line({0, 0}, {2, 1}), (Cells{{0, 0}, {1, 0}, {2, 1}}));
  EXPECT_EQ(line({2, 1}, {0, 0}), (Cells{{2, 1}, {1, 1}, {0, 0}}));
}

TEST(Bresenham, PassesTheCallersNumberThrough) {
  const Point_s32 p = {0, 0};
  for (int32_t number : {INT32_MIN, -1, 7}) {
    IP_Utils_Bresenham(&p, &p, number, visit);
    EXPECT_EQ(lastUserData, number);
  }
}

TEST(Bresenham, WorksAtTheEndsOfTheRange) {
  EXPECT_EQ(line({INT32_MAX - 1, INT32_MIN + 1}, {INT32_MAX, INT32_MIN}),
            (Cells{{INT32_MAX - 1, INT32_MIN + 1}, {INT32_MAX, INT32_MIN}}));
  EXPECT_EQ(line({INT32_MIN + 1, INT32_MAX}, {INT32_MIN, INT32_MAX}),
            (Cells{{INT32_MIN + 1, INT32_MAX}, {INT32_MIN, INT32_MAX}}));
}

std::jmp_buf enough;

void visitSix(int32_t x, int32_t y, int32_t) {
  if (visited.size() == 6) std::longjmp(enough, 1);
  visited.emplace_back(x, y);
}

TEST(Bresenham, OfALineAcrossTheWholeRangeBeginsAsAnyOther) {
  const Point_s32 from = {INT32_MIN, 0}, to = {INT32_MAX, 1};
  visited.clear();
  visited.reserve(6);
  if (setjmp(enough) == 0) IP_Utils_Bresenham(&from, &to, 0, visitSix);
  Cells wanted;
  for (int32_t i = 0; i < 6; ++i) wanted.emplace_back(INT32_MIN + i, 0);
  EXPECT_EQ(visited, wanted);
}

TEST(Bresenham, OfEveryShortLineFollowsTheErrorTerm) {
  for (int32_t y = -7; y <= 7; y++) {
    for (int32_t x = -7; x <= 7; x++) ASSERT_EQ(line({1, -2}, {x, y}), expectedLine({1, -2}, {x, y})) << x << "," << y;
  }
}

TEST(Bresenham, OfAnyLineFollowsTheErrorTerm) {
  lab::Random random(50);
  for (int round = 0; round < 200; round++) {
    const Point_s32 from = {random.between(-300, 300), random.between(-300, 300)};
    const Point_s32 to = {random.between(-300, 300), random.between(-300, 300)};
    ASSERT_EQ(line(from, to), expectedLine(from, to));
  }
}

TEST(Bresenham, StaysWithinHalfACellOfTheLine) {
  lab::Random random(51);
  for (int round = 0; round < 100; round++) {
    const Point_s32 to = {random.between(-200, 200), random.between(-200, 200)};
    const int64_t longer = std::max(std::abs(to.x), std::abs(to.y));
    const Cells cells = line({0, 0}, to);
    ASSERT_EQ(cells.size(), static_cast<size_t>(longer) + 1);
    for (auto [x, y] : cells) ASSERT_LE(2 * std::llabs(int64_t{x} * to.y - int64_t{y} * to.x), longer);
  }
}

}  // namespace
}  // namespace nadir::test
