// Path costs of each direction, row by row.
#include <gtest/gtest.h>
#include <nadir/nadir.h>

#include <cstring>
#include <memory>

#include "lab/random.hpp"
#include "tests/models/stereo.hpp"
#include "tests/support/guarded.hpp"
#include "tests/support/same.hpp"

namespace nadir::test {
namespace {

using model::Bytes;
using model::Variant;

constexpr uint32_t allDirections[] = {PC_DIR_LEFT, PC_DIR_UPLEFT, PC_DIR_UP, PC_DIR_UPRIGHT};
constexpr uint8_t startCost = 248;  // 255 - 7

// A record that gives its buffers back, ready for the first row of an image.
class Pc {
 public:
  Pc(uint32_t dir, uint32_t width, uint32_t numDisparities, int32_t p1 = 7) {
    EXPECT_EQ(PC_Init(&record, dir, width, numDisparities, p1), 1);
    PC_NextFrame(&record);
  }
  ~Pc() { PC_Destroy(&record); }
  Pc(const Pc&) = delete;
  Pc& operator=(const Pc&) = delete;

  PcBuffer record;
};

Bytes bytesAt(const uint8_t* from, size_t count) { return Bytes(from, from + count); }

// Runs one row on guarded copies and returns the sums.
Bytes nextRow(PcBuffer& pc, Variant variant, const Bytes& costs, const Bytes& p2, const Bytes& sums,
              Guard side = Guard::behind) {
  const Guarded<uint8_t> costRow(costs, side), p2Row(p2, side), sumRow(sums, side);
  (variant == Variant::scalar ? PC_NextRow : PC_NextRow_neon)(&pc, costRow.data(), p2Row.data(), sumRow.data());
  return sumRow.values();
}

// ---- the record ----

bool isAllZero(const PcBuffer& pc) {
  const PcBuffer zero{};
  return pc.width == zero.width && pc.numDisparities == 0 && !pc.costsA && !pc.costsB && pc.costsSize == 0 &&
         pc.costStride == 0 && !pc.minA && !pc.minB && pc.minSize == 0 && pc.minStride == 0 && !pc.prevCosts &&
         !pc.curCosts && !pc.prevMin && !pc.curMin && pc.dir == 0 && pc.p1 == 0 && pc.fillValue == 0;
}

PcBuffer garbageRecord() {
  PcBuffer pc;
  std::memset(&pc, 0xA5, sizeof pc);
  return pc;
}

TEST(PathCostInit, NullRecordFails) { EXPECT_EQ(PC_Init(nullptr, PC_DIR_UP, 8, 64, 7), 0); }

TEST(PathCostInit, DirectionAboveThreeFailsAndLeavesTheRecordAllZero) {
  for (const uint32_t dir : {4u, 5u, 0x80000000u, 0xFFFFFFFFu}) {
    PcBuffer pc = garbageRecord();
    EXPECT_EQ(PC_Init(&pc, dir, 8, 64, 7), 0);
    EXPECT_TRUE(isAllZero(pc)) << dir;
  }
}

TEST(PathCostInit, CostsWhoseSizeNeeds33BitsFailAndLeaveTheRecordAllZero) {
  PcBuffer pc = garbageRecord();
  EXPECT_EQ(PC_Init(&pc, PC_DIR_UP, 1 << 26, 64, 7), 0);
  EXPECT_TRUE(isAllZero(pc));
}

TEST(PathCostInit, RefusedRecordCanBeDestroyed) {
  PcBuffer pc = garbageRecord();
  ASSERT_EQ(PC_Init(&pc, 4, 8, 64, 7), 0);
  PC_Destroy(&pc);
  EXPECT_TRUE(isAllZero(pc));
}

TEST(PathCostInit, StoresArgumentsAndSizesOfEachDirection) {
  constexpr uint32_t slot = 64 + 16;
  struct Sizes {
    uint32_t dir, costs, mins, costStride, minStride;
  };
  for (const Sizes want : {Sizes{PC_DIR_LEFT, slot, 1, 0, 0}, Sizes{PC_DIR_UPLEFT, 11 * slot, 11, slot, 1},
                           Sizes{PC_DIR_UP, 10 * slot, 10, slot, 1}, Sizes{PC_DIR_UPRIGHT, 11 * slot, 11, slot, 1}}) {
    const Pc pc(want.dir, 10, 64, 7);
    EXPECT_EQ(pc.record.width, 10u);
    EXPECT_EQ(pc.record.numDisparities, 64u);
    EXPECT_EQ(pc.record.costsSize, want.costs);
    EXPECT_EQ(pc.record.costStride, want.costStride);
    EXPECT_EQ(pc.record.minSize, want.mins);
    EXPECT_EQ(pc.record.minStride, want.minStride);
    EXPECT_EQ(pc.record.dir, want.dir);
    EXPECT_EQ(pc.record.p1, 7u);
    EXPECT_EQ(pc.record.fillValue, ~7u);
  }
}

TEST(PathCostInit, AllocatesFourDistinctBuffers) {
  const Pc pc(PC_DIR_UP, 10, 64);
  const std::vector<const uint8_t*> buffers{pc.record.costsA, pc.record.costsB, pc.record.minA, pc.record.minB};
  for (size_t i = 0; i < 4; ++i) {
    ASSERT_NE(buffers[i], nullptr);
    for (size_t j = 0; j < i; ++j) EXPECT_NE(buffers[i], buffers[j]);
  }
}

TEST(PathCostInit, OverwritesWhateverTheRecordHeld) {
  PcBuffer pc = garbageRecord();
  ASSERT_EQ(PC_Init(&pc, PC_DIR_UP, 3, 16, 7), 1);
  EXPECT_EQ(pc.prevCosts, nullptr);
  EXPECT_EQ(pc.curCosts, nullptr);
  EXPECT_EQ(pc.prevMin, nullptr);
  EXPECT_EQ(pc.curMin, nullptr);
  PC_Destroy(&pc);
}

TEST(PathCostInit, FillValueIsTheComplementOfP1) {
  for (const int32_t p1 : {0, 1, 255, 256, -1, -8}) {
    const Pc pc(PC_DIR_LEFT, 4, 16, p1);
    EXPECT_EQ(pc.record.p1, static_cast<uint32_t>(p1));
    EXPECT_EQ(pc.record.fillValue, ~static_cast<uint32_t>(p1));
  }
}

TEST(PathCostDestroy, SetsTheFourPointersToNullAndMayBeCalledTwice) {
  PcBuffer pc;
  ASSERT_EQ(PC_Init(&pc, PC_DIR_UPLEFT, 10, 64, 7), 1);
  for (int call = 0; call < 2; ++call) {
    PC_Destroy(&pc);
    EXPECT_EQ(pc.costsA, nullptr);
    EXPECT_EQ(pc.costsB, nullptr);
    EXPECT_EQ(pc.minA, nullptr);
    EXPECT_EQ(pc.minB, nullptr);
  }
}

TEST(PathCostDestroy, AllZeroRecordIsHarmless) {
  PcBuffer pc{};
  PC_Destroy(&pc);
  EXPECT_TRUE(isAllZero(pc));
}

// ---- positions ----

struct Positions {
  const uint8_t *prevCosts, *curCosts, *prevMin, *curMin;
};

void expectPositions(const Positions& want, const PcBuffer& pc) {
  EXPECT_EQ(pc.prevCosts, want.prevCosts);
  EXPECT_EQ(pc.curCosts, want.curCosts);
  EXPECT_EQ(pc.prevMin, want.prevMin);
  EXPECT_EQ(pc.curMin, want.curMin);
}

Positions firstPositions(const PcBuffer& pc) {
  if (pc.dir == PC_DIR_UPLEFT) return {pc.costsB, pc.costsA + pc.costStride, pc.minB, pc.minA + 1};
  if (pc.dir == PC_DIR_UPRIGHT) return {pc.costsB + pc.costStride, pc.costsA, pc.minB + 1, pc.minA};
  return {pc.costsA, pc.costsA, pc.minA, pc.minA};
}

Positions secondPositions(const PcBuffer& pc) {
  if (pc.dir == PC_DIR_UPLEFT) return {pc.costsA, pc.costsB + pc.costStride, pc.minA, pc.minB + 1};
  if (pc.dir == PC_DIR_UPRIGHT) return {pc.costsA + pc.costStride, pc.costsB, pc.minA + 1, pc.minB};
  return firstPositions(pc);
}

class PathCostOf : public ::testing::TestWithParam<uint32_t> {};

TEST_P(PathCostOf, ResetFillsCostsWithTheStartValueAndMinimaWithZero) {
  Pc pc(GetParam(), 5, 32, 7);
  for (uint8_t* costs : {pc.record.costsA, pc.record.costsB}) std::memset(costs, 1, pc.record.costsSize);
  for (uint8_t* min : {pc.record.minA, pc.record.minB}) std::memset(min, 1, pc.record.minSize);
  PC_ResetBuffer(&pc.record);
  const Bytes costs(pc.record.costsSize, startCost), mins(pc.record.minSize, 0);
  EXPECT_TRUE(same(costs, bytesAt(pc.record.costsA, costs.size())));
  EXPECT_TRUE(same(costs, bytesAt(pc.record.costsB, costs.size())));
  EXPECT_TRUE(same(mins, bytesAt(pc.record.minA, mins.size())));
  EXPECT_TRUE(same(mins, bytesAt(pc.record.minB, mins.size())));
}

TEST_P(PathCostOf, ResetValueIsTheLowByteOf255MinusP1) {
  for (const int32_t p1 : {0, 100, 255, 256 + 7, -1}) {
    const Pc pc(GetParam(), 3, 16, p1);
    EXPECT_EQ(pc.record.costsA[0], model::low8(255 - p1)) << p1;
    EXPECT_EQ(pc.record.costsB[pc.record.costsSize - 1], model::low8(255 - p1)) << p1;
  }
}

TEST_P(PathCostOf, ResetSetsThePositionsOfAFirstRow) {
  Pc pc(GetParam(), 5, 32);
  PC_SwapBuffer(&pc.record);
  PC_ResetBuffer(&pc.record);
  expectPositions(firstPositions(pc.record), pc.record);
}

TEST_P(PathCostOf, NextFrameSetsThePositionsOfAFirstRow) {
  Pc pc(GetParam(), 5, 32);
  PC_SwapBuffer(&pc.record);
  PC_NextFrame(&pc.record);
  expectPositions(firstPositions(pc.record), pc.record);
}

TEST_P(PathCostOf, SwapAlternatesTheBuffersOfDiagonalPathsOnly) {
  Pc pc(GetParam(), 5, 32);
  PC_SwapBuffer(&pc.record);
  expectPositions(secondPositions(pc.record), pc.record);
  PC_SwapBuffer(&pc.record);
  expectPositions(firstPositions(pc.record), pc.record);
}

INSTANTIATE_TEST_SUITE_P(Directions, PathCostOf, ::testing::ValuesIn(allDirections),
                         [](const auto& tested) { return std::to_string(tested.param); });

// ---- rows ----

struct Way {
  uint32_t dir;
  Variant variant;
};

std::vector<Way> allWays() {
  std::vector<Way> ways;
  for (const uint32_t dir : allDirections) {
    for (const Variant variant : {Variant::scalar, Variant::vector}) ways.push_back({dir, variant});
  }
  return ways;
}

class PathCostRow : public ::testing::TestWithParam<Way> {
 protected:
  uint32_t dir() const { return GetParam().dir; }

