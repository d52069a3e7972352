// Regions of elevation maps.
#include <gtest/gtest.h>
#include <nadir/segment.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "tests/models/segments.hpp"
#include "tests/support/integers.hpp"
#include "tests/support/pictures.hpp"
#include "tests/support/regions.hpp"
#include "tests/support/rounds.hpp"
#include "tests/support/same.hpp"

namespace nadir::test {
namespace {

using model::Region;
using model::Words;
using HeightPicture = model::Picture<uint16_t>;

constexpr int32_t largestHeight = std::numeric_limits<int32_t>::max(),
                  smallestHeight = std::numeric_limits<int32_t>::min();

// The record is large: one for all tests, at a guard page.
RegionList& foundRegions() {
  static const Guarded<RegionList> record(1);
  return record[0];
}

RgeParams wholeMap(int32_t maxStep, int32_t minValue = 0) { return {0, 0, 0, 0, maxStep, minValue}; }

// ---- before anything was processed: this runs before the tests do ----

struct Fresh {
  int32_t mapBeforeInit, listBeforeInit, init, mapAfterInit, refused, mapAfterRefused, mapAfterEmptyArea;
  uint32_t countBeforeInit, countAfterRefused;
  bool wroteUnprocessed;
  Words pixelsAfterEmptyArea;
};

Fresh observeFreshState() {
  Fresh out{};
  Words pixels(4, 0xA7A7), heights(129, 5);
  Img map;
  ImgC elevation, tooWide;
  Img_Init(&map, 2, 2, IMG_TYPE_U16, pixels.data());
  ImgC_Init(&elevation, 2, 2, IMG_TYPE_U16, heights.data());
  ImgC_Init(&tooWide, 129, 1, IMG_TYPE_U16, heights.data());
  foundRegions().count = 7;
  out.mapBeforeInit = IP_RGE_CreateLabelMap(&map);
  out.listBeforeInit = IP_RGE_CreateRegionList(&foundRegions());
  out.countBeforeInit = foundRegions().count;
  out.init = IP_RGE_Init();
  out.mapAfterInit = IP_RGE_CreateLabelMap(&map);
  out.refused = IP_RGE_Process(nullptr, nullptr) + IP_RGE_Process(&tooWide, nullptr);
  out.mapAfterRefused = IP_RGE_CreateLabelMap(&map);
  IP_RGE_CreateRegionList(&foundRegions());
  out.countAfterRefused = foundRegions().count;
  out.wroteUnprocessed = pixels != Words(4, 0xA7A7);
  const RgeParams noRows{0, 2, 2, 9, 0, 0};
  IP_RGE_Process(&elevation, &noRows);
  out.mapAfterEmptyArea = IP_RGE_CreateLabelMap(&map);
  out.pixelsAfterEmptyArea = pixels;
  return out;
}

const Fresh fresh = observeFreshState();

// ---- a processed map ----

class Processed {
 public:
  // Null parameters where `params` is null.
  Processed(const HeightPicture& picture, const RgeParams* params, Guard side = Guard::behind)
      : picture_(picture), elevation_(imageOf(picture, side)) {
    const ImgC image = elevation_.readOnly();
    EXPECT_EQ(IP_RGE_Process(&image, params), 1);
  }
  Processed(const HeightPicture& picture, const RgeParams& params, Guard side = Guard::behind)
      : Processed(picture, &params, side) {}
  ~Processed() { EXPECT_EQ(elevation_.pixels(), picture_.pixels) << "wrote into its source"; }
  Processed(const Processed&) = delete;
  Processed& operator=(const Processed&) = delete;

  Words labels(Guard side = Guard::behind) const { return labels(picture_.width, picture_.height, side); }

  static Words labels(uint32_t width, uint32_t height, Guard side = Guard::behind) {
    auto map = imageOf(HeightPicture{width, height, marks<uint16_t>(size_t{width} * height)}, side);
    EXPECT_EQ(IP_RGE_CreateLabelMap(map), 1);
    return map.pixels();
  }

