// Holes filled from their surroundings.
#include <gtest/gtest.h>
#include <nadir/imgproc.h>

#include <algorithm>
#include <vector>

#include "tests/models/smoothing.hpp"
#include "tests/support/images.hpp"

namespace nadir::test {
namespace {

using Pixels = std::vector<uint16_t>;
using model::Picture16;

Image<uint16_t> markedPicture(uint32_t width, uint32_t height) {
  return Image<uint16_t>(width, height, marks<uint16_t>(size_t{width} * height));
}

Pixels filled(uint32_t width, uint32_t height, const Pixels& pixels) {
  const Image<uint16_t> src(width, height, pixels);
  Image<uint16_t> dst = markedPicture(width, height);
  EXPECT_EQ(IP_PullPush(src, dst), 1);
  return dst.pixels();
}

// Holes are single or in columns, from none to nearly everywhere; now and then the values are few or only the largest.
Pixels holeyPixels(lab::Random& random, uint32_t width, uint32_t height) {
  const uint32_t density = random.below(9), largest = random.below(4), block = 1 + random.below(4);
  Pixels pixels = anyPixels<uint16_t>(random, size_t{width} * height);
  std::vector<bool> holes(width / block + 1);
  for (size_t i = 0; i < pixels.size(); ++i) {
    if (i % width == 0)
      for (size_t b = 0; b < holes.size(); ++b) holes[b] = random.below(8) < density;
    if (largest == 0) pixels[i] = 65535;
    if (largest == 1) pixels[i] = static_cast<uint16_t>(1 + random.below(3));
    if (holes[i % width / block]) pixels[i] = 0;
  }
  return pixels;
}

std::vector<Size> filledSizes() {
  std::vector<Size> all{{2, 200}, {200, 2}, {3, 127}, {127, 3}, {64, 64}, {65, 63}, {63, 65}, {100, 31}};
  for (uint32_t width = 2; width <= 40; ++width)
    for (uint32_t height = 2; height <= 12; ++height) all.push_back({width, height});
  return all;
}

}  // namespace

// ---- single holes ----

TEST(PullPush, FillsAHoleWithTheRoundedMeanOfItsBlock) {
  Pixels pixels{10, 20, 1, 1, 30, 0, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1}, wanted = pixels;
  wanted[5] = 20;
  EXPECT_EQ(filled(4, 4, pixels), wanted);
}

TEST(PullPush, FillsTheHolesOfTwoByTwo) {
  EXPECT_EQ(filled(2, 2, {0, 7, 0, 0}), (Pixels{7, 7, 7, 7}));
  EXPECT_EQ(filled(2, 2, {4, 0, 0, 7}), (Pixels{4, 6, 6, 7}));         // (11 + 1) / 2
  EXPECT_EQ(filled(2, 2, {10, 20, 31, 0}), (Pixels{10, 20, 31, 20}));  // (61 + 1) / 3
  EXPECT_EQ(filled(2, 2, {10, 20, 32, 0}), (Pixels{10, 20, 32, 21}));  // (62 + 1) / 3
  EXPECT_EQ(filled(2, 2, {0, 65535, 65535, 65535}), Pixels(4, 65535));
  EXPECT_EQ(filled(2, 2, {1, 0, 0, 0}), (Pixels{1, 1, 1, 1}));
}

// Two levels: 4 of 9 and 11 make 10 in the coarse level, and its hole takes (10 + 10 + 10 + 1) / 3.
TEST(PullPush, FillsABlockOfHolesFromTheNextLevel) {
  const Pixels pixels{0, 0, 9, 11, 0, 0, 11, 9, 9, 11, 9, 11, 11, 9, 11, 9};
  Pixels wanted = pixels;
  wanted[0] = wanted[1] = wanted[4] = wanted[5] = 10;
  EXPECT_EQ(filled(4, 4, pixels), wanted);
}

// The last column and row of an odd size are filled, but fill nothing.
TEST(PullPush, LeavesAnOddLastColumnAndRowOutOfTheMeans) {
  EXPECT_EQ(filled(3, 2, {5, 0, 900, 0, 0, 0}), (Pixels{5, 5, 900, 5, 5, 5}));
  EXPECT_EQ(filled(2, 3, {5, 0, 0, 0, 900, 0}), (Pixels{5, 5, 5, 5, 900, 5}));
  EXPECT_EQ(filled(3, 3, {0, 0, 900, 0, 0, 900, 900, 900, 0}), (Pixels{0, 0, 900, 0, 0, 900, 900, 900, 0}));
}

TEST(PullPush, FillsTheLastColumnAndRowFromTheLastOfTheCoarseLevel) {
  const Pixels pixels{1, 1, 2, 2, 0, 1, 1, 2, 2, 0, 3, 3, 4, 4, 0, 3, 3, 4, 4, 0, 0, 0, 0, 0, 0};
  const Pixels wanted{1, 1, 2, 2, 2, 1, 1, 2, 2, 2, 3, 3, 4, 4, 4, 3, 3, 4, 4, 4, 3, 3, 4, 4, 4};
  EXPECT_EQ(filled(5, 5, pixels), wanted);
}

// A side of 1 ends the pyramid: here at 4 x 1, so that the distant pixel does not reach the holes.
TEST(PullPush, StopsWhereOneSideIs1) {
  EXPECT_EQ(filled(8, 2, {5, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}),
            (Pixels{5, 5, 0, 0, 0, 0, 0, 0, 5, 5, 0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(filled(2, 4, {0, 0, 0, 0, 5, 0, 0, 0}), (Pixels{0, 0, 0, 0, 5, 5, 5, 5}));
}

// ---- properties ----

TEST(PullPush, ReturnsAnImageWithoutHolesUnchanged) {
  forEachSize(filledSizes(), [](Size size, Guard side, lab::Random& random) {
    Pixels pixels = anyPixels<uint16_t>(random, size.width * size.height);
    std::replace(pixels.begin(), pixels.end(), uint16_t{0}, uint16_t{9});
    const Image<uint16_t> src(size.width, size.height, pixels, side);
    Image<uint16_t> dst(size.width, size.height, side);
    EXPECT_EQ(IP_PullPush(src, dst), 1);
    EXPECT_TRUE(holds(dst, pixels));
  });
}

TEST(PullPush, ReturnsAnImageOfHolesAsHoles) {
  for (const Size size : {Size{2, 2}, Size{3, 5}, Size{16, 16}, Size{33, 20}}) {
    const Pixels holes(size.width * size.height, 0);
    EXPECT_EQ(filled(size.width, size.height, holes), holes);
  }
}

TEST(PullPush, NeverChangesAPixelThatIsNoHole) {
  forEachSize(filledSizes(), [](Size size, Guard, lab::Random& random) {
    const Pixels pixels = holeyPixels(random, size.width, size.height);
    const Pixels result = filled(size.width, size.height, pixels);
    for (size_t i = 0; i < pixels.size(); ++i) {
      if (pixels[i] != 0) {
        EXPECT_EQ(result[i], pixels[i]) << i;
      }
    }
  });
}

TEST(PullPush, IsExactForEverySizeAndInPlace) {
  forEachSize(filledSizes(), [](Size size, Guard side, lab::Random& random) {
    const Picture16 picture{size.width, size.height, holeyPixels(random, size.width, size.height)};
    const Pixels wanted = model::pullPush(picture).pixels;
    const Image<uint16_t> src(size.width, size.height, picture.pixels, side);
    Image<uint16_t> dst(size.width, size.height, marks<uint16_t>(wanted.size()), side);
    EXPECT_EQ(IP_PullPush(src, dst), 1);
    EXPECT_TRUE(holds(dst, wanted));
    EXPECT_TRUE(holds(src, picture.pixels));
    dst.fill(picture.pixels);
    EXPECT_EQ(IP_PullPush(dst, dst), 1);
    EXPECT_TRUE(holds(dst, wanted)) << "in place";
  });
}

TEST(PullPush, IsExactForLongImages) {
  for (const Size size : {Size{65535, 2}, Size{2, 65535}, Size{65535, 9}, Size{640, 120}}) {
    SCOPED_TRACE(testing::Message() << size.width << " x " << size.height);
    lab::Random random(size.height);
    const Picture16 picture{size.width, size.height, holeyPixels(random, size.width, size.height)};
    EXPECT_TRUE(
        samePixels(model::pullPush(picture).pixels, filled(size.width, size.height, picture.pixels), size.width));
  }
}

TEST(PullPush, MayWorkInPlaceThroughTwoDescriptors) {
  lab::Random random(5);
  const Picture16 picture{13, 6, holeyPixels(random, 13, 6)};
  Image<uint16_t> image(13, 6, picture.pixels);
  Img second = image.img;
  EXPECT_EQ(IP_PullPush(image, &second), 1);
  EXPECT_TRUE(holds(image, model::pullPush(picture).pixels));
}

TEST(PullPush, LeavesTheDescriptorsAlone) {
  const Image<uint16_t> src(5, 4);
  Image<uint16_t> dst(5, 4);
  const Img srcBefore = src.img, dstBefore = dst.img;
  EXPECT_EQ(IP_PullPush(src, dst), 1);
  EXPECT_TRUE(sameDescriptor(src.img, srcBefore));
  EXPECT_TRUE(sameDescriptor(dst.img, dstBefore));
}

// ---- the number of levels ----

// One pixel must go through all eleven halvings to fill the rest.
TEST(PullPush, FillsAnImageWhoseSmallerSideIs4095) {
  Image<uint16_t> image(4095, 4095);
  image.data()[0] = 7;
  EXPECT_EQ(IP_PullPush(image, image), 1);
  EXPECT_EQ(std::count(image.data(), image.data() + image.size(), 7), 4095 * 4095);
}

// The calls work in place, so that it does not matter whether the source is copied before the call fails.
TEST(PullPush, RefusesAnImageWhoseSmallerSideIs4096) {
  Image<uint16_t> image(4096, 4096);
  image.data()[1] = 7;
  EXPECT_EQ(IP_PullPush(image, image), 0);
  EXPECT_EQ(image.data()[1], 7);
  EXPECT_EQ(std::count(image.data(), image.data() + image.size(), 0), 4096 * 4096 - 1);
}

// ---- refused ----

namespace {

template <class S, class D>
void expectRefusedFill(const Image<S>& src, Image<D>& dst) {
  EXPECT_TRUE(refuses(dst, [&] { return static_cast<uint32_t>(IP_PullPush(src, dst)); }));
}

}  // namespace

TEST(PullPush, RefusesASideOf1OrNone) {
  std::vector<Size> tooSmall{{1, 100}, {100, 1}, {0, 100}, {100, 0}, {1, 5000}, {5000, 1}};
  for (uint32_t width = 0; width < 5; ++width)
    for (uint32_t height = 0; height < 5; ++height)
      if (width < 2 || height < 2) tooSmall.push_back({width, height});
  for (const Size size : tooSmall) {
    SCOPED_TRACE(testing::Message() << size.width << " x " << size.height);
    const Image<uint16_t> src(size.width, size.height);
    Image<uint16_t> dst = markedPicture(size.width, size.height);
    expectRefusedFill(src, dst);
  }
}

TEST(PullPush, RefusesEveryOtherType) {
  for (uint32_t type : typesOtherThan({IMG_TYPE_U16})) {
    SCOPED_TRACE(type);
    Image<uint32_t> src(6, 5), dst(6, 5, marks<uint32_t>(30));
    src.retype(type);
    dst.retype(type);
    expectRefusedFill(src, dst);
  }
}

TEST(PullPush, RefusesImagesOfDifferentType) {
  for (uint32_t type : typesOtherThan({IMG_TYPE_U16})) {
    SCOPED_TRACE(type);
    Image<uint32_t> other(6, 5, marks<uint32_t>(30));
    other.retype(type);
    Image<uint16_t> image = markedPicture(6, 5);
    expectRefusedFill(other, image);
    expectRefusedFill(image, other);
  }
}

TEST(PullPush, RefusesImagesOfDifferentSize) {
  const Image<uint16_t> src(6, 5);
  for (const Size size : {Size{7, 5}, Size{5, 5}, Size{6, 6}, Size{6, 4}, Size{5, 6}, Size{15, 2}}) {
    SCOPED_TRACE(testing::Message() << size.width << " x " << size.height);
    Image<uint16_t> dst = markedPicture(size.width, size.height);
    expectRefusedFill(src, dst);
  }
}

TEST(PullPush, RefusesANullSource) {
  Image<uint16_t> dst = markedPicture(6, 5);
  EXPECT_TRUE(refuses(dst, [&] { return static_cast<uint32_t>(IP_PullPush(nullptr, dst)); }));
}

TEST(PullPush, RefusesANullDestination) {
  const Image<uint16_t> src = markedPicture(6, 5);
  EXPECT_TRUE(refuses(src, [&] { return static_cast<uint32_t>(IP_PullPush(src, nullptr)); }));
}

// ---- in memory of the caller's ----

TEST(PullPushInMemory, FillsAsTheAllocatingCallDoes) {
  lab::Random random(5);
  for (const Size size : filledSizes()) {
    const Pixels pixels = holeyPixels(random, size.width, size.height);
    const Image<uint16_t> src(size.width, size.height, pixels);
    Image<uint16_t> dst = markedPicture(size.width, size.height);
    const size_t bytes = nadir_pull_push_bytes(static_cast<uint16_t>(size.width), static_cast<uint16_t>(size.height));
    const Guarded<uint16_t> memory(Pixels(bytes / 2, 0xA7A7));
    EXPECT_EQ(nadir_pull_push(src, dst, memory.data(), bytes), 1);
    EXPECT_EQ(dst.pixels(), filled(size.width, size.height, pixels)) << size.width << " x " << size.height;
  }
}

TEST(PullPushInMemory, MemoryThatDoesNotServeIsRefusedWithNothingWritten) {
  const Image<uint16_t> src(20, 9, Pixels(180, 3));
  Image<uint16_t> dst = markedPicture(20, 9);
  const size_t bytes = nadir_pull_push_bytes(20, 9);
  Pixels memory(bytes / 2 + 1);
  EXPECT_EQ(nadir_pull_push(src, dst, memory.data(), bytes - 1), 0);
  EXPECT_EQ(nadir_pull_push(src, dst, reinterpret_cast<uint8_t*>(memory.data()) + 1, bytes), 0);
  EXPECT_EQ(nadir_pull_push(src, dst, nullptr, bytes), 0);
  EXPECT_EQ(dst.pixels(), marks<uint16_t>(180));
}

TEST(PullPushInMemory, WrongImagesAreRefusedWithNothingWritten) {
  const Image<uint16_t> src(20, 9, Pixels(180, 3));
  Image<uint16_t> dst = markedPicture(20, 9), narrower = markedPicture(19, 9);
  const size_t bytes = nadir_pull_push_bytes(20, 9);
  Pixels memory(bytes / 2);
  EXPECT_EQ(nadir_pull_push(nullptr, dst, memory.data(), bytes), 0);
  EXPECT_EQ(nadir_pull_push(src, nullptr, memory.data(), bytes), 0);
  EXPECT_EQ(nadir_pull_push(src, narrower, memory.data(), bytes), 0);
  EXPECT_EQ(dst.pixels(), marks<uint16_t>(180));
  EXPECT_EQ(narrower.pixels(), marks<uint16_t>(171));
}

TEST(PullPushInMemory, SizesThatAreRefusedTakeNoMemory) {
  EXPECT_EQ(nadir_pull_push_bytes(1, 9), 0u);
  EXPECT_EQ(nadir_pull_push_bytes(9, 1), 0u);
  EXPECT_EQ(nadir_pull_push_bytes(0, 9), 0u);
  EXPECT_EQ(nadir_pull_push_bytes(9, 0), 0u);
  EXPECT_EQ(nadir_pull_push_bytes(4096, 4096), 0u);
  EXPECT_GT(nadir_pull_push_bytes(4095, 65535), 0u);
}

}  // namespace nadir::test
