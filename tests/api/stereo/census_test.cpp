// Census codes.
#include <gtest/gtest.h>
#include <nadir/nadir.h>

#include "lab/random.hpp"
#include "tests/models/stereo.hpp"
#include "tests/support/guarded.hpp"
#include "tests/support/same.hpp"

namespace nadir::test {
namespace {

using model::Codes;
using model::Words;

constexpr uint32_t untouched = 0x5EED1234;
constexpr size_t centreIndex = 12;

Codes censusOf(const Words& src, uint32_t width, uint32_t height, Guard side = Guard::behind) {
  const Guarded<uint16_t> in(src, side);
  const Guarded<uint32_t> out(Codes(src.size(), untouched), side);
  IP_Census_5x5(in.data(), out.data(), width, height);
  return out.values();
}

// The code of the centre of a 5x5 picture, its only pixel with a whole neighbourhood.
uint32_t centreCode(const Words& patch) { return censusOf(patch, 5, 5)[centreIndex]; }

// A 5x5 picture of `around` whose centre is `centre`.
Words patch(uint16_t centre, uint16_t around) {
  Words values(25, around);
  values[centreIndex] = centre;
  return values;
}

TEST(Census, CodeOfPixelWithoutDataIsTheDocumentedConstant) { EXPECT_EQ(CENSUS_INVALID, 0xFFAAA555u); }

TEST(Census, CentreOfZeroIsInvalidWhateverItsNeighbours) {
  EXPECT_EQ(centreCode(patch(0, 0)), CENSUS_INVALID);
  EXPECT_EQ(centreCode(patch(0, 1)), CENSUS_INVALID);
  EXPECT_EQ(centreCode(patch(0, 65535)), CENSUS_INVALID);
}

TEST(Census, FlatPatchIsZero) {
  EXPECT_EQ(centreCode(patch(1, 1)), 0u);
  EXPECT_EQ(centreCode(patch(65535, 65535)), 0u);
}

TEST(Census, StrictMaximumSetsAllBits) { EXPECT_EQ(centreCode(patch(1001, 1000)), 0xFFFFFFu); }

TEST(Census, StrictMinimumSetsNoBit) { EXPECT_EQ(centreCode(patch(999, 1000)), 0u); }

TEST(Census, EqualNeighbourLeavesItsBitClear) {
  Words values = patch(1000, 1);
  values[0] = 1000;
  EXPECT_EQ(centreCode(values), 0x7FFFFFu);
}

TEST(Census, NeighboursFillTheCodeRowByRowFromBit23) {
  uint32_t bit = 23;
  for (size_t i = 0; i < 25; ++i) {
    if (i == centreIndex) continue;
    Words values = patch(1000, 2000);
    values[i] = 999;
    EXPECT_EQ(centreCode(values), 1u << bit) << "neighbour " << i;
    --bit;
  }
}

TEST(Census, NeighbourOfZeroTakesPartLikeAnyOther) {
  Words values = patch(1, 1);
  values[0] = 0;
  EXPECT_EQ(centreCode(values), 0x800000u);
}

TEST(Census, ComparesUnsigned) {
  EXPECT_EQ(centreCode(patch(0x8000, 0x7FFF)), 0xFFFFFFu);
  EXPECT_EQ(centreCode(patch(0x7FFF, 0x8000)), 0u);
  EXPECT_EQ(centreCode(patch(0xFFFF, 0x0001)), 0xFFFFFFu);
  EXPECT_EQ(centreCode(patch(0x0001, 0xFFFF)), 0u);
}

TEST(Census, FrameOfTwoPixelsKeepsWhatItHeld) {
  constexpr uint32_t width = 37, height = 9;
  const Codes out = censusOf(lab::Random(1).values<uint16_t>(width * height, 65536), width, height);
  for (uint32_t y = 0; y < height; ++y) {
    for (uint32_t x = 0; x < width; ++x) {
      const bool inside = x >= 2 && x + 2 < width && y >= 2 && y + 2 < height;
      EXPECT_EQ(out[y * width + x] == untouched, !inside) << x << ", " << y;
    }
  }
}

TEST(Census, PictureSmallerThanTheWindowWritesNothing) {
  for (uint32_t side = 0; side < 5; ++side) {
    for (const auto& [width, height] : {std::pair{side, 9u}, std::pair{9u, side}, std::pair{side, side}}) {
      const size_t pixels = size_t{width} * height;
      EXPECT_TRUE(same(Codes(pixels, untouched), censusOf(Words(pixels, 7), width, height))) << width << "x" << height;
    }
  }
}

TEST(Census, InputIsOnlyRead) {
  const Words src = lab::Random(2).values<uint16_t>(20 * 8, 65536);
  const Guarded<uint16_t> in(src);
  const Guarded<uint32_t> out(20 * 8);
  IP_Census_5x5(in.data(), out.data(), 20, 8);
  EXPECT_TRUE(same(src, in.values()));
}

// Few different values make equal neighbours and pixels without data frequent.
void expectModel(uint32_t width, uint32_t height, uint32_t values) {
  const Words src = lab::Random(width * 131 + height).values<uint16_t>(size_t{width} * height, values);
  const Codes want = model::census(src, width, height, Codes(src.size(), untouched));
  for (const Guard side : {Guard::behind, Guard::before}) {
    EXPECT_TRUE(same(want, censusOf(src, width, height, side))) << width << "x" << height << " of " << values;
  }
}

TEST(Census, EqualsTheModelForEveryWidth) {
  for (uint32_t width = 5; width <= 140; ++width) expectModel(width, 5 + width % 8, width % 2 ? 4 : 65536);
}

TEST(Census, EqualsTheModelForEveryHeight) {
  for (uint32_t height = 5; height <= 12; ++height) expectModel(21, height, 1000);
}

}  // namespace
}  // namespace nadir::test
