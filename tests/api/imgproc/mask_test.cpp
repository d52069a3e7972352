// Pixels kept or cleared by a mask.
#include <gtest/gtest.h>
#include <nadir/imgproc.h>

#include <vector>

#include "tests/models/image_ops.hpp"
#include "tests/support/images.hpp"

namespace nadir::test {
namespace {

const std::vector<uint32_t> modes{MASK_KEEP_SET, MASK_CLEAR_SET, 2, 255, 256, 0x80000000u, 0xFFFFFFFFu};

// Half of the bytes 0, the others any value: every bit alone counts as set.
std::vector<uint8_t> anyMask(lab::Random& random, size_t count) {
  std::vector<uint8_t> out(count);
  for (uint8_t& v : out) v = static_cast<uint8_t>(random.below(2) * random.below(256));
  return out;
}

template <class T>
std::vector<T> masked(std::initializer_list<T> row, std::initializer_list<uint8_t> maskRow, uint32_t mode) {
  const Image<T> src(row);
  const Image<uint8_t> mask(maskRow);
  Image<T> dst(src.img.width, 1);
  EXPECT_EQ(IP_Mask(src, mask, dst, mode), 1u);
  return dst.pixels();
}

}  // namespace

// ---- single values and every size ----

template <class T>
class MaskOf : public ::testing::Test {};

using MaskedTypes = ::testing::Types<uint8_t, uint16_t>;
TYPED_TEST_SUITE(MaskOf, MaskedTypes, TypeName);

TYPED_TEST(MaskOf, Mode0KeepsPixelsWhereTheMaskIsSet) {
  EXPECT_EQ(masked<TypeParam>({7, 8, 9, 10}, {0, 1, 128, 255}, MASK_KEEP_SET), (std::vector<TypeParam>{0, 8, 9, 10}));
}

TYPED_TEST(MaskOf, Mode1ClearsPixelsWhereTheMaskIsSet) {
  EXPECT_EQ(masked<TypeParam>({7, 8, 9, 10}, {0, 1, 128, 255}, MASK_CLEAR_SET), (std::vector<TypeParam>{7, 0, 0, 0}));
}

TYPED_TEST(MaskOf, NumbersItsModesAsDocumented) {
  EXPECT_EQ(masked<TypeParam>({7, 8}, {0, 1}, 0), (std::vector<TypeParam>{0, 8}));
  EXPECT_EQ(masked<TypeParam>({7, 8}, {0, 1}, 1), (std::vector<TypeParam>{7, 0}));
}

TYPED_TEST(MaskOf, EveryOtherModeActsAsMode1) {
  for (uint32_t mode : {2u, 3u, 255u, 256u, 0x10000u, 0x80000000u, 0xFFFFFFFFu})
    EXPECT_EQ(masked<TypeParam>({7, 8}, {0, 1}, mode), (std::vector<TypeParam>{7, 0})) << mode;
}

TYPED_TEST(MaskOf, EveryNonZeroMaskByteCountsAsSet) {
  std::vector<uint8_t> bytes(256);
  for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<uint8_t>(i);
  const Image<uint8_t> mask(256, 1, bytes);
  const Image<TypeParam> src(256, 1, std::vector<TypeParam>(256, 77));
  Image<TypeParam> dst(256, 1);
  EXPECT_EQ(IP_Mask(src, mask, dst, MASK_KEEP_SET), 1u);
  std::vector<TypeParam> wanted(256, 77);
  wanted[0] = 0;
  EXPECT_TRUE(holds(dst, wanted));
}

TYPED_TEST(MaskOf, IsExactForEverySizeAndMode) {
  forEachSize(smallSizes(3), [](Size size, Guard side, lab::Random& random) {
    const auto pixels = anyPixels<TypeParam>(random, size.width * size.height);
    const auto maskBytes = anyMask(random, pixels.size());
    const Image<TypeParam> src(size.width, size.height, pixels, side);
    const Image<uint8_t> mask(size.width, size.height, maskBytes, side);
    Image<TypeParam> dst(size.width, size.height, side), inPlace(size.width, size.height, side);
    for (uint32_t mode : modes) {
      SCOPED_TRACE(mode);
      std::vector<TypeParam> wanted = pixels;
      for (size_t i = 0; i < wanted.size(); ++i) wanted[i] = model::mask(pixels[i], maskBytes[i], mode);

      EXPECT_EQ(IP_Mask(src, mask, dst, mode), 1u);
      EXPECT_TRUE(holds(dst, wanted));
      EXPECT_TRUE(holds(src, pixels));
      EXPECT_TRUE(holds(mask, maskBytes));
      inPlace.fill(pixels);
      EXPECT_EQ(IP_Mask_I(inPlace, mask, mode), 1u);
      EXPECT_TRUE(holds(inPlace, wanted));
    }
  });
}

TYPED_TEST(MaskOf, SourceAndDestinationMayBeTheSameImage) {
  Image<TypeParam> image{7, 8, 9};
  const Image<uint8_t> mask{1, 0, 1};
  EXPECT_EQ(IP_Mask(image, mask, image, MASK_CLEAR_SET), 1u);
  EXPECT_TRUE(holds(image, {0, 8, 0}));
}

TYPED_TEST(MaskOf, LeavesTheDescriptorsAlone) {
  const Image<TypeParam> src{7, 8, 9};
  const Image<uint8_t> mask{1, 0, 1};
  Image<TypeParam> dst(3, 1);
  const Img srcBefore = src.img, maskBefore = mask.img, dstBefore = dst.img;
  EXPECT_EQ(IP_Mask(src, mask, dst, MASK_CLEAR_SET), 1u);
  EXPECT_TRUE(sameDescriptor(src.img, srcBefore));
  EXPECT_TRUE(sameDescriptor(mask.img, maskBefore));
  EXPECT_TRUE(sameDescriptor(dst.img, dstBefore));
}

// ---- the mask's own size is not looked at ----

namespace {

// A 3 x 2 source under the six mask bytes 1 0 0 0 1 1, whatever size the mask says it has.
void expectLinearOrder(uint32_t maskWidth, uint32_t maskHeight) {
  const Image<uint16_t> src(3, 2, {1, 2, 3, 4, 5, 6});
  Image<uint8_t> mask(6, 1, std::vector<uint8_t>{1, 0, 0, 0, 1, 1});
  mask.img.width = static_cast<uint16_t>(maskWidth);
  mask.img.height = static_cast<uint16_t>(maskHeight);
  Image<uint16_t> dst(3, 2);
  EXPECT_EQ(IP_Mask(src, mask, dst, MASK_CLEAR_SET), 1u);
  EXPECT_TRUE(holds(dst, {0, 2, 3, 4, 0, 0}));
}

}  // namespace

TEST(Mask, ReadsAWiderMaskInMemoryOrder) { expectLinearOrder(6, 1); }
TEST(Mask, ReadsANarrowerMaskInMemoryOrder) { expectLinearOrder(2, 3); }
TEST(Mask, ReadsAMaskWhoseDescriptorSaysItIsEmpty) { expectLinearOrder(0, 0); }
TEST(Mask, ReadsAMaskWhoseDescriptorSaysItIsHuge) { expectLinearOrder(65535, 65535); }

TEST(Mask, ReadsOneByteAPixelWhateverTheMasksBytesPerPixel) {
  const Image<uint16_t> src(3, 2, {1, 2, 3, 4, 5, 6});
  Image<uint8_t> mask(3, 2, std::vector<uint8_t>{1, 0, 0, 0, 1, 1});
  mask.img.bytesPerPixel = 2;
  Image<uint16_t> dst(3, 2);
  EXPECT_EQ(IP_Mask(src, mask, dst, MASK_CLEAR_SET), 1u);
  EXPECT_TRUE(holds(dst, {0, 2, 3, 4, 0, 0}));
}

// ---- images without pixels ----

TEST(Mask, AcceptsAnImageWithoutRows) {
  const Image<uint8_t> src(5, 0), mask(5, 0);
  Image<uint8_t> dst(5, 0);
  for (uint32_t mode : modes) EXPECT_EQ(IP_Mask(src, mask, dst, mode), 1u) << mode;
}

TEST(Mask, AcceptsAnImageWithoutColumns) {
  const Image<uint8_t> src(0, 5), mask(0, 5);
  Image<uint8_t> dst(0, 5);
  for (uint32_t mode : modes) EXPECT_EQ(IP_Mask(src, mask, dst, mode), 1u) << mode;
}

TEST(Mask, ChecksTypesAlsoWithoutRows) {
  Image<uint8_t> bytes(5, 0);
  Image<uint16_t> words(5, 0);
  Image<int16_t> signedWords(5, 0);
  EXPECT_EQ(IP_Mask(bytes, words, bytes, MASK_KEEP_SET), 0u);
  EXPECT_EQ(IP_Mask(signedWords, bytes, signedWords, MASK_KEEP_SET), 0u);
}

// ---- refused ----

namespace {

// A mask of 6 zero bytes under MASK_KEEP_SET clears everything, so that a write would show.
template <class S, class M, class D>
void expectRefusedMask(const Image<S>& src, const Image<M>& mask, Image<D>& dst) {
  EXPECT_TRUE(refuses(dst, [&] { return IP_Mask(src, mask, dst, MASK_KEEP_SET); }));
}

template <class T>
Image<T> markedForMask(uint32_t width, uint32_t height) {
  return Image<T>(width, height, marks<T>(size_t{width} * height));
}

}  // namespace

TEST(Mask, RefusesEveryOtherTypeOfImage) {
  for (uint32_t type : typesOtherThan({IMG_TYPE_U8, IMG_TYPE_U16})) {
    SCOPED_TRACE(type);
    Image<uint32_t> src = markedForMask<uint32_t>(3, 2), dst = markedForMask<uint32_t>(3, 2);
    src.retype(type);
    dst.retype(type);
    const Image<uint8_t> mask(3, 2);
    expectRefusedMask(src, mask, dst);
    EXPECT_TRUE(refuses(dst, [&] { return IP_Mask_I(dst, mask, MASK_KEEP_SET); }));
  }
}

TEST(Mask, RefusesEveryOtherTypeOfMask) {
  for (uint32_t type : typesOtherThan({IMG_TYPE_U8})) {
    SCOPED_TRACE(type);
    Image<uint32_t> mask(3, 2);
    mask.retype(type);
    const Image<uint16_t> src = markedForMask<uint16_t>(3, 2);
    Image<uint16_t> dst = markedForMask<uint16_t>(3, 2);
    expectRefusedMask(src, mask, dst);
    EXPECT_TRUE(refuses(dst, [&] { return IP_Mask_I(dst, mask, MASK_KEEP_SET); }));
  }
}

TEST(Mask, RefusesImagesOfDifferentType) {
  const Image<uint8_t> bytes = markedForMask<uint8_t>(3, 2), mask(3, 2);
  const Image<uint16_t> words = markedForMask<uint16_t>(3, 2);
  Image<uint16_t> wordsOut = markedForMask<uint16_t>(3, 2);
  Image<uint8_t> bytesOut = markedForMask<uint8_t>(3, 2);
  expectRefusedMask(bytes, mask, wordsOut);
  expectRefusedMask(words, mask, bytesOut);
}

TEST(Mask, RefusesImagesOfDifferentWidth) {
  const Image<uint8_t> src = markedForMask<uint8_t>(4, 2), mask(4, 2);
  Image<uint8_t> dst = markedForMask<uint8_t>(3, 2);
  expectRefusedMask(src, mask, dst);
}

TEST(Mask, RefusesImagesOfDifferentHeight) {
  const Image<uint8_t> src = markedForMask<uint8_t>(3, 3), mask(3, 3);
  Image<uint8_t> dst = markedForMask<uint8_t>(3, 2);
  expectRefusedMask(src, mask, dst);
}

TEST(Mask, RefusesWidthAndHeightExchanged) {
  const Image<uint8_t> src = markedForMask<uint8_t>(2, 3), mask(3, 2);
  Image<uint8_t> dst = markedForMask<uint8_t>(3, 2);
  expectRefusedMask(src, mask, dst);
}

TEST(Mask, RefusesANullSource) {
  const Image<uint8_t> mask(3, 2);
  Image<uint8_t> dst = markedForMask<uint8_t>(3, 2);
  EXPECT_TRUE(refuses(dst, [&] { return IP_Mask(nullptr, mask, dst, MASK_KEEP_SET); }));
}

TEST(Mask, RefusesANullMask) {
  const Image<uint8_t> src = markedForMask<uint8_t>(3, 2);
  Image<uint8_t> dst(3, 2, std::vector<uint8_t>(6, 9));
  EXPECT_TRUE(refuses(dst, [&] { return IP_Mask(src, nullptr, dst, MASK_KEEP_SET); }));
}

TEST(Mask, RefusesANullDestination) {
  const Image<uint8_t> src(3, 2), mask(3, 2);
  EXPECT_EQ(IP_Mask(src, mask, nullptr, MASK_KEEP_SET), 0u);
}

TEST(Mask, InPlaceRefusesANullImage) {
  const Image<uint8_t> mask(3, 2);
  EXPECT_EQ(IP_Mask_I(nullptr, mask, MASK_KEEP_SET), 0u);
}

TEST(Mask, InPlaceRefusesANullMask) {
  Image<uint8_t> image = markedForMask<uint8_t>(3, 2);
  EXPECT_TRUE(refuses(image, [&] { return IP_Mask_I(image, nullptr, MASK_KEEP_SET); }));
}

}  // namespace nadir::test
