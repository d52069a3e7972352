// Small components removed.
#include <gtest/gtest.h>
#include <nadir/segment.h>

#include <string>
#include <vector>

#include "tests/models/segments.hpp"
#include "tests/support/pictures.hpp"
#include "tests/support/rounds.hpp"
#include "tests/support/same.hpp"

namespace nadir::test {
namespace {

using model::Picture;

template <class T>
using Pixels = std::vector<T>;

template <class T>
Pixels<T> filtered(const Picture<T>& picture, uint32_t minSize, Guard side = Guard::behind) {
  const auto src = imageOf(picture, side);
  auto dst = imageOf(Picture<T>{picture.width, picture.height, marks<T>(picture.pixels.size())}, side);
  EXPECT_EQ(IP_ContourFilter(src, dst, minSize), 1);
  EXPECT_EQ(src.pixels(), picture.pixels) << "wrote into its source";
  return dst.pixels();
}

template <class T>
Pixels<T> filteredInPlace(const Picture<T>& picture, uint32_t minSize, Guard side = Guard::behind) {
  auto img = imageOf(picture, side);
  EXPECT_EQ(IP_ContourFilter_I(img, minSize), 1);
  return img.pixels();
}

template <class T>
void expectModel(const Picture<T>& picture, uint32_t minSize, Guard side = Guard::behind) {
  const Pixels<T> want = model::withoutSmall(picture, minSize);
  EXPECT_TRUE(same(want, filtered(picture, minSize, side)));
  EXPECT_TRUE(same(want, filteredInPlace(picture, minSize, side)));
  if (::testing::Test::HasFailure()) ADD_FAILURE() << "minSize " << minSize << ", " << text(picture);
}

Pixels<uint16_t> filtered(const std::vector<std::string>& rows, uint32_t minSize) {
  return filtered(drawn(rows), minSize);
}

Pixels<uint16_t> pixels(const std::vector<std::string>& rows) { return drawn(rows).pixels; }

using Rows = std::vector<std::string>;

}  // namespace

// ---- what stays ----

TEST(ContourFilter, RemovesComponentsSmallerThanTheSize) {
  EXPECT_EQ(filtered({"#..##.", "......", ".##...", ".#....", "......"}, 3),
            pixels({"......", "......", ".##...", ".#....", "......"}));
}

TEST(ContourFilter, KeepsComponentsOfExactlyTheSize) {
  const Rows rows{"##....", "...##.", "...#.."};
  EXPECT_EQ(filtered(rows, 2), pixels(rows));
  EXPECT_EQ(filtered(rows, 3), pixels({"......", "...##.", "...#.."}));
  EXPECT_EQ(filtered(rows, 4), pixels({"......", "......", "......"}));
}

TEST(ContourFilter, CountsPixelsThatTouchAtCorners) {
  const Rows rows{"#...", ".#..", "#..."};
  EXPECT_EQ(filtered(rows, 3), pixels(rows));
}

TEST(ContourFilter, CopiesEverythingForSizes0And1) {
  for (const uint32_t minSize : {0u, 1u}) {
    const auto u16 = row<uint16_t>({1, 0, 0xFFFF, 0, 3});
    const auto s16 = row<int16_t>({-1, 0, -32768, 5, 0});
    EXPECT_EQ(filtered(u16, minSize), u16.pixels);
    EXPECT_EQ(filtered(s16, minSize), s16.pixels);
  }
}

TEST(ContourFilter, RemovesAnIsolatedPixelAndKeepsAllOthers) {
  EXPECT_EQ(filtered(Picture<uint16_t>{4, 3, {0, 7, 0, 0, 0, 0, 0, 0, 6, 5, 4, 0}}, 2),
            (Pixels<uint16_t>{0, 0, 0, 0, 0, 0, 0, 0, 6, 5, 4, 0}));
}

TEST(ContourFilter, ComparesTheSizeAsUnsigned) {
  for (const uint32_t minSize : {0x80000000u, 0xFFFFFFFFu, 0x10001u}) {
    EXPECT_EQ(filtered(row<uint16_t>({1, 1, 0, 0}), minSize), Pixels<uint16_t>(4, 0)) << minSize;
  }
}

// ---- what has no label ----

TEST(ContourFilter, JudgesRunsThatReachTheLastColumnByTheSizeOfTheBackground) {
  // Four pixels without a label: two holes and the run of two at the border.
  const Picture<uint16_t> picture = drawn({"##..##"});
  EXPECT_EQ(filtered(picture, 4), (Pixels<uint16_t>{0, 0, 0, 0, 9, 9}));
  EXPECT_EQ(filtered(picture, 5), Pixels<uint16_t>(6, 0));
}

TEST(ContourFilter, JudgesNegativePixelsByTheSizeOfTheBackground) {
  const Picture<int16_t> picture = row<int16_t>({-5, 7, 7, 7, 0, -1});
  EXPECT_EQ(filtered(picture, 3), picture.pixels);
  EXPECT_EQ(filtered(picture, 4), Pixels<int16_t>(6, 0));
  EXPECT_EQ(filtered(row<int16_t>({-5, 7, 7, 7, 7, 0, -1}), 4), (Pixels<int16_t>{0, 7, 7, 7, 7, 0, 0}));
}

TEST(ContourFilter, TakesLargeU16ForForeground) {
  EXPECT_EQ(filtered(row<uint16_t>({0x8000, 0xFFFF, 0, 0x8000, 0}), 2), (Pixels<uint16_t>{0x8000, 0xFFFF, 0, 0, 0}));
}

// ---- refused images ----

TEST(ContourFilterRefuses, NullImages) {
  Image<uint16_t> img(4, 4, marks<uint16_t>(16));
  EXPECT_TRUE(refuses(img, [&] { return static_cast<uint32_t>(IP_ContourFilter(nullptr, img, 2)); }));
  EXPECT_TRUE(refuses(img, [&] { return static_cast<uint32_t>(IP_ContourFilter(img, nullptr, 2)); }));
  EXPECT_EQ(IP_ContourFilter(nullptr, nullptr, 2), 0);
  EXPECT_EQ(IP_ContourFilter_I(nullptr, 2), 0);
}

TEST(ContourFilterRefuses, ImagesOfDifferentSizes) {
  const Image<uint16_t> src(4, 3);
  for (const Extent size : {Extent{3, 3}, Extent{4, 2}, Extent{4, 4}, Extent{5, 3}, Extent{3, 4}, Extent{12, 1}}) {
    Image<uint16_t> dst(size.width, size.height, marks<uint16_t>(size_t{size.width} * size.height));
    EXPECT_TRUE(refuses(dst, [&] { return static_cast<uint32_t>(IP_ContourFilter(src, dst, 2)); }));
  }
}

TEST(ContourFilterRefuses, ImagesOfDifferentTypes) {
  const Image<uint16_t> u16(4, 3);
  const Image<int16_t> s16(4, 3);
  Image<uint16_t> dstU16(4, 3, marks<uint16_t>(12));
  Image<int16_t> dstS16(4, 3, marks<int16_t>(12));
  EXPECT_TRUE(refuses(dstU16, [&] { return static_cast<uint32_t>(IP_ContourFilter(s16, dstU16, 2)); }));
  EXPECT_TRUE(refuses(dstS16, [&] { return static_cast<uint32_t>(IP_ContourFilter(u16, dstS16, 2)); }));
}

TEST(ContourFilterRefuses, OtherTypes) {
  Image<uint32_t> src(4, 3), dst(4, 3, marks<uint32_t>(12));
  for (const uint32_t type : typesOtherThan({IMG_TYPE_U16, IMG_TYPE_S16})) {
    src.retype(type);
    dst.retype(type);
    EXPECT_TRUE(refuses(dst, [&] { return static_cast<uint32_t>(IP_ContourFilter(src, dst, 2)); })) << type;
    EXPECT_TRUE(refuses(dst, [&] { return static_cast<uint32_t>(IP_ContourFilter_I(dst, 2)); })) << type;
  }
}

TEST(ContourFilterRefuses, SizesOutside1To128) {
  for (const Extent size :
       {Extent{129, 1}, Extent{1, 129}, Extent{129, 129}, Extent{0, 3}, Extent{3, 0}, Extent{0, 0}}) {
    const Image<uint16_t> src(size.width, size.height);
    Image<uint16_t> dst(size.width, size.height, marks<uint16_t>(size_t{size.width} * size.height));
    for (const uint32_t minSize : {0u, 2u}) {
      EXPECT_TRUE(refuses(dst, [&] { return static_cast<uint32_t>(IP_ContourFilter(src, dst, minSize)); }));
      EXPECT_TRUE(refuses(dst, [&] { return static_cast<uint32_t>(IP_ContourFilter_I(dst, minSize)); }));
    }
  }
}

// ---- against the model ----

namespace {

uint32_t anySizeFor(lab::Random& random, const Extent& extent) {
  return random.below(3) ? random.below(8) : random.below(2 * extent.width * extent.height);
}

}  // namespace

TEST(ContourFilterModel, AgreesOnEveryImageOf4By3Pixels) {
  forEachCode(1u << 12, [&](uint32_t bits) {
    for (const uint32_t minSize : {2u, 4u, 8u}) expectModel(ofBits(4, 3, bits), minSize);
  });
}

TEST(ContourFilterModel, AgreesOnU16ShapesOfEveryKind) {
  inRounds(3000, [](lab::Random& random) {
    const Extent size = anyExtent(random, 128);
    expectModel(valued<uint16_t>(random, anyShape(random, size.width, size.height), 0), anySizeFor(random, size),
                anySide(random));
  });
}

TEST(ContourFilterModel, AgreesOnS16ShapesOfEveryKind) {
  inRounds(3000, [](lab::Random& random) {
    const Extent size = anyExtent(random, 128);
    expectModel(valued<int16_t>(random, anyShape(random, size.width, size.height), 0), anySizeFor(random, size),
                anySide(random));
  });
}

TEST(ContourFilterModel, AgreesOnFullSizeShapes) {
  inRounds(20, [](lab::Random& random) {
    expectModel(valued<uint16_t>(random, anyShape(random, 128, 128), 0), random.below(3000), anySide(random));
  });
}

TEST(ContourFilterLimits, HoldsAsManyComponentsAsThereCanBe) {
  Picture<uint16_t> dust = constant<uint16_t>(128, 128, 0);
  for (uint32_t y = 0; y < 128; y += 2) {
    for (uint32_t x = 0; x < 128; x += 2) dust.at(x, y) = 1;
  }
  expectModel(dust, 1);
  expectModel(dust, 2);
  dust.at(1, 1) = 1;  // joins four of them
  expectModel(dust, 2);
  expectModel(dust, 128 * 128);
}

}  // namespace nadir::test
