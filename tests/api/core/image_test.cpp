// Image descriptors, fill, copy and conversion.
#include <gtest/gtest.h>
#include <nadir/image.h>

#include <cstring>
#include <limits>
#include <type_traits>
#include <vector>

#include "tests/support/images.hpp"

namespace nadir::test {
namespace {

const std::vector<uint32_t> types{IMG_TYPE_U8,  IMG_TYPE_S8,  IMG_TYPE_U16, IMG_TYPE_S16,
                                  IMG_TYPE_U32, IMG_TYPE_S32, IMG_TYPE_F32};
const uint32_t severalBits = IMG_TYPE_U8 | IMG_TYPE_S8;

template <class T>
std::vector<uint8_t> bytesOfPixels(const Image<T>& image) {
  const auto* first = reinterpret_cast<const uint8_t*>(image.data());
  return std::vector<uint8_t>(first, first + image.size() * sizeof(T));
}

// 3 x 2 pixels in memory for 4 bytes each, whatever the type says.
Image<uint32_t> imageOf(uint32_t type) {
  Image<uint32_t> image(3, 2, marks<uint32_t>(6));
  image.retype(type);
  return image;
}

}  // namespace

// ---- Img_Init ----

TEST(ImgInit, StoresWhatItIsGiven) {
  uint16_t pixel = 0;
  Img img{};
  EXPECT_EQ(Img_Init(&img, 640, 480, IMG_TYPE_U16, &pixel), 1u);
  EXPECT_EQ(img.width, 640);
  EXPECT_EQ(img.height, 480);
  EXPECT_EQ(img.type, uint32_t{IMG_TYPE_U16});
  EXPECT_EQ(img.data, &pixel);
}

TEST(ImgInit, DerivesTheBytesPerPixelFromTheType) {
  for (uint32_t type : types) {
    SCOPED_TRACE(type);
    Img img{};
    EXPECT_EQ(Img_Init(&img, 1, 1, type, nullptr), 1u);
    EXPECT_EQ(img.bytesPerPixel, bytesOf(type));
  }
}

TEST(ImgInit, TakesAnUnknownTypeAsItIsWithNoBytesPerPixel) {
  for (uint32_t type : unknownTypes()) {
    SCOPED_TRACE(type);
    Img img{};
    img.bytesPerPixel = 7;
    EXPECT_EQ(Img_Init(&img, 1, 1, type, nullptr), 1u);
    EXPECT_EQ(img.type, type);
    EXPECT_EQ(img.bytesPerPixel, 0);
  }
}

TEST(ImgInit, KeepsTheLow16BitsOfWidthAndHeight) {
  Img img{};
  EXPECT_EQ(Img_Init(&img, 0x10005, 0xFFFF0007u, IMG_TYPE_U8, nullptr), 1u);
  EXPECT_EQ(img.width, 5);
  EXPECT_EQ(img.height, 7);
}

TEST(ImgInit, TakesTheLargestSize) {
  Img img{};
  EXPECT_EQ(Img_Init(&img, 65535, 65535, IMG_TYPE_U8, nullptr), 1u);
  EXPECT_EQ(img.width, 65535);
  EXPECT_EQ(img.height, 65535);
}

TEST(ImgInit, TakesNullPixels) {
  uint8_t pixel = 0;
  Img img{};
  img.data = &pixel;
  EXPECT_EQ(Img_Init(&img, 2, 2, IMG_TYPE_U8, nullptr), 1u);
  EXPECT_EQ(img.data, nullptr);
}

TEST(ImgInit, TakesAnImageWithoutPixels) {
  Img img{};
  EXPECT_EQ(Img_Init(&img, 0, 0, IMG_TYPE_U8, nullptr), 1u);
  EXPECT_EQ(img.width, 0);
  EXPECT_EQ(img.height, 0);
}

TEST(ImgInit, DoesNotTouchThePixels) {
  const Guarded<uint8_t> forbidden(0);
  Img img{};
  EXPECT_EQ(Img_Init(&img, 4, 4, IMG_TYPE_U8, forbidden.data()), 1u);
}

TEST(ImgInit, RefusesANullDescriptor) {
  uint8_t pixel = 0;
  EXPECT_EQ(Img_Init(nullptr, 1, 1, IMG_TYPE_U8, &pixel), 0u);
}

TEST(ImgCInit, StoresWhatItIsGiven) {
  const uint16_t pixel = 0;
  ImgC img{};
  EXPECT_EQ(ImgC_Init(&img, 640, 480, IMG_TYPE_S16, &pixel), 1u);
  EXPECT_EQ(img.width, 640);
  EXPECT_EQ(img.height, 480);
  EXPECT_EQ(img.type, uint32_t{IMG_TYPE_S16});
  EXPECT_EQ(img.data, &pixel);
}

TEST(ImgCInit, DerivesTheBytesPerPixelFromTheType) {
  for (uint32_t type : types) {
    SCOPED_TRACE(type);
    ImgC img{};
    EXPECT_EQ(ImgC_Init(&img, 1, 1, type, nullptr), 1u);
    EXPECT_EQ(img.bytesPerPixel, bytesOf(type));
  }
}

TEST(ImgCInit, TakesAnUnknownTypeAsItIsWithNoBytesPerPixel) {
  for (uint32_t type : unknownTypes()) {
    SCOPED_TRACE(type);
    ImgC img{};
    img.bytesPerPixel = 7;
    EXPECT_EQ(ImgC_Init(&img, 1, 1, type, nullptr), 1u);
    EXPECT_EQ(img.type, type);
    EXPECT_EQ(img.bytesPerPixel, 0);
  }
}

TEST(ImgCInit, KeepsTheLow16BitsOfWidthAndHeight) {
  ImgC img{};
  EXPECT_EQ(ImgC_Init(&img, 0x10005, 0xFFFF0007u, IMG_TYPE_U8, nullptr), 1u);
  EXPECT_EQ(img.width, 5);
  EXPECT_EQ(img.height, 7);
}

TEST(ImgCInit, RefusesANullDescriptor) {
  const uint8_t pixel = 0;
  EXPECT_EQ(ImgC_Init(nullptr, 1, 1, IMG_TYPE_U8, &pixel), 0u);
}

// ---- Img_FillBuffer ----

template <class T>
class ImgFillBufferOf : public ::testing::Test {};

using AllTypes = ::testing::Types<uint8_t, int8_t, uint16_t, int16_t, uint32_t, int32_t, float>;
TYPED_TEST_SUITE(ImgFillBufferOf, AllTypes, TypeName);

TYPED_TEST(ImgFillBufferOf, SetsEveryPixelOfEverySize) {
  forEachSize(smallSizes(3), [](Size size, Guard side, lab::Random& random) {
    const uint32_t value = 1 + random.below(100);
    Image<TypeParam> image(size.width, size.height, side);
    EXPECT_EQ(Img_FillBuffer(image, value), 1u);
    EXPECT_TRUE(holds(image, std::vector<TypeParam>(image.size(), static_cast<TypeParam>(value))));
  });
}

TYPED_TEST(ImgFillBufferOf, ClearsEveryPixelOfEverySize) {
  forEachSize(smallSizes(3), [](Size size, Guard side, lab::Random&) {
    Image<TypeParam> image(size.width, size.height, marks<TypeParam>(size.width * size.height), side);
    EXPECT_EQ(Img_FillBuffer(image, 0), 1u);
    EXPECT_TRUE(holds(image, std::vector<TypeParam>(image.size(), TypeParam{0})));
  });
}

namespace {

template <class T>
T filledWith(uint32_t value) {
  Image<T> image(5, 3);
  EXPECT_EQ(Img_FillBuffer(image, value), 1u);
  EXPECT_TRUE(holds(image, std::vector<T>(image.size(), image.at(0, 0))));
  return image.at(0, 0);
}

}  // namespace

TEST(ImgFillBuffer, TakesTheLow8BitsForU8) { EXPECT_EQ(filledWith<uint8_t>(0x1234), 0x34); }
TEST(ImgFillBuffer, TakesTheLow8BitsForS8) { EXPECT_EQ(filledWith<int8_t>(0x12FE), -2); }
TEST(ImgFillBuffer, TakesTheLow16BitsForU16) { EXPECT_EQ(filledWith<uint16_t>(0x1FEDC), 0xFEDC); }
TEST(ImgFillBuffer, TakesTheLow16BitsForS16) { EXPECT_EQ(filledWith<int16_t>(0x12345), 0x2345); }
TEST(ImgFillBuffer, TakesNegativeLow16BitsForS16) { EXPECT_EQ(filledWith<int16_t>(0xFFFE), -2); }
TEST(ImgFillBuffer, TakesAll32BitsForU32) { EXPECT_EQ(filledWith<uint32_t>(0xFEDCBA98u), 0xFEDCBA98u); }
TEST(ImgFillBuffer, TakesAll32BitsForS32) { EXPECT_EQ(filledWith<int32_t>(0xFFFFFFFEu), -2); }
TEST(ImgFillBuffer, ReadsTheValueAsSignedForF32) { EXPECT_EQ(filledWith<float>(0xFFFFFFFFu), -1.0f); }
TEST(ImgFillBuffer, ConvertsTheSmallestIntegerForF32) { EXPECT_EQ(filledWith<float>(0x80000000u), -2147483648.0f); }
TEST(ImgFillBuffer, RoundsLargeValuesForF32) { EXPECT_EQ(filledWith<float>(16777219), 16777220.0f); }

TEST(ImgFillBuffer, WritesZerosWhereOnlyTheLowBitsOfTheValueAreZero) {
  EXPECT_EQ(filledWith<uint8_t>(0x100), 0);
  EXPECT_EQ(filledWith<uint16_t>(0x10000), 0);
}

TEST(ImgFillBuffer, AcceptsZeroForAnUnknownTypeAndWritesNothing) {
  for (uint32_t type : unknownTypes()) {
    SCOPED_TRACE(type);
    Image<uint32_t> image = imageOf(type);
    EXPECT_TRUE(writesNothing(image, [&] { return Img_FillBuffer(image, 0); }));
  }
}

TEST(ImgFillBuffer, RefusesAnotherValueForAnUnknownType) {
  for (uint32_t type : unknownTypes()) {
    SCOPED_TRACE(type);
    Image<uint32_t> image = imageOf(type);
    EXPECT_TRUE(refuses(image, [&] { return Img_FillBuffer(image, 7); }));
  }
}

TEST(ImgFillBuffer, ClearsTheBytesThatTheDescriptorCountsWhateverTheType) {
  Image<uint8_t> image(6, 2, marks<uint8_t>(12));
  image.img.width = 2;
  image.img.type = severalBits;
  image.img.bytesPerPixel = 2;
  EXPECT_EQ(Img_FillBuffer(image, 0), 1u);
  std::vector<uint8_t> wanted = marks<uint8_t>(12);
  std::fill_n(wanted.begin(), 8, uint8_t{0});
  EXPECT_EQ(image.pixels(), wanted);
}

TEST(ImgFillBuffer, RefusesANullImage) {
  EXPECT_EQ(Img_FillBuffer(nullptr, 0), 0u);
  EXPECT_EQ(Img_FillBuffer(nullptr, 7), 0u);
}

// ---- Img_Copy: widening ----

template <class S, class D>
struct Widening {
  using Source = S;
  using Destination = D;
};

template <class Pair>
class ImgCopyWidening : public ::testing::Test {};

struct PairName {
  template <class Pair>
  static std::string GetName(int i) {
    return TypeName::GetName<typename Pair::Source>(i) + "To" + TypeName::GetName<typename Pair::Destination>(i);
  }
};
using WideningPairs =
    ::testing::Types<Widening<uint8_t, uint16_t>, Widening<uint8_t, int16_t>, Widening<uint8_t, uint32_t>,
                     Widening<uint8_t, int32_t>, Widening<int8_t, uint16_t>, Widening<int8_t, int16_t>,
                     Widening<int8_t, uint32_t>, Widening<int8_t, int32_t>, Widening<uint16_t, uint32_t>,
                     Widening<uint16_t, int32_t>, Widening<int16_t, uint32_t>, Widening<int16_t, int32_t>>;
TYPED_TEST_SUITE(ImgCopyWidening, WideningPairs, PairName);

TYPED_TEST(ImgCopyWidening, ExtendsBySignednessOfTheSource) {
  using S = typename TypeParam::Source;
  using D = typename TypeParam::Destination;
  forEachSize(smallSizes(3), [](Size size, Guard side, lab::Random& random) {
    const std::vector<S> pixels = anyPixels<S>(random, size.width * size.height);
    const Image<S> src(size.width, size.height, pixels, side);
    Image<D> dst(size.width, size.height, side);
    std::vector<D> wanted;
    for (S v : pixels) wanted.push_back(static_cast<D>(int64_t{v}));

    const ImgC source = src.readOnly();
    EXPECT_EQ(Img_Copy(&source, dst), 1u);
    EXPECT_TRUE(holds(dst, wanted));
    EXPECT_TRUE(holds(src, pixels));
  });
}

namespace {

template <class D, class S>
D copied(S pixel) {
  const Image<S> src(1, 1, {pixel});
  Image<D> dst(1, 1);
  const ImgC source = src.readOnly();
  EXPECT_EQ(Img_Copy(&source, dst), 1u);
  return dst.at(0, 0);
}

}  // namespace

TEST(ImgCopy, MakesMinusOneInS8TheLargestU16) { EXPECT_EQ(copied<uint16_t>(int8_t{-1}), 65535); }
TEST(ImgCopy, MakesMinusOneInS8TheLargestU32) { EXPECT_EQ(copied<uint32_t>(int8_t{-1}), 4294967295u); }
TEST(ImgCopy, KeepsTheLargestU16InS32) { EXPECT_EQ(copied<int32_t>(uint16_t{65535}), 65535); }
TEST(ImgCopy, KeepsMinusOneFromS16ToS32) { EXPECT_EQ(copied<int32_t>(int16_t{-1}), -1); }

// ---- Img_Copy: bytes unchanged ----

template <class T>
class ImgCopySameType : public ::testing::Test {};
TYPED_TEST_SUITE(ImgCopySameType, AllTypes, TypeName);

TYPED_TEST(ImgCopySameType, CopiesEverySize) {
  forEachSize(smallSizes(3), [](Size size, Guard side, lab::Random& random) {
    Image<TypeParam> src(size.width, size.height, side);
    Image<TypeParam> dst(size.width, size.height, side);
    src.fill(random.values<TypeParam>(src.size(), 250));
    const ImgC source = src.readOnly();
    EXPECT_EQ(Img_Copy(&source, dst), 1u);
    EXPECT_TRUE(holds(dst, src.pixels()));
  });
}

// Every ordered pair of types with pixels of the same size, values that a conversion would change.
TEST(ImgCopy, KeepsTheBytesBetweenAllTypesOfEqualSize) {
  lab::Random random(1);
  const std::vector<uint32_t> bits = anyPixels<uint32_t>(random, 6);
  for (uint32_t from : types) {
    for (uint32_t to : types) {
      if (bytesOf(from) != bytesOf(to)) continue;
      SCOPED_TRACE(testing::Message() << "from " << from << " to " << to);
      Image<uint32_t> src(3, 2, bits), dst(3, 2, marks<uint32_t>(6));
      src.retype(from);
      dst.retype(to);
      std::vector<uint8_t> wanted = bytesOfPixels(dst);
      std::memcpy(wanted.data(), bits.data(), 6u * bytesOf(to));

      const ImgC source = src.readOnly();
      EXPECT_EQ(Img_Copy(&source, dst), 1u);
      EXPECT_EQ(bytesOfPixels(dst), wanted);
    }
  }
}

TEST(ImgCopy, KeepsTheBitsOfAnS32InF32) {
  const Image<int32_t> src{1, -1, 0x3F800000, 0x7F800001};
  Image<float> dst(4, 1);
  const ImgC source = src.readOnly();
  EXPECT_EQ(Img_Copy(&source, dst), 1u);
  EXPECT_EQ(bytesOfPixels(dst), bytesOfPixels(src));
}

TEST(ImgCopy, CountsBytesByTheDestinationsBytesPerPixel) {
  const Image<uint16_t> src{0x1111, 0x2222, 0x3333, 0x4444};
  Image<uint16_t> dst(4, 1, marks<uint16_t>(4));
  dst.img.bytesPerPixel = 1;
  const ImgC source = src.readOnly();
  EXPECT_EQ(Img_Copy(&source, dst), 1u);
  std::vector<uint16_t> wanted = marks<uint16_t>(4);
  wanted[0] = 0x1111;
  wanted[1] = 0x2222;
  EXPECT_TRUE(holds(dst, wanted));
}

TEST(ImgCopy, TakesTheSizeOfAPixelFromTheTypesNotFromTheSourcesDescriptor) {
  Image<uint8_t> src{1, 2, 255};
  src.img.bytesPerPixel = 2;
  Image<uint16_t> dst(3, 1);
  const ImgC source = src.readOnly();
  EXPECT_EQ(Img_Copy(&source, dst), 1u);
  EXPECT_TRUE(holds(dst, {1, 2, 255}));
}

TEST(ImgCopy, TakesTwoUnknownTypesAsEqualAndCopiesNoByte) {
  const Image<uint32_t> src = imageOf(128);
  Image<uint32_t> dst(3, 2, std::vector<uint32_t>(6, 0xDEADBEEFu));
  dst.retype(severalBits);
  const ImgC source = src.readOnly();
  EXPECT_TRUE(writesNothing(dst, [&] { return Img_Copy(&source, dst); }));
}

TEST(ImgCopy, CopiesTwoUnknownTypesByTheDestinationsBytesPerPixel) {
  Image<uint8_t> src{1, 2, 3, 4};
  Image<uint8_t> dst{9, 9, 9, 9};
  src.retype(0);
  dst.retype(severalBits);
  src.img.width = dst.img.width = 1;
  dst.img.bytesPerPixel = 3;
  const ImgC source = src.readOnly();
  EXPECT_EQ(Img_Copy(&source, dst), 1u);
  EXPECT_EQ(dst.pixels(), (std::vector<uint8_t>{1, 2, 3, 9}));
}

TEST(ImgCopy, MayCopyAnImageOntoItself) {
  Image<uint16_t> image{1, 2, 3};
  ImgC source = image.readOnly();
  source.type = IMG_TYPE_S16;
  EXPECT_EQ(Img_Copy(&source, image), 1u);
  EXPECT_TRUE(holds(image, {1, 2, 3}));
}

TEST(ImgCopy, LeavesTheDestinationsDescriptorAlone) {
  const Image<int8_t> src{-1};
  Image<uint32_t> dst(1, 1);
  const Img before = dst.img;
  const ImgC source = src.readOnly();
  EXPECT_EQ(Img_Copy(&source, dst), 1u);
  EXPECT_TRUE(sameDescriptor(dst.img, before));
}

// ---- Img_Copy: refused ----

namespace {

void expectRefusedCopy(uint32_t from, uint32_t to) {
  SCOPED_TRACE(testing::Message() << "from " << from << " to " << to);
  Image<uint32_t> src(3, 2, std::vector<uint32_t>(6, 0xDEADBEEFu));
  src.retype(from);
  Image<uint32_t> dst = imageOf(to);
  const ImgC source = src.readOnly();
  EXPECT_TRUE(refuses(dst, [&] { return Img_Copy(&source, dst); }));
}

}  // namespace

TEST(ImgCopy, RefusesEveryNarrowingPair) {
  for (uint32_t from : types)
    for (uint32_t to : types)
      if (bytesOf(to) < bytesOf(from)) expectRefusedCopy(from, to);
}

TEST(ImgCopy, RefusesToWidenIntoF32) {
  for (uint32_t from : {IMG_TYPE_U8, IMG_TYPE_S8, IMG_TYPE_U16, IMG_TYPE_S16}) expectRefusedCopy(from, IMG_TYPE_F32);
}

TEST(ImgCopy, RefusesAnUnknownSourceType) {
  for (uint32_t from : unknownTypes())
    for (uint32_t to : types) expectRefusedCopy(from, to);
}

TEST(ImgCopy, RefusesAnUnknownDestinationType) {
  for (uint32_t from : types)
    for (uint32_t to : unknownTypes()) expectRefusedCopy(from, to);
}

TEST(ImgCopy, RefusesAnotherWidth) {
  const Image<uint8_t> src(4, 2, std::vector<uint8_t>(8));
  Image<uint8_t> dst(3, 2, marks<uint8_t>(6));
  const ImgC source = src.readOnly();
  EXPECT_TRUE(refuses(dst, [&] { return Img_Copy(&source, dst); }));
}

TEST(ImgCopy, RefusesAnotherHeight) {
  const Image<uint8_t> src(3, 3, std::vector<uint8_t>(9));
  Image<uint8_t> dst(3, 2, marks<uint8_t>(6));
  const ImgC source = src.readOnly();
  EXPECT_TRUE(refuses(dst, [&] { return Img_Copy(&source, dst); }));
}

TEST(ImgCopy, RefusesWidthAndHeightExchanged) {
  const Image<uint8_t> src(2, 3, std::vector<uint8_t>(6));
  Image<uint8_t> dst(3, 2, marks<uint8_t>(6));
  const ImgC source = src.readOnly();
  EXPECT_TRUE(refuses(dst, [&] { return Img_Copy(&source, dst); }));
}

TEST(ImgCopy, RefusesAnotherSizeAlsoBetweenUnknownTypes) {
  Image<uint8_t> src(4, 2), dst(3, 2, marks<uint8_t>(6));
  src.retype(128);
  dst.retype(128);
  const ImgC source = src.readOnly();
  EXPECT_TRUE(refuses(dst, [&] { return Img_Copy(&source, dst); }));
}

TEST(ImgCopy, RefusesANullSource) {
  Image<uint8_t> dst(3, 2, marks<uint8_t>(6));
  EXPECT_TRUE(refuses(dst, [&] { return Img_Copy(nullptr, dst); }));
}

TEST(ImgCopy, RefusesANullDestination) {
  const Image<uint8_t> src(3, 2);
  const ImgC source = src.readOnly();
  EXPECT_EQ(Img_Copy(&source, nullptr), 0u);
}

TEST(ImgCopy, RefusesAnUnsupportedPairAlsoWithoutRows) {
  Image<uint8_t> src(3, 0);
  Image<float> wider(3, 0);
  Image<uint8_t> narrower(3, 0);
  const ImgC bytes = src.readOnly(), floats = wider.readOnly();
  EXPECT_EQ(Img_Copy(&bytes, wider), 0u);
  EXPECT_EQ(Img_Copy(&floats, narrower), 0u);
}

// ---- Img_Convert_I ----

TEST(ImgConvert, MakesNegativePixelsZeroAndKeepsTheOthers) {
  Image<int16_t> image{-5, 0, 7};
  EXPECT_EQ(Img_Convert_I(image, IMG_TYPE_U16), 1u);
  EXPECT_TRUE(holds(image, {0, 0, 7}));
}

TEST(ImgConvert, IsRightAtTheEndsOfTheRange) {
  Image<int16_t> image{-32768, -32767, -1, 1, 32766, 32767};
  EXPECT_EQ(Img_Convert_I(image, IMG_TYPE_U16), 1u);
  EXPECT_TRUE(holds(image, {0, 0, 0, 1, 32766, 32767}));
}

TEST(ImgConvert, ChangesOnlyTheTypeOfTheDescriptor) {
  Image<int16_t> image{-5, 0, 7};
  Img wanted = image.img;
  wanted.type = IMG_TYPE_U16;
  EXPECT_EQ(Img_Convert_I(image, IMG_TYPE_U16), 1u);
  EXPECT_TRUE(sameDescriptor(image.img, wanted));
}

TEST(ImgConvert, ConvertsEverySize) {
  forEachSize(smallSizes(3), [](Size size, Guard side, lab::Random& random) {
    Image<int16_t> image(size.width, size.height, anyPixels<int16_t>(random, size.width * size.height), side);
    std::vector<int16_t> wanted = image.pixels();
    for (int16_t& v : wanted) v = std::max(v, int16_t{0});
    EXPECT_EQ(Img_Convert_I(image, IMG_TYPE_U16), 1u);
    EXPECT_EQ(image.img.type, uint32_t{IMG_TYPE_U16});
    EXPECT_TRUE(holds(image, wanted));
  });
}

TEST(ImgConvert, ChangesTheTypeOfAnImageWithoutRows) {
  Image<int16_t> image(5, 0);
  EXPECT_EQ(Img_Convert_I(image, IMG_TYPE_U16), 1u);
  EXPECT_EQ(image.img.type, uint32_t{IMG_TYPE_U16});
}

TEST(ImgConvert, ChangesTheTypeOfAnImageWithoutColumns) {
  Image<int16_t> image(0, 5);
  EXPECT_EQ(Img_Convert_I(image, IMG_TYPE_U16), 1u);
  EXPECT_EQ(image.img.type, uint32_t{IMG_TYPE_U16});
}

TEST(ImgConvert, RefusesEveryOtherTypeOfImage) {
  for (uint32_t type : typesOtherThan({IMG_TYPE_S16})) {
    SCOPED_TRACE(type);
    Image<uint32_t> image(3, 2, std::vector<uint32_t>(6, 0xDEADBEEFu));
    image.retype(type);
    EXPECT_TRUE(refuses(image, [&] { return Img_Convert_I(image, IMG_TYPE_U16); }));
  }
}

TEST(ImgConvert, RefusesEveryOtherNewType) {
  for (uint32_t type : typesOtherThan({IMG_TYPE_U16})) {
    SCOPED_TRACE(type);
    Image<int16_t> image{-5, 0, 7};
    EXPECT_TRUE(refuses(image, [&] { return Img_Convert_I(image, type); }));
  }
}

TEST(ImgConvert, RefusesANullImage) { EXPECT_EQ(Img_Convert_I(nullptr, IMG_TYPE_U16), 0u); }

}  // namespace nadir::test
