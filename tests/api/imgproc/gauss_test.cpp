// Gaussian smoothing.
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

Image<uint16_t> marked(uint32_t width, uint32_t height) {
  return Image<uint16_t>(width, height, marks<uint16_t>(size_t{width} * height));
}

Pixels smoothed(uint32_t width, uint32_t height, const Pixels& pixels) {
  const Image<uint16_t> src(width, height, pixels);
  Image<uint16_t> dst = marked(width, height);
  EXPECT_EQ(IP_Gauss(src, dst, 0), 1u);
  return dst.pixels();
}

// Any pixels, pixels of the two extremes only, or the largest pixels with a few holes, so that sums become largest.
Pixels somePixels(lab::Random& random, size_t count) {
  Pixels pixels = anyPixels<uint16_t>(random, count);
  const uint32_t kind = random.below(3);
  for (uint16_t& v : pixels) {
    if (kind == 1) v = random.below(2) ? 0 : 65535;
    if (kind == 2 && random.below(8)) v = 65535;
  }
  return pixels;
}

// Every width around the borders and around vectors, every height in which the borders meet.
std::vector<Size> sizes() {
  std::vector<Size> all{{4, 100}, {127, 5}, {129, 4}, {257, 6}, {321, 7}};
  for (uint32_t width = 4; width <= 40; ++width)
    for (uint32_t height = 3; height <= 12; ++height) all.push_back({width, height});
  return all;
}

}  // namespace

// ---- the kernel ----

TEST(Gauss, ReturnsAConstantImageUnchanged) {
  for (uint32_t value : {0u, 1u, 127u, 128u, 255u, 256u, 32767u, 32768u, 65534u, 65535u}) {
    const Pixels pixels(9 * 7, static_cast<uint16_t>(value));
    EXPECT_EQ(smoothed(9, 7, pixels), pixels);
  }
}

TEST(Gauss, SpreadsABrightPixelIntoTheKernel) {
  Pixels pixels(11 * 11, 0), wanted = pixels;
  pixels[5 * 11 + 5] = 256;
  const uint32_t weights[] = {1, 4, 6, 4, 1};
  for (size_t y = 0; y < 5; ++y)
    for (size_t x = 0; x < 5; ++x) wanted[(3 + y) * 11 + 3 + x] = static_cast<uint16_t>(weights[y] * weights[x]);
  EXPECT_EQ(smoothed(11, 11, pixels), wanted);
}

TEST(Gauss, RoundsTheWholeSumOnceHalvesUp) {
  Pixels pixels(11 * 11, 0);
  pixels[5 * 11 + 5] = 128;
  EXPECT_EQ(smoothed(11, 11, pixels)[3 * 11 + 3], 1);
  pixels[5 * 11 + 5] = 127;
  EXPECT_EQ(smoothed(11, 11, pixels)[3 * 11 + 3], 0);
}

// One bright pixel at each place in turn: every weight of every border.
TEST(Gauss, GivesEachPixelItsWeightAtEveryPlace) {
  for (const Size size : {Size{4, 3}, Size{4, 4}, Size{5, 5}, Size{6, 3}, Size{9, 7}}) {
    for (size_t at = 0; at < size.width * size.height; ++at) {
      SCOPED_TRACE(testing::Message() << size.width << " x " << size.height << ", pixel " << at);
      Picture16 picture{size.width, size.height, Pixels(size.width * size.height, 0)};
      picture.pixels[at] = 256;
      EXPECT_TRUE(
          samePixels(model::gauss(picture).pixels, smoothed(size.width, size.height, picture.pixels), size.width));
    }
  }
}

// ---- borders ----

namespace {

// Rows that are all the same leave the horizontal pass alone: 16 times a sum, rounded.
Pixels smoothedRow(const Pixels& row) {
  const uint32_t width = static_cast<uint32_t>(row.size());
  Pixels pixels;
  for (int y = 0; y < 5; ++y) pixels.insert(pixels.end(), row.begin(), row.end());
  const Pixels all = smoothed(width, 5, pixels);
  const Pixels first(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(width));
  for (size_t y = 1; y < 5; ++y)
    for (size_t x = 0; x < width; ++x) EXPECT_EQ(all[y * width + x], first[x]) << x << ", " << y;
  return first;
}

Pixels smoothedColumn(const Pixels& column) {
  const uint32_t height = static_cast<uint32_t>(column.size());
  Pixels pixels;
  for (uint16_t v : column) pixels.insert(pixels.end(), 6, v);
  const Pixels all = smoothed(6, height, pixels);
  Pixels first;
  for (size_t y = 0; y < height; ++y) first.push_back(all[y * 6]);
  return first;
}

}  // namespace

TEST(Gauss, AddsTheWeightsBeyondTheLeftBorderToTheFirstColumn) {
  EXPECT_EQ(smoothedRow({1600, 0, 0, 0, 0, 0, 0, 0}), (Pixels{1100, 500, 100, 0, 0, 0, 0, 0}));
}