  Bytes run(Pc& pc, const Bytes& costs, const Bytes& p2, const Bytes& sums, Guard side = Guard::behind) const {
    return nextRow(pc.record, GetParam().variant, costs, p2, sums, side);
  }

  // Sums of a row that start at 0: the path costs themselves.
  Bytes pathCosts(Pc& pc, const Bytes& costs, const Bytes& p2) const {
    return run(pc, costs, p2, Bytes(costs.size(), 0));
  }

  void expectModel(uint32_t width, uint32_t numDisparities, int32_t p1, uint32_t costBound, uint32_t p2Bound,
                   uint32_t rows, Guard side) const {
    lab::Random random(width * 1000 + numDisparities);
    Pc pc(dir(), width, numDisparities, p1);
    model::Path path(dir(), width, numDisparities, p1);
    for (uint32_t y = 0; y < rows; ++y) {
      const Bytes costs = random.values<uint8_t>(size_t{width} * numDisparities, costBound);
      const Bytes p2 = random.values<uint8_t>(width, p2Bound);
      Bytes want = random.values<uint8_t>(costs.size(), 256);
      const Bytes got = run(pc, costs, p2, want, side);
      path.nextRow(costs, p2, want);
      ASSERT_TRUE(same(want, got)) << "row " << y << ", width " << width << ", D " << numDisparities << ", P1 " << p1;
      expectSlots(path, pc.record, y);
    }
  }

