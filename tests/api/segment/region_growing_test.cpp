// Regions whose values change in small steps.
#include <gtest/gtest.h>
#include <nadir/segment.h>

#include <limits>
#include <string>
#include <vector>

#include "tests/models/segments.hpp"
#include "tests/support/pictures.hpp"
#include "tests/support/rounds.hpp"
#include "tests/support/same.hpp"

namespace nadir::test {
namespace {

using model::Words;
using HeightPicture = model::Picture<uint16_t>;

constexpr int32_t largest = std::numeric_limits<int32_t>::max(), smallest = std::numeric_limits<int32_t>::min();

Words labelsOf(const HeightPicture& picture, int32_t threshold, int32_t maxStep, Guard side = Guard::behind) {
  const auto src = imageOf(picture, side);
  auto labels = imageOf(HeightPicture{picture.width, picture.height, marks<uint16_t>(picture.pixels.size())}, side);
  const int32_t params[] = {threshold, maxStep};
  EXPECT_EQ(IP_RGrow_Process(src, params, labels), 1);
  EXPECT_EQ(src.pixels(), picture.pixels) << "wrote into its source";
  return labels.pixels();
}

void expectModel(const HeightPicture& picture, int32_t threshold, int32_t maxStep, Guard side = Guard::behind) {
  EXPECT_TRUE(same(model::grown(picture, threshold, maxStep), labelsOf(picture, threshold, maxStep, side)));
  if (::testing::Test::HasFailure())
    ADD_FAILURE() << "threshold " << threshold << ", step " << maxStep << ", " << text(picture);
}

int32_t anyStep(lab::Random& random) {
  const int32_t steps[] = {0, 1, 2, random.between(0, 20), random.between(0, 65535), largest};
  return steps[random.below(6)];
}

int32_t anyThreshold(lab::Random& random, const HeightPicture& picture) {
  const uint16_t some = picture.pixels[random.below(static_cast<uint32_t>(picture.pixels.size()))];
  const int32_t thresholds[] = {0, 0, some, some - (some > 0), random.between(0, 70000)};
  return thresholds[random.below(5)];
}

// Neighbours, corners included, always differ: every pixel is a region of its own.
HeightPicture noTwoAlike(uint32_t width, uint32_t height) {
  HeightPicture picture = constant<uint16_t>(width, height, 0);
  for (uint32_t y = 0; y < height; ++y) {
    for (uint32_t x = 0; x < width; ++x) picture.at(x, y) = static_cast<uint16_t>(10 + 10 * (x % 2) + 20 * (y % 2));
  }
  return picture;
}

uint32_t answered(int32_t status) { return static_cast<uint32_t>(status); }

}  // namespace

// ---- what is one region ----

TEST(RegionGrowing, SplitsWhereTheStepIsTooLarge) {
  EXPECT_EQ(labelsOf(row<uint16_t>({10, 11, 30}), 5, 2), (Words{1, 1, 2}));
}

TEST(RegionGrowing, JoinsStepsUpToTheLargestEitherWay) {
  EXPECT_EQ(labelsOf(row<uint16_t>({10, 12, 10, 13, 10}), 5, 2), (Words{1, 1, 1, 2, 3}));
}

TEST(RegionGrowing, JoinsPixelsThatTouchAtACorner) {
  EXPECT_EQ(labelsOf(drawn({"#..", ".#.", "#.#"}), 0, 0), (Words{1, 0, 0, 0, 1, 0, 1, 0, 1}));
}

TEST(RegionGrowing, LeavesOutPixelsThatEqualTheThreshold) {
  EXPECT_EQ(labelsOf(row<uint16_t>({5, 6, 5, 4, 6}), 5, 100), (Words{0, 1, 0, 0, 2}));
}

TEST(RegionGrowing, ClimbsFarInSmallSteps) {
  Words ramp;
  for (uint16_t height = 10; height <= 100; height = static_cast<uint16_t>(height + 2)) ramp.push_back(height);
  EXPECT_EQ(labelsOf(row(ramp), 5, 2), Words(ramp.size(), 1));
  EXPECT_EQ(labelsOf(row(ramp), 5, 1).back(), ramp.size());
}

TEST(RegionGrowing, ReachesAroundAStepThatIsTooLarge) {
  // 10 and 13 are neighbours that only the way through 11 and 12 connects.
  EXPECT_EQ(labelsOf({2, 2, {10, 13, 11, 12}}, 5, 2), (Words{1, 1, 1, 1}));
  EXPECT_EQ(labelsOf({4, 2, {10, 13, 0, 0, 10, 13, 0, 0}}, 5, 2), (Words{1, 2, 0, 0, 1, 2, 0, 0}));
}

TEST(RegionGrowing, NumbersInTheRasterOrderOfTheFirstPixels) {
  EXPECT_EQ(labelsOf(drawn({"..#", "#..", "#.#"}), 0, 0), (Words{0, 0, 1, 2, 0, 0, 2, 0, 3}));
}

TEST(RegionGrowing, LabelsTheLastColumnAndRowToo) {
  EXPECT_EQ(labelsOf(drawn({"..#", "...", "#.#"}), 0, 0), (Words{0, 0, 1, 0, 0, 0, 2, 0, 3}));
}

TEST(RegionGrowing, ComparesUnsignedPixels) {
  EXPECT_EQ(labelsOf(row<uint16_t>({0x8000, 0x7FFF, 0xFFFF, 0}), 5, 1), (Words{1, 1, 2, 0}));
}

// ---- parameters ----

TEST(RegionGrowing, LabelsNothingWithANegativeStep) {
  for (const int32_t step : {-1, smallest}) EXPECT_EQ(labelsOf(drawn({"##", "##"}), 0, step), Words(4, 0)) << step;
}

TEST(RegionGrowing, LabelsNothingAboveTheLargestPixel) {
  for (const int32_t threshold : {65535, 65536, largest}) {
    EXPECT_EQ(labelsOf(row<uint16_t>({65535, 0}), threshold, 5), Words(2, 0)) << threshold;
  }
  EXPECT_EQ(labelsOf(row<uint16_t>({65535, 0}), 65534, 5), (Words{1, 0}));
}

TEST(RegionGrowing, JoinsEverythingWithAStepOf65535) {
  EXPECT_EQ(labelsOf(row<uint16_t>({1, 65535, 1}), 0, largest), (Words{1, 1, 1}));
  EXPECT_EQ(labelsOf(row<uint16_t>({1, 65535, 1}), 0, 65533), (Words{1, 2, 3}));
  EXPECT_EQ(labelsOf(row<uint16_t>({1, 65535, 1}), 0, 65534), (Words{1, 1, 1}));
}

TEST(RegionGrowing, TakesEveryPixelWithANegativeThreshold) {
  for (const int32_t threshold : {-1, smallest}) {
    EXPECT_EQ(labelsOf(row<uint16_t>({0, 0, 3, 0}), threshold, 2), (Words{1, 1, 2, 3})) << threshold;
  }
}

// ---- the images ----

TEST(RegionGrowing, MayLabelTheImageItself) {
  inRounds(300, [](lab::Random& random) {
    const Extent size = anyExtent(random, 60);
    const HeightPicture picture = anyTerrain(random, size.width, size.height);
    auto image = imageOf(picture, anySide(random));
    const int32_t params[] = {anyThreshold(random, picture), anyStep(random)};
    EXPECT_EQ(IP_RGrow_Process(image, params, image), 1);
    EXPECT_TRUE(same(model::grown(picture, params[0], params[1]), image.pixels()));
  });
}

TEST(RegionGrowing, CountsLabelsIn16Bits) {
  // 65536 regions: the last one is 0, which the next one's 1 follows.
  const Words labels = labelsOf(noTwoAlike(300, 300), 0, 5);
  EXPECT_EQ(labels[65534], 65535);
  EXPECT_EQ(labels[65535], 0);
  EXPECT_EQ(labels[65536], 1);
  EXPECT_TRUE(same(model::grown(noTwoAlike(300, 300), 0, 5), labels));
}

TEST(RegionGrowing, OfNoPixelsSucceeds) {
  for (const Extent size : {Extent{5, 0}, Extent{0, 5}, Extent{0, 0}}) {
    const Image<uint16_t> src(size.width, size.height);
    Image<uint16_t> labels(size.width, size.height);
    const int32_t params[] = {0, 1};
    EXPECT_TRUE(writesNothing(labels, [&] { return answered(IP_RGrow_Process(src, params, labels)); }));
  }
}

// ---- refused arguments ----

TEST(RegionGrowingRefuses, NullPointers) {
  const Image<uint16_t> src(4, 3);
  Image<uint16_t> labels(4, 3, marks<uint16_t>(12));
  const int32_t params[] = {0, 1};
  EXPECT_TRUE(refuses(labels, [&] { return answered(IP_RGrow_Process(nullptr, params, labels)); }));
  EXPECT_TRUE(refuses(labels, [&] { return answered(IP_RGrow_Process(src, nullptr, labels)); }));
  EXPECT_EQ(IP_RGrow_Process(src, params, nullptr), 0);
}

TEST(RegionGrowingRefuses, LabelsOfAnotherSize) {
  const Image<uint16_t> src(4, 3);
  const int32_t params[] = {0, 1};
  for (const Extent size : {Extent{3, 3}, Extent{5, 3}, Extent{4, 2}, Extent{4, 4}, Extent{3, 4}, Extent{4, 0}}) {
    Image<uint16_t> labels(size.width, size.height, marks<uint16_t>(size_t{size.width} * size.height));
    EXPECT_TRUE(refuses(labels, [&] { return answered(IP_RGrow_Process(src, params, labels)); }));
  }
}

TEST(RegionGrowingRefuses, OtherTypesOfEither) {
  const int32_t params[] = {0, 1};
  for (const uint32_t type : typesOtherThan({IMG_TYPE_U16})) {
    Image<uint32_t> src(4, 3), labels(4, 3, marks<uint32_t>(12));
    src.retype(type);
    labels.retype(IMG_TYPE_U16);
    EXPECT_TRUE(refuses(labels, [&] { return answered(IP_RGrow_Process(src, params, labels)); })) << type;
    src.retype(IMG_TYPE_U16);
    labels.retype(type);
    EXPECT_TRUE(refuses(labels, [&] { return answered(IP_RGrow_Process(src, params, labels)); })) << type;
  }
}

TEST(RegionGrowingRefuses, WrongArgumentsAlsoWithoutRows) {
  Image<uint16_t> src(4, 0), labels(5, 0);
  const int32_t params[] = {0, 1};
  EXPECT_EQ(IP_RGrow_Process(src, params, labels), 0);
  src.retype(IMG_TYPE_S16);
  EXPECT_EQ(IP_RGrow_Process(src, params, src), 0);
}

// ---- against the model ----

TEST(RegionGrowingModel, AgreesOnEveryImageOf4By4Pixels) {
  forEachCode(1u << 16, [&](uint32_t bits) { expectModel(ofBits(4, 4, bits), 0, largest); });
}

TEST(RegionGrowingModel, AgreesOnEveryRelief) {
  // Nine pixels of three heights, the highest one step above the middle and two above the lowest.
  HeightPicture picture = constant<uint16_t>(3, 3, 0);
  forEachCode(19683, [&](uint32_t code) {
    for (uint32_t i = 0, rest = code; i < 9; ++i, rest /= 3) picture.pixels[i] = static_cast<uint16_t>(4 + rest % 3);
    expectModel(picture, 0, 1);
    expectModel(picture, 4, 0);
  });
}

TEST(RegionGrowingModel, AgreesOnTerrainOfEveryKind) {
  inRounds(8000, [](lab::Random& random) {
    const Extent size = anyExtent(random, 150);
    const HeightPicture picture = anyTerrain(random, size.width, size.height);
    expectModel(picture, anyThreshold(random, picture), anyStep(random), anySide(random));
  });
}

TEST(RegionGrowingModel, AgreesOnAnyValues) {
  inRounds(2000, [](lab::Random& random) {
    const Extent size = anyExtent(random, 60);
    const HeightPicture picture{size.width, size.height, anyPixels<uint16_t>(random, size_t{size.width} * size.height)};
    expectModel(picture, random.between(-1, 65535), random.between(-1, 65535), anySide(random));
  });
}

TEST(RegionGrowingModel, AgreesOnAPathThroughALargeImage) {
  lab::Random random(2);
  expectModel(valued<uint16_t>(random, spiral(320, 240), 100), 100, largest);
}

TEST(RegionGrowingModel, AgreesOnOneRegionThatFillsALargeImage) { expectModel(constant<uint16_t>(320, 240, 7), 0, 0); }

// ---- in memory of the caller's ----

TEST(RegionGrowingInMemory, GrowsAsTheAllocatingCallDoes) {
  lab::Random random(7);
  for (const uint32_t width : {1u, 13u, 40u}) {
    const HeightPicture picture{width, 9, random.values<uint16_t>(width * 9, 40)};
    const auto src = imageOf(picture);
    auto labels = imageOf(HeightPicture{width, 9, marks<uint16_t>(width * 9)});
    const int32_t params[] = {5, 4};
    const size_t bytes = nadir_region_growing_bytes(width, 9);
    const Guarded<uint32_t> memory(std::vector<uint32_t>(bytes / 4, 0xA7A7A7A7));
    EXPECT_EQ(nadir_region_growing(src, params, labels, memory.data(), bytes), 1);
    EXPECT_TRUE(same(labelsOf(picture, 5, 4), labels.pixels())) << width;
  }
}

TEST(RegionGrowingInMemory, WrongArgumentsAreRefusedWithNothingWritten) {
  const auto src = imageOf(constant<uint16_t>(20, 9, 3));
  auto labels = imageOf(HeightPicture{20, 9, marks<uint16_t>(180)}),
       narrower = imageOf(HeightPicture{19, 9, marks<uint16_t>(171)});
  const int32_t params[] = {0, 1};
  const size_t bytes = nadir_region_growing_bytes(20, 9);
  std::vector<uint32_t> memory(bytes / 4);
  EXPECT_EQ(nadir_region_growing(nullptr, params, labels, memory.data(), bytes), 0);
  EXPECT_EQ(nadir_region_growing(src, nullptr, labels, memory.data(), bytes), 0);
  EXPECT_EQ(nadir_region_growing(src, params, nullptr, memory.data(), bytes), 0);
  EXPECT_EQ(nadir_region_growing(src, params, narrower, memory.data(), bytes), 0);
  EXPECT_EQ(labels.pixels(), marks<uint16_t>(180));
  EXPECT_EQ(narrower.pixels(), marks<uint16_t>(171));
}

TEST(RegionGrowingInMemory, MemoryThatDoesNotServeIsRefusedWithNothingWritten) {
  const auto src = imageOf(constant<uint16_t>(20, 9, 3));
  auto labels = imageOf(HeightPicture{20, 9, marks<uint16_t>(180)});
  const int32_t params[] = {0, 1};
  const size_t bytes = nadir_region_growing_bytes(20, 9);
  std::vector<uint32_t> memory(bytes / 4 + 1);
  EXPECT_EQ(nadir_region_growing(src, params, labels, memory.data(), bytes - 1), 0);
  for (size_t offset = 1; offset < 4; ++offset)
    EXPECT_EQ(nadir_region_growing(src, params, labels, reinterpret_cast<uint8_t*>(memory.data()) + offset, bytes), 0);
  EXPECT_EQ(nadir_region_growing(src, params, labels, nullptr, bytes), 0);
  EXPECT_EQ(labels.pixels(), marks<uint16_t>(180));
}

}  // namespace nadir::test
