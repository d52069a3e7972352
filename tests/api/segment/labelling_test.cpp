// Labels and sizes of connected components.
#include <gtest/gtest.h>
#include <nadir/segment.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "tests/models/segments.hpp"
#include "tests/support/pictures.hpp"
#include "tests/support/rounds.hpp"
#include "tests/support/same.hpp"

namespace nadir::test {
namespace {

using model::Picture;
using model::Words;
using Sizes = std::vector<uint32_t>;

constexpr uint32_t mapBytes = 128 * 128 * 2, sizesBytes = 4096 * 2;
constexpr uint16_t untouched = 0xA7A7;

// A label map and sizes as a caller sets them up, full of marks and next to guard pages. A map may be shorter than its
// full 128 x 128 pixels, as long as it holds those of the picture.
class Labeller {
 public:
  explicit Labeller(size_t mapWords = mapBytes / 2, Guard side = Guard::behind)
      : mapWords_(Words(mapWords, untouched), side), sizeWords_(sizesBytes / 2) {
    Img_Init(&map, 128, 128, IMG_TYPE_U16, mapWords_.data());
    EXPECT_EQ(IP_CompFind_CreateComponentSizes(&sizes, sizeWords_.data(), sizesBytes), 1);
    std::memcpy(sizeWords_.data(), marks().data(), sizesBytes);
  }

  template <class T>
  int32_t label(const Picture<T>& picture, int32_t threshold, Guard side = Guard::behind) {
    auto src = imageOf(picture, side);
    const int32_t status = IP_CompFind_Process(src, &map, &sizes, &threshold);
    EXPECT_EQ(src.pixels(), picture.pixels) << "wrote into its source";
    return status;
  }

  static const Words& marks() {
    static const Words words(mapBytes / 2, untouched);
    return words;
  }

  Words wholeMap() const { return mapWords_.values(); }
  Words labels() const {
    const Words all = wholeMap();
    return Words(all.begin(), all.begin() + map.width * map.height);
  }
  bool marksBehindLabels() const {
    const Words all = wholeMap();
    return std::equal(all.begin() + map.width * map.height, all.end(), marks().begin());
  }
  Sizes counts() const { return Sizes(sizeWords_.begin(), sizeWords_.begin() + std::min(sizes.count, 4096u)); }
  bool marksBehindCounts(size_t from) const {
    return std::equal(sizeWords_.begin() + from, sizeWords_.end(), marks().begin());
  }

  Img map{};
  Vector sizes{};

