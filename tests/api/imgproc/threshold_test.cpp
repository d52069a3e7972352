// Thresholds and ranges.
#include <gtest/gtest.h>
#include <nadir/imgproc.h>

#include <vector>

#include "tests/models/image_ops.hpp"
#include "tests/support/images.hpp"

namespace nadir::test {
namespace {

const std::vector<uint32_t> thresholdModes{THRESH_ZERO_BELOW, THRESH_KEEP_ABOVE, THRESH_ZERO_EQUAL, THRESH_KEEP_BELOW,
                                           THRESH_ZERO_ABOVE};
const std::vector<int32_t> rangeModes{THRESH_ZERO_INSIDE, THRESH_ZERO_OUTSIDE};
const std::vector<uint32_t> otherModes{5, 6, 7, 8, 255, 256, 0x10000, 0x80000000u, 0xFFFFFFFFu};
const std::vector<int32_t> otherRangeModes{0, 1, 2, 3, 4, 7, 8, -1, 261, 0x10005, -2147483647 - 1};

template <class T>
std::vector<T> thresholded(std::initializer_list<T> row, uint32_t threshold, uint32_t mode) {
  Image<T> src(row), dst(src.img.width, 1);
  EXPECT_EQ(IP_Threshold(src, dst, threshold, mode), 1u);
  return dst.pixels();
}

template <class T>
std::vector<T> rangeThresholded(std::initializer_list<T> row, uint32_t lo, uint32_t hi, int32_t mode) {
  Image<T> src(row), dst(src.img.width, 1);
  EXPECT_EQ(IP_ThresholdRange(src, dst, lo, hi, mode), 1u);
  return dst.pixels();
}

using U16 = std::vector<uint16_t>;
using S16 = std::vector<int16_t>;

// Every valid call makes pixels of this value 0, so that a write by a call that should refuse shows.
constexpr uint32_t above = 0x7000, rangeBegin = 0x30, rangeEnd = 0x6000;
constexpr uint32_t zeroing = THRESH_KEEP_ABOVE;
constexpr int32_t rangeZeroing = THRESH_ZERO_INSIDE;

template <class T>
Image<T> markedForThreshold(uint32_t width, uint32_t height) {
  return Image<T>(width, height, marks<T>(size_t{width} * height));
}

}  // namespace

// ---- one threshold, U16 ----

TEST(Threshold, Mode0ZeroesBelowAndKeepsThePixelThatEqualsTheThreshold) {
  EXPECT_EQ(thresholded<uint16_t>({99, 100, 101}, 100, THRESH_ZERO_BELOW), (U16{0, 100, 101}));
}

TEST(Threshold, Mode1KeepsAboveAndDropsThePixelThatEqualsTheThreshold) {
  EXPECT_EQ(thresholded<uint16_t>({99, 100, 101}, 100, THRESH_KEEP_ABOVE), (U16{0, 0, 101}));
}

TEST(Threshold, Mode2ZeroesOnlyThePixelThatEqualsTheThreshold) {
  EXPECT_EQ(thresholded<uint16_t>({99, 100, 101}, 100, THRESH_ZERO_EQUAL), (U16{99, 0, 101}));
}

TEST(Threshold, Mode3KeepsBelowAndDropsThePixelThatEqualsTheThreshold) {
  EXPECT_EQ(thresholded<uint16_t>({99, 100, 101}, 100, THRESH_KEEP_BELOW), (U16{99, 0, 0}));
}

TEST(Threshold, Mode4ZeroesAboveAndKeepsThePixelThatEqualsTheThreshold) {
  EXPECT_EQ(thresholded<uint16_t>({99, 100, 101}, 100, THRESH_ZERO_ABOVE), (U16{99, 100, 0}));
}

TEST(Threshold, NumbersItsModesAsDocumented) {
  EXPECT_EQ(thresholded<uint16_t>({99, 100, 101}, 100, 0), (U16{0, 100, 101}));
  EXPECT_EQ(thresholded<uint16_t>({99, 100, 101}, 100, 1), (U16{0, 0, 101}));
  EXPECT_EQ(thresholded<uint16_t>({99, 100, 101}, 100, 2), (U16{99, 0, 101}));
  EXPECT_EQ(thresholded<uint16_t>({99, 100, 101}, 100, 3), (U16{99, 0, 0}));
  EXPECT_EQ(thresholded<uint16_t>({99, 100, 101}, 100, 4), (U16{99, 100, 0}));
}

TEST(Threshold, IgnoresTheHighBitsOfTheThreshold) {
  EXPECT_EQ(thresholded<uint16_t>({99, 100, 101}, 0x10064, THRESH_ZERO_BELOW), (U16{0, 100, 101}));
}

TEST(Threshold, IgnoresTheHighBitsOfTheThresholdForS16) {
  EXPECT_EQ(thresholded<int16_t>({-2, -1, 0}, 0x1FFFF, THRESH_ZERO_BELOW), (S16{0, -1, 0}));
}

TEST(Threshold, ReadsTheThresholdAsUnsignedForU16) {
  EXPECT_EQ(thresholded<uint16_t>({0, 1, 32767, 32768, 65534, 65535}, 0xFFFF, THRESH_ZERO_BELOW),
            (U16{0, 0, 0, 0, 0, 65535}));
}

TEST(Threshold, ReadsTheThresholdAsSignedForS16) {
  EXPECT_EQ(thresholded<int16_t>({-32768, -2, -1, 0, 32767}, 0xFFFF, THRESH_ZERO_BELOW), (S16{0, 0, -1, 0, 32767}));
}

TEST(Threshold, ComparesS16PixelsAsSigned) {
  EXPECT_EQ(thresholded<int16_t>({-32768, -1, 1, 32767}, 0, THRESH_KEEP_ABOVE), (S16{0, 0, 1, 32767}));
}

TEST(Threshold, ComparesU16PixelsAsUnsigned) {
  EXPECT_EQ(thresholded<uint16_t>({1, 32767, 32768, 65535}, 32767, THRESH_KEEP_ABOVE), (U16{0, 0, 32768, 65535}));
}

// ---- range ----

TEST(ThresholdRange, Mode5ZeroesTheRangeWithBothBounds) {
  EXPECT_EQ(rangeThresholded<uint16_t>({9, 10, 20, 21}, 10, 20, THRESH_ZERO_INSIDE), (U16{9, 0, 0, 21}));
}

TEST(ThresholdRange, Mode6KeepsTheRangeWithBothBounds) {
  EXPECT_EQ(rangeThresholded<uint16_t>({9, 10, 20, 21}, 10, 20, THRESH_ZERO_OUTSIDE), (U16{0, 10, 20, 0}));
}

TEST(ThresholdRange, NumbersItsModesAsDocumented) {
  EXPECT_EQ(rangeThresholded<uint16_t>({9, 10, 20, 21}, 10, 20, 5), (U16{9, 0, 0, 21}));
  EXPECT_EQ(rangeThresholded<uint16_t>({9, 10, 20, 21}, 10, 20, 6), (U16{0, 10, 20, 0}));
}

TEST(ThresholdRange, Mode5KeepsEverythingWhereTheRangeIsEmpty) {
  EXPECT_EQ(rangeThresholded<uint16_t>({9, 10, 15, 20, 21}, 20, 10, THRESH_ZERO_INSIDE), (U16{9, 10, 15, 20, 21}));
}

TEST(ThresholdRange, Mode6ZeroesEverythingWhereTheRangeIsEmpty) {
  EXPECT_EQ(rangeThresholded<uint16_t>({9, 10, 15, 20, 21}, 20, 10, THRESH_ZERO_OUTSIDE), (U16{0, 0, 0, 0, 0}));
}

TEST(ThresholdRange, MayBeASingleValue) {
  EXPECT_EQ(rangeThresholded<uint16_t>({9, 10, 11}, 10, 10, THRESH_ZERO_OUTSIDE), (U16{0, 10, 0}));
}

TEST(ThresholdRange, MayBeAllValues) {
  EXPECT_EQ(rangeThresholded<uint16_t>({1, 32768, 65535}, 0, 65535, THRESH_ZERO_OUTSIDE), (U16{1, 32768, 65535}));
  EXPECT_EQ(rangeThresholded<int16_t>({-32768, 1, 32767}, 0x8000, 0x7FFF, THRESH_ZERO_OUTSIDE),
            (S16{-32768, 1, 32767}));
}

TEST(ThresholdRange, IgnoresTheHighBitsOfBothBounds) {
  EXPECT_EQ(rangeThresholded<uint16_t>({9, 10, 20, 21}, 0x1000A, 0xFFFF0014u, THRESH_ZERO_INSIDE), (U16{9, 0, 0, 21}));
}

TEST(ThresholdRange, ReadsTheBoundsAsSignedForS16) {
  EXPECT_EQ(rangeThresholded<int16_t>({-3, -2, 1, 2, 3}, 0xFFFE, 2, THRESH_ZERO_OUTSIDE), (S16{0, -2, 1, 2, 0}));
}

TEST(ThresholdRange, ReadsTheBoundsAsUnsignedForU16) {
  EXPECT_EQ(rangeThresholded<uint16_t>({1, 32767, 32768, 65535}, 32768, 0xFFFE, THRESH_ZERO_OUTSIDE),
            (U16{0, 0, 32768, 0}));
}

// ---- every size, against the model ----

template <class T>
class ThresholdOf : public ::testing::Test {};

using Types = ::testing::Types<uint16_t, int16_t>;
TYPED_TEST_SUITE(ThresholdOf, Types, TypeName);

namespace {

// Close to one another and extremes in between, so that equality and both ends of the range occur.
template <class T>
std::vector<T> closePixels(lab::Random& random, size_t count) {
  std::vector<T> out = anyPixels<T>(random, count);
  for (T& v : out)
    if (random.below(2)) v = static_cast<T>(random.between(-3, 3));
  return out;
}

// The low 16 bits near a pixel's value or anything, the high ones anything.
uint32_t anyWord(lab::Random& random) {
  const uint32_t low = random.below(2) ? static_cast<uint32_t>(random.between(-3, 3)) : random.next();
  return (low & 0xFFFFu) | (random.next() & 0xFFFF0000u);
}

}  // namespace

TYPED_TEST(ThresholdOf, OneThresholdIsExactForEverySizeAndMode) {
  forEachSize(smallSizes(3), [](Size size, Guard side, lab::Random& random) {
    const auto pixels = closePixels<TypeParam>(random, size.width * size.height);
    const Image<TypeParam> src(size.width, size.height, pixels, side);
    Image<TypeParam> dst(size.width, size.height, side), inPlace(size.width, size.height, side);
    for (uint32_t mode : thresholdModes) {
      const uint32_t word = anyWord(random);
      SCOPED_TRACE(testing::Message() << "mode " << mode << ", threshold " << word);
      std::vector<TypeParam> wanted = pixels;
      for (TypeParam& v : wanted) v = model::threshold(v, word, mode);

      EXPECT_EQ(IP_Threshold(src, dst, word, mode), 1u);
      EXPECT_TRUE(holds(dst, wanted));
      EXPECT_TRUE(holds(src, pixels));
      inPlace.fill(pixels);
      EXPECT_EQ(IP_Threshold_I(inPlace, word, mode), 1u);
      EXPECT_TRUE(holds(inPlace, wanted));
    }
  });
}

TYPED_TEST(ThresholdOf, RangeIsExactForEverySizeAndMode) {
  forEachSize(smallSizes(3), [](Size size, Guard side, lab::Random& random) {
    const auto pixels = closePixels<TypeParam>(random, size.width * size.height);
    const Image<TypeParam> src(size.width, size.height, pixels, side);
    Image<TypeParam> dst(size.width, size.height, side), inPlace(size.width, size.height, side);
    for (int32_t mode : rangeModes) {
      const uint32_t lo = anyWord(random), hi = anyWord(random);
      SCOPED_TRACE(testing::Message() << "mode " << mode << ", range " << lo << " to " << hi);
      std::vector<TypeParam> wanted = pixels;
      for (TypeParam& v : wanted) v = model::thresholdRange(v, lo, hi, mode);

      EXPECT_EQ(IP_ThresholdRange(src, dst, lo, hi, mode), 1u);
      EXPECT_TRUE(holds(dst, wanted));
      EXPECT_TRUE(holds(src, pixels));
      inPlace.fill(pixels);
      EXPECT_EQ(IP_ThresholdRange_I(inPlace, lo, hi, mode), 1u);
      EXPECT_TRUE(holds(inPlace, wanted));
    }
  });
}

TYPED_TEST(ThresholdOf, SourceAndDestinationMayBeTheSameImage) {
  Image<TypeParam> image{99, 100, 101};
  EXPECT_EQ(IP_Threshold(image, image, 100, THRESH_KEEP_ABOVE), 1u);
  EXPECT_TRUE(holds(image, {0, 0, 101}));
  EXPECT_EQ(IP_ThresholdRange(image, image, 101, 101, THRESH_ZERO_INSIDE), 1u);
  EXPECT_TRUE(holds(image, {0, 0, 0}));
}

TYPED_TEST(ThresholdOf, LeavesTheDescriptorsAlone) {
  Image<TypeParam> src{99, 100, 101}, dst(3, 1);
  const Img srcBefore = src.img, dstBefore = dst.img;
  EXPECT_EQ(IP_Threshold(src, dst, 100, THRESH_KEEP_ABOVE), 1u);
  EXPECT_TRUE(sameDescriptor(src.img, srcBefore));
  EXPECT_TRUE(sameDescriptor(dst.img, dstBefore));
}

// One column, rows four bytes apart in one image and two bytes apart in the other.
TYPED_TEST(ThresholdOf, WalksEachImageWithItsOwnRowStride) {
  Image<TypeParam> apart{1, 2, 3, 4, 5, 6}, dense(1, 3);
  apart.img.width = 1;
  apart.img.height = 3;
  apart.img.bytesPerPixel = 4;
  EXPECT_EQ(IP_Threshold(apart, dense, 2, THRESH_KEEP_ABOVE), 1u);
  EXPECT_EQ(dense.pixels(), (std::vector<TypeParam>{0, 3, 5}));
  dense.fill({7, 8, 9});
  EXPECT_EQ(IP_ThresholdRange(dense, apart, 8, 8, THRESH_ZERO_INSIDE), 1u);
  EXPECT_EQ(apart.pixels(), (std::vector<TypeParam>{7, 2, 0, 4, 9, 6}));
}

// ---- images without pixels ----

TEST(Threshold, AcceptsAnImageWithoutRowsForEveryMode) {
  Image<uint16_t> src(5, 0), dst(5, 0);
  for (uint32_t mode : thresholdModes) EXPECT_EQ(IP_Threshold(src, dst, 100, mode), 1u) << mode;
}

TEST(Threshold, AcceptsAnImageWithoutColumns) {
  Image<uint16_t> src(0, 5), dst(0, 5);
  EXPECT_EQ(IP_Threshold(src, dst, 100, zeroing), 1u);
}

TEST(ThresholdRange, AcceptsAnImageWithoutRowsForEveryMode) {
  Image<uint16_t> src(5, 0), dst(5, 0);
  for (int32_t mode : rangeModes) EXPECT_EQ(IP_ThresholdRange(src, dst, 1, 2, mode), 1u) << mode;
}

TEST(ThresholdRange, AcceptsAnImageWithoutColumns) {
  Image<uint16_t> src(0, 5), dst(0, 5);
  EXPECT_EQ(IP_ThresholdRange(src, dst, 1, 2, rangeZeroing), 1u);
}

TEST(Threshold, ChecksTypeAndModeAlsoWithoutRows) {
  Image<uint16_t> words(5, 0);
  Image<uint8_t> bytes(5, 0);
  EXPECT_EQ(IP_Threshold(words, words, 100, 5), 0u);
  EXPECT_EQ(IP_Threshold(bytes, bytes, 100, 0), 0u);
  EXPECT_EQ(IP_ThresholdRange(words, words, 1, 2, 4), 0u);
  EXPECT_EQ(IP_ThresholdRange(bytes, bytes, 1, 2, 5), 0u);
}

// ---- refused ----

TEST(Threshold, RefusesEveryOtherMode) {
  for (uint32_t mode : otherModes) {
    SCOPED_TRACE(mode);
    Image<uint16_t> src(3, 2, U16(6, 0x40)), dst = markedForThreshold<uint16_t>(3, 2);
    EXPECT_TRUE(refuses(dst, [&] { return IP_Threshold(src, dst, above, mode); }));
    EXPECT_TRUE(refuses(dst, [&] { return IP_Threshold_I(dst, above, mode); }));
  }
}

TEST(ThresholdRange, RefusesEveryOtherMode) {
  for (int32_t mode : otherRangeModes) {
    SCOPED_TRACE(mode);
    Image<uint16_t> src(3, 2, U16(6, 0x40)), dst = markedForThreshold<uint16_t>(3, 2);
    EXPECT_TRUE(refuses(dst, [&] { return IP_ThresholdRange(src, dst, rangeBegin, rangeEnd, mode); }));
    EXPECT_TRUE(refuses(dst, [&] { return IP_ThresholdRange_I(dst, rangeBegin, rangeEnd, mode); }));
  }
}

TEST(Threshold, RefusesEveryOtherType) {
  for (uint32_t type : typesOtherThan({IMG_TYPE_U16, IMG_TYPE_S16})) {
    SCOPED_TRACE(type);
    Image<uint32_t> src = markedForThreshold<uint32_t>(3, 2), dst = markedForThreshold<uint32_t>(3, 2);
    src.retype(type);
    dst.retype(type);
    EXPECT_TRUE(refuses(dst, [&] { return IP_Threshold(src, dst, above, zeroing); }));
    EXPECT_TRUE(refuses(dst, [&] { return IP_Threshold_I(dst, above, zeroing); }));
  }
}

TEST(ThresholdRange, RefusesEveryOtherType) {
  for (uint32_t type : typesOtherThan({IMG_TYPE_U16, IMG_TYPE_S16})) {
    SCOPED_TRACE(type);
    Image<uint32_t> src = markedForThreshold<uint32_t>(3, 2), dst = markedForThreshold<uint32_t>(3, 2);
    src.retype(type);
    dst.retype(type);
    EXPECT_TRUE(refuses(dst, [&] { return IP_ThresholdRange(src, dst, rangeBegin, rangeEnd, rangeZeroing); }));
    EXPECT_TRUE(refuses(dst, [&] { return IP_ThresholdRange_I(dst, rangeBegin, rangeEnd, rangeZeroing); }));
  }
}

namespace {

template <class S, class D>
void expectBothRefuse(const Image<S>& src, Image<D>& dst) {
  EXPECT_TRUE(refuses(dst, [&] { return IP_Threshold(src, dst, above, zeroing); }));
  EXPECT_TRUE(refuses(dst, [&] { return IP_ThresholdRange(src, dst, rangeBegin, rangeEnd, rangeZeroing); }));
}

}  // namespace

TEST(Threshold, RefusesImagesOfDifferentType) {
  const Image<int16_t> src(3, 2);
  Image<uint16_t> dst = markedForThreshold<uint16_t>(3, 2);
  expectBothRefuse(src, dst);
}

TEST(Threshold, RefusesImagesOfDifferentWidth) {
  const Image<uint16_t> src(4, 2);
  Image<uint16_t> dst = markedForThreshold<uint16_t>(3, 2);
  expectBothRefuse(src, dst);
}

TEST(Threshold, RefusesImagesOfDifferentHeight) {
  const Image<uint16_t> src(3, 3);
  Image<uint16_t> dst = markedForThreshold<uint16_t>(3, 2);
  expectBothRefuse(src, dst);
}

TEST(Threshold, RefusesWidthAndHeightExchanged) {
  const Image<uint16_t> src(2, 3);
  Image<uint16_t> dst = markedForThreshold<uint16_t>(3, 2);
  expectBothRefuse(src, dst);
}

TEST(Threshold, RefusesANullSource) {
  Image<uint16_t> dst = markedForThreshold<uint16_t>(3, 2);
  EXPECT_TRUE(refuses(dst, [&] { return IP_Threshold(nullptr, dst, above, zeroing); }));
}

TEST(Threshold, RefusesANullDestination) {
  const Image<uint16_t> src(3, 2);
  EXPECT_EQ(IP_Threshold(src, nullptr, above, zeroing), 0u);
}

TEST(Threshold, RefusesANullImageInPlace) { EXPECT_EQ(IP_Threshold_I(nullptr, above, zeroing), 0u); }

TEST(ThresholdRange, RefusesANullSource) {
  Image<uint16_t> dst = markedForThreshold<uint16_t>(3, 2);
  EXPECT_TRUE(refuses(dst, [&] { return IP_ThresholdRange(nullptr, dst, rangeBegin, rangeEnd, rangeZeroing); }));
}

TEST(ThresholdRange, RefusesANullDestination) {
  const Image<uint16_t> src(3, 2);
  EXPECT_EQ(IP_ThresholdRange(src, nullptr, rangeBegin, rangeEnd, rangeZeroing), 0u);
}

TEST(ThresholdRange, RefusesANullImageInPlace) {
  EXPECT_EQ(IP_ThresholdRange_I(nullptr, rangeBegin, rangeEnd, rangeZeroing), 0u);
}

}  // namespace nadir::test
