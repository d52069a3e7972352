// Which warnings figures give, on both sides of each threshold, and where one hides another.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "ground/trust/ground_search.hpp"
#include "ground/trust/warnings.hpp"

namespace nadir::ground::test {

namespace {

using Ids = std::vector<uint32_t>;

// The figures of a good pair with a good mount, of which each test spoils some.
struct Figures {
  NadirTrust trust{};
  MatchedShares matched{1000, 1000, 900, 900, 0, 0};
  SecondLook look{0.1, 0.5, 0.2, 0.1, 0};
  Agreement expected{1000, 900, 0, 0.3}, best{1000, 900, 0, 0.3};
  MapView map{};
  bool isLax = false, hasMatched = true, hasLook = false, hasBest = false, hasMap = false;

  std::vector<NadirWarning> warnings() const {
    Evidence e{&trust};
    e.matched = hasMatched ? &matched : nullptr;
    e.isLax = isLax;
    e.look = hasLook ? &look : nullptr;
    e.expected = &expected;
    e.best = hasBest ? &best : nullptr;
    e.possibleBlocks = 1000;
    e.map = hasMap ? &map : nullptr;
    std::vector<NadirWarning> listed(NADIR_WARNINGS);
    listed.resize(listWarnings(e, listed.data()));
    return listed;
  }