 private:
  HeightPicture picture_;
  Image<uint16_t> elevation_;
};

Words labelsOf(const HeightPicture& picture, const RgeParams& params) { return Processed(picture, params).labels(); }

// Labels of a picture in the top left of a larger map of zeros.
Words inLargerMap(const Words& labels, uint32_t width, uint32_t mapWidth, uint32_t mapHeight) {
  Words map(size_t{mapWidth} * mapHeight, 0);
  for (size_t i = 0; i < labels.size(); ++i) map[i / width * mapWidth + i % width] = labels[i];
  return map;
}

// Whole, with the slices of the pools following each other in the order of the labels.
void expectRegionList(const std::vector<Region>& want) {
  foundRegions().count = 0xFFFFFFFF;
  ASSERT_EQ(IP_RGE_CreateRegionList(&foundRegions()), 1);
  ASSERT_EQ(foundRegions().count, want.size());
  size_t offset = 0;
  for (uint32_t i = 0; i < want.size(); ++i) {
    SCOPED_TRACE("region " + std::to_string(i + 1));
    const RegionEntry& entry = foundRegions().entries[i];
    ASSERT_EQ(entry.label, i + 1);
    ASSERT_EQ(entry.positions, foundRegions().positionPool + offset);
    ASSERT_EQ(entry.values, foundRegions().valuePool + offset);
    ASSERT_TRUE(sameRegion(want[i], entry));
    offset += entry.pixelCount;
  }
}

void expectModel(const HeightPicture& picture, const RgeParams& params, Guard side = Guard::behind) {
  const Processed processed(picture, params, side);
  EXPECT_TRUE(same(model::low16(model::elevationLabels(picture, params)), processed.labels(side)));
  expectRegionList(model::elevationRegions(picture, params));
  if (::testing::Test::HasFailure()) {
    ADD_FAILURE() << "area " << params.x0 << " " << params.y0 << " " << params.x1 << " " << params.y1 << ", step "
                  << params.maxStep << ", above " << params.minValue << ", " << text(picture);
  }
}

// Nothing of a processed map has changed.
void expectResultsOf(const HeightPicture& picture, const RgeParams& params) {
  EXPECT_TRUE(
      same(model::low16(model::elevationLabels(picture, params)), Processed::labels(picture.width, picture.height)));
  expectRegionList(model::elevationRegions(picture, params));
}

// Every cell differs from its neighbours by more than 1.
HeightPicture noTwoAlike() {
  HeightPicture picture = constant<uint16_t>(128, 128, 0);
  for (uint32_t i = 0; i < picture.pixels.size(); ++i)
    picture.pixels[i] = static_cast<uint16_t>(10 + (i % 2) * 10 + (i / 128 % 2) * 20);
  return picture;
}

class ElevationRegions : public ::testing::Test {
 protected:
  void SetUp() override { EXPECT_EQ(IP_RGE_Init(), 1); }
};

using ElevationArea = ElevationRegions;
using ElevationLabelMap = ElevationRegions;
using ElevationRegionsRefuse = ElevationRegions;
using ElevationState = ElevationRegions;
using ElevationModel = ElevationRegions;
using ElevationLimits = ElevationRegions;

}  // namespace

// ---- what is one region ----

TEST_F(ElevationRegions, SplitWhereTheStepIsTooLarge) {
  EXPECT_EQ(labelsOf(row<uint16_t>({5, 6, 7}), wholeMap(0)), (Words{1, 2, 3}));
  EXPECT_EQ(labelsOf(row<uint16_t>({5, 6, 7}), wholeMap(1)), (Words{1, 1, 1}));
  EXPECT_EQ(labelsOf(row<uint16_t>({7, 5, 8, 6}), wholeMap(2)), (Words{1, 1, 2, 2}));
}

TEST_F(ElevationRegions, AreOfNoStepAndAboveZeroWithoutParameters) {
  const Processed processed(row<uint16_t>({5, 6, 6, 0, 6}), nullptr);
  EXPECT_EQ(processed.labels(), (Words{1, 2, 2, 0, 3}));
}

TEST_F(ElevationRegions, LeaveOutCellsThatEqualTheSmallestValue) {
  EXPECT_EQ(labelsOf(row<uint16_t>({5, 0, 5}), wholeMap(9)), (Words{1, 0, 2}));
  EXPECT_EQ(labelsOf(row<uint16_t>({5, 4, 6}), wholeMap(9, 4)), (Words{1, 0, 2}));
}

TEST_F(ElevationRegions, DoNotTouchAtCorners) {
  EXPECT_EQ(labelsOf({2, 2, {5, 0, 0, 5}}, wholeMap(0)), (Words{1, 0, 0, 2}));
  EXPECT_EQ(labelsOf({2, 2, {0, 5, 5, 0}}, wholeMap(0)), (Words{0, 1, 2, 0}));
}

TEST_F(ElevationRegions, JoinRowsWhereOneColumnHasASmallStep) {
  EXPECT_EQ(labelsOf({3, 2, {5, 6, 7, 9, 8, 7}}, wholeMap(1)), (Words{1, 1, 1, 1, 1, 1}));
}

TEST_F(ElevationRegions, StayApartWhereNoColumnHasASmallStep) {
  EXPECT_EQ(labelsOf({3, 2, {5, 5, 0, 0, 8, 8}}, wholeMap(2)), (Words{1, 1, 0, 0, 2, 2}));
  EXPECT_EQ(labelsOf({3, 2, {5, 5, 0, 0, 8, 8}}, wholeMap(3)), (Words{1, 1, 0, 0, 1, 1}));
}

TEST_F(ElevationRegions, MergeAtTheBottomOfABowl) {
  EXPECT_EQ(labelsOf({3, 3, {5, 0, 5, 5, 0, 5, 5, 5, 5}}, wholeMap(0)), (Words{1, 0, 1, 1, 0, 1, 1, 1, 1}));
}

TEST_F(ElevationRegions, LinkARunToEveryRunAboveIt) {
  // A long run below many, then one above many, each with a gap between.
  EXPECT_EQ(labelsOf({7, 3, {5, 0, 5, 0, 9, 0, 5, 5, 5, 5, 5, 5, 5, 5, 5, 0, 9, 0, 5, 0, 5}}, wholeMap(0)),
            (Words{1, 0, 1, 0, 2, 0, 1, 1, 1, 1, 1, 1, 1, 1, 1, 0, 3, 0, 1, 0, 1}));
}

TEST_F(ElevationRegions, ClimbFarInSmallSteps) {
  Words ramp;
  for (uint16_t height = 100; height < 200; ++height) ramp.push_back(height);
  EXPECT_EQ(labelsOf(row(ramp), wholeMap(1)), Words(100, 1));
  EXPECT_EQ(labelsOf({1, 100, ramp}, wholeMap(1)), Words(100, 1));
}

TEST_F(ElevationRegions, AreNumberedInTheRasterOrderOfTheirFirstCells) {
  EXPECT_EQ(labelsOf(drawn({"...#", ".#.#", "##.#"}), wholeMap(0)), (Words{0, 0, 0, 1, 0, 2, 0, 1, 2, 2, 0, 1}));
  EXPECT_EQ(labelsOf(drawn({"#.#.#", "###.#"}), wholeMap(0)), (Words{1, 0, 1, 0, 2, 1, 1, 1, 0, 2}));
}

TEST_F(ElevationRegions, ReachIntoTheLastColumnAndRow) {
  EXPECT_EQ(labelsOf(drawn({"..#", "...", "#.#"}), wholeMap(0)), (Words{0, 0, 1, 0, 0, 0, 2, 0, 3}));
}

TEST_F(ElevationRegions, AreSingleCellsWithANegativeStep) {
  for (const int32_t step : {-1, smallestHeight}) {
    EXPECT_EQ(labelsOf({2, 2, {5, 5, 5, 5}}, wholeMap(step)), (Words{1, 2, 3, 4})) << step;
  }
}

TEST_F(ElevationRegions, IncludeHolesWithANegativeSmallestValue) {
  for (const int32_t bound : {-1, smallestHeight}) {
    EXPECT_EQ(labelsOf(row<uint16_t>({0, 0, 3, 0}), wholeMap(2, bound)), (Words{1, 1, 2, 3})) << bound;
  }
}

TEST_F(ElevationRegions, AreNoneAboveTheLargestHeight) {
  for (const int32_t bound : {65535, 65536, largestHeight}) {
    EXPECT_EQ(labelsOf(row<uint16_t>({65535, 1}), wholeMap(9, bound)), Words(2, 0)) << bound;
  }
}

TEST_F(ElevationRegions, CompareUnsignedHeights) {
  EXPECT_EQ(labelsOf(row<uint16_t>({0x7FFF, 0x8000, 0xFFFF, 1}), wholeMap(1)), (Words{1, 1, 2, 3}));
  EXPECT_EQ(labelsOf(row<uint16_t>({1, 65535}), wholeMap(65533)), (Words{1, 2}));
  EXPECT_EQ(labelsOf(row<uint16_t>({1, 65535}), wholeMap(65534)), (Words{1, 1}));
  EXPECT_EQ(labelsOf(row<uint16_t>({1, 65535}), wholeMap(largestHeight)), (Words{1, 1}));
}

TEST_F(ElevationRegions, AreListedWithCellsHeightsAndBox) {
  const Processed processed({4, 2, {0, 7, 6, 9, 6, 6, 0, 9}}, wholeMap(1));
  Region low, high;
  low.add(1, 0, 7);
  low.add(2, 0, 6);
  low.add(0, 1, 6);
  low.add(1, 1, 6);
  high.add(3, 0, 9);
  high.add(3, 1, 9);
  expectRegionList({low, high});
  EXPECT_EQ(boxOf(foundRegions().entries[0]), (std::vector<int32_t>{0, 0, 3, 2}));
}

TEST_F(ElevationRegions, AreNoneInAnEmptyMap) {
  const Processed processed(constant<uint16_t>(5, 4, 0), wholeMap(3));
  EXPECT_EQ(processed.labels(), Words(20, 0));
  expectRegionList({});
}

TEST_F(ElevationRegions, AreNoneInAMapWithoutCells) {
  for (const Extent size : {Extent{0, 3}, Extent{3, 0}, Extent{0, 0}}) {
    const Processed processed(HeightPicture{size.width, size.height, {}}, wholeMap(3));
    EXPECT_EQ(Processed::labels(4, 4), Words(16, 0));
    expectRegionList({});
  }
}

// ---- areas of interest ----

TEST_F(ElevationArea, CutsRegions) {
  const HeightPicture picture = drawn({"##.##", "##.##", "#####"});
  EXPECT_EQ(labelsOf(picture, {0, 0, 5, 2, 0, 0}), (Words{1, 1, 0, 2, 2, 1, 1, 0, 2, 2, 0, 0, 0, 0, 0}));
  EXPECT_EQ(labelsOf(picture, {1, 1, 4, 3, 0, 0}), (Words{0, 0, 0, 0, 0, 0, 1, 0, 1, 0, 0, 1, 1, 1, 0}));
}

TEST_F(ElevationArea, OfZerosMeansTheWholeMap) {
  EXPECT_EQ(labelsOf(drawn({"#.#"}), {0, 0, 0, 0, 0, 0}), (Words{1, 0, 2}));
}

TEST_F(ElevationArea, IsClampedToTheMap) {
  EXPECT_EQ(labelsOf(drawn({"#.#"}), {-5, -5, 99, 99, 0, 0}), (Words{1, 0, 2}));
  EXPECT_EQ(labelsOf(drawn({"#.#"}), {smallestHeight, smallestHeight, largestHeight, largestHeight, 0, 0}),
            (Words{1, 0, 2}));
}

TEST_F(ElevationArea, WithoutRowsOrColumnsHasNoRegions) {
  const RgeParams areas[] = {
      {5, 5, 5, 5, 9, 0}, {1, 1, 1, 1, 9, 0}, {0, 1, 0, 1, 9, 0},  {2, 0, 1, 3, 9, 0},  {0, 2, 3, 1, 9, 0},
      {3, 0, 9, 3, 9, 0}, {0, 3, 3, 9, 9, 0}, {-9, 0, 0, 3, 9, 0}, {0, -9, 3, 0, 9, 0}, {-9, -9, -1, -1, 9, 0},
      {0, 0, 0, 3, 9, 0}, {0, 0, 3, 0, 9, 0}, {-1, 0, 0, 0, 9, 0}, {0, 0, 0, -1, 9, 0}, {65536, 0, 65539, 3, 9, 0}};
  for (const RgeParams& area : areas) {
    SCOPED_TRACE(testing::Message() << area.x0 << " " << area.y0 << " " << area.x1 << " " << area.y1);
    const Processed before(drawn({"#.#"}), wholeMap(0));  // so that there is something to replace
    const Processed processed(constant<uint16_t>(3, 3, 5), area);
    EXPECT_EQ(processed.labels(), Words(9, 0));
    expectRegionList({});
  }
}

// ---- label maps ----

TEST_F(ElevationLabelMap, MayBeLargerThanTheProcessedMap) {
  const Processed processed(drawn({"#.#", ".##"}), wholeMap(0));
  EXPECT_EQ(Processed::labels(3, 2), (Words{1, 0, 2, 0, 2, 2}));
  EXPECT_EQ(Processed::labels(5, 2), (Words{1, 0, 2, 0, 0, 0, 2, 2, 0, 0}));
  EXPECT_EQ(Processed::labels(4, 3), (Words{1, 0, 2, 0, 0, 2, 2, 0, 0, 0, 0, 0}));
  EXPECT_EQ(Processed::labels(300, 200), inLargerMap({1, 0, 2, 0, 2, 2}, 3, 300, 200));
}

TEST_F(ElevationLabelMap, IsRefusedIfNull) {
  const Processed processed(drawn({"#.#", ".##"}), wholeMap(0));
  EXPECT_EQ(IP_RGE_CreateLabelMap(nullptr), 0);
}

TEST_F(ElevationLabelMap, IsRefusedIfNarrowerOrLower) {
  const Processed processed(drawn({"#.#", ".##"}), wholeMap(0));
  for (const Extent size : {Extent{2, 2}, Extent{3, 1}, Extent{2, 99}, Extent{99, 1}, Extent{0, 2}, Extent{3, 0}}) {
    Image<uint16_t> map(size.width, size.height, marks<uint16_t>(size_t{size.width} * size.height));
    EXPECT_TRUE(refuses(map, [&] { return static_cast<uint32_t>(IP_RGE_CreateLabelMap(map)); }))
        << size.width << " x " << size.height;
  }
}

TEST_F(ElevationLabelMap, MustHoldTheWholeMapAlsoOfASmallArea) {
  const Processed processed(constant<uint16_t>(4, 4, 5), {1, 1, 2, 2, 0, 0});
  Image<uint16_t> map(3, 4, marks<uint16_t>(12));
  EXPECT_TRUE(refuses(map, [&] { return static_cast<uint32_t>(IP_RGE_CreateLabelMap(map)); }));
}

TEST_F(ElevationLabelMap, IsRefusedIfOfAnotherType) {
  const Processed processed(drawn({"#.#", ".##"}), wholeMap(0));
  Image<uint32_t> map(3, 2, marks<uint32_t>(6));
  for (const uint32_t type : typesOtherThan({IMG_TYPE_U16})) {
    map.retype(type);
    EXPECT_TRUE(refuses(map, [&] { return static_cast<uint32_t>(IP_RGE_CreateLabelMap(map)); })) << type;
  }
}

// ---- what is kept ----

TEST_F(ElevationState, IsEmptyBeforeTheFirstProcessing) {
  EXPECT_EQ(fresh.mapBeforeInit, 0);
  EXPECT_EQ(fresh.listBeforeInit, 1);
  EXPECT_EQ(fresh.countBeforeInit, 0u);
  EXPECT_EQ(fresh.init, 1);
  EXPECT_EQ(fresh.mapAfterInit, 0);
  EXPECT_FALSE(fresh.wroteUnprocessed);
}

TEST_F(ElevationState, IsStillEmptyAfterRefusedMaps) {
  EXPECT_EQ(fresh.refused, 0);
  EXPECT_EQ(fresh.mapAfterRefused, 0);
  EXPECT_EQ(fresh.countAfterRefused, 0u);
}

TEST_F(ElevationState, CountsAMapWithAnEmptyAreaAsProcessed) {
  EXPECT_EQ(fresh.mapAfterEmptyArea, 1);
  EXPECT_EQ(fresh.pixelsAfterEmptyArea, Words(4, 0));
}

TEST_F(ElevationState, KeepsItsResultsForAnyNumberOfExtractions) {
  const HeightPicture picture = drawn({"#.#", "###", ".#."});
  const Processed processed(picture, wholeMap(0));
  for (int i = 0; i < 3; ++i) expectResultsOf(picture, wholeMap(0));
}

TEST_F(ElevationState, KeepsItsResultsWhenMadeReadyAgain) {
  const HeightPicture picture = drawn({"#.#", "###", ".#."});
  const Processed processed(picture, wholeMap(0));
  EXPECT_EQ(IP_RGE_Init(), 1);
  expectResultsOf(picture, wholeMap(0));
}

TEST_F(ElevationState, NeedsThePixelsButNotTheDescriptor) {
  const HeightPicture picture = drawn({"#.#", "###", ".#."});
  const auto elevation = imageOf(picture, Guard::behind);
  ImgC descriptor = elevation.readOnly();
  const RgeParams params = wholeMap(0);
  EXPECT_EQ(IP_RGE_Process(&descriptor, &params), 1);
  std::memset(&descriptor, 0, sizeof descriptor);
  expectResultsOf(picture, params);
}

TEST_F(ElevationState, MadeReadyBetweenProcessingsChangesNothing) {
  expectModel(noTwoAlike(), wholeMap(3));
  EXPECT_EQ(IP_RGE_Init(), 1);
  expectModel(drawn({"#.#.#", "###.#"}), wholeMap(0));
}

TEST_F(ElevationState, IsReplacedByTheNextProcessing) {
  expectModel(drawn({"#.#.#.#"}), wholeMap(0));
  expectModel(drawn({".#."}), wholeMap(0));
  expectModel(constant<uint16_t>(128, 128, 3), wholeMap(0));
  expectModel(drawn({"#"}), wholeMap(0));
}

TEST_F(ElevationState, OfOneProcessingPlaysNoPartInTheNext) {
  inRounds(200, [](lab::Random& random) {
    const Extent size = anyExtent(random, 128), otherSize = anyExtent(random, 128);
    const HeightPicture picture = anyTerrain(random, size.width, size.height);
    const RgeParams params = wholeMap(random.between(0, 3));
    expectModel(anyTerrain(random, otherSize.width, otherSize.height), wholeMap(random.between(0, 3)));
    expectModel(picture, params);
  });
}

// ---- refused maps ----

TEST_F(ElevationRegionsRefuse, AMissingMapAndKeepTheResults) {
  const HeightPicture picture = drawn({"#.#", "###", ".#."});
  const Processed processed(picture, wholeMap(0));
  const RgeParams params = wholeMap(3);
  EXPECT_EQ(IP_RGE_Process(nullptr, &params), 0);
  EXPECT_EQ(IP_RGE_Process(nullptr, nullptr), 0);
  expectResultsOf(picture, wholeMap(0));
}

TEST_F(ElevationRegionsRefuse, OtherTypesAndKeepTheResults) {
  const HeightPicture picture = drawn({"#.#", "###", ".#."});
  const Processed processed(picture, wholeMap(0));
  Image<uint32_t> other(4, 4, marks<uint32_t>(16));
  for (const uint32_t type : typesOtherThan({IMG_TYPE_U16})) {
    other.retype(type);
    const ImgC elevation = other.readOnly();
    EXPECT_EQ(IP_RGE_Process(&elevation, nullptr), 0) << type;
    expectResultsOf(picture, wholeMap(0));
  }
}

TEST_F(ElevationRegionsRefuse, LargerMapsAndKeepTheResults) {
  const HeightPicture picture = drawn({"#.#", "###", ".#."});
  const Processed processed(picture, wholeMap(0));
  const RgeParams inside{0, 0, 4, 4, 0, 0};
  uint16_t pixel = 0;
  for (const Extent size : {Extent{129, 1}, Extent{1, 129}, Extent{129, 129}, Extent{65535, 1}, Extent{129, 0}}) {
    ImgC elevation;
    ImgC_Init(&elevation, size.width, size.height, IMG_TYPE_U16, &pixel);
    EXPECT_EQ(IP_RGE_Process(&elevation, &inside), 0) << size.width << " x " << size.height;
    expectResultsOf(picture, wholeMap(0));
  }
}

// ---- against the model ----

namespace {

int32_t anyHeightStep(lab::Random& random) {
  const int32_t steps[] = {0, 1, 2, random.between(0, 20), random.between(0, 65535), largestHeight, -1};
  return steps[random.below(7)];
}

int32_t anyBound(lab::Random& random, const HeightPicture& picture) {
  const uint16_t some = picture.pixels[random.below(static_cast<uint32_t>(picture.pixels.size()))];
  const int32_t bounds[] = {0, 0, some, some - 1, random.between(-5, 70000)};
  return bounds[random.below(5)];
}

RgeParams anyParams(lab::Random& random, const HeightPicture& picture) {
  const int32_t w = static_cast<int32_t>(picture.width), h = static_cast<int32_t>(picture.height);
  RgeParams params{0, 0, 0, 0, anyHeightStep(random), anyBound(random, picture)};
  switch (random.below(6)) {
    case 0: {
      const int32_t x0 = random.between(0, w - 1), y0 = random.between(0, h - 1);
      params.x0 = x0, params.y0 = y0, params.x1 = random.between(x0 + 1, w), params.y1 = random.between(y0 + 1, h);
      break;
    }
    case 1:
      params.x0 = random.between(-3, w + 3), params.y0 = random.between(-3, h + 3);
      params.x1 = random.between(-3, w + 3), params.y1 = random.between(-3, h + 3);
      break;
    case 2:
      params.x0 = anyInteger(random), params.y0 = anyInteger(random);
      params.x1 = anyInteger(random), params.y1 = anyInteger(random);
      break;
    default: break;
  }
  return params;
}

}  // namespace

TEST_F(ElevationModel, AgreesOnEveryImageOf4By4Cells) {
  forEachCode(1u << 16, [&](uint32_t bits) { expectModel(ofBits(4, 4, bits), wholeMap(largestHeight)); });
}

TEST_F(ElevationModel, AgreesOnEveryRelief) {
  // Nine cells of three heights, the highest one step above the middle and two above the lowest.
  HeightPicture picture = constant<uint16_t>(3, 3, 0);
  forEachCode(19683, [&](uint32_t code) {
    for (uint32_t i = 0, rest = code; i < 9; ++i, rest /= 3) picture.pixels[i] = static_cast<uint16_t>(4 + rest % 3);
    expectModel(picture, wholeMap(1));
    expectModel(picture, wholeMap(0, 4));
  });
}

TEST_F(ElevationModel, AgreesOnEveryAreaOfAMap) {
  lab::Random random(5);
  const HeightPicture picture = anyHeights(random, 6, 5);
  for (int32_t x0 = -1; x0 <= 7; ++x0)
    for (int32_t y0 = -1; y0 <= 6; ++y0)
      for (int32_t x1 = -1; x1 <= 7; ++x1)
        for (int32_t y1 = -1; y1 <= 6 && !HasFailure(); ++y1) expectModel(picture, {x0, y0, x1, y1, 3, 0});
}

TEST_F(ElevationModel, AgreesOnTerrainOfEveryKind) {
  inRounds(10000, [](lab::Random& random) {
    const Extent size = anyExtent(random, 128);
    const HeightPicture picture = anyTerrain(random, size.width, size.height);
    expectModel(picture, anyParams(random, picture), anySide(random));
  });
}

TEST_F(ElevationModel, AgreesOnAnyValues) {
  inRounds(2000, [](lab::Random& random) {
    const Extent size = anyExtent(random, 60);
    const HeightPicture picture{size.width, size.height, anyPixels<uint16_t>(random, size_t{size.width} * size.height)};
    expectModel(picture, anyParams(random, picture), anySide(random));
  });
}

TEST_F(ElevationModel, AgreesOnFullSizeTerrain) {
  inRounds(40, [](lab::Random& random) {
    const HeightPicture picture = anyTerrain(random, 128, 128);
    expectModel(picture, anyParams(random, picture), anySide(random));
  });
}

TEST_F(ElevationModel, AgreesOnFullSizeShapes) {
  inRounds(40, [](lab::Random& random) {
    expectModel(valued<uint16_t>(random, anyShape(random, 128, 128), 0), wholeMap(largestHeight), anySide(random));
  });
}

TEST_F(ElevationModel, AgreesInLargerMaps) {
  inRounds(500, [](lab::Random& random) {
    const Extent size = anyExtent(random, 40);
    const HeightPicture picture = anyTerrain(random, size.width, size.height);
    const RgeParams params = anyParams(random, picture);
    const Processed processed(picture, params);
    const uint32_t width = size.width + random.below(9), height = size.height + random.below(9);
    const Words labels = model::low16(model::elevationLabels(picture, params));
    EXPECT_TRUE(same(inLargerMap(labels, size.width, width, height), Processed::labels(width, height)));
  });
}

// ---- the most there can be ----

TEST_F(ElevationLimits, Holds16383Regions) {
  HeightPicture picture = noTwoAlike();
  picture.at(77, 99) = 0;
  expectModel(picture, wholeMap(1));
  EXPECT_EQ(foundRegions().count, 16383u);
}

TEST_F(ElevationLimits, Holds16384RunsOf16383Regions) {
  HeightPicture picture = noTwoAlike();
  picture.at(77, 98) = picture.at(77, 99) = 1000;
  expectModel(picture, wholeMap(1));
  EXPECT_EQ(foundRegions().count, 16383u);
}

TEST_F(ElevationLimits, Holds16384RunsOf128Regions) {
  HeightPicture picture = noTwoAlike();
  for (uint32_t i = 0; i < picture.pixels.size(); ++i) picture.pixels[i] = static_cast<uint16_t>(10 + (i % 2) * 10);
  expectModel(picture, wholeMap(1));
  EXPECT_EQ(foundRegions().count, 128u);
}

TEST_F(ElevationLimits, Holds16384RegionsOfOneCell) {
  expectModel(noTwoAlike(), wholeMap(1));
  EXPECT_EQ(foundRegions().count, 16384u);
}

TEST_F(ElevationLimits, IsRightAgainAfterThem) {
  lab::Random random(8);
  for (int i = 0; i < 5; ++i) {
    expectModel(noTwoAlike(), wholeMap(1));
    expectModel(anyTerrain(random, 128, 100), wholeMap(1));
    expectModel(noTwoAlike(), wholeMap(1));
    expectModel(anyTerrain(random, 5, 5), wholeMap(1));
  }
}

// ---- in a state of the caller's ----

// A state that ends, or begins, at a guard page, in memory full of what was there before.
class State {
 public:
  explicit State(Guard side = Guard::behind)
      : memory_(std::vector<uint64_t>((nadir_elevation_regions_bytes() + 7) / 8, 0xA7A7A7A7A7A7A7A7), side),
        state_(nadir_elevation_regions_init(memory_.data(), nadir_elevation_regions_bytes())) {
    EXPECT_NE(state_, nullptr);
  }
  operator NadirElevationRegions*() const { return state_; }