TEST(Gauss, ExchangesTheLastTwoColumns) {
  EXPECT_EQ(smoothedRow({0, 0, 0, 0, 0, 0, 0, 1600}), (Pixels{0, 0, 0, 0, 0, 100, 1100, 500}));
  EXPECT_EQ(smoothedRow({0, 0, 0, 0, 0, 0, 1600, 0}), (Pixels{0, 0, 0, 0, 100, 400, 400, 600}));
}

TEST(Gauss, ExchangesTheLastTwoOfFourColumns) {
  EXPECT_EQ(smoothedRow({1600, 0, 0, 0}), (Pixels{1100, 500, 0, 100}));
  EXPECT_EQ(smoothedRow({0, 1600, 0, 0}), (Pixels{400, 600, 100, 400}));
  EXPECT_EQ(smoothedRow({0, 0, 1600, 0}), (Pixels{100, 400, 400, 600}));
  EXPECT_EQ(smoothedRow({0, 0, 0, 1600}), (Pixels{0, 100, 1100, 500}));
}

TEST(Gauss, ReplicatesTheFirstAndTheLastRowWithoutAnExchange) {
  EXPECT_EQ(smoothedColumn({1600, 0, 0, 0, 0, 0}), (Pixels{1100, 500, 100, 0, 0, 0}));
  EXPECT_EQ(smoothedColumn({0, 0, 0, 0, 0, 1600}), (Pixels{0, 0, 0, 100, 500, 1100}));
  EXPECT_EQ(smoothedColumn({0, 0, 0, 0, 1600, 0}), (Pixels{0, 0, 100, 400, 600, 400}));
}

TEST(Gauss, ReplicatesBothRowsAroundTheMiddleOfThree) {
  EXPECT_EQ(smoothedColumn({1600, 0, 0}), (Pixels{1100, 500, 100}));
  EXPECT_EQ(smoothedColumn({0, 1600, 0}), (Pixels{400, 600, 400}));
  EXPECT_EQ(smoothedColumn({0, 0, 1600}), (Pixels{100, 500, 1100}));
}

// ---- every size ----

TEST(Gauss, IsExactForEverySizeAndInPlace) {
  forEachSize(sizes(), [](Size size, Guard side, lab::Random& random) {
    const Picture16 picture{size.width, size.height, somePixels(random, size.width * size.height)};
    const Pixels wanted = model::gauss(picture).pixels;
    const Image<uint16_t> src(size.width, size.height, picture.pixels, side);
    Image<uint16_t> dst(size.width, size.height, marks<uint16_t>(wanted.size()), side);
    EXPECT_EQ(IP_Gauss(src, dst, 0), 1u);
    EXPECT_TRUE(holds(dst, wanted));
    EXPECT_TRUE(holds(src, picture.pixels));
    dst.fill(picture.pixels);
    EXPECT_EQ(IP_Gauss(dst, dst, 0), 1u);
    EXPECT_TRUE(holds(dst, wanted)) << "in place";
  });
}

TEST(Gauss, IsExactForTheWidestAndTheHighestImages) {
  for (const Size size : {Size{65535, 3}, Size{4, 65535}, Size{640, 100}}) {
    SCOPED_TRACE(testing::Message() << size.width << " x " << size.height);
    lab::Random random(size.width);
    const Picture16 picture{size.width, size.height, somePixels(random, size_t{size.width} * size.height)};
    EXPECT_TRUE(
        samePixels(model::gauss(picture).pixels, smoothed(size.width, size.height, picture.pixels), size.width));
  }
}

TEST(Gauss, MayWorkInPlaceThroughTwoDescriptors) {
  lab::Random random(5);
  const Picture16 picture{13, 6, somePixels(random, 13 * 6)};
  Image<uint16_t> image(13, 6, picture.pixels);
  Img second = image.img;
  EXPECT_EQ(IP_Gauss(image, &second, 0), 1u);
  EXPECT_TRUE(holds(image, model::gauss(picture).pixels));
}

// The images share memory, the result lying some pixels before or behind the source.
TEST(Gauss, SmoothsIntoAnImageThatOverlapsTheSource) {
  for (uint32_t shift : {1u, 7u, 9u, 10u, 27u, 40u, 60u}) {
    for (bool behind : {false, true}) {
      SCOPED_TRACE(testing::Message() << shift << " pixels " << (behind ? "behind" : "before"));
      lab::Random random(shift);
      const Picture16 picture{9, 7, somePixels(random, 9 * 7)};
      const Guarded<uint16_t> memory(9 * 7 + shift);
      uint16_t* const from = memory.data() + (behind ? 0 : shift);
      uint16_t* const to = memory.data() + (behind ? shift : 0);
      std::copy(picture.pixels.begin(), picture.pixels.end(), from);
      Img src, dst;
      Img_Init(&src, 9, 7, IMG_TYPE_U16, from);
      Img_Init(&dst, 9, 7, IMG_TYPE_U16, to);
      EXPECT_EQ(IP_Gauss(&src, &dst, 0), 1u);
      EXPECT_TRUE(samePixels(model::gauss(picture).pixels, Pixels(to, to + 9 * 7), 9));
    }
  }
}

