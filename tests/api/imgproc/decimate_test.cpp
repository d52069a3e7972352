// Halving a picture of 640 x 480 pixels.
#include <gtest/gtest.h>
#include <nadir/imgproc.h>

#include <algorithm>
#include <vector>

#include "tests/support/images.hpp"

namespace nadir::test {
namespace {

using Pixels = std::vector<uint16_t>;
constexpr size_t vgaPixelCount = 640 * 480, qvgaPixelCount = 320 * 240;

Pixels vgaPixels(uint64_t seed) {
  lab::Random random(seed);
  return anyPixels<uint16_t>(random, vgaPixelCount);
}

Pixels everySecond(const Pixels& vga) {
  Pixels qvga;
  for (size_t y = 0; y < 480; y += 2)
    for (size_t x = 0; x < 640; x += 2) qvga.push_back(vga[y * 640 + x]);
  return qvga;
}

Image<uint16_t> markedQvga() { return Image<uint16_t>(320, 240, marks<uint16_t>(qvgaPixelCount)); }

}  // namespace

TEST(ScaleVga2Qvga, KeepsTheTopLeftPixelOfEveryBlock) {
  for (const Guard side : {Guard::behind, Guard::before}) {
    const Pixels pixels = vgaPixels(1);
    const Image<uint16_t> src(640, 480, pixels, side);
    Image<uint16_t> dst(320, 240, side);
    EXPECT_EQ(IP_ScaleVga2Qvga(src, dst), 1u);
    EXPECT_EQ(dst.at(0, 0), pixels[0]);
    EXPECT_EQ(dst.at(1, 0), pixels[2]);
    EXPECT_EQ(dst.at(0, 1), pixels[2 * 640]);
    EXPECT_TRUE(holds(dst, everySecond(pixels)));
    EXPECT_TRUE(holds(src, pixels));
  }
}

TEST(ScaleVga2Qvga, LeavesTheDescriptorsAlone) {
  const Image<uint16_t> src(640, 480);
  Image<uint16_t> dst(320, 240);
  const Img srcBefore = src.img, dstBefore = dst.img;
  EXPECT_EQ(IP_ScaleVga2Qvga(src, dst), 1u);
  EXPECT_TRUE(sameDescriptor(src.img, srcBefore));
  EXPECT_TRUE(sameDescriptor(dst.img, dstBefore));
}

// Only the bit of U16 counts; the other bits of a type do not matter.
TEST(ScaleVga2Qvga, AcceptsEveryTypeCodeWithTheBitOfU16) {
  const Pixels pixels = vgaPixels(3), wanted = everySecond(pixels);
  Image<uint16_t> src(640, 480, pixels);
  for (uint32_t type : {4u, 5u, 6u, 12u, 68u, 127u, 260u, 0x80000004u, 0xFFFFFFFFu}) {
    SCOPED_TRACE(type);
    Image<uint16_t> dst = markedQvga();
    src.img.type = type;
    EXPECT_EQ(IP_ScaleVga2Qvga(src, dst), 1u);
    EXPECT_TRUE(holds(dst, wanted));
    dst.fill(marks<uint16_t>(qvgaPixelCount));
    src.img.type = IMG_TYPE_U16;
    dst.img.type = type;
    EXPECT_EQ(IP_ScaleVga2Qvga(src, dst), 1u);
    EXPECT_TRUE(holds(dst, wanted));
  }
}

// A descriptor that Img_Init made for a code of several bits says that a pixel has no bytes.
TEST(ScaleVga2Qvga, TakesDescriptorsOfSeveralTypesAsImgInitMakesThem) {
  const Pixels pixels = vgaPixels(5);
  Image<uint16_t> src(640, 480, pixels), dst = markedQvga();
  Img_Init(src, 640, 480, IMG_TYPE_U16 | IMG_TYPE_S16, src.data());
  Img_Init(dst, 320, 240, IMG_TYPE_U16 | IMG_TYPE_U8, dst.data());
  EXPECT_EQ(IP_ScaleVga2Qvga(src, dst), 1u);
  EXPECT_TRUE(holds(dst, everySecond(pixels)));
}

TEST(ScaleVga2Qvga, WalksEachImageWithItsOwnRowStride) {
  const Pixels pixels = vgaPixels(6), wanted = everySecond(pixels);
  Image<uint16_t> src(1280, 480), dense(640, 480, pixels), dst(640, 240), denseDst = markedQvga();
  for (Image<uint16_t>* image : {&src, &dst}) {
    image->img.width = static_cast<uint16_t>(image->img.width / 2);
    image->img.bytesPerPixel = 4;
  }
  for (size_t y = 0; y < 480; ++y) std::copy_n(&pixels[y * 640], 640, src.data() + y * 1280);
  EXPECT_EQ(IP_ScaleVga2Qvga(src, denseDst), 1u);
  EXPECT_TRUE(holds(denseDst, wanted));
  EXPECT_EQ(IP_ScaleVga2Qvga(dense, dst), 1u);
  for (size_t y = 0; y < 240; ++y) {
    const uint16_t* row = dst.data() + y * 640;
    ASSERT_TRUE(std::equal(row, row + 320, &wanted[y * 320])) << y;
    ASSERT_EQ(std::count(row + 320, row + 640, 0), 320) << y;
  }
}

// ---- refused ----

TEST(ScaleVga2Qvga, RefusesEveryTypeCodeWithoutTheBitOfU16) {
  Image<uint16_t> src(640, 480), dst = markedQvga();
  for (uint32_t type : {0u, 1u, 2u, 3u, 8u, 16u, 32u, 64u, 123u, 128u, 0x80000000u, 0xFFFFFFFBu}) {
    SCOPED_TRACE(type);
    src.img.type = type;
    EXPECT_TRUE(refuses(dst, [&] { return IP_ScaleVga2Qvga(src, dst); }));
    src.img.type = IMG_TYPE_U16;
    dst.img.type = type;
    EXPECT_TRUE(refuses(dst, [&] { return IP_ScaleVga2Qvga(src, dst); }));
    dst.img.type = IMG_TYPE_U16;
  }
}

TEST(ScaleVga2Qvga, RefusesEveryOtherSizeOfTheSource) {
  Image<uint16_t> src(641, 481), dst = markedQvga();
  for (const Size size : {Size{640, 479}, Size{640, 481}, Size{639, 480}, Size{641, 480}, Size{480, 640},
                          Size{320, 240}, Size{640, 0}, Size{0, 480}, Size{0, 0}}) {
    SCOPED_TRACE(testing::Message() << size.width << " x " << size.height);
    src.img.width = static_cast<uint16_t>(size.width);
    src.img.height = static_cast<uint16_t>(size.height);
    EXPECT_TRUE(refuses(dst, [&] { return IP_ScaleVga2Qvga(src, dst); }));
  }
}

TEST(ScaleVga2Qvga, RefusesEveryOtherSizeOfTheDestination) {
  const Image<uint16_t> src(640, 480);
  for (const Size size : {Size{320, 239}, Size{320, 241}, Size{319, 240}, Size{321, 240}, Size{240, 320},
                          Size{640, 480}, Size{320, 0}, Size{0, 240}}) {
    SCOPED_TRACE(testing::Message() << size.width << " x " << size.height);
    Image<uint16_t> dst(size.width, size.height, marks<uint16_t>(size_t{size.width} * size.height));
    EXPECT_TRUE(refuses(dst, [&] { return IP_ScaleVga2Qvga(src, dst); }));
  }
}

TEST(ScaleVga2Qvga, RefusesNullPointers) {
  const Image<uint16_t> src(640, 480, vgaPixels(4));
  Image<uint16_t> dst = markedQvga();
  EXPECT_TRUE(refuses(dst, [&] { return IP_ScaleVga2Qvga(nullptr, dst); }));
  EXPECT_TRUE(refuses(src, [&] { return IP_ScaleVga2Qvga(src, nullptr); }));
}

}  // namespace nadir::test