 private:
  Guarded<uint16_t> mapWords_;
  Guarded<uint16_t> sizeWords_;
};

// Labels and sizes are those of the model, and not a byte behind them has changed.
template <class T>
void expectModel(const Picture<T>& picture, int32_t threshold, Guard side = Guard::behind) {
  const model::Labelling want = model::components(picture, static_cast<int16_t>(threshold));
  if (want.sizes.size() > 4096) return;  // more than the sizes hold, which has tests of its own
  Labeller labeller(picture.pixels.size() + 64, side);
  ASSERT_EQ(labeller.label(picture, threshold, side), 1);
  ASSERT_EQ(labeller.map.width, picture.width);
  ASSERT_EQ(labeller.map.height, picture.height);
  EXPECT_EQ(labeller.map.type, uint32_t{IMG_TYPE_U16});
  EXPECT_EQ(labeller.sizes.count, want.sizes.size());
  EXPECT_TRUE(same(want.labels, labeller.labels()));
  EXPECT_TRUE(same(want.sizes, labeller.counts()));
  EXPECT_TRUE(labeller.marksBehindLabels());
  EXPECT_TRUE(labeller.marksBehindCounts(want.sizes.size()));
  if (::testing::Test::HasFailure()) ADD_FAILURE() << "threshold " << threshold << ", " << text(picture);
}

Words labelsOf(const std::vector<std::string>& rows) {
  Labeller labeller;
  EXPECT_EQ(labeller.label(drawn(rows), 0), 1);
  return labeller.labels();
}

template <class T>
Sizes sizesOf(const Picture<T>& picture, int32_t threshold) {
  Labeller labeller;
  EXPECT_EQ(labeller.label(picture, threshold), 1);
  return labeller.counts();
}

Sizes sizesOf(const std::vector<std::string>& rows) { return sizesOf(drawn(rows), 0); }

// Answers 0 and leaves everything as it was.
::testing::AssertionResult labellingRefuses(const Img* src) {
  Labeller labeller;
  const Img map = labeller.map;
  const Vector sizes = labeller.sizes;
  const int32_t threshold = 0;
  if (IP_CompFind_Process(src, &labeller.map, &labeller.sizes, &threshold) != 0)
    return ::testing::AssertionFailure() << "not refused";
  if (!sameDescriptor(map, labeller.map)) return ::testing::AssertionFailure() << "changed the map's descriptor";
  const Vector& now = labeller.sizes;
  if (now.count != sizes.count || now.capacity != sizes.capacity || now.elementType != sizes.elementType ||
      now.data != sizes.data)
    return ::testing::AssertionFailure() << "changed the vector";
  if (labeller.wholeMap() != Labeller::marks()) return ::testing::AssertionFailure() << "wrote into the map";
  if (!labeller.marksBehindCounts(0)) return ::testing::AssertionFailure() << "wrote into the sizes";
  return ::testing::AssertionSuccess();
}

// Single pixels in every second row and column: as many as can be.
Picture<uint16_t> dust() {
  Picture<uint16_t> picture = constant<uint16_t>(128, 128, 0);
  for (uint32_t y = 0; y < 128; y += 2) {
    for (uint32_t x = 0; x < 128; x += 2) picture.at(x, y) = 1;
  }
  return picture;
}

}  // namespace

// ---- label maps ----

TEST(CreateLabelMap, Lays128By128PixelsOverTheBuffer) {
  Img map{};
  const Guarded<uint16_t> memory(Words(mapBytes / 2, untouched), Guard::behind);
  EXPECT_EQ(IP_CompFind_CreateLabelMap(&map, memory.data(), mapBytes), 1);
  EXPECT_TRUE(sameDescriptor(map, {128, 128, 2, IMG_TYPE_U16, memory.data()}));
  EXPECT_EQ(memory.values(), Words(mapBytes / 2, untouched));
}

TEST(CreateLabelMap, AcceptsLargerBuffers) {
  Img map{};
  uint16_t first = 0;
  EXPECT_EQ(IP_CompFind_CreateLabelMap(&map, &first, 0xFFFFFFFFu), 1);
  EXPECT_TRUE(sameDescriptor(map, {128, 128, 2, IMG_TYPE_U16, &first}));
}

TEST(CreateLabelMap, RefusesSmallerBuffers) {
  for (const uint32_t bytes : {0u, 1u, 16384u, mapBytes - 1}) {
    Img map{1, 2, 3, 4, nullptr};
    uint16_t first = untouched;
    EXPECT_EQ(IP_CompFind_CreateLabelMap(&map, &first, bytes), 0) << bytes;
    EXPECT_TRUE(sameDescriptor(map, {1, 2, 3, 4, nullptr})) << bytes;
    EXPECT_EQ(first, untouched);
  }
}

TEST(CreateLabelMap, RefusesANullMap) {
  uint16_t first = untouched;
  EXPECT_EQ(IP_CompFind_CreateLabelMap(nullptr, &first, mapBytes), 0);
  EXPECT_EQ(first, untouched);
}

// ---- component sizes ----

TEST(CreateComponentSizes, Makes4096Zeros) {
  Vector sizes{};
  const Guarded<uint16_t> memory(Words(4096, untouched));
  EXPECT_EQ(IP_CompFind_CreateComponentSizes(&sizes, memory.data(), sizesBytes), 1);
  EXPECT_EQ(sizes.count, 4096u);
  EXPECT_EQ(sizes.capacity, 4096u);
  EXPECT_EQ(sizes.elementType, uint32_t{VECTOR_TYPE_U16});
  EXPECT_EQ(sizes.data, memory.data());
  EXPECT_EQ(memory.values(), Words(4096, 0));
}

TEST(CreateComponentSizes, TakesALargerBufferAsCapacityAndClears4096OfIt) {
  Vector sizes{};
  const Guarded<uint16_t> memory(Words(5000, untouched));
  EXPECT_EQ(IP_CompFind_CreateComponentSizes(&sizes, memory.data(), 10000), 1);
  EXPECT_EQ(sizes.count, 4096u);
  EXPECT_EQ(sizes.capacity, 5000u);
  Words wanted(5000, 0);
  std::fill(wanted.begin() + 4096, wanted.end(), untouched);
  EXPECT_EQ(memory.values(), wanted);
}

TEST(CreateComponentSizes, RefusesSmallerBuffers) {
  for (const uint32_t bytes : {0u, 1u, 4096u, sizesBytes - 1}) {
    Vector sizes{1, 2, 3, nullptr};
    const Guarded<uint16_t> memory(Words(4096, untouched));
    EXPECT_EQ(IP_CompFind_CreateComponentSizes(&sizes, memory.data(), bytes), 0) << bytes;
    EXPECT_TRUE(sizes.count == 1 && sizes.capacity == 2 && sizes.elementType == 3 && !sizes.data) << bytes;
    EXPECT_EQ(memory.values(), Words(4096, untouched));
  }
}

// ---- what is one component ----

TEST(Labelling, JoinsPixelsThatTouchAtACorner) {
  const std::vector<std::string> rows{"#..", ".#.", "..."};
  EXPECT_EQ(labelsOf(rows), (Words{1, 0, 0, 0, 1, 0, 0, 0, 0}));
  EXPECT_EQ(sizesOf(rows), (Sizes{7, 2}));
}

TEST(Labelling, JoinsPixelsThatTouchAtTheOtherCorner) { EXPECT_EQ(sizesOf({".#.", "#..", "..."}), (Sizes{7, 2})); }

TEST(Labelling, SeparatesPixelsWithAColumnOrARowBetween) {
  EXPECT_EQ(sizesOf({"#.#.", "....", "#.#."}), (Sizes{8, 1, 1, 1, 1}));
}

TEST(Labelling, MergesBarsThatMeetAtTheBottom) {
  const std::vector<std::string> rows{"#.#.", "#.#.", "###."};
  EXPECT_EQ(labelsOf(rows), (Words{1, 0, 1, 0, 1, 0, 1, 0, 1, 1, 1, 0}));
  EXPECT_EQ(sizesOf(rows), (Sizes{5, 7}));
}

TEST(Labelling, NumbersInTheRasterOrderOfTheFirstPixels) {
  // The right bar is first; the left one starts lower although it reaches further left.
  EXPECT_EQ(labelsOf({"...#.", ".#.#.", "#..#."}), (Words{0, 0, 0, 1, 0, 0, 2, 0, 1, 0, 2, 0, 0, 1, 0}));
}

TEST(Labelling, ClosesTheGapsThatMergedLabelsLeave) {
  // The first two of the top row become one: the third must be 2.
  EXPECT_EQ(labelsOf({"#.#.#.", "###.#."}), (Words{1, 0, 1, 0, 2, 0, 1, 1, 1, 0, 2, 0}));
}

TEST(Labelling, OfNothingIsAllBackground) {
  EXPECT_EQ(labelsOf({"...", "..."}), Words(6, 0));
  EXPECT_EQ(sizesOf({"...", "..."}), (Sizes{6}));
}

TEST(Labelling, OfOnePixelIsBackgroundWhateverItsValue) {
  EXPECT_EQ(sizesOf(row<uint16_t>({0}), 0), (Sizes{1}));
  EXPECT_EQ(sizesOf(row<uint16_t>({9}), 0), (Sizes{1}));
}

// ---- the right border ----

TEST(Labelling, NeverLabelsThePixelInTheLastColumn) { EXPECT_EQ(sizesOf({".#.#"}), (Sizes{3, 1})); }

TEST(Labelling, NeverLabelsAnyPixelOfARunThatReachesTheLastColumn) {
  EXPECT_EQ(labelsOf({"#.###"}), (Words{1, 0, 0, 0, 0}));
  EXPECT_EQ(labelsOf({"#####"}), Words(5, 0));
}

TEST(Labelling, DoesNotJoinThroughARunThatReachesTheLastColumn) {
  EXPECT_EQ(labelsOf({"#.#..", "#####", "#.#.."}), (Words{1, 0, 2, 0, 0, 0, 0, 0, 0, 0, 3, 0, 4, 0, 0}));
}

TEST(Labelling, LabelsNothingInAnImageOfOneColumn) { EXPECT_EQ(sizesOf({"#", "#", ".", "#"}), (Sizes{4})); }

TEST(Labelling, LabelsARunThatEndsAColumnBeforeTheLast) { EXPECT_EQ(labelsOf({"###."}), (Words{1, 1, 1, 0})); }

// ---- threshold ----

TEST(Labelling, TakesPixelsGreaterThanTheThreshold) {
  EXPECT_EQ(sizesOf(row<uint16_t>({5, 0, 6, 0, 7, 0}), 6), (Sizes{5, 1}));
  EXPECT_EQ(sizesOf(row<int16_t>({-5, -9, -6, -9, -7, -9}), -6), (Sizes{5, 1}));
}

TEST(Labelling, ComparesU16AsUnsignedAndS16AsSigned) {
  EXPECT_EQ(sizesOf(row<uint16_t>({0x8000, 0, 0xFFFF, 0}), 32767), (Sizes{2, 1, 1}));
  EXPECT_EQ(sizesOf(row<int16_t>({-32768, 0, -1, 0}), 0), (Sizes{4}));
  EXPECT_EQ(sizesOf(row<int16_t>({-32768, 0, -32768, 1, -32768}), -1), (Sizes{3, 1, 1}));
}

TEST(Labelling, FindsNothingAboveTheLargestS16) { EXPECT_EQ(sizesOf(row<int16_t>({32767, 0}), 32767), (Sizes{2})); }

TEST(Labelling, ReadsOnlyTheLow16BitsOfTheThreshold) {
  for (const int32_t threshold : {6, 0x10006, 0x7FFF0006, INT32_MIN + 6}) {
    EXPECT_EQ(sizesOf(row<uint16_t>({6, 0, 7, 0}), threshold), (Sizes{3, 1})) << threshold;
  }
  EXPECT_EQ(sizesOf(row<int16_t>({0, -2, -1, -2}), 0xFFFE), (Sizes{2, 1, 1}));
}

TEST(Labelling, OfU16WithAThresholdOf32768IsOneRunPerRowAndSoNothing) {
  for (const int32_t threshold : {32768, 65535, -1, -32768}) {
    EXPECT_EQ(sizesOf(constant<uint16_t>(3, 2, 0), threshold), (Sizes{6})) << threshold;
  }
}

// ---- refused images ----

TEST(Labelling, RefusesSizesOutside1To128) {
  uint16_t pixel = 0;
  const uint32_t sizes[][2] = {{0, 1},     {1, 0},     {0, 0},     {129, 1}, {1, 129},
                               {129, 129}, {65535, 1}, {1, 65535}, {256, 2}};
  for (const auto& size : sizes) {
    Img src;
    Img_Init(&src, size[0], size[1], IMG_TYPE_U16, &pixel);
    EXPECT_TRUE(labellingRefuses(&src)) << size[0] << " x " << size[1];
  }
}

TEST(Labelling, RefusesOtherTypes) {
  Image<uint32_t> src(4, 4);
  for (const uint32_t type : typesOtherThan({IMG_TYPE_U16, IMG_TYPE_S16})) {
    src.retype(type);
    EXPECT_TRUE(labellingRefuses(src)) << type;
  }
}

// ---- against the model ----

TEST(LabellingModel, AgreesOnEveryImageOf5By3Pixels) {
  forEachCode(1u << 15, [&](uint32_t bits) { expectModel(ofBits(5, 3, bits), 0); });
}

TEST(LabellingModel, AgreesOnEveryImageOf3By4Pixels) {
  forEachCode(1u << 12, [&](uint32_t bits) { expectModel(ofBits(3, 4, bits), 0); });
}

TEST(LabellingModel, AgreesOnU16ShapesOfEveryKind) {
  inRounds(8000, [](lab::Random& random) {
    const Extent size = anyExtent(random, 128);
    const int32_t threshold = random.below(2) ? 0 : random.between(0, 32767);
    const Shape shape = anyShape(random, size.width, size.height);
    expectModel(valued<uint16_t>(random, shape, threshold), threshold, anySide(random));
  });
}

TEST(LabellingModel, AgreesOnS16ShapesOfEveryKind) {
  inRounds(8000, [](lab::Random& random) {
    const Extent size = anyExtent(random, 128);
    const int32_t threshold = random.below(2) ? 0 : random.between(-32768, 32766);
    const Shape shape = anyShape(random, size.width, size.height);
    expectModel(valued<int16_t>(random, shape, threshold), threshold, anySide(random));
  });
}

TEST(LabellingModel, AgreesOnAnyValuesAndAnyThreshold) {
  inRounds(4000, [](lab::Random& random) {
    const Extent size = anyExtent(random, 40);
    const int32_t threshold = static_cast<int32_t>(random.next());
    const size_t pixels = size_t{size.width} * size.height;
    expectModel(Picture<uint16_t>{size.width, size.height, anyPixels<uint16_t>(random, pixels)}, threshold);
    expectModel(Picture<int16_t>{size.width, size.height, anyPixels<int16_t>(random, pixels)}, threshold);
  });
}

TEST(LabellingModel, AgreesOnFullSizeShapes) {
  inRounds(40, [](lab::Random& random) {
    expectModel(valued<uint16_t>(random, anyShape(random, 128, 128), 0), 0, anySide(random));
  });
}

TEST(LabellingModel, AgreesOnNoiseOfEveryDensity) {
  lab::Random random(1);
  forEachCode(101, [&](uint32_t percent) {
    const uint32_t width = percent % 10 == 0 ? 128 : 40;
    expectModel(valued<uint16_t>(random, noise(random, width, 60, percent), 0), 0);
  });
}

// ---- calls in a row ----

TEST(LabellingAgain, ChangesNothingBehindItsOwnLabelsAndSizes) {
  Labeller labeller;
  EXPECT_EQ(labeller.label(drawn({"#.#.", "....", "#.#."}), 0), 1);
  EXPECT_EQ(labeller.label(drawn({"#.#."}), 0), 1);
  const Words map = labeller.wholeMap();
  // The first row is new; of the first call's three rows the others are still there, and one size.
  EXPECT_EQ(Words(map.begin(), map.begin() + 13), (Words{1, 0, 2, 0, 0, 0, 0, 0, 3, 0, 4, 0, untouched}));
  EXPECT_EQ(labeller.sizes.count, 3u);
  labeller.sizes.count = 6;
  labeller.map.height = 3;
  EXPECT_EQ(labeller.counts(), (Sizes{2, 1, 1, 1, 1, untouched}));
}

TEST(LabellingAgain, GrowsTheMapBackToALargerImage) {
  Labeller labeller;
  EXPECT_EQ(labeller.label(drawn({"#."}), 0), 1);
  EXPECT_EQ(labeller.label(constant<uint16_t>(128, 128, 0), 0), 1);
  EXPECT_EQ(labeller.labels(), Words(128 * 128, 0));
  EXPECT_EQ(labeller.counts(), (Sizes{128 * 128}));
}

// ---- limits ----

TEST(LabellingLimits, Finds4095Components) {
  Picture<uint16_t> picture = dust();
  picture.at(64, 64) = 0;
  EXPECT_EQ(model::components(picture, 0).sizes.size(), 4096u);
  expectModel(picture, 0);
}

TEST(LabellingLimits, MergesDustIntoOneRowByRow) {
  // Diagonals join the pixels of each pair of rows, the last column but one joins the pairs. Without the first pixel
  // the rows begin with 4095 labels of their own.
  Picture<uint16_t> picture = dust();
  for (uint32_t y = 1; y < 128; y += 2) {
    for (uint32_t x = 1; x < 127; x += 2) picture.at(x, y) = y % 4 == 1 || x == 125 ? 1 : 0;
  }
  picture.at(0, 0) = 0;
  EXPECT_EQ(model::components(picture, 0).sizes.size(), 2u);
  expectModel(picture, 0);
}

TEST(LabellingLimits, With4096ComponentsTheSizesAreFilledUpAndTheLabelsRight) {
  Labeller labeller;
  EXPECT_EQ(labeller.label(dust(), 0), 1);
  EXPECT_TRUE(same(model::components(dust(), 0).labels, labeller.wholeMap()));
  EXPECT_EQ(labeller.sizes.count, 4096u);
  EXPECT_EQ(labeller.sizes.capacity, 4096u);
  Sizes ones(4096, 1);
  ones[0] = 128 * 128 - 4096;
  EXPECT_EQ(labeller.counts(), ones);
}

TEST(LabellingLimits, CountsAll4096ComponentsInALongerVector) {
  const Guarded<uint16_t> memory(4097);
  Labeller labeller;
  ASSERT_EQ(IP_CompFind_CreateComponentSizes(&labeller.sizes, memory.data(), 2 * 4097), 1);
  EXPECT_EQ(labeller.label(dust(), 0), 1);
  EXPECT_EQ(labeller.sizes.count, 4097u);
  EXPECT_EQ(memory[4096], 1u);
}

TEST(LabellingLimits, IsRightAgainAfterThem) {
  inRounds(50, [](lab::Random& random) {
    Labeller labeller;
    labeller.label(dust(), 0);
    expectModel(valued<uint16_t>(random, anyShape(random, 30, 20), 0), 0);
  });
}

}  // namespace nadir::test