 private:
  // The state that the row left in the buffers for the next one.
  void expectSlots(const model::Path& path, const PcBuffer& pc, uint32_t row) const {
    const bool swapped = row % 2 == 1;
    const uint8_t* costs = dir() % 2 == 1 && swapped ? pc.costsB : pc.costsA;
    const uint8_t* mins = dir() % 2 == 1 && swapped ? pc.minB : pc.minA;
    const uint32_t firstSlot = dir() == PC_DIR_UPLEFT ? 1 : 0;
    const auto& slots = path.slots();
    for (uint32_t x = dir() == PC_DIR_LEFT ? pc.width - 1 : 0; x < pc.width; ++x) {
      ASSERT_TRUE(same(slots[x].costs, bytesAt(costs + (firstSlot + x) * pc.costStride, pc.numDisparities)));
      ASSERT_EQ(slots[x].smallest, mins[(firstSlot + x) * pc.minStride]);
    }
  }
};

TEST_P(PathCostRow, FirstPixelOfAPathCostsItsMatchPlusP2) {
  Pc pc(dir(), 1, 32);
  Bytes want(32), costs(32);
  for (size_t d = 0; d < 32; ++d) costs[d] = static_cast<uint8_t>(d % 25), want[d] = static_cast<uint8_t>(d % 25 + 39);
  EXPECT_TRUE(same(want, pathCosts(pc, costs, {39})));
}

TEST_P(PathCostRow, PixelsWithoutPredecessorStartAgainInEveryRow) {
  constexpr uint32_t width = 6, d = 16;
  Pc pc(dir(), width, d);
  for (uint32_t y = 0; y < 5; ++y) {
    const Bytes costs = pathCosts(pc, Bytes(width * d, 5), Bytes(width, 20));
    for (uint32_t x = 0; x < width; ++x) {
      const bool starts = (dir() == PC_DIR_LEFT && x == 0) || (dir() == PC_DIR_UPLEFT && (x == 0 || y == 0)) ||
                          (dir() == PC_DIR_UP && y == 0) || (dir() == PC_DIR_UPRIGHT && (x + 1 == width || y == 0));
      // A flat predecessor adds nothing: its own cost minus its minimum is 0.
      EXPECT_EQ(costs[x * d], starts ? 25 : 5) << x << ", " << y;
    }
  }
}

TEST_P(PathCostRow, DisparityStepOfOneCostsP1) {
  constexpr uint32_t d = 16;
  Pc pc(dir(), 2, d);
  Bytes costs(2 * d, 24);
  costs[8] = costs[d + 8] = 0;  // both pixels match at disparity 8
  const Bytes p2(2, 39);
  pathCosts(pc, costs, p2);
  const Bytes second = pathCosts(pc, costs, p2);
  const uint32_t x = dir() == PC_DIR_LEFT || dir() == PC_DIR_UPLEFT ? 1 : 0;
  EXPECT_EQ(second[x * d + 8], 0);
  EXPECT_EQ(second[x * d + 7], 24 + 7);
  EXPECT_EQ(second[x * d + 9], 24 + 7);
  EXPECT_EQ(second[x * d + 6], 24 + 24);
  EXPECT_EQ(second[x * d + 10], 24 + 24);
}

TEST_P(PathCostRow, AnyDisparityStepCostsAtMostP2) {
  constexpr uint32_t d = 16;
  Pc pc(dir(), 2, d);
  Bytes costs(2 * d, 24);
  costs[8] = costs[d + 8] = 0;
  const Bytes p2(2, 17);
  pathCosts(pc, costs, p2);
  const Bytes second = pathCosts(pc, costs, p2);
  const uint32_t x = dir() == PC_DIR_LEFT || dir() == PC_DIR_UPLEFT ? 1 : 0;
  EXPECT_EQ(second[x * d], 24 + 17);
  EXPECT_EQ(second[x * d + 15], 24 + 17);
}

TEST_P(PathCostRow, AddsToTheSumsModulo256) {
  Pc pc(dir(), 1, 16);
  EXPECT_TRUE(same(Bytes(16, 250 + 30 - 256), run(pc, Bytes(16, 10), {20}, Bytes(16, 250))));
}

TEST_P(PathCostRow, WidthZeroLeavesTheSumsAndOnlySwaps) {
  Pc pc(dir(), 0, 64);
  const Bytes sums(64, 0xCD);
  EXPECT_TRUE(same(sums, run(pc, {}, {}, sums)));
  expectPositions(secondPositions(pc.record), pc.record);
}

TEST_P(PathCostRow, NoDisparitiesGiveMinima255AndNoSums) {
  Pc pc(dir(), 3, 0);
  run(pc, {}, Bytes(3, 39), {});
  const uint32_t pixels = dir() == PC_DIR_LEFT ? 1 : 3;
  const uint32_t firstSlot = dir() == PC_DIR_UPLEFT ? 1 : 0;
  EXPECT_TRUE(same(Bytes(pixels, 255), bytesAt(pc.record.minA + firstSlot, pixels)));
}

TEST_P(PathCostRow, StoredPositionsMoveOnlyByTheSwap) {
  Pc pc(dir(), 5, 16);
  pathCosts(pc, Bytes(5 * 16, 3), Bytes(5, 20));
  expectPositions(secondPositions(pc.record), pc.record);
  pathCosts(pc, Bytes(5 * 16, 3), Bytes(5, 20));
  expectPositions(firstPositions(pc.record), pc.record);
}

TEST_P(PathCostRow, PadsKeepTheStartValue) {
  constexpr uint32_t width = 5, d = 32;
  lab::Random random(dir());
  Pc pc(dir(), width, d);
  for (int y = 0; y < 3; ++y) {
    const Bytes costs = random.values<uint8_t>(width * d, 256), p2 = random.values<uint8_t>(width, 256);
    pathCosts(pc, costs, p2);
  }
  for (const uint8_t* costs : {pc.record.costsA, pc.record.costsB}) {
    for (uint32_t slot = 0; slot < pc.record.costsSize; slot += d + 16) {
      EXPECT_TRUE(same(Bytes(16, startCost), bytesAt(costs + slot + d, 16))) << "slot at " << slot;
    }
  }
}

TEST_P(PathCostRow, NextFrameForgetsTheImageBefore) {
  constexpr uint32_t width = 7, d = 16;
  lab::Random random(5);
  const Bytes costs = random.values<uint8_t>(width * d, 25), p2 = random.values<uint8_t>(width, 40);
  Pc pc(dir(), width, d);
  const Bytes first = pathCosts(pc, costs, p2);
  pathCosts(pc, costs, p2);
  PC_NextFrame(&pc.record);
  EXPECT_TRUE(same(first, pathCosts(pc, costs, p2)));
}

TEST_P(PathCostRow, CostsOfTheMatcherStayBelow64) {
  constexpr uint32_t width = 30, d = 64;
  lab::Random random(6);
  Pc pc(dir(), width, d);
  for (int y = 0; y < 6; ++y) {
    Bytes p2(width);
    for (uint8_t& v : p2) v = static_cast<uint8_t>(random.between(17, 39));
    const Bytes costs = pathCosts(pc, random.values<uint8_t>(width * d, 25), p2);
    EXPECT_LE(*std::max_element(costs.begin(), costs.end()), 63);
  }
}

TEST_P(PathCostRow, EqualsTheModelForTheMatchersValues) {
  for (uint32_t width = 1; width <= 140; width += width < 20 ? 1 : 15) {
    expectModel(width, 64, 7, 25, 40, 3, width % 2 ? Guard::behind : Guard::before);
  }
}

TEST_P(PathCostRow, EqualsTheModelForAnyBytes) {
  for (const uint32_t d : {16u, 32u, 48u, 64u, 80u, 128u, 256u}) {
    for (const uint32_t width : {1u, 2u, 3u, 9u}) expectModel(width, d, 7, 256, 256, 5, Guard::behind);
  }
}

TEST_P(PathCostRow, EqualsTheModelForAnyP1) {
  for (const int32_t p1 : {0, 1, 30, 127, 128, 200, 255, 256, 263, -1, -9}) {
    expectModel(6, 48, p1, 256, 256, 4, Guard::before);
  }
}

TEST_P(PathCostRow, EqualsTheModelForDisparitiesThatFillNoWholeBlock) {
  for (const uint32_t d : {1u, 2u, 7u, 15u, 17u, 31u, 33u, 63u, 65u, 100u}) {
    for (const Guard side : {Guard::behind, Guard::before}) expectModel(5, d, 7, 256, 256, 4, side);
  }
}

INSTANTIATE_TEST_SUITE_P(Ways, PathCostRow, ::testing::ValuesIn(allWays()), [](const auto& tested) {
  return (tested.param.variant == Variant::scalar ? "Scalar" : "Vector") + std::to_string(tested.param.dir);
});

class PathCostVariant : public ::testing::TestWithParam<Variant> {};

TEST_P(PathCostVariant, HorizontalPathStartsEveryRowWithoutNextFrame) {
  PcBuffer pc;
  ASSERT_EQ(PC_Init(&pc, PC_DIR_LEFT, 1, 16, 7), 1);
  EXPECT_TRUE(same(Bytes(16, 5 + 20), nextRow(pc, GetParam(), Bytes(16, 5), {20}, Bytes(16, 0))));
  PC_Destroy(&pc);
}

TEST_P(PathCostVariant, FirstRowOfVerticalAndDiagonalPathsStartsEverywhere) {
  for (const uint32_t dir : {PC_DIR_UPLEFT, PC_DIR_UP, PC_DIR_UPRIGHT}) {
    Pc pc(dir, 6, 16);
    const Bytes sums = nextRow(pc.record, GetParam(), Bytes(6 * 16, 5), Bytes(6, 20), Bytes(6 * 16, 0));
    EXPECT_TRUE(same(Bytes(6 * 16, 5 + 20), sums)) << dir;
  }
}

TEST_P(PathCostVariant, SpareSlotOfDiagonalPathsKeepsTheStartValues) {
  constexpr uint32_t width = 5, d = 32;
  for (const uint32_t dir : {PC_DIR_UPLEFT, PC_DIR_UPRIGHT}) {
    lab::Random random(dir);
    Pc pc(dir, width, d);
    for (int y = 0; y < 3; ++y) {
      const Bytes costs = random.values<uint8_t>(width * d, 256), p2 = random.values<uint8_t>(width, 256);
      nextRow(pc.record, GetParam(), costs, p2, costs);
    }
    const uint32_t spare = dir == PC_DIR_UPLEFT ? 0 : width;
    for (const uint8_t* costs : {pc.record.costsA, pc.record.costsB}) {
      EXPECT_TRUE(same(Bytes(d + 16, startCost), bytesAt(costs + spare * (d + 16), d + 16))) << dir;
    }
    EXPECT_EQ(pc.record.minA[spare], 0);
    EXPECT_EQ(pc.record.minB[spare], 0);
  }
}

// The worst there is: nothing matches and no intensity changes.
TEST_P(PathCostVariant, SumOfFourPathsIsAtMost252) {
  constexpr uint32_t width = 40, d = 64;
  std::vector<std::unique_ptr<Pc>> paths;
  for (const uint32_t dir : allDirections) paths.push_back(std::make_unique<Pc>(dir, width, d));
  Bytes sums(width * d, 0);
  for (const auto& path : paths) {
    sums = nextRow(path->record, GetParam(), Bytes(width * d, 24), Bytes(width, 39), sums);
  }
  EXPECT_EQ(*std::max_element(sums.begin(), sums.end()), 252);
}

INSTANTIATE_TEST_SUITE_P(Variants, PathCostVariant, ::testing::Values(Variant::scalar, Variant::vector),
                         [](const auto& tested) { return tested.param == Variant::scalar ? "Scalar" : "Vector"; });

// Costs, minima and sums of both variants after the same rows.
void expectEqualVariants(uint32_t dir, uint32_t numDisparities) {
  constexpr uint32_t width = 9;
  lab::Random random(dir * 1000 + numDisparities);
  Pc one(dir, width, numDisparities), other(dir, width, numDisparities);
  const uint32_t costBytes = one.record.costsSize, minBytes = one.record.minSize;
  for (uint32_t y = 0; y < 4; ++y) {
    const Bytes costs = random.values<uint8_t>(size_t{width} * numDisparities, 256);
    const Bytes p2 = random.values<uint8_t>(width, 256), sums = random.values<uint8_t>(costs.size(), 256);
    EXPECT_TRUE(same(nextRow(one.record, Variant::scalar, costs, p2, sums),
                     nextRow(other.record, Variant::vector, costs, p2, sums)));
    EXPECT_TRUE(same(bytesAt(one.record.costsA, costBytes), bytesAt(other.record.costsA, costBytes)));
    EXPECT_TRUE(same(bytesAt(one.record.costsB, costBytes), bytesAt(other.record.costsB, costBytes)));
    EXPECT_TRUE(same(bytesAt(one.record.minA, minBytes), bytesAt(other.record.minA, minBytes)));
    EXPECT_TRUE(same(bytesAt(one.record.minB, minBytes), bytesAt(other.record.minB, minBytes)));
  }
}

TEST(PathCostVariants, LeaveIdenticalBuffersForWholeBlocks) {
  for (const uint32_t dir : allDirections) {
    for (const uint32_t d : {16u, 32u, 48u, 64u, 80u, 128u}) expectEqualVariants(dir, d);
  }
}

}  // namespace
}  // namespace nadir::test
