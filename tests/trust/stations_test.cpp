// Each station by itself, on numbers that are known.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "ground/trust/arc_tangent.hpp"
#include "ground/trust/drift.hpp"
#include "ground/trust/exposure.hpp"
#include "ground/trust/ground_search.hpp"
#include "ground/trust/near_plane.hpp"
#include "ground/trust/trust.hpp"
#include "ground/trust/warnings.hpp"
#include "tests/trust/faults.hpp"

namespace nadir::ground::test {

namespace {

using lab::Grid;

constexpr CameraNumbers camera{130, 250, 159.5, 119.5, 3000, -30, 0};
constexpr uint32_t width = 320, height = 240;

CameraNumbers mounted(double heightMm, double tilt, double pan) {
  CameraNumbers c = camera;
  c.height = heightMm;
  c.tilt = tilt;
  c.pan = pan;
  return c;
}

// The ground without an error but that of storing it, 0 beyond the horizon and the range.
Grid<uint16_t> groundOf(const CameraNumbers& c) {
  const DisparityPlane plane = expectedGround(contextOf(c), 0);
  Grid<uint16_t> disparity(width, height);
  for (uint32_t y = 0; y < height; ++y)
    for (uint32_t x = 0; x < width; ++x) {
      const double stored = std::floor(16 * plane.at(x, y) + 0.5);
      disparity.at(x, y) = static_cast<uint16_t>(stored >= 24 && stored <= 984 ? stored : 0);
    }
  return disparity;
}

std::vector<Block> blocksOf(const Grid<uint16_t>& disparity) {
  std::vector<Block> blocks(largestBlockCount(disparity.width, disparity.height));
  blocks.resize(listBlocks(disparity.pixels.data(), disparity.width, disparity.height, blocks.data()));
  return blocks;
}

}  // namespace

TEST(ArcTangent, IsThatOfLibm) {
  for (int i = -720; i <= 720; ++i) {
    const double angle = i * 0.25 * degree, radius = 1 + (i & 7);
    const double y = radius * std::sin(angle), x = radius * std::cos(angle);
    EXPECT_NEAR(std::atan2(y, x) / degree, directionDeg(y, x), 1e-13) << i;
  }
  EXPECT_EQ(0, directionDeg(0, 0));
  EXPECT_EQ(90, directionDeg(1, 0));
  EXPECT_EQ(-90, directionDeg(-1, 0));
  EXPECT_EQ(180, directionDeg(0, -1));
}

TEST(Exposure, CountsBothEnds) {
  std::vector<uint16_t> picture(64 * 8, 2000);
  std::fill_n(picture.begin(), 16, uint16_t{4080});
  std::fill_n(picture.begin() + 64 * 4, 32, darkLevel);
  const Exposure e = exposureOf(picture.data(), 64, 8);
  EXPECT_EQ(128u, e.pixels);  // rows 0 and 4
  EXPECT_EQ(16u, e.clipped);
  EXPECT_EQ(32u, e.dark);
}

TEST(Exposure, AnEvenGreyIsNotTheRangesEnd) {
  const std::vector<uint16_t> picture(64 * 8, 2000);
  EXPECT_EQ(0u, exposureOf(picture.data(), 64, 8).clipped);
}

// 12 bits, 14 or 16: the brightest pixel tells, and what lies within 1/64 of its range's end is clipped.
TEST(Exposure, TakesTheSensorsRangeFromTheBrightestPixel) {
  const auto clipped = [](uint16_t brightest, uint16_t other) {
    std::vector<uint16_t> picture(64 * 4, other);
    picture[0] = brightest;
    return exposureOf(picture.data(), 64, 4).clipped;
  };
  EXPECT_EQ(clipped(4095, 4032), 64u);
  EXPECT_EQ(clipped(4095, 4031), 1u);
  EXPECT_EQ(clipped(4096, 4096), 0u);
  EXPECT_EQ(clipped(16383, 16128), 64u);
  EXPECT_EQ(clipped(16383, 16127), 1u);
  EXPECT_EQ(clipped(16384, 16384), 0u);
  EXPECT_EQ(clipped(65535, 64512), 64u);
  EXPECT_EQ(clipped(65535, 64511), 1u);
}

TEST(Exposure, OfNoPixelsIsAllDark) {
  EXPECT_EQ(Exposure{}.darkShare(), 1);
  EXPECT_EQ(Exposure{}.clippedShare(), 0);
}

TEST(DisparityPlane, IsWhereTheLibraryPutsTheGround) {
  const StereoCtx context = contextOf(mounted(2500, -40, 12));
  const DisparityPlane plane = expectedGround(context, 1.5);
  for (const Point_f32 pixel : {Point_f32{10, 20}, Point_f32{300, 200}, Point_f32{160, 120}}) {
    Point3_f32 world;
    ip_stereo_disp2world(&context, &pixel, &world, static_cast<float>(plane.at(pixel.x, pixel.y) + 1.5));
    EXPECT_NEAR(2500, world.z, 0.01);
  }
}

TEST(DisparityPlane, TellsTheMountItWasMadeFrom) {
  for (const double tilt : {-75.0, -30.0, 0.0, 40.0})
    for (const double pan : {-20.0, 0.0, 12.5}) {
      const StereoCtx context = contextOf(mounted(2500, tilt, pan));
      const Mount mount = mountOf(expectedGround(context, -2), context, -2);
      EXPECT_NEAR(2500, mount.heightMm, 0.01);
      EXPECT_NEAR(tilt, mount.tiltDeg, 1e-4);
      EXPECT_NEAR(pan, mount.panDeg, 1e-4);
    }
}

TEST(DisparityPlane, MirroredHasTheSameValuesBackToFront) {
  const DisparityPlane plane{0.1, 0.2, 3}, back = mirrored(plane, 100);
  EXPECT_DOUBLE_EQ(plane.at(7, 5), back.at(92, 5));
}

TEST(DisparityPlane, PointsOnALineSpanNone) {
  PlaneEquations equations;
  DisparityPlane plane;
  for (int i = 0; i < 10; ++i) equations.add(i, 2 * i, i);
  EXPECT_FALSE(equations.solve(plane));
  equations.add(5, 0, 5);
  ASSERT_TRUE(equations.solve(plane));
  EXPECT_NEAR(7, plane.at(7, 3), 1e-9);
}

TEST(Blocks, TakeWholeSurfacesAlone) {
  Grid<uint16_t> disparity(24, 8, 160);
  for (uint32_t y = 0; y < 8; ++y)
    for (uint32_t x = 8; x < 12; ++x) disparity.at(x, y) = 320;                    // two surfaces
  for (uint32_t x = 16; x < 24; ++x) disparity.at(x, 0) = disparity.at(x, 1) = 0;  // exactly three quarters are left
  std::vector<Block> blocks = blocksOf(disparity);
  ASSERT_EQ(2u, blocks.size());
  EXPECT_EQ(3.5f, blocks[0].x);
  EXPECT_EQ(10, blocks[0].disparity);
  EXPECT_EQ(19.5f, blocks[1].x);
  disparity.at(16, 2) = 0;
  EXPECT_EQ(1u, blocksOf(disparity).size());
}

TEST(Blocks, GivenDisparitiesAreThoseStored) {
  const Grid<uint16_t> stored = groundOf(camera);
  const auto given = lab::converted<float>(stored, [](uint16_t d) { return d == 0 ? std::nanf("") : d / 16.0f; });
  const std::vector<Block> wanted = blocksOf(stored);
  std::vector<Block> got(largestBlockCount(width, height));
  ASSERT_EQ(wanted.size(), listBlocks(given.pixels.data(), width * sizeof(float), width, height, got.data()));
  EXPECT_EQ(0, std::memcmp(wanted.data(), got.data(), wanted.size() * sizeof(Block)));
}

TEST(Blocks, AgreeWithThePlaneTheyAreOn) {
  const std::vector<Block> blocks = blocksOf(groundOf(camera));
  const Agreement there = agreementOf(expectedGround(contextOf(camera), 0), blocks.data(), blocks.size());
  EXPECT_EQ(blocks.size(), there.on);
  EXPECT_EQ(0u, there.below);
  EXPECT_LT(there.scatter, 0.2);
  const StereoCtx low = contextOf(mounted(2500, -30, 0));
  EXPECT_EQ(blocks.size(), agreementOf(expectedGround(low, 0), blocks.data(), blocks.size()).below);
}

TEST(Blocks, ScatterByWhatTheyAreOffIt) {
  const DisparityPlane level{0, 0, 20};  // with a tolerance of 0.3
  const Block blocks[] = {{4, 4, 20.15f}, {12, 4, 19.85f}, {20, 4, 30}};
  EXPECT_NEAR(0.5, agreementOf(level, blocks, 3).scatter, 1e-5);
  EXPECT_EQ(0, agreementOf(level, blocks + 2, 1).scatter);
  EXPECT_EQ(0u, agreementOf({0, 0, 0}, blocks, 3).blocks) << "beyond the horizon";
}

// Straight down all disparities are 12.04 pixels, stored as 12 1/16: 0.26 percent, 7 mm.
TEST(GroundSearch, FindsTheGroundAtEveryTilt) {
  for (const double tilt : {-70.0, -45.0, 0.0, 30.0, 60.0})
    for (const double pan : {-25.0, 0.0, 10.0}) {
      const CameraNumbers truth = mounted(2700, tilt, pan);
      const std::vector<Block> blocks = blocksOf(groundOf(truth));
      const FoundGround found = searchedGround(blocks.data(), blocks.size());
      const Mount mount = mountOf(found.plane, contextOf(camera), 0);
      EXPECT_NEAR(2700, mount.heightMm, 7.1) << tilt << " " << pan;
      EXPECT_NEAR(tilt, mount.tiltDeg, 0.1) << tilt << " " << pan;
      EXPECT_NEAR(pan, mount.panDeg, 0.3) << tilt << " " << pan;
      EXPECT_EQ(blocks.size(), found.agreement.on);
    }
}

// A table top fills most of the picture, and the ground is seen beside it.
TEST(GroundSearch, PrefersThePlaneThatNothingLiesBelow) {
  Grid<uint16_t> disparity = groundOf(camera);
  const auto ofTable = [](uint16_t stored) { return static_cast<uint16_t>(stored ? stored + 48 : 0); };
  for (uint32_t y = 0; y < height; ++y)
    for (uint32_t x = 0; x < width * 5 / 8; ++x) disparity.at(x, y) = ofTable(disparity.at(x, y));
  const std::vector<Block> blocks = blocksOf(disparity);
  const FoundGround found = searchedGround(blocks.data(), blocks.size());
  EXPECT_EQ(0u, found.agreement.below);
  EXPECT_NEAR(camera.height, mountOf(found.plane, contextOf(camera), 0).heightMm, 10);
}

TEST(GroundSearch, FindsNothingWhereThereIsNothing) {
  const Block two[2] = {{1, 2, 3}, {4, 5, 6}}, line[4] = {{1, 1, 5}, {2, 2, 5}, {3, 3, 5}, {4, 4, 5}};
  EXPECT_EQ(0u, searchedGround(nullptr, 0).agreement.on);
  EXPECT_EQ(0u, searchedGround(two, 2).agreement.on);
  EXPECT_EQ(0u, searchedGround(line, 4).agreement.on);
}

TEST(GroundSearch, OfARenderedSceneSaysItsMount) {
  const Rendered r = rendered("boxes", 320, 240, 3, 5);
  CameraNumbers wrong = r.camera;
  wrong.tilt += 45;
  wrong.height *= 0.7;
  const NadirTrust t = trustOf(r.pair, &wrong).trust;
  EXPECT_EQ(1u, t.searched);
  EXPECT_NEAR(3000, t.found_height_mm, 60);
  EXPECT_NEAR(-30, t.found_tilt_deg, 1);
  EXPECT_NEAR(0, t.found_pan_deg, 1);
  EXPECT_GT(t.found_share, 0.5);
}

TEST(Drift, IsWhatTheMountWasMovedBy) {
  const StereoCtx said = contextOf(camera);
  for (const double tilt : {-1.0, 0.0, 0.7})
    for (const double up : {-45.0, 0.0, 60.0}) {
      const std::vector<Block> blocks = blocksOf(groundOf(mounted(3000 + up, -30 + tilt, 0.5)));
      const Drift drift = driftOf(expectedGround(said, 0), blocks.data(), blocks.size(), said, 0);
      EXPECT_NEAR(up, drift.heightMm, 1);
      EXPECT_NEAR(tilt, drift.tiltDeg, 0.03);
      EXPECT_NEAR(0.5, drift.panDeg, 0.03);
      EXPECT_GT(drift.share, 0.99);
    }
}

TEST(Drift, OfARenderedSequenceFollowsTheMount) {
  const Rendered r = rendered("boxes", 320, 240, 4, 5);
  const auto driftFor = [&](double higher, double steeper) {
    CameraNumbers c = r.camera;
    c.height += higher;
    c.tilt += steeper;
    return trustOf(r.pair, &c).trust;
  };
  const NadirTrust still = driftFor(0, 0), moved = driftFor(50, -0.8);
  EXPECT_NEAR(-50, moved.height_off_mm - still.height_off_mm, 3);
  EXPECT_NEAR(0.8, moved.tilt_off_deg - still.tilt_off_deg, 0.1);
  EXPECT_GT(still.tilt_deviation_deg, 0);
  EXPECT_LT(still.tilt_deviation_deg, 0.5);
}

TEST(Drift, AsksForASearchWhenTheGroundIsGone) {
  const std::vector<Block> blocks = blocksOf(groundOf(camera));
  const auto asks = [&](const CameraNumbers& c) {
    const StereoCtx context = contextOf(c);
    const DisparityPlane expected = expectedGround(context, 0);
    return asksForSearch(driftOf(expected, blocks.data(), blocks.size(), context, 0),
                         agreementOf(expected, blocks.data(), blocks.size()));
  };
  EXPECT_FALSE(asks(camera));
  EXPECT_FALSE(asks(mounted(3010, -30, 0)));
  EXPECT_TRUE(asks(mounted(3000, -35, 0)));
  EXPECT_TRUE(asks(mounted(2000, -30, 0)));
  const StereoCtx context = contextOf(camera);
  EXPECT_TRUE(std::isnan(driftOf(expectedGround(context, 0), nullptr, 0, context, 0).heightMm));
}

// Three blocks lie on a plane by themselves, and say nothing about how they scatter.
TEST(Drift, OfThreeBlocksHasNoDeviation) {
  const StereoCtx context = contextOf(camera);
  const DisparityPlane expected = expectedGround(context, 0);
  std::vector<Block> blocks = {{100, 130, 0}, {200, 150, 0}, {120, 200, 0}};
  for (Block& b : blocks) b.disparity = static_cast<float>(expected.at(b.x, b.y));
  const Drift drift = driftOf(expected, blocks.data(), blocks.size(), context, 0);
  EXPECT_NEAR(0, drift.heightMm, 0.1);
  EXPECT_EQ(0, drift.heightDeviationMm);
  EXPECT_EQ(0, drift.tiltDeviationDeg);
  EXPECT_EQ(1, drift.share);
}

TEST(Drift, IsUnknownWithLessThanATenthOnTheGround) {
  const StereoCtx context = contextOf(camera);
  const DisparityPlane expected = expectedGround(context, 0);
  std::vector<Block> blocks = blocksOf(groundOf(camera));
  const size_t tenth = (blocks.size() + 9) / 10;
  const auto with = [&](size_t on) {
    std::vector<Block> some = blocks;
    for (size_t i = 0; i < some.size(); ++i)
      if (i * on / some.size() == (i + 1) * on / some.size()) some[i].disparity += 40;
    return driftOf(expected, some.data(), some.size(), context, 0);
  };
  EXPECT_NEAR(0, with(tenth).heightMm, 5);
  EXPECT_TRUE(std::isnan(with(tenth - 1).heightMm));
  EXPECT_LT(with(tenth - 1).share, 0.1);
  EXPECT_GT(with(tenth - 1).share, 0.09);
}

// Values and holes whose numbers are plain to see, on a mask and without data.
TEST(MatchedShares, CountWhatCanHaveADisparity) {
  Grid<uint16_t> raw(20, 10, 100), cleaned(20, 10, 100), reference(20, 10, 1);
  Grid<uint8_t> mask(20, 10);
  raw.at(5, 5) = cleaned.at(5, 5) = 0;
  raw.at(6, 5) = 0;        // filled by the clean-up
  reference.at(7, 5) = 0;  // no data
  mask.at(8, 5) = 1;
  cleaned.at(4, 4) = rangeEndOf(0);  // beside the hole
  cleaned.at(12, 4) = rangeEndOf(0);
  const MatchedPictures pictures{
      raw.pixels.data(), cleaned.pixels.data(), reference.pixels.data(), mask.pixels.data(), 20, 10, rangeEndOf(0)};
  const MatchedShares shares = matchedShares(pictures, nullptr);
  EXPECT_EQ(200u, shares.pixels);
  EXPECT_EQ(14u * 6 - 2, shares.able);
  EXPECT_EQ(shares.able - 2, shares.matched);
  EXPECT_EQ(shares.able - 1, shares.value);
  EXPECT_EQ(2u, shares.atEnd);
  EXPECT_EQ(1u, shares.cutOff);
  const DisparityPlane horizon{0, 1, -3};  // 2 pixels in row 5
  EXPECT_EQ(14u * 3 - 2, matchedShares(pictures, &horizon).able);
  const DisparityPlane rising{1, 0, -3}, falling{-1, 0, 12};  // 2 pixels in columns 5 and 10
  EXPECT_EQ(11u * 6 - 2, matchedShares(pictures, &rising).able);
  EXPECT_EQ(9u * 6 - 2, matchedShares(pictures, &falling).able);
}

TEST(MapView, TopsAreWhereTheRangeEnds) {
  const StereoCtx context = contextOf(camera);
  const MapView view = mapView(context, 0, largestDisparityOf(0), width, height);
  EXPECT_GT(view.seen, 0.5);
  // A point as high as the least top has the largest disparity at that place, and none that is seen has more.
  EXPECT_LT(view.leastTop, view.mostTop);
  const StereoCtx down = contextOf(mounted(3000, 0, 0));
  const double nearest = 250 * 130 / 61.5;
  EXPECT_NEAR(3000 - nearest, mapView(down, 0, largestDisparityOf(0), width, height).leastTop, 0.01);
  EXPECT_NEAR(3000 - 250 * 130 / 71.5, mapView(down, 10, largestDisparityOf(0), width, height).mostTop, 0.01);
}

TEST(MapView, WhatItOffersIsSeen) {
  CameraNumbers c = camera;
  c.offsetX = 9000;
  c.offsetY = -12000;
  const MapView lost = mapView(contextOf(c), 0, largestDisparityOf(0), width, height);
  EXPECT_EQ(0, lost.seen);
  EXPECT_TRUE(std::isnan(lost.leastTop));
  c.offsetX += lost.offsetX;
  c.offsetY += lost.offsetY;
  const MapView found = mapView(contextOf(c), 0, largestDisparityOf(0), width, height);
  EXPECT_NEAR(lost.bestSeen, found.seen, 0.01);
  EXPECT_GT(found.seen, 0.5);
}

TEST(MapView, OfTheSkyOffersNothing) {
  const MapView sky = mapView(contextOf(mounted(3000, -120, 0)), 0, largestDisparityOf(0), width, height);
  EXPECT_EQ(0, sky.bestSeen);
  EXPECT_EQ(0, sky.offsetX);
  EXPECT_EQ(0, sky.offsetY);
}

TEST(NearPlane, IsTheGround) {
  const Grid<uint16_t> disparity = groundOf(mounted(2900, -33, 2));
  std::vector<RayPoint> memory(nearPlaneJudges);
  NearPlane plane;
  const DisparityPicture picture{disparity.pixels.data(), width * sizeof(uint16_t), false, width, height, 0};
  ASSERT_TRUE(nearPlane(picture, contextOf(camera), memory.data(), plane));
  EXPECT_NEAR(2900, plane.heightMm, 1);
  EXPECT_NEAR(-33, plane.tiltDeg, 0.02);
  EXPECT_NEAR(2, plane.panDeg, 0.02);
  EXPECT_EQ(plane.points, plane.inliers);
  EXPECT_FALSE(nearPlane(picture, contextOf(mounted(3000, -60, 0)), memory.data(), plane));
  const Grid<uint16_t> nothing(width, height);
  EXPECT_FALSE(nearPlane({nothing.pixels.data(), width * sizeof(uint16_t), false, width, height, 0}, contextOf(camera),
                         memory.data(), plane));
}

TEST(Trust, SmallPicturesAreJudgedWithoutASecondLook) {
  for (const uint32_t side : {5u, 8u, 63u}) {
    const lab::Grid<uint16_t> grey(side, side, 2000);
    EXPECT_EQ("none", trustOf({grey, grey}, nullptr).names()) << side;
    EXPECT_NO_FATAL_FAILURE(trustOf({grey, grey}, &camera));
  }
}

TEST(Warnings, EveryNumberHasANameAndAPlaceInTheSentence) {
  for (uint32_t id = 1; id <= NADIR_WARNINGS; ++id) {
    std::string sentence = nadir_warning_sentence(id);
    for (size_t at = sentence.find("%%"); at != std::string::npos; at = sentence.find("%%")) sentence.erase(at, 2);
    uint32_t named = 0;
    while (nadir_warning_number_name(id, named)) ++named;
    EXPECT_EQ(static_cast<long>(named), std::count(sentence.begin(), sentence.end(), '%')) << nadir_warning_name(id);
    EXPECT_EQ(1, nadir_warning_scale(id, named)) << "of a number that it has not";
    for (uint32_t other = 1; other < id; ++other) EXPECT_STRNE(nadir_warning_name(other), nadir_warning_name(id));
  }
  EXPECT_EQ(nullptr, nadir_warning_name(0));
  EXPECT_EQ(nullptr, nadir_warning_sentence(NADIR_WARNINGS + 1));
}

TEST(Warnings, HoldAsManyNumbersAsAreNamed) {
  const Rendered r = rendered("boxes", 160, 120, 1, 0);
  for (const Fault& f : spoiltPictures(r))
    for (const NadirWarning& w : trustOf(f.pair, &f.camera).warnings) {
      EXPECT_EQ(sizeof(NadirWarning), w.size);
      EXPECT_NE(nullptr, nadir_warning_number_name(w.id, w.count - 1));
      EXPECT_TRUE(w.count == 4 || !nadir_warning_number_name(w.id, w.count));
    }
}

TEST(Trust, GivenDisparitiesAreJudgedByTheGroundAlone) {
  const Grid<uint16_t> disparity = groundOf(camera);
  std::vector<Block> blocks(largestBlockCount(width, height));
  NadirWarning warnings[NADIR_WARNINGS];
  NadirTrust trust;
  for (const double turn : {0.0, 20.0}) {
    const StereoCtx context = contextOf(mounted(3000, -30 + turn, 0));
    const MountView mount{&context, 0, mapView(context, 0, largestDisparityOf(0), width, height)};
    const ViewDisparities view{disparity.pixels.data(), nullptr, 0, width, height};
    const size_t count = judge(nullptr, &mount, view, blocks.data(), trust, warnings);
    ASSERT_EQ(turn == 0 ? 0u : 1u, count);
    EXPECT_TRUE(std::isnan(trust.matched));
    EXPECT_TRUE(turn == 0 || warnings[0].id == NADIR_WARNING_GROUND_ELSEWHERE);
  }
}

}  // namespace nadir::ground::test
