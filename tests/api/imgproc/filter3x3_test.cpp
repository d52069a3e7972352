// Median, maximum and morphology over 3 x 3 pixels.
#include <gtest/gtest.h>
#include <nadir/imgproc.h>

#include <algorithm>
#include <vector>

#include "tests/models/image_ops.hpp"
#include "tests/support/images.hpp"

namespace nadir::test {
namespace {

const std::vector<int32_t> morphOps{MORPH_ERODE, MORPH_DILATE, MORPH_OPEN, MORPH_CLOSE, MORPH_CLEAN};

template <class T>
using PixelsOf = std::vector<T>;

// The one inner pixel that a filter makes of nine; a fourth column for the median, which has none for three.
template <class T, class Filter>
T filteredCentre(PixelsOf<T> nine, Filter filter) {
  PixelsOf<T> pixels(12);
  for (size_t i = 0; i < 9; ++i) pixels[i / 3 * 4 + i % 3] = nine[i];
  const Image<T> src(4, 3, pixels);
  Image<T> dst(4, 3, marks<T>(12));
  EXPECT_EQ(filter(src, dst), 1u);
  return dst.at(1, 1);
}

template <class T>
T medianOf(PixelsOf<T> nine) {
  return filteredCentre(nine, [](const Img* src, Img* dst) { return IP_Median3x3(src, dst); });
}

uint16_t maximumOf(PixelsOf<uint16_t> nine) {
  return filteredCentre(nine, [](const Img* src, Img* dst) { return IP_Maximum3x3(src, dst); });
}

template <class T>
T morphed(PixelsOf<T> nine, int32_t op) {
  return filteredCentre(nine, [op](const Img* src, Img* dst) { return IP_Morph3x3(src, dst, op); });
}

template <class T>
Image<T> marked(uint32_t width, uint32_t height) {
  return Image<T>(width, height, marks<T>(size_t{width} * height));
}

// PixelsOf as disparity images have them: every draw mixes holes, few values and any values in another proportion.
template <class T>
PixelsOf<T> holeyPixels(lab::Random& random, size_t count) {
  PixelsOf<T> out = anyPixels<T>(random, count);
  const uint32_t holes = random.below(4), few = random.below(4);
  for (T& v : out) {
    if (random.below(4) < few) v = static_cast<T>(random.between(1, 5));
    if (random.below(8) < holes) v = 0;
  }
  return out;
}

// 512 windows in a row, one for each way to give nine pixels one of two values; `shift` columns come before them, so
// that every window meets either column of a pair.
template <class T>
model::Picture<T> everyArrangement(T low, T high, uint32_t shift) {
  model::Picture<T> picture{512 * 3 + 2, 3, {}};
  picture.pixels.assign(size_t{picture.width} * 3, low);
  for (uint32_t arrangement = 0; arrangement < 512; ++arrangement)
    for (uint32_t i = 0; i < 9; ++i)
      picture.at(shift + arrangement * 3 + i % 3, i / 3) = arrangement >> i & 1 ? high : low;
  return picture;
}

}  // namespace

// ---- median ----

template <class T>
class MedianOf : public ::testing::Test {};

using MedianTypes = ::testing::Types<uint16_t, int16_t>;
TYPED_TEST_SUITE(MedianOf, MedianTypes, TypeName);

TEST(Median3x3, IsTheFifthOfNineValuesInAnyOrder) {
  lab::Random random(9);
  PixelsOf<uint16_t> nine{1, 2, 3, 4, 5, 6, 7, 8, 9};
  for (int round = 0; round < 200; ++round) {
    EXPECT_EQ(medianOf(nine), 5);
    for (uint32_t i = 8; i > 0; --i) std::swap(nine[i], nine[random.below(i + 1)]);
  }
}

TEST(Median3x3, ComparesS16AsSigned) { EXPECT_EQ(medianOf<int16_t>({-5, -4, -3, -2, -1, 0, 1, 2, 3}), -1); }

TEST(Median3x3, ComparesU16AsUnsigned) {
  EXPECT_EQ(medianOf<uint16_t>({0x8001, 0x8002, 0x8003, 0x8004, 0x8005, 1, 2, 3, 4}), 0x8001);
}

// A network of exchanges that is right for two values in every arrangement is right for all values.
TYPED_TEST(MedianOf, IsRightForEveryArrangementOfTwoValues) {
  using Limits = std::numeric_limits<TypeParam>;
  for (uint32_t shift : {0u, 1u}) {
    SCOPED_TRACE(shift);
    const auto picture = everyArrangement<TypeParam>(Limits::min(), Limits::max(), shift);
    model::Picture<TypeParam> wanted{picture.width, 3, marks<TypeParam>(picture.pixels.size())};
    const Image<TypeParam> src(picture.width, 3, picture.pixels);
    Image<TypeParam> dst(picture.width, 3, wanted.pixels);
    model::median3x3(picture, wanted);
    EXPECT_EQ(IP_Median3x3(src, dst), 1u);
    EXPECT_TRUE(holds(dst, wanted.pixels));
  }
}

// Compares every pixel, so borders, and the column that an odd width leaves, must hold what they held.
TYPED_TEST(MedianOf, IsExactForEverySizeAndWritesNothingElse) {
  forEachSize(smallSizes(6), [](Size size, Guard side, lab::Random& random) {
    if (size.width < 4 || size.height < 3) return;
    const model::Picture<TypeParam> picture{size.width, size.height,
                                            holeyPixels<TypeParam>(random, size.width * size.height)};
    model::Picture<TypeParam> wanted{size.width, size.height, marks<TypeParam>(picture.pixels.size())};
    const Image<TypeParam> src(size.width, size.height, picture.pixels, side);
    Image<TypeParam> dst(size.width, size.height, wanted.pixels, side);
    model::median3x3(picture, wanted);
    EXPECT_EQ(IP_Median3x3(src, dst), 1u);
    EXPECT_TRUE(holds(dst, wanted.pixels));
    EXPECT_TRUE(holds(src, picture.pixels));
  });
}

namespace {

// Which columns of the middle row the median writes.
std::vector<uint32_t> columnsWritten(uint32_t width) {
  const Image<uint16_t> src(width, 3);
  Image<uint16_t> dst = marked<uint16_t>(width, 3);
  EXPECT_EQ(IP_Median3x3(src, dst), 1u);
  std::vector<uint32_t> columns;
  for (uint32_t x = 0; x < width; ++x)
    if (dst.at(x, 1) == 0) columns.push_back(x);
  return columns;
}

}  // namespace

using Columns = std::vector<uint32_t>;
TEST(Median3x3, WritesBothInnerColumnsOfFour) { EXPECT_EQ(columnsWritten(4), (Columns{1, 2})); }
TEST(Median3x3, LeavesColumn3OfFive) { EXPECT_EQ(columnsWritten(5), (Columns{1, 2})); }
TEST(Median3x3, WritesAllInnerColumnsOfSix) { EXPECT_EQ(columnsWritten(6), (Columns{1, 2, 3, 4})); }
TEST(Median3x3, LeavesColumn5OfSeven) { EXPECT_EQ(columnsWritten(7), (Columns{1, 2, 3, 4})); }
TEST(Median3x3, WritesAllInnerColumnsOfEight) { EXPECT_EQ(columnsWritten(8), (Columns{1, 2, 3, 4, 5, 6})); }

TYPED_TEST(MedianOf, LeavesTheBorderAlone) {
  const Image<TypeParam> src(8, 5);
  Image<TypeParam> dst = marked<TypeParam>(8, 5);
  EXPECT_EQ(IP_Median3x3(src, dst), 1u);
  PixelsOf<TypeParam> wanted = marks<TypeParam>(40);
  for (size_t y = 1; y < 4; ++y) std::fill_n(wanted.begin() + static_cast<long>(y * 8 + 1), 6, TypeParam{0});
  EXPECT_TRUE(holds(dst, wanted));
}

TEST(Median3x3, AcceptsFewerThanThreeRowsAndWritesNothing) {
  for (uint32_t height : {0u, 1u, 2u}) {
    for (uint32_t width : {4u, 5u, 33u}) {
      SCOPED_TRACE(testing::Message() << width << " x " << height);
      const Image<uint16_t> src(width, height);
      Image<uint16_t> dst = marked<uint16_t>(width, height);
      EXPECT_TRUE(writesNothing(dst, [&] { return IP_Median3x3(src, dst); }));
    }
  }
}

TEST(Median3x3, RefusesFewerThanFourColumns) {
  for (uint32_t width : {0u, 1u, 2u, 3u}) {
    SCOPED_TRACE(width);
    const Image<uint16_t> src(width, 5);
    Image<uint16_t> dst = marked<uint16_t>(width, 5);
    EXPECT_TRUE(refuses(dst, [&] { return IP_Median3x3(src, dst); }));
  }
}

// ---- maximum ----

TEST(Maximum3x3, KeepsAZeroPixelAmongLargeOnes) {
  EXPECT_EQ(maximumOf({1000, 1000, 1000, 1000, 0, 1000, 1000, 1000, 1000}), 0);
}

TEST(Maximum3x3, TakesALargerNeighbour) { EXPECT_EQ(maximumOf({0, 0, 0, 0, 5, 9, 0, 0, 0}), 9); }
TEST(Maximum3x3, KeepsAPixelLargerThanItsNeighbours) { EXPECT_EQ(maximumOf({1, 2, 3, 4, 9, 5, 6, 7, 8}), 9); }

TEST(Maximum3x3, LooksAtEveryNeighbour) {
  for (size_t i = 0; i < 9; ++i) {
    PixelsOf<uint16_t> nine(9, 1);
    nine[i] = 2;
    EXPECT_EQ(maximumOf(nine), 2) << i;
  }
}

TEST(Maximum3x3, ComparesAsUnsigned) { EXPECT_EQ(maximumOf({0x7FFF, 0x8000, 1, 1, 1, 1, 1, 1, 1}), 0x8000); }

TEST(Maximum3x3, IsExactForEverySizeAndWritesNothingElse) {
  forEachSize(smallSizes(6), [](Size size, Guard side, lab::Random& random) {
    const model::Picture<uint16_t> picture{size.width, size.height,
                                           holeyPixels<uint16_t>(random, size.width * size.height)};
    model::Picture<uint16_t> wanted{size.width, size.height, marks<uint16_t>(picture.pixels.size())};
    const Image<uint16_t> src(size.width, size.height, picture.pixels, side);
    Image<uint16_t> dst(size.width, size.height, wanted.pixels, side);
    model::maximum3x3(picture, wanted);
    EXPECT_EQ(IP_Maximum3x3(src, dst), 1u);
    EXPECT_TRUE(holds(dst, wanted.pixels));
    EXPECT_TRUE(holds(src, picture.pixels));
  });
}

TEST(Maximum3x3, LeavesTheBorderAlone) {
  const Image<uint16_t> src(7, 5);
  Image<uint16_t> dst = marked<uint16_t>(7, 5);
  EXPECT_EQ(IP_Maximum3x3(src, dst), 1u);
  PixelsOf<uint16_t> wanted = marks<uint16_t>(35);
  for (size_t y = 1; y < 4; ++y) std::fill_n(wanted.begin() + static_cast<long>(y * 7 + 1), 5, uint16_t{0});
  EXPECT_TRUE(holds(dst, wanted));
}

TEST(Maximum3x3, AcceptsFewerThanThreeRowsAndWritesNothing) {
  for (uint32_t height : {0u, 1u, 2u}) {
    SCOPED_TRACE(height);
    const Image<uint16_t> src(7, height);
    Image<uint16_t> dst = marked<uint16_t>(7, height);
    EXPECT_TRUE(writesNothing(dst, [&] { return IP_Maximum3x3(src, dst); }));
  }
}

TEST(Maximum3x3, AcceptsFewerThanThreeColumnsAndWritesNothing) {
  for (uint32_t width : {0u, 1u, 2u}) {
    SCOPED_TRACE(width);
    const Image<uint16_t> src(width, 7);
    Image<uint16_t> dst = marked<uint16_t>(width, 7);
    EXPECT_TRUE(writesNothing(dst, [&] { return IP_Maximum3x3(src, dst); }));
  }
}

// ---- morphology ----

template <class T>
class Morph3x3Of : public ::testing::Test {};
using MorphTypes = ::testing::Types<uint8_t, uint16_t>;
TYPED_TEST_SUITE(Morph3x3Of, MorphTypes, TypeName);

TYPED_TEST(Morph3x3Of, ErodeKeepsTheMinimumAtThePixelItself) {
  EXPECT_EQ(morphed<TypeParam>({20, 20, 20, 20, 10, 20, 20, 20, 20}, MORPH_ERODE), 10);
}

TYPED_TEST(Morph3x3Of, ErodeTakesTheMinimumOfThePixelAndAllNeighbours) {
  for (size_t i = 0; i < 9; ++i) {
    PixelsOf<TypeParam> nine(9, 20);
    nine[i] = 7;
    EXPECT_EQ(morphed(nine, MORPH_ERODE), 7) << i;
  }
}

TYPED_TEST(Morph3x3Of, ErodeClearsAPixelThatTouchesAnyZero) {
  for (size_t i : {0u, 1u, 2u, 3u, 5u, 6u, 7u, 8u}) {
    PixelsOf<TypeParam> nine{20, 20, 20, 20, 10, 20, 20, 20, 20};
    nine[i] = 0;
    EXPECT_EQ(morphed(nine, MORPH_ERODE), 0) << i;
  }
}

TYPED_TEST(Morph3x3Of, ErodeKeepsAZeroPixelAmongData) {
  EXPECT_EQ(morphed<TypeParam>({20, 20, 20, 20, 0, 20, 20, 20, 20}, MORPH_ERODE), 0);
}

TYPED_TEST(Morph3x3Of, DilateTakesTheMaximumOfThePixelAndAllNeighbours) {
  for (size_t i = 0; i < 9; ++i) {
    PixelsOf<TypeParam> nine(9, 20);
    nine[i] = 200;
    EXPECT_EQ(morphed(nine, MORPH_DILATE), 200) << i;
  }
}

TYPED_TEST(Morph3x3Of, DilateFillsAZeroPixelWithTheLargestNeighbour) {
  EXPECT_EQ(morphed<TypeParam>({0, 3, 0, 9, 0, 0, 5, 0, 0}, MORPH_DILATE), 9);
}

TYPED_TEST(Morph3x3Of, DilateKeepsAZeroPixelAmongZeros) {
  EXPECT_EQ(morphed<TypeParam>(PixelsOf<TypeParam>(9, 0), MORPH_DILATE), 0);
}

TYPED_TEST(Morph3x3Of, CleanClearsADataPixelWithThreeDataNeighbours) {
  EXPECT_EQ(morphed<TypeParam>({1, 1, 1, 0, 9, 0, 0, 0, 0}, MORPH_CLEAN), 0);
}

TYPED_TEST(Morph3x3Of, CleanKeepsADataPixelWithFourDataNeighbours) {
  EXPECT_EQ(morphed<TypeParam>({1, 1, 1, 0, 9, 0, 0, 0, 1}, MORPH_CLEAN), 9);
}

TYPED_TEST(Morph3x3Of, CleanKeepsADataPixelAmongData) {
  EXPECT_EQ(morphed<TypeParam>({1, 1, 1, 1, 9, 1, 1, 1, 1}, MORPH_CLEAN), 9);
}

TYPED_TEST(Morph3x3Of, CleanPrefersBelowRightToRight) {
  EXPECT_EQ(morphed<TypeParam>({0, 0, 0, 0, 0, 9, 0, 0, 7}, MORPH_CLEAN), 7);
}

TYPED_TEST(Morph3x3Of, CleanFillsAHoleFromAboveLeftWhereNothingElseIsData) {
  EXPECT_EQ(morphed<TypeParam>({6, 0, 0, 0, 0, 0, 0, 0, 0}, MORPH_CLEAN), 6);
}

// Takes the preferred donor away again and again: below right, below, below left, right, left, above right, above,
// above left.
TYPED_TEST(Morph3x3Of, CleanFillsAHoleByTheFixedOrderOfNeighbours) {
  PixelsOf<TypeParam> nine{18, 17, 16, 15, 0, 14, 13, 12, 11};
  for (size_t donor : {8u, 7u, 6u, 5u, 3u, 2u, 1u, 0u}) {
    EXPECT_EQ(morphed(nine, MORPH_CLEAN), nine[donor]);
    nine[donor] = 0;
  }
}

TYPED_TEST(Morph3x3Of, CleanKeepsAHoleAmongHoles) {
  EXPECT_EQ(morphed<TypeParam>(PixelsOf<TypeParam>(9, 0), MORPH_CLEAN), 0);
}

TYPED_TEST(Morph3x3Of, ComparesAsUnsigned) {
  const TypeParam half = static_cast<TypeParam>(TypeParam{1} << (sizeof(TypeParam) * 8 - 1));
  const TypeParam below = static_cast<TypeParam>(half - 1);
  const PixelsOf<TypeParam> nine{half, half, half, half, below, half, half, half, half};
  EXPECT_EQ(morphed(nine, MORPH_ERODE), below);
  EXPECT_EQ(morphed(nine, MORPH_DILATE), half);
}

namespace {

template <class T>
void expectMorph(const model::Picture<T>& picture, int32_t op, Guard side = Guard::behind) {
  SCOPED_TRACE("operation " + std::to_string(op));
  const Image<T> src(picture.width, picture.height, picture.pixels, side);
  Image<T> dst(picture.width, picture.height, marks<T>(picture.pixels.size()), side);
  EXPECT_EQ(IP_Morph3x3(src, dst, op), 1u);
  EXPECT_TRUE(holds(dst, model::morph3x3(picture, op).pixels));
  EXPECT_TRUE(holds(src, picture.pixels));
}

}  // namespace

TYPED_TEST(Morph3x3Of, OpenErodesThenDilates) {
  // A block of 4 x 4 shrinks to its 2 x 2 heart of 5, 6, 6, 7 minima and grows back; the lone pixel is gone.
  const PixelsOf<TypeParam> block{0, 0, 0, 0, 0, 0, 0, 0, 0, 5, 5, 5, 5, 0, 0, 0, 0, 5, 6, 6, 5, 0, 8, 0,
                                  0, 5, 6, 6, 5, 0, 0, 0, 0, 5, 5, 5, 5, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
  const PixelsOf<TypeParam> wanted{0, 0, 0, 0, 0, 0, 0, 0, 0, 5, 5, 5, 5, 0, 0, 0, 0, 5, 5, 5, 5, 0, 0, 0,
                                   0, 5, 5, 5, 5, 0, 0, 0, 0, 5, 5, 5, 5, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
  const Image<TypeParam> src(8, 6, block);
  Image<TypeParam> dst = marked<TypeParam>(8, 6);
  EXPECT_EQ(IP_Morph3x3(src, dst, MORPH_OPEN), 1u);
  EXPECT_TRUE(holds(dst, wanted));
}

TYPED_TEST(Morph3x3Of, CloseDilatesThenErodes) {
  // A hole amid data takes the smallest of the maxima around it.
  const PixelsOf<TypeParam> holed{4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 0, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 9};
  PixelsOf<TypeParam> wanted(25, 4);
  wanted[24] = 9;
  const Image<TypeParam> src(5, 5, holed);
  Image<TypeParam> dst = marked<TypeParam>(5, 5);
  EXPECT_EQ(IP_Morph3x3(src, dst, MORPH_CLOSE), 1u);
  EXPECT_TRUE(holds(dst, wanted));
}

TYPED_TEST(Morph3x3Of, NumbersItsOperationsAsDocumented) {
  const PixelsOf<TypeParam> nine{20, 30, 20, 20, 10, 20, 20, 20, 20};
  EXPECT_EQ(morphed(nine, 0), 10);
  EXPECT_EQ(morphed(nine, 1), 30);
  EXPECT_EQ(morphed(nine, 4), 10);
  const model::Picture<TypeParam> picture{6, 5, PixelsOf<TypeParam>(30, 3)};
  expectMorph(picture, 2);
  expectMorph(picture, 3);
}

// Two rows or more; the border is part of the comparison.
TYPED_TEST(Morph3x3Of, IsExactForEverySizeAndOperation) {
  forEachSize(smallSizes(6), [](Size size, Guard side, lab::Random& random) {
    if (size.height == 1) return;
    const model::Picture<TypeParam> picture{size.width, size.height,
                                            holeyPixels<TypeParam>(random, size.width * size.height)};
    for (int32_t op : morphOps) expectMorph(picture, op, side);
  });
}

TYPED_TEST(Morph3x3Of, IsRightForEveryArrangementOfHoles) {
  for (uint32_t shift : {0u, 1u}) {
    SCOPED_TRACE(shift);
    lab::Random random(shift);
    auto picture = everyArrangement<TypeParam>(0, 1, shift);
    for (TypeParam& v : picture.pixels) v = static_cast<TypeParam>(v * random.between(1, 255));
    for (int32_t op : morphOps) expectMorph(picture, op);
  }
}

TYPED_TEST(Morph3x3Of, CopiesTheBorderForEveryOperation) {
  lab::Random random(7);
  const PixelsOf<TypeParam> pixels = holeyPixels<TypeParam>(random, 35);
  const Image<TypeParam> src(7, 5, pixels);
  for (int32_t op : morphOps) {
    SCOPED_TRACE(op);
    Image<TypeParam> dst = marked<TypeParam>(7, 5);
    EXPECT_EQ(IP_Morph3x3(src, dst, op), 1u);
    for (uint32_t y = 0; y < 5; ++y)
      for (uint32_t x = 0; x < 7; ++x)
        if (x == 0 || x == 6 || y == 0 || y == 4) {
          EXPECT_EQ(dst.at(x, y), src.at(x, y)) << x << ", " << y;
        }
  }
}

TYPED_TEST(Morph3x3Of, CopiesImagesWithoutAnInside) {
  for (Size size : {Size{9, 2}, Size{2, 9}, Size{1, 9}, Size{1, 2}, Size{2, 2}}) {
    for (int32_t op : morphOps) {
      SCOPED_TRACE(testing::Message() << size.width << " x " << size.height << ", operation " << op);
      lab::Random random(3);
      const PixelsOf<TypeParam> pixels = holeyPixels<TypeParam>(random, size.width * size.height);
      const Image<TypeParam> src(size.width, size.height, pixels);
      Image<TypeParam> dst = marked<TypeParam>(size.width, size.height);
      EXPECT_EQ(IP_Morph3x3(src, dst, op), 1u);
      EXPECT_TRUE(holds(dst, pixels));
    }
  }
}

TEST(Morph3x3, AcceptsAnImageWithoutRowsForEveryOperation) {
  const Image<uint16_t> src(7, 0);
  Image<uint16_t> dst(7, 0);
  for (int32_t op : morphOps) EXPECT_EQ(IP_Morph3x3(src, dst, op), 1u) << op;
}

TEST(Morph3x3, AcceptsAnImageWithoutColumnsForEveryOperation) {
  const Image<uint16_t> src(0, 7);
  Image<uint16_t> dst(0, 7);
  for (int32_t op : morphOps) EXPECT_EQ(IP_Morph3x3(src, dst, op), 1u) << op;
}

TEST(Morph3x3, RefusesASingleRow) {
  const Image<uint16_t> src(7, 1);
  Image<uint16_t> dst = marked<uint16_t>(7, 1);
  for (int32_t op : morphOps) {
    SCOPED_TRACE(op);
    EXPECT_TRUE(refuses(dst, [&] { return IP_Morph3x3(src, dst, op); }));
  }
}

TYPED_TEST(Morph3x3Of, AcceptsEveryOtherOperationAndWritesNothing) {
  const Image<TypeParam> src(7, 5);
  Image<TypeParam> dst = marked<TypeParam>(7, 5);
  for (int32_t op : {5, 6, 7, 8, 9, 255, 256, 260, 0x10004, -1, -2147483647 - 1, 2147483647}) {
    SCOPED_TRACE(op);
    EXPECT_TRUE(writesNothing(dst, [&] { return IP_Morph3x3(src, dst, op); }));
  }
}

// ---- refused, all three filters ----

namespace {

struct Filter {
  const char* name;
  std::initializer_list<uint32_t> types;
  uint32_t (*run)(const Img*, Img*);
};

const std::initializer_list<uint32_t> medianTypes{IMG_TYPE_U16, IMG_TYPE_S16};
const std::initializer_list<uint32_t> maximumTypes{IMG_TYPE_U16};
const std::initializer_list<uint32_t> morphTypes{IMG_TYPE_U8, IMG_TYPE_U16};

template <int32_t op>
uint32_t morph(const Img* src, Img* dst) {
  return IP_Morph3x3(src, dst, op);
}

const Filter filters[] = {
    {"Median", medianTypes, IP_Median3x3},     {"Maximum", maximumTypes, IP_Maximum3x3},
    {"Erode", morphTypes, morph<MORPH_ERODE>}, {"Dilate", morphTypes, morph<MORPH_DILATE>},
    {"Open", morphTypes, morph<MORPH_OPEN>},   {"Close", morphTypes, morph<MORPH_CLOSE>},
    {"Clean", morphTypes, morph<MORPH_CLEAN>}, {"UnknownMorphology", morphTypes, morph<9>},
};

class EveryFilter3x3 : public ::testing::TestWithParam<Filter> {
 protected:
  template <class S, class D>
  void expectRefused(const Image<S>& src, Image<D>& dst) {
    EXPECT_TRUE(refuses(dst, [&] { return GetParam().run(src, dst); }));
  }
};

INSTANTIATE_TEST_SUITE_P(, EveryFilter3x3, ::testing::ValuesIn(filters),
                         [](const auto& filter) { return std::string(filter.param.name); });

}  // namespace

TEST_P(EveryFilter3x3, RefusesEveryOtherType) {
  for (uint32_t type : typesOtherThan(GetParam().types)) {
    SCOPED_TRACE(type);
    Image<uint32_t> src(5, 4), dst = marked<uint32_t>(5, 4);
    src.retype(type);
    dst.retype(type);
    expectRefused(src, dst);
  }
}

TEST_P(EveryFilter3x3, RefusesImagesOfDifferentType) {
  const Image<uint8_t> bytes(5, 4);
  const Image<uint16_t> words(5, 4);
  const Image<int16_t> signedWords(5, 4);
  Image<uint16_t> wordsOut = marked<uint16_t>(5, 4);
  Image<int16_t> signedOut = marked<int16_t>(5, 4);
  Image<uint8_t> bytesOut = marked<uint8_t>(5, 4);
  expectRefused(bytes, wordsOut);
  expectRefused(signedWords, wordsOut);
  expectRefused(words, signedOut);
  expectRefused(words, bytesOut);
}

TEST_P(EveryFilter3x3, RefusesImagesOfDifferentWidth) {
  const Image<uint16_t> src(6, 4);
  Image<uint16_t> dst = marked<uint16_t>(5, 4);
  expectRefused(src, dst);
}

TEST_P(EveryFilter3x3, RefusesImagesOfDifferentHeight) {
  const Image<uint16_t> src(5, 5);
  Image<uint16_t> dst = marked<uint16_t>(5, 4);
  expectRefused(src, dst);
}

TEST_P(EveryFilter3x3, RefusesWidthAndHeightExchanged) {
  const Image<uint16_t> src(4, 5);
  Image<uint16_t> dst = marked<uint16_t>(5, 4);
  expectRefused(src, dst);
}

TEST_P(EveryFilter3x3, RefusesANullSource) {
  Image<uint16_t> dst = marked<uint16_t>(5, 4);
  EXPECT_TRUE(refuses(dst, [&] { return GetParam().run(nullptr, dst); }));
}

TEST_P(EveryFilter3x3, RefusesANullDestination) {
  const Image<uint16_t> src(5, 4);
  EXPECT_EQ(GetParam().run(src, nullptr), 0u);
}

TEST_P(EveryFilter3x3, LeavesTheDescriptorsAlone) {
  const Image<uint16_t> src(5, 4);
  Image<uint16_t> dst(5, 4);
  const Img srcBefore = src.img, dstBefore = dst.img;
  EXPECT_EQ(GetParam().run(src, dst), 1u);
  EXPECT_TRUE(sameDescriptor(src.img, srcBefore));
  EXPECT_TRUE(sameDescriptor(dst.img, dstBefore));
}

}  // namespace nadir::test