 private:
  Guarded<uint64_t> memory_;
  NadirElevationRegions* state_;
};

Words labelsIn(NadirElevationRegions* state, uint32_t width, uint32_t height) {
  auto map = imageOf(HeightPicture{width, height, marks<uint16_t>(size_t{width} * height)});
  EXPECT_EQ(nadir_elevation_regions_label_map(state, map), 1);
  return map.pixels();
}

HeightPicture steppedPicture(lab::Random& random, uint32_t width, uint32_t height) {
  return {width, height, random.values<uint16_t>(size_t{width} * height, 12)};
}

TEST(ElevationRegionsState, FindsWhatTheSharedStateFinds) {
  lab::Random random(11);
  for (const Guard side : {Guard::behind, Guard::before}) {
    const State state(side);
    for (const uint32_t width : {1u, 20u, 128u}) {
      const HeightPicture picture = steppedPicture(random, width, 40);
      const RgeParams params = wholeMap(2, 3);
      const Processed shared(picture, params);
      const auto elevation = imageOf(picture);
      const ImgC image = elevation.readOnly();
      EXPECT_EQ(nadir_elevation_regions_process(state, &image, &params), 1);
      const Words labels = shared.labels();
      EXPECT_EQ(labelsIn(state, width, 40), labels);
      EXPECT_EQ(nadir_elevation_regions_list(state, &foundRegions()), 1);
      EXPECT_EQ(foundRegions().count, *std::max_element(labels.begin(), labels.end()));
    }
  }
}

TEST(ElevationRegionsState, TwoStatesKnowNothingOfEachOther) {
  lab::Random random(12);
  const State one, other;
  const HeightPicture first = steppedPicture(random, 30, 20), second = steppedPicture(random, 30, 20);
  const auto firstImage = imageOf(first), secondImage = imageOf(second);
  const ImgC a = firstImage.readOnly(), b = secondImage.readOnly();
  const RgeParams params = wholeMap(1, 2);
  nadir_elevation_regions_process(one, &a, &params);
  const Words alone = labelsIn(one, 30, 20);
  nadir_elevation_regions_process(other, &b, &params);
  EXPECT_NE(labelsIn(other, 30, 20), alone);
  EXPECT_EQ(labelsIn(one, 30, 20), alone);
}

TEST(ElevationRegionsState, HoldsNothingBeforeAMapWasProcessed) {
  const State state;
  auto map = imageOf(HeightPicture{4, 4, marks<uint16_t>(16)});
  EXPECT_EQ(nadir_elevation_regions_label_map(state, map), 0);
  EXPECT_EQ(map.pixels(), marks<uint16_t>(16));
  foundRegions().count = 7;
  EXPECT_EQ(nadir_elevation_regions_list(state, &foundRegions()), 1);
  EXPECT_EQ(foundRegions().count, 0u);
}

TEST(ElevationRegionsState, CountsAMapWithoutRowsAsProcessed) {
  const State state;
  const auto elevation = imageOf(HeightPicture{3, 0, {}});
  const ImgC image = elevation.readOnly();
  EXPECT_EQ(nadir_elevation_regions_process(state, &image, nullptr), 1);
  auto map = imageOf(HeightPicture{3, 0, {}});
  EXPECT_EQ(nadir_elevation_regions_label_map(state, map), 1);
}

TEST(ElevationRegionsState, MemoryThatDoesNotServeGivesNoState) {
  std::vector<uint64_t> memory(nadir_elevation_regions_bytes() / 8 + 2);
  EXPECT_EQ(nadir_elevation_regions_init(nullptr, memory.size() * 8), nullptr);
  EXPECT_EQ(nadir_elevation_regions_init(memory.data(), nadir_elevation_regions_bytes() - 1), nullptr);
  EXPECT_EQ(
      nadir_elevation_regions_init(reinterpret_cast<uint8_t*>(memory.data()) + 1, nadir_elevation_regions_bytes()),
      nullptr);
}

TEST(ElevationRegionsState, NullPointersAreRefused) {
  const State state;
  const auto elevation = imageOf(constant<uint16_t>(4, 4, 9));
  const ImgC image = elevation.readOnly();
  auto map = imageOf(HeightPicture{4, 4, marks<uint16_t>(16)});
  EXPECT_EQ(nadir_elevation_regions_process(nullptr, &image, nullptr), 0);
  EXPECT_EQ(nadir_elevation_regions_process(state, nullptr, nullptr), 0);
  EXPECT_EQ(nadir_elevation_regions_process(state, &image, nullptr), 1);
  EXPECT_EQ(nadir_elevation_regions_label_map(nullptr, map), 0);
  EXPECT_EQ(nadir_elevation_regions_label_map(state, nullptr), 0);
  EXPECT_EQ(nadir_elevation_regions_list(nullptr, &foundRegions()), 0);
  EXPECT_EQ(nadir_elevation_regions_list(state, nullptr), 0);
}

}  // namespace nadir::test