TEST(Gauss, LeavesTheDescriptorsAlone) {
  const Image<uint16_t> src(5, 4);
  Image<uint16_t> dst(5, 4);
  const Img srcBefore = src.img, dstBefore = dst.img;
  EXPECT_EQ(IP_Gauss(src, dst, 0), 1u);
  EXPECT_TRUE(sameDescriptor(src.img, srcBefore));
  EXPECT_TRUE(sameDescriptor(dst.img, dstBefore));
}

// Pixels two bytes apart in rows of eight: the second half of each row belongs to no image.
TEST(Gauss, WalksEachImageWithItsOwnRowStride) {
  const Pixels dense{9, 2, 300, 4, 5, 6000, 7, 8, 9, 10, 65535, 12};
  Pixels apart;
  for (size_t y = 0; y < 3; ++y) {
    apart.insert(apart.end(), &dense[y * 4], &dense[y * 4] + 4);
    apart.insert(apart.end(), 4, 0x7777);
  }
  const Pixels wanted = model::gauss({4, 3, dense}).pixels;
  Image<uint16_t> src(8, 3, apart), dst(8, 3, Pixels(24, 0x7777)), plain(4, 3);
  for (Image<uint16_t>* image : {&src, &dst}) {
    image->img.width = 4;
    image->img.bytesPerPixel = 4;
  }
  EXPECT_EQ(IP_Gauss(src, plain, 0), 1u);
  EXPECT_EQ(plain.pixels(), wanted);
  plain.fill(dense);
  EXPECT_EQ(IP_Gauss(plain, dst, 0), 1u);
  for (size_t y = 0; y < 3; ++y)
    for (size_t x = 0; x < 8; ++x) EXPECT_EQ(dst.data()[y * 8 + x], x < 4 ? wanted[y * 4 + x] : 0x7777) << x << y;
}

// ---- refused ----

namespace {

template <class S, class D>
void expectRefused(const Image<S>& src, Image<D>& dst, uint32_t kernel = 0) {
  EXPECT_TRUE(refuses(dst, [&] { return IP_Gauss(src, dst, kernel); }));
}

}  // namespace

TEST(Gauss, RefusesEveryKernelBut0) {
  const Image<uint16_t> src(6, 5);
  Image<uint16_t> dst = marked(6, 5);
  for (uint32_t kernel : {1u, 2u, 255u, 256u, 0x10000u, 0x80000000u, 0xFFFFFFFFu}) {
    SCOPED_TRACE(kernel);
    expectRefused(src, dst, kernel);
  }
}

TEST(Gauss, RefusesEveryOtherType) {
  for (uint32_t type : typesOtherThan({IMG_TYPE_U16})) {
    SCOPED_TRACE(type);
    Image<uint32_t> src(6, 5), dst(6, 5, marks<uint32_t>(30));
    src.retype(type);
    dst.retype(type);
    expectRefused(src, dst);
  }
}

TEST(Gauss, RefusesImagesOfDifferentType) {
  for (uint32_t type : typesOtherThan({IMG_TYPE_U16})) {
    SCOPED_TRACE(type);
    Image<uint32_t> other(6, 5, marks<uint32_t>(30));
    other.retype(type);
    Image<uint16_t> image = marked(6, 5);
    expectRefused(other, image);
    expectRefused(image, other);
  }
}

TEST(Gauss, RefusesImagesOfDifferentSize) {
  const Image<uint16_t> src(6, 5);
  for (const Size size : {Size{7, 5}, Size{5, 5}, Size{6, 6}, Size{6, 4}, Size{5, 6}, Size{30, 1}}) {
    SCOPED_TRACE(testing::Message() << size.width << " x " << size.height);
    Image<uint16_t> dst = marked(size.width, size.height);
    expectRefused(src, dst);
  }
}

TEST(Gauss, RefusesFewerThanFourColumnsOrThreeRows) {
  std::vector<Size> tooSmall{{100, 2}, {100, 0}, {3, 100}, {0, 100}};
  for (uint32_t width = 0; width < 8; ++width)
    for (uint32_t height = 0; height < 6; ++height)
      if (width < 4 || height < 3) tooSmall.push_back({width, height});
  for (const Size size : tooSmall) {
    SCOPED_TRACE(testing::Message() << size.width << " x " << size.height);
    const Image<uint16_t> src(size.width, size.height);
    Image<uint16_t> dst = marked(size.width, size.height);
    expectRefused(src, dst);
  }
}

TEST(Gauss, RefusesANullSource) {
  Image<uint16_t> dst = marked(6, 5);
  EXPECT_TRUE(refuses(dst, [&] { return IP_Gauss(nullptr, dst, 0); }));
}

TEST(Gauss, RefusesANullDestination) {
  const Image<uint16_t> src = marked(6, 5);
  EXPECT_TRUE(refuses(src, [&] { return IP_Gauss(src, nullptr, 0); }));
}

}  // namespace nadir::test
