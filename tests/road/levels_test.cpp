// Whole results of the road are the same at every level of vector instructions.
#include <gtest/gtest.h>

#include <cmath>

#include "simd/cpu.hpp"
#include "tests/road/frames.hpp"
#include "tests/support/levels.hpp"

namespace nadir::test {
namespace {

NadirFrame givenFrame() {
  static const std::vector<float> disparity = [] {
    lab::Random random(3);
    std::vector<float> made(somePair().first.size());
    for (float& d : made) d = random.below(9) ? static_cast<float>(random.between(-20, 1000)) / 16 : NAN;
    return made;
  }();
  return lab::givenFrame(disparity.data(), somePair().width);
}

NadirFrame narrowFrame() {
  static const std::vector<std::vector<uint8_t>> narrow = [] {
    std::vector<std::vector<uint8_t>> made(2);
    for (const uint16_t value : somePair().first) made[0].push_back(static_cast<uint8_t>(value / 16));
    for (const uint16_t value : somePair().reference) made[1].push_back(static_cast<uint8_t>(value / 16));
    return made;
  }();
  return lab::frameOf(narrow[0].data(), narrow[1].data(), somePair().width);
}

uint64_t everything(uint32_t grid, double percentile) {
  lab::Fingerprint print;
  lab::RoadPlan plan = fullPlan(grid);
  plan.settings.percentile = percentile;
  lab::Road road(plan);
  for (const NadirFrame& frame : {pairFrame(0), pairFrame(1), pairFrame(2), narrowFrame(), givenFrame()}) {
    lab::addFindings(print, road.findings(frame));
    lab::addPoints(print, road, frame);
  }
  return print.value();
}

TEST(Levels, AProcessorHasThoseOfOneFamily) {
  const unsigned levels = cpu(), x86 = cpuSse41 | cpuAvx2 | cpuAvx512;
  EXPECT_TRUE(levels == cpuNeon || (levels & x86) == levels) << levels;
}

TEST(Levels, NoneOfThemIsScalar) { EXPECT_STREQ(cpuName(cpuScalar), "scalar"); }

TEST(RoadLevels, GiveTheSameBits) {
  const unsigned best = cpu();
  if (best == cpuScalar) GTEST_SKIP() << "this processor has no level to compare with";
  const std::vector<unsigned> levels = cumulativeLevels();
  for (const uint32_t grid : lab::bothGrids) {
    for (const double percentile : {33.0, 90.0}) {
      setCpu(cpuScalar);
      const uint64_t scalar = everything(grid, percentile);
      for (const unsigned level : levels) {
        setCpu(level);
        EXPECT_EQ(everything(grid, percentile), scalar) << nadir_simd_level() << ", percentile " << percentile;
      }
    }
  }
  setCpu(best);
}

}  // namespace
}  // namespace nadir::test
