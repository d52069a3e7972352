// Penalties, the search of a minimum and the check of its peak.
#include <gtest/gtest.h>
#include <nadir/nadir.h>

#include "lab/random.hpp"
#include "tests/models/stereo.hpp"
#include "tests/support/guarded.hpp"
#include "tests/support/same.hpp"

namespace nadir::test {
namespace {

using model::Bytes;
using model::Variant;
using model::Words;

// ---- P2 ----

using Maps = std::array<Bytes, 4>;  // left, up-left, up, up-right

Maps p2Maps(const Words& image, uint32_t width, uint32_t height, Guard side = Guard::behind) {
  const Guarded<uint16_t> in(image, side);
  const Guarded<uint8_t> left(image.size(), side), upLeft(image.size(), side), up(image.size(), side),
      upRight(image.size(), side);
  SGM_CalcP2(in.data(), width, height, left.data(), upLeft.data(), up.data(), upRight.data());
  return {left.values(), upLeft.values(), up.values(), upRight.values()};
}

TEST(P2, FlatImageIs39Everywhere) {
  for (const Bytes& map : p2Maps(Words(7 * 5, 1234), 7, 5)) EXPECT_TRUE(same(Bytes(7 * 5, 39), map));
}

// P2 of the left map at the second of two pixels.
uint8_t p2OfStep(uint16_t from, uint16_t to) { return p2Maps({from, to}, 2, 1)[0][1]; }

TEST(P2, DropsByOneForEvery16UnitsOfStep) {
  EXPECT_EQ(p2OfStep(1000, 1000), 39);
  EXPECT_EQ(p2OfStep(1000, 1015), 39);
  EXPECT_EQ(p2OfStep(1000, 1016), 38);
  EXPECT_EQ(p2OfStep(1000, 1032), 37);
}

TEST(P2, FallsAndRisesCountAlike) {
  EXPECT_EQ(p2OfStep(1016, 1000), 38);
  EXPECT_EQ(p2OfStep(1015, 1000), 39);
}

TEST(P2, StepOf352OrMoreIs17) {
  EXPECT_EQ(p2OfStep(0, 351), 18);
  EXPECT_EQ(p2OfStep(0, 352), 17);
  EXPECT_EQ(p2OfStep(0, 368), 17);
}

TEST(P2, LargestStepsAre17) {
  EXPECT_EQ(p2OfStep(0, 65535), 17);
  EXPECT_EQ(p2OfStep(65535, 0), 17);
  EXPECT_EQ(p2OfStep(0x7FFF, 0x8000), 39);
}

// Every pixel differs strongly from every other, so that 39 can only stand for "no predecessor".
Words stepsEverywhere(uint32_t pixels) {
  Words image(pixels);
  for (uint32_t i = 0; i < pixels; ++i) image[i] = static_cast<uint16_t>(i * 400);
  return image;
}

TEST(P2, IsLargestExactlyWhereThePredecessorLiesOutside) {
  constexpr uint32_t width = 6, height = 5;
  const Maps maps = p2Maps(stepsEverywhere(width * height), width, height);
  for (uint32_t y = 0; y < height; ++y) {
    for (uint32_t x = 0; x < width; ++x) {
      const uint32_t at = y * width + x;
      EXPECT_EQ(maps[PC_DIR_LEFT][at], x == 0 ? 39 : 17);
      EXPECT_EQ(maps[PC_DIR_UPLEFT][at], x == 0 || y == 0 ? 39 : 17);
      EXPECT_EQ(maps[PC_DIR_UP][at], y == 0 ? 39 : 17);
      EXPECT_EQ(maps[PC_DIR_UPRIGHT][at], x + 1 == width || y == 0 ? 39 : 17);
    }
  }
}

TEST(P2, EachMapLooksAtItsOwnPredecessor) {
  // The centre of a 3x3 image; its predecessors differ from it by 1, 2, 3 and 4 steps of 16.
  const Words image{1032, 1048, 1064, 1016, 1000, 9, 9, 9, 9};
  const Maps maps = p2Maps(image, 3, 3);
  EXPECT_EQ(maps[PC_DIR_LEFT][4], 38);
  EXPECT_EQ(maps[PC_DIR_UPLEFT][4], 37);
  EXPECT_EQ(maps[PC_DIR_UP][4], 36);
  EXPECT_EQ(maps[PC_DIR_UPRIGHT][4], 35);
}

TEST(P2, SingleRowHasOnlyLeftPredecessors) {
  const Maps maps = p2Maps(stepsEverywhere(9), 9, 1);
  EXPECT_EQ(maps[PC_DIR_LEFT][8], 17);
  for (const size_t dir : {PC_DIR_UPLEFT, PC_DIR_UP, PC_DIR_UPRIGHT}) EXPECT_TRUE(same(Bytes(9, 39), maps[dir]));
}

TEST(P2, SingleColumnHasOnlyUpperPredecessors) {
  const Maps maps = p2Maps(stepsEverywhere(9), 1, 9);
  EXPECT_EQ(maps[PC_DIR_UP][8], 17);
  for (const size_t dir : {PC_DIR_LEFT, PC_DIR_UPLEFT, PC_DIR_UPRIGHT}) EXPECT_TRUE(same(Bytes(9, 39), maps[dir]));
}

void expectModelMaps(uint32_t width, uint32_t height, uint32_t bound) {
  const Words image = lab::Random(width * 100 + height).values<uint16_t>(size_t{width} * height, bound);
  const Maps want = model::p2Maps(image, width, height);
  for (const Guard side : {Guard::behind, Guard::before}) {
    const Maps got = p2Maps(image, width, height, side);
    for (size_t dir = 0; dir < 4; ++dir)
      EXPECT_TRUE(same(want[dir], got[dir])) << width << "x" << height << ", " << dir;
  }
}

TEST(P2, EqualsTheModelForEveryWidth) {
  for (uint32_t width = 0; width <= 140; ++width) expectModelMaps(width, 1 + width % 4, 700);
}

TEST(P2, EqualsTheModelForEveryHeight) {
  for (uint32_t height = 0; height <= 12; ++height) expectModelMaps(19, height, 65536);
}

// ---- minimum search ----

struct Found {
  uint32_t result;
  uint8_t value;
  uint32_t index;
};

Found findMin(Variant variant, const Bytes& costs, Guard side = Guard::behind) {
  const Guarded<uint8_t> in(costs, side);
  Found found{0, 77, 7777};
  const auto function = variant == Variant::scalar ? SGM_FindMinIdx : SGM_FindMinIdx_neon;
  found.result = function(in.data(), static_cast<uint32_t>(costs.size()), &found.value, &found.index);
  return found;
}

class FindMin : public ::testing::TestWithParam<Variant> {
 protected:
  void expectFound(const Bytes& costs, uint8_t value, uint32_t index) const {
    for (const Guard side : {Guard::behind, Guard::before}) {
      const Found found = findMin(GetParam(), costs, side);
      EXPECT_EQ(found.value, value) << costs.size();
      EXPECT_EQ(found.index, index) << costs.size();
      EXPECT_EQ(found.result, found.index) << costs.size();
    }
  }
};

TEST_P(FindMin, NoCostsGive255AtIndex255) { expectFound({}, 255, 255); }

TEST_P(FindMin, SingleCost) { expectFound({254}, 254, 0); }

TEST_P(FindMin, EqualCostsGiveTheFirst) {
  for (const size_t count : {2u, 8u, 15u, 16u, 17u, 32u, 64u, 100u, 256u}) expectFound(Bytes(count, 42), 42, 0);
}

TEST_P(FindMin, LowestIndexAmongEqualMinimaWins) {
  for (const size_t first : {0u, 5u, 9u, 20u, 40u, 63u}) {
    Bytes costs(70, 100);
    for (size_t i = first; i < costs.size(); i += 3) costs[i] = 50;
    expectFound(costs, 50, static_cast<uint32_t>(first));
  }
}

TEST_P(FindMin, EveryPlaceOfASingleMinimum) {
  for (uint32_t at = 0; at < 64; ++at) {
    Bytes costs(64, 252);
    costs[at] = 251;
    expectFound(costs, 251, at);
  }
}

TEST_P(FindMin, SmallestValueIsZero) {
  Bytes costs(64, 1);
  costs[37] = 0;
  expectFound(costs, 0, 37);
}

TEST_P(FindMin, LastOf256Costs) {
  Bytes costs(256, 255);
  costs[255] = 254;
  expectFound(costs, 254, 255);
}

TEST_P(FindMin, EqualsTheModelForEveryCount) {
  for (uint32_t count = 0; count <= 256; ++count) {
    lab::Random random(count);
    for (const uint32_t bound : {2u, 256u}) {
      Bytes costs = random.values<uint8_t>(count, bound);
      if (count % 3 == 0) {
        for (uint8_t& cost : costs) cost = static_cast<uint8_t>(254 + cost % 2);
      }
      const model::Minimum want = model::findMin(costs.data(), count, GetParam());
      expectFound(costs, want.value, want.index);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Variants, FindMin, ::testing::Values(Variant::scalar, Variant::vector),
                         [](const auto& tested) { return tested.param == Variant::scalar ? "Scalar" : "Vector"; });

TEST(FindMinScalar, ReturnsTheIndex) {
  EXPECT_EQ(findMin(Variant::scalar, {}).result, 255u);
  EXPECT_EQ(findMin(Variant::scalar, {9, 8, 7, 8}).result, 2u);
  EXPECT_EQ(findMin(Variant::scalar, {255, 255}).result, 255u);
}

TEST(FindMinScalar, NoCostBelow255GivesIndex255) {
  for (const size_t count : {1u, 7u, 16u, 40u, 64u, 256u}) {
    const Found found = findMin(Variant::scalar, Bytes(count, 255));
    EXPECT_EQ(found.value, 255);
    EXPECT_EQ(found.index, 255u) << count;
  }
}

TEST(FindMinVector, NoCostBelow255GivesIndex0) {
  for (const size_t count : {1u, 7u, 8u, 15u, 16u, 17u, 40u, 64u, 256u}) {
    const Found found = findMin(Variant::vector, Bytes(count, 255));
    EXPECT_EQ(found.value, 255);
    EXPECT_EQ(found.index, 0u) << count;
  }
}

// ---- peak check ----

class PeakCheck : public ::testing::TestWithParam<Variant> {
 protected:
  // Considers all of `costs`.
  int32_t check(const Bytes& costs, uint32_t ratio, Guard side = Guard::behind) const {
    const Guarded<uint8_t> in(costs, side);
    const auto function = GetParam() == Variant::scalar ? SGM_PeakCheckExtended : SGM_PeakCheckExtended_neon;
    return function(in.data(), static_cast<uint32_t>(costs.size() - 1), ratio);
  }

  void expectModel(const Bytes& costs, uint32_t ratio) const {
    const int32_t want = model::peakCheck(costs.data(), static_cast<uint32_t>(costs.size() - 1), ratio);
    EXPECT_EQ(check(costs, ratio), want) << costs.size() << " costs, ratio " << ratio;
  }
};

// 64 costs of `other` with a winner.
Bytes peakAt(size_t index, uint8_t cost, uint8_t other = 200, size_t count = 64) {
  Bytes costs(count, other);
  costs[index] = cost;
  return costs;
}

// A winner of cost `winner` at 20 and one competitor far away.
Bytes rivals(uint8_t winner, uint8_t rival) {
  Bytes costs = peakAt(20, winner, 255);
  costs[50] = rival;
  return costs;
}

TEST_P(PeakCheck, DistinctMinimumIsTheResult) { EXPECT_EQ(check(peakAt(20, 10), 0), 20); }

TEST_P(PeakCheck, EqualCostsAreRejected) {
  for (const uint8_t cost : Bytes{0, 100, 252, 255}) EXPECT_EQ(check(Bytes(64, cost), 0), 0) << +cost;
}

TEST_P(PeakCheck, WinnersAtTheEndsOfTheRangeAreRejectedHoweverDistinct) {
  for (const size_t index : {0u, 1u, 62u, 63u}) EXPECT_EQ(check(peakAt(index, 0, 255), 0), 0) << index;
}

TEST_P(PeakCheck, WinnersTwoFromTheEndsAreAccepted) {
  EXPECT_EQ(check(peakAt(2, 0, 255), 0), 2);
  EXPECT_EQ(check(peakAt(61, 0, 255), 0), 61);
}

TEST_P(PeakCheck, RangeEndsAtMaxIndex) {
  for (size_t count = 5; count <= 64; ++count) {
    EXPECT_EQ(check(peakAt(count - 3, 0, 255, count), 0), static_cast<int32_t>(count - 3));
    EXPECT_EQ(check(peakAt(count - 2, 0, 255, count), 0), 0);
  }
}

TEST_P(PeakCheck, FewerThanFiveCostsAreAlwaysRejected) {
  for (size_t count = 1; count < 5; ++count) {
    for (size_t index = 0; index < count; ++index) EXPECT_EQ(check(peakAt(index, 0, 255, count), 0), 0);
  }
}

TEST_P(PeakCheck, OnlyTheMiddleOfFiveCostsCanWin) {
  for (size_t index = 0; index < 5; ++index) {
    EXPECT_EQ(check(peakAt(index, 0, 255, 5), 0), index == 2 ? 2 : 0) << index;
  }
}

TEST_P(PeakCheck, MarginIsAtLeast6) {
  EXPECT_EQ(check(rivals(100, 105), 0), 0);
  EXPECT_EQ(check(rivals(100, 106), 0), 20);
}

TEST_P(PeakCheck, RatioIsIn128thsOfTheWinner) {
  // 10 * 128 >> 7 = 10 above the winner.
  EXPECT_EQ(check(rivals(10, 19), 128), 0);
  EXPECT_EQ(check(rivals(10, 20), 128), 20);
}

TEST_P(PeakCheck, MarginIsRoundedDown) {
  // 100 * 10 / 128 = 7.8.
  EXPECT_EQ(check(rivals(100, 106), 10), 0);
  EXPECT_EQ(check(rivals(100, 107), 10), 20);
}

TEST_P(PeakCheck, WinnerOfZeroHasAMarginOf6WhateverTheRatio) {
  for (const uint32_t ratio : {0u, 128u, 60000u, 0xFFFFFFFFu}) {
    EXPECT_EQ(check(rivals(0, 5), ratio), 0) << ratio;
    EXPECT_EQ(check(rivals(0, 6), ratio), 20) << ratio;
  }
}

TEST_P(PeakCheck, MarginWrapsAt256) {
  // 64 * 512 >> 7 = 256, which wraps to 0 and becomes 6; 255 does not wrap.
  EXPECT_EQ(check(rivals(64, 70), 512), 20);
  EXPECT_EQ(check(rivals(64, 69), 512), 0);
  EXPECT_EQ(check(rivals(64, 200), 511), 0);
}

TEST_P(PeakCheck, MarginBehindTheWrapCountsFromZeroAgain) {
  // 64 * 532 >> 7 = 266 = 256 + 10.
  EXPECT_EQ(check(rivals(64, 73), 532), 0);
  EXPECT_EQ(check(rivals(64, 74), 532), 20);
}

TEST_P(PeakCheck, RatiosBeyond32BitProductsWrapToo) {
  // 200 * 0xFFFFFFFF >> 7 has the low byte of 2^25 * 200 - 200 / 128: 254.
  EXPECT_EQ(check(rivals(200, 254), 0xFFFFFFFF), 0);
}

TEST_P(PeakCheck, ThresholdMayExceed255) {
  // 200 + (200 * 128 >> 7) = 400: not 144.
  EXPECT_EQ(check(rivals(200, 254), 128), 0);
  EXPECT_EQ(check(peakAt(20, 200, 255), 128), 0);
}

TEST_P(PeakCheck, DirectNeighboursMayBeClose) {
  Bytes costs = peakAt(20, 10);
  costs[19] = 10 + 1;
  costs[21] = 10;
  EXPECT_EQ(check(costs, 128), 20);
}

TEST_P(PeakCheck, NeighboursTwoAwayMayNotBeClose) {
  for (const size_t rival : {18u, 22u}) {
    Bytes costs = peakAt(20, 10);
    costs[rival] = 11;
    EXPECT_EQ(check(costs, 128), 0) << rival;
  }
}

TEST_P(PeakCheck, CompetitorBehindTwoCloseNeighboursCounts) {
  Bytes costs = peakAt(20, 10);
  costs[19] = costs[21] = 11;
  costs[40] = 12;
  EXPECT_EQ(check(costs, 128), 0);
}

TEST_P(PeakCheck, FirstOfEqualNeighboursWins) {
  Bytes costs = peakAt(30, 10);
  costs[31] = 10;
  EXPECT_EQ(check(costs, 128), 30);
}

TEST_P(PeakCheck, EqualFarCompetitorRejects) { EXPECT_EQ(check(rivals(10, 10), 0), 0); }

TEST_P(PeakCheck, CompetitorsBehindMaxIndexDoNotCount) {
  Bytes costs = peakAt(20, 10);
  costs[50] = 10;
  costs.resize(50);
  EXPECT_EQ(check(costs, 0), 20);
}

TEST_P(PeakCheck, EveryPlaceOfAWinnerOf256) {
  for (size_t index = 0; index < 256; ++index) {
    const bool inside = index >= 2 && index <= 253;
    EXPECT_EQ(check(peakAt(index, 9, 255, 256), 0), inside ? static_cast<int32_t>(index) : 0) << index;
  }
}

TEST_P(PeakCheck, ReadsNothingOutsideItsCosts) {
  for (size_t count = 1; count <= 256; ++count) {
    const Bytes costs = lab::Random(count).values<uint8_t>(count, 256);
    EXPECT_EQ(check(costs, 10, Guard::behind), check(costs, 10, Guard::before)) << count;
  }
}

TEST_P(PeakCheck, EqualsTheModelForAnyCosts) {
  constexpr uint32_t ratios[] = {0, 1, 10, 100, 128, 500, 512, 532, 40000, 0x80000001, 0xFFFFFFFF};
  for (size_t count = 1; count <= 256; ++count) {
    lab::Random random(count);
    for (const uint32_t bound : {3u, 40u, 256u}) {
      const uint32_t ratio = ratios[random.below(11)];
      expectModel(random.values<uint8_t>(count, bound), ratio);
    }
  }
}

// Costs near a threshold: one valley, the rest a little above it.
TEST_P(PeakCheck, EqualsTheModelForValleys) {
  lab::Random random(9);
  uint32_t accepted = 0;
  for (int i = 0; i < 3000; ++i) {
    const uint32_t ratio = random.below(300), bottom = random.below(200);
    Bytes costs(5 + random.below(60));
    for (uint8_t& cost : costs) cost = model::low8(std::min(model::threshold(bottom, ratio) + random.below(4), 255u));
    const uint32_t at = random.below(static_cast<uint32_t>(costs.size()));
    costs[at] = model::low8(bottom);
    if (at > 0) costs[at - 1] = model::low8(bottom + random.below(9));
    if (random.below(2))
      costs[random.below(static_cast<uint32_t>(costs.size()))] = model::low8(bottom + random.below(9));
    expectModel(costs, ratio);
    accepted += check(costs, ratio) != 0;
  }
  EXPECT_GT(accepted, 500u);
  EXPECT_LT(accepted, 2500u);
}

INSTANTIATE_TEST_SUITE_P(Variants, PeakCheck, ::testing::Values(Variant::scalar, Variant::vector),
                         [](const auto& tested) { return tested.param == Variant::scalar ? "Scalar" : "Vector"; });

}  // namespace
}  // namespace nadir::test