  Ids ids() const {
    Ids found;
    for (const NadirWarning& w : warnings()) found.push_back(w.id);
    return found;
  }
};

// So little is matched that a second look was taken, which found nothing special.
Figures thin() {
  Figures f;
  f.matched.matched = 500;
  f.trust.matched = 0.5;
  f.hasLook = true;
  return f;
}

}  // namespace

TEST(WarningsOf, GoodFiguresAreNone) {
  EXPECT_EQ(Figures{}.ids(), Ids{});
  Figures f;
  f.hasBest = f.hasMap = true;
  f.map.seen = f.map.bestSeen = 0.9;
  EXPECT_EQ(f.ids(), Ids{});
}

TEST(WarningsOf, OnePictureThatIsTooDarkOrTooBrightIsEnough) {
  for (const bool left : {true, false}) {
    Figures f;
    double& dark = left ? f.trust.dark_left : f.trust.dark_right;
    dark = 0.599;
    EXPECT_EQ(f.ids(), Ids{});
    dark = 0.6;
    EXPECT_EQ(f.ids(), Ids{NADIR_WARNING_TOO_DARK});
    dark = 0;
    double& clipped = left ? f.trust.clipped_left : f.trust.clipped_right;
    clipped = 0.099;
    EXPECT_EQ(f.ids(), Ids{});
    clipped = 0.1;
    EXPECT_EQ(f.ids(), Ids{NADIR_WARNING_OVEREXPOSED});
  }
}

TEST(WarningsOf, ExposureSaysBothPicturesAndHidesWhatFollows) {
  Figures f = thin();
  f.trust.dark_left = 0.7;
  f.trust.dark_right = 0.2;
  f.trust.clipped_left = 0.15;
  f.trust.clipped_right = 0.05;
  const auto w = f.warnings();
  ASSERT_EQ(f.ids(), (Ids{NADIR_WARNING_TOO_DARK, NADIR_WARNING_OVEREXPOSED}));
  EXPECT_EQ(w[0].count, 2u);
  EXPECT_EQ(w[0].numbers[0], 0.7);
  EXPECT_EQ(w[0].numbers[1], 0.2);
  EXPECT_EQ(w[1].numbers[0], 0.15);
  EXPECT_EQ(w[1].numbers[1], 0.05);
}

TEST(WarningsOf, ThinPicturesSayTheirShareAndTheUsualOne) {
  Figures f = thin();
  ASSERT_EQ(f.ids(), Ids{NADIR_WARNING_LOW_DENSITY});
  EXPECT_EQ(f.warnings()[0].numbers[0], 0.5);
  EXPECT_EQ(f.warnings()[0].numbers[1], 0.56);
  f.look.asGiven = 0.56;
  EXPECT_EQ(f.ids(), Ids{});
  f.look.asGiven = 0.559;
  f.matched.matched = 560;
  EXPECT_EQ(f.ids(), Ids{});
}

// A lax peak check lets most pixels have a value, if a wrong one: the second look decides alone.
TEST(WarningsOf, WithALaxCheckTheSecondLookDecides) {
  Figures f = thin();
  f.isLax = true;
  f.matched.matched = 900;
  ASSERT_EQ(f.ids(), Ids{NADIR_WARNING_LOW_DENSITY});
  EXPECT_EQ(f.warnings()[0].numbers[0], 0.5);
  f.look.asGiven = 0.4;
  EXPECT_EQ(f.warnings()[0].numbers[0], 0.4);
  f.hasLook = false;
  EXPECT_EQ(f.ids(), Ids{});
}

TEST(WarningsOf, TheSamePictureTwice) {
  Figures f = thin();
  f.look.unmoved = 0.399;
  EXPECT_EQ(f.ids(), Ids{NADIR_WARNING_LOW_DENSITY});
  f.look.unmoved = 0.4;
  f.look.exchanged = 0.9;
  ASSERT_EQ(f.ids(), Ids{NADIR_WARNING_SAME_PICTURE});
  EXPECT_EQ(f.warnings()[0].numbers[0], 0.4);
}

TEST(WarningsOf, SwappedPicturesMatchHalfAsManyAgainTheOtherWay) {
  Figures f = thin();
  f.look.asGiven = 0.3;
  f.look.exchanged = 0.499;
  EXPECT_EQ(f.ids(), Ids{NADIR_WARNING_LOW_DENSITY});
  f.look.exchanged = 0.5;
  ASSERT_EQ(f.ids(), Ids{NADIR_WARNING_SWAPPED});
  EXPECT_EQ(f.warnings()[0].numbers[0], 0.3);
  EXPECT_EQ(f.warnings()[0].numbers[1], 0.5);
  f.look.asGiven = 0.34;
  EXPECT_EQ(f.ids(), Ids{NADIR_WARNING_LOW_DENSITY});
}

TEST(WarningsOf, ARimAtTheRangesEndIsTooNear) {
  Figures f;
  f.matched.atEnd = 3;
  f.matched.cutOff = 1;
  EXPECT_EQ(f.ids(), Ids{});
  f.matched.cutOff = 2;
  ASSERT_EQ(f.ids(), Ids{NADIR_WARNING_TOO_NEAR});
  EXPECT_EQ(f.warnings()[0].count, 3u);
  f.matched.atEnd = 2;
  EXPECT_EQ(f.ids(), Ids{});
  f.matched.atEnd = 3;
  f.hasMatched = false;
  EXPECT_EQ(f.ids(), Ids{});
}

TEST(WarningsOf, WrongMatchesOfThinPicturesAreNoRim) {
  Figures f = thin();
  f.matched.atEnd = f.matched.cutOff = 100;
  EXPECT_EQ(f.ids(), Ids{NADIR_WARNING_LOW_DENSITY});
}

TEST(WarningsOf, AHoleThatIsHalfNearerThanTheRangeIsTooNear) {
  Figures f;
  f.hasLook = true;
  f.look.empty = 0.08;
  f.look.nearerInHole = 0.039;
  EXPECT_EQ(f.ids(), Ids{});
  f.look.nearerInHole = 0.04;
  EXPECT_EQ(f.ids(), Ids{NADIR_WARNING_TOO_NEAR});
  f.look.empty = 0.081;
  EXPECT_EQ(f.ids(), Ids{});
}

TEST(WarningsOf, PicturesWithoutAPixelThatCanMatchAreThin) {
  Figures f = thin();
  f.matched.able = f.matched.matched = 0;
  EXPECT_EQ(f.ids(), Ids{NADIR_WARNING_LOW_DENSITY});
}

TEST(WarningsOf, WhatLiesBelowTheGround) {
  Figures f;
  f.trust.below_ground = 0.039;
  EXPECT_EQ(f.ids(), Ids{});
  f.trust.below_ground = 0.04;
  ASSERT_EQ(f.ids(), Ids{NADIR_WARNING_BELOW_GROUND});
  EXPECT_EQ(f.warnings()[0].numbers[0], 0.04);
}

TEST(WarningsOf, TooFewBlocksSayNothingAboutTheGround) {
  Figures f;
  f.trust.below_ground = 0.5;
  f.expected.blocks = 99;
  EXPECT_EQ(f.ids(), Ids{});
  f.expected.blocks = 100;
  EXPECT_EQ(f.ids(), Ids{NADIR_WARNING_BELOW_GROUND});
}

TEST(WarningsOf, AGroundThatAnotherPlaneOutvotesIsElsewhereAndHidesTheMap) {
  Figures f;
  f.hasBest = f.hasMap = true;
  f.map.seen = 0.1;
  f.map.bestSeen = 1;
  f.expected = {1000, 100, 0, 0.6};
  f.trust.found_height_mm = 2000;
  f.trust.found_tilt_deg = -20;
  f.trust.found_pan_deg = 3;
  f.trust.found_share = 0.9;
  ASSERT_EQ(f.ids(), Ids{NADIR_WARNING_GROUND_ELSEWHERE});
  const double wanted[] = {2000, -20, 3, 0.9};
  for (int i = 0; i < 4; ++i) EXPECT_EQ(f.warnings()[0].numbers[i], wanted[i]);
}

// Both planes hold most blocks; the better one has nothing below it.
TEST(WarningsOf, AGroundAboveTheTrueOneIsElsewhere) {
  Figures f;
  f.hasBest = true;
  f.expected = {1000, 800, 40, 0.3};
  f.best = {1000, 800, 19, 0.3};
  EXPECT_EQ(f.ids(), Ids{NADIR_WARNING_GROUND_ELSEWHERE});
  f.best.below = 20;  // half of them are left
  EXPECT_EQ(f.ids(), Ids{});
  f.best = {1000, 779, 19, 0.3};  // no more on it
  EXPECT_EQ(f.ids(), Ids{});
  f.best = {1000, 800, 19, 0.3};
  f.expected.below = 39;  // too few to be a pit
  EXPECT_EQ(f.ids(), Ids{});
  f.expected.below = 40;
  f.best = {0, 800, 0, 0.3};  // nothing lies below a plane that is nowhere
  EXPECT_EQ(f.ids(), Ids{NADIR_WARNING_GROUND_ELSEWHERE});
}

TEST(WarningsOf, AMapThatIsHardlySeenIsElsewhere) {
  Figures f;
  f.hasMap = true;
  f.map.bestSeen = 1;
  f.map.seen = 0.35;
  f.map.offsetX = 100;
  f.map.offsetY = -200;
  EXPECT_EQ(f.ids(), Ids{});
  f.map.seen = 0.349;
  ASSERT_EQ(f.ids(), Ids{NADIR_WARNING_MAP_ELSEWHERE});
  EXPECT_EQ(f.warnings()[0].numbers[0], 0.349);
  EXPECT_EQ(f.warnings()[0].numbers[1], 100);
  EXPECT_EQ(f.warnings()[0].numbers[2], -200);
  f.trust.below_ground = 0.04;
  EXPECT_EQ(f.ids(), (Ids{NADIR_WARNING_BELOW_GROUND, NADIR_WARNING_MAP_ELSEWHERE}));
}

TEST(ASecondLook, IsTakenBelowFourFifths) {
  EXPECT_TRUE(asksForSecondLook({1000, 1000, 799, 0, 0, 0}));
  EXPECT_FALSE(asksForSecondLook({1000, 1000, 800, 0, 0, 0}));
  EXPECT_TRUE(asksForSecondLook({1000, 0, 0, 0, 0, 0}));
}

TEST(TheGround, IsThereWithSevenTenthsOfTheBestScore) {
  const Agreement best{1000, 900, 100, 0.3};
  EXPECT_TRUE(isThere({1000, 600, 40, 0.6}, best));
  EXPECT_FALSE(isThere({1000, 599, 40, 0.6}, best));
}

TEST(TheGround, IsThereInOnePieceWhatOutvotesIt) {
  const Agreement best{1000, 900, 0, 0.3};
  EXPECT_TRUE(isThere({1000, 180, 50, 0.43}, best));
  EXPECT_FALSE(isThere({1000, 179, 50, 0.43}, best)) << "too few on it";
  EXPECT_FALSE(isThere({1000, 180, 51, 0.43}, best)) << "too many below it";
  EXPECT_FALSE(isThere({1000, 180, 50, 0.44}, best)) << "too even";
}

}  // namespace nadir::ground::test
