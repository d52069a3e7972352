// Matching costs of a row, in both layouts.
#include <gtest/gtest.h>
#include <nadir/nadir.h>

#include "lab/random.hpp"
#include "tests/models/stereo.hpp"
#include "tests/support/guarded.hpp"
#include "tests/support/same.hpp"

namespace nadir::test {
namespace {

using model::Bytes;
using model::Codes;
using model::Variant;

constexpr uint32_t numRows = 9, innerRow = 4;
constexpr uint32_t stride = 64;
constexpr uint8_t garbage = 0xEE;

struct Row {
  uint32_t height = numRows;
  uint32_t row = innerRow;
  Guard side = Guard::behind;
};

Bytes costRow(Variant variant, const Codes& first, const Codes& ref, uint32_t numDisparities, Row at = {}) {
  const bool isScalar = variant == Variant::scalar;
  const uint32_t width = static_cast<uint32_t>(ref.size());
  const Guarded<uint32_t> firstRow(first, at.side), refRow(ref, at.side);
  const Guarded<uint8_t> costs(Bytes(size_t{width} * (isScalar ? numDisparities : stride), garbage), at.side);
  const auto function = isScalar ? SGM_CalcDsiRow : SGM_CalcDsiRow_neon;
  function(firstRow.data(), refRow.data(), width, at.height, numDisparities, at.row, costs.data());
  EXPECT_TRUE(same(first, firstRow.values()));
  EXPECT_TRUE(same(ref, refRow.values()));
  return costs.values();
}

// Codes as the census makes them: 24 bits, or invalid (one in eight).
Codes censusCodes(lab::Random& random, uint32_t width) {
  Codes codes = random.values<uint32_t>(width, 1u << 24);
  for (uint32_t& code : codes) {
    if (random.below(8) == 0) code = CENSUS_INVALID;
  }
  return codes;
}

// Codes with any top byte; many are invalid or differ from it in a single bit.
Codes anyCodes(lab::Random& random, uint32_t width) {
  Codes codes(width);
  for (uint32_t& code : codes) {
    const uint32_t kind = random.below(6);
    code = random.next();
    if (kind == 0) code = CENSUS_INVALID;
    if (kind == 1) code = CENSUS_INVALID ^ 1u << random.below(32);
    if (kind == 2) code &= 0xFFFFFF;
    if (kind == 3) code &= 0x01FFFFFF;
  }
  return codes;
}

class CostRow : public ::testing::TestWithParam<Variant> {
 protected:
  Bytes row(const Codes& first, const Codes& ref, uint32_t numDisparities = 64, Row at = {}) const {
    return costRow(GetParam(), first, ref, numDisparities, at);
  }
};

TEST_P(CostRow, IsTheNumberOfDifferingBits) {
  Codes first(70, 0), ref(70, 0xFFFFFF);
  for (uint32_t bits = 0; bits <= 24; ++bits) first[10 + bits] = (1u << bits) - 1;
  const Bytes costs = row(first, ref);
  for (uint32_t bits = 0; bits <= 24; ++bits) EXPECT_EQ(costs[10 * stride + bits], 24 - bits);
}

TEST_P(CostRow, ComparesReferenceColumnXWithFirstColumnXPlusD) {
  Codes first(70, 0xFFFFFF), ref(70, 0);
  first[40] = 0;
  const Bytes costs = row(first, ref);
  for (uint32_t x = 2; x < 68; ++x) {
    for (uint32_t d = 0; d < 64; ++d) EXPECT_EQ(costs[x * stride + d], x + d == 40 ? 0 : 24) << x << ", " << d;
  }
}

TEST_P(CostRow, InvalidReferencePixelCosts24) {
  Codes first(80, 0x123456), ref(80, 0x123456);
  ref[30] = CENSUS_INVALID;
  const Bytes costs = row(first, ref);
  for (uint32_t d = 0; d < 64; ++d) EXPECT_EQ(costs[30 * stride + d], 24);
  EXPECT_EQ(costs[29 * stride], 0);
  EXPECT_EQ(costs[31 * stride], 0);
}

TEST_P(CostRow, InvalidFirstPixelCosts24) {
  Codes first(80, 0x123456), ref(80, 0x123456);
  first[30] = CENSUS_INVALID;
  const Bytes costs = row(first, ref);
  for (uint32_t x = 2; x <= 30; ++x) {
    EXPECT_EQ(costs[x * stride + 30 - x], 24) << x;
    EXPECT_EQ(costs[x * stride + 31 - x], 0) << x;
  }
}

TEST_P(CostRow, TwoInvalidPixelsCost24ThoughTheirCodesAreEqual) {
  const Codes invalid(40, CENSUS_INVALID);
  EXPECT_TRUE(same(Bytes(40 * stride, 24), row(invalid, invalid)));
}

TEST_P(CostRow, BorderRowsAre24) {
  const Codes equal(40, 0x00F00F);
  for (const uint32_t border : {0u, 1u, numRows - 2, numRows - 1}) {
    EXPECT_TRUE(same(Bytes(40 * stride, 24), row(equal, equal, 64, {numRows, border}))) << border;
  }
}

TEST_P(CostRow, RowsBetweenTheBordersAreComputed) {
  const Codes equal(40, 0x00F00F);
  for (uint32_t y = 2; y + 2 < numRows; ++y) EXPECT_EQ(row(equal, equal, 64, {numRows, y})[2 * stride], 0) << y;
}

TEST_P(CostRow, PicturesBelowFiveRowsAre24Everywhere) {
  const Codes equal(40, 0x00F00F);
  for (uint32_t height = 1; height < 5; ++height) {
    for (uint32_t y = 0; y < height; ++y) {
      EXPECT_TRUE(same(Bytes(40 * stride, 24), row(equal, equal, 64, {height, y}))) << y << " of " << height;
    }
  }
}

TEST_P(CostRow, WidthsThreeAndFourAre24Everywhere) {
  for (const uint32_t width : {3u, 4u}) {
    const Codes equal(width, 0x00F00F);
    EXPECT_TRUE(same(Bytes(width * stride, 24), row(equal, equal))) << width;
  }
}

TEST_P(CostRow, WidthFiveHasOneComputedCost) {
  const Codes equal(5, 0x00F00F);
  Bytes want(5 * stride, 24);
  want[2 * stride] = 0;
  EXPECT_TRUE(same(want, row(equal, equal)));
}

TEST_P(CostRow, BorderColumnsAre24) {
  const Codes equal(90, 0);
  const Bytes costs = row(equal, equal);
  for (const uint32_t x : {0u, 1u, 88u, 89u}) {
    for (uint32_t d = 0; d < 64; ++d) EXPECT_EQ(costs[x * stride + d], 24) << x << ", " << d;
  }
}

TEST_P(CostRow, ComputedCostsReachTheThirdColumnFromTheRight) {
  constexpr uint32_t width = 90;
  const Codes equal(width, 0);
  const Bytes costs = row(equal, equal);
  for (uint32_t k = 0; k <= width - 5; ++k) {
    const uint32_t x = width - 3 - k;
    const uint32_t computed = std::min(k + 1, 64u);
    for (uint32_t d = 0; d < 64; ++d) EXPECT_EQ(costs[x * stride + d], d < computed ? 0 : 24) << x << ", " << d;
  }
}

TEST_P(CostRow, CodesOfTheTwoBorderColumnsDoNotCount) {
  lab::Random random(3);
  Codes first = censusCodes(random, 75), ref = censusCodes(random, 75);
  const Bytes want = row(first, ref);
  for (const size_t x : {0u, 1u, 73u, 74u}) first[x] = ref[x] = random.next();
  EXPECT_TRUE(same(want, row(first, ref)));
}

TEST_P(CostRow, EveryCostOfCensusCodesIsAtMost24) {
  lab::Random random(4);
  const Codes first = censusCodes(random, 140), ref = censusCodes(random, 140);
  const Bytes costs = row(first, ref);
  EXPECT_LE(*std::max_element(costs.begin(), costs.end()), 24);
}

TEST_P(CostRow, EqualsTheModelForCensusCodesOfEveryWidth) {
  for (uint32_t width = 3; width <= 140; ++width) {
    lab::Random random(width);
    const Codes first = censusCodes(random, width), ref = censusCodes(random, width);
    const uint32_t y = random.below(numRows);
    const Bytes want = model::costRow(first, ref, numRows, 64, y, GetParam());
    EXPECT_TRUE(same(want, row(first, ref, 64, {numRows, y, Guard::behind}))) << width;
    EXPECT_TRUE(same(want, row(first, ref, 64, {numRows, y, Guard::before}))) << width;
  }
}

TEST_P(CostRow, EqualsTheModelForCodesWithAnyTopByte) {
  for (uint32_t width = 3; width <= 140; ++width) {
    lab::Random random(1000 + width);
    const Codes first = anyCodes(random, width), ref = anyCodes(random, width);
    const Bytes want = model::costRow(first, ref, numRows, 64, innerRow, GetParam());
    EXPECT_TRUE(same(want, row(first, ref))) << width;
  }
}

TEST_P(CostRow, EqualsTheModelForEveryNumberOfDisparities) {
  for (uint32_t numDisparities = 0; numDisparities <= 64; ++numDisparities) {
    for (const uint32_t width : {3u, 5u, 20u, 64u, 71u}) {
      lab::Random random(2000 + numDisparities * 100 + width);
      const Codes first = anyCodes(random, width), ref = anyCodes(random, width);
      const Bytes want = model::costRow(first, ref, numRows, numDisparities, innerRow, GetParam());
      EXPECT_TRUE(same(want, row(first, ref, numDisparities))) << numDisparities << " at " << width;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Variants, CostRow, ::testing::Values(Variant::scalar, Variant::vector),
                         [](const auto& tested) { return tested.param == Variant::scalar ? "Scalar" : "Vector"; });

TEST(CostRowScalar, StrideIsTheNumberOfDisparities) {
  const Codes equal(12, 0);
  Bytes want(12 * 3, 24);
  for (uint32_t x = 2; x < 10; ++x) {
    for (uint32_t d = 0; d < std::min(3u, 10 - x); ++d) want[x * 3 + d] = 0;
  }
  EXPECT_TRUE(same(want, costRow(Variant::scalar, equal, equal, 3)));
}

TEST(CostRowScalar, TakesMoreThan64Disparities) {
  for (const uint32_t numDisparities : {65u, 100u, 128u, 256u}) {
    lab::Random random(numDisparities);
    const Codes first = censusCodes(random, 140), ref = censusCodes(random, 140);
    const Bytes want = model::costRow(first, ref, numRows, numDisparities, innerRow, Variant::scalar);
    EXPECT_TRUE(same(want, costRow(Variant::scalar, first, ref, numDisparities))) << numDisparities;
  }
}

TEST(CostRowScalar, OnlyTheExactInvalidCodeCosts24) {
  const Codes first(6, CENSUS_INVALID ^ 1), ref(6, CENSUS_INVALID ^ 1);
  EXPECT_EQ(costRow(Variant::scalar, first, ref, 64)[2 * stride], 0);
}

TEST(CostRowVector, StrideIs64WhateverTheNumberOfDisparities) {
  const Codes equal(100, 0);
  for (const uint32_t numDisparities : {0u, 1u, 15u, 16u, 17u, 33u, 63u}) {
    const Bytes costs = costRow(Variant::vector, equal, equal, numDisparities);
    for (uint32_t d = 0; d < 64; ++d) EXPECT_EQ(costs[20 * stride + d], d < numDisparities ? 0 : 24);
  }
}

// 18 columns from x to the third from the right: a block of 16 and a tail of 2.
constexpr uint32_t firstColumn = 2, tailWidth = firstColumn + 18 + 2;

TEST(CostRowVector, TopBitsOfTheFirstCodeCountInEachLowByteOfABlock) {
  const Codes first(tailWidth, 0x05000000), ref(tailWidth, 0);
  const Bytes costs = costRow(Variant::vector, first, ref, 64);
  for (uint32_t d = 0; d < 16; ++d) EXPECT_EQ(costs[firstColumn * stride + d], 6) << d;
}

TEST(CostRowVector, TopBitsOfTheReferenceCodeCountInEachLowByteOfABlock) {
  const Codes first(tailWidth, 0), ref(tailWidth, 0x05000000);
  const Bytes costs = costRow(Variant::vector, first, ref, 64);
  for (uint32_t d = 0; d < 16; ++d) EXPECT_EQ(costs[firstColumn * stride + d], 6) << d;
}

TEST(CostRowVector, TopBytesOfABlockAreOredNotCompared) {
  const Codes first(tailWidth, 0x03000000), ref(tailWidth, 0x03000000);
  EXPECT_EQ(costRow(Variant::vector, first, ref, 64)[firstColumn * stride], 6);
}

TEST(CostRowVector, FullTopByteCosts24InABlockWhateverTheLowBytes) {
  const Codes first(tailWidth, 0xFF123456), ref(tailWidth, 0x00123456);
  EXPECT_EQ(costRow(Variant::vector, first, ref, 64)[firstColumn * stride], 24);
}

TEST(CostRowVector, DisparitiesBehindTheLastBlockComparePlainCodes) {
  const Codes first(tailWidth, 0xFF123456), ref(tailWidth, 0x00123456);
  const Bytes costs = costRow(Variant::vector, first, ref, 64);
  EXPECT_EQ(costs[firstColumn * stride + 16], 8);
  EXPECT_EQ(costs[firstColumn * stride + 17], 8);
}

TEST(CostRowVector, EqualsTheScalarOneForCensusCodes) {
  for (uint32_t width = 3; width <= 140; ++width) {
    lab::Random random(3000 + width);
    const Codes first = censusCodes(random, width), ref = censusCodes(random, width);
    EXPECT_TRUE(same(costRow(Variant::scalar, first, ref, 64), costRow(Variant::vector, first, ref, 64))) << width;
  }
}

}  // namespace
}  // namespace nadir::test
