// Calls of stereo.h.
#include <nadir/stereo.h>

#include <initializer_list>
#include <vector>

#include "lab/random.hpp"
#include "lab/textured_pair.hpp"
#include "tests/counts/calls.hpp"

namespace nadir::test::counts {
namespace {

constexpr uint32_t disparityCount = 64;

struct Pair {
  lab::TexturedPair pair = lab::texturedPair(163, 41);
  uint32_t width = pair.width, height = pair.height;
  size_t pixels = size_t{width} * height;
  std::vector<uint32_t> first = std::vector<uint32_t>(pixels, CENSUS_INVALID), reference = first;

  void census() {
    IP_Census_5x5(pair.first.data(), first.data(), width, height);
    IP_Census_5x5(pair.reference.data(), reference.data(), width, height);
  }
};

void callSteps(const Pair& pair) {
  std::vector<uint8_t> costs(size_t{pair.width} * disparityCount), sums(costs.size());
  const size_t row = size_t{10} * pair.width;
  const uint32_t *first = &pair.first[row], *reference = &pair.reference[row];
  SGM_CalcDsiRow(first, reference, pair.width, pair.height, disparityCount, 10, costs.data());
  SGM_CalcDsiRow_neon(first, reference, pair.width, pair.height, disparityCount, 10, costs.data());
  std::vector<uint8_t> p2[4];
  for (auto& map : p2) map.resize(pair.pixels);
  SGM_CalcP2(pair.pair.reference.data(), pair.width, pair.height, p2[0].data(), p2[1].data(), p2[2].data(),
             p2[3].data());
  for (uint32_t dir = PC_DIR_LEFT; dir <= PC_DIR_UPRIGHT; ++dir) {
    PcBuffer pc;
    done(PC_Init(&pc, dir, pair.width, disparityCount, 7));
    PC_ResetBuffer(&pc);
    PC_NextFrame(&pc);
    for (int time = 0; time < 2; ++time) PC_NextRow(&pc, costs.data(), &p2[dir][row], sums.data());
    for (int time = 0; time < 2; ++time) PC_NextRow_neon(&pc, costs.data(), &p2[dir][row], sums.data());
    PC_SwapBuffer(&pc);
    PC_Destroy(&pc);
  }
}

void callSelection() {
  const auto costs = lab::Random(1).values<uint8_t>(size_t{40} * disparityCount, 100);
  for (size_t at = 0; at < costs.size(); at += disparityCount) {
    uint8_t value;
    uint32_t index;
    SGM_FindMinIdx(&costs[at], disparityCount, &value, &index);
    SGM_FindMinIdx_neon(&costs[at], disparityCount, &value, &index);
    SGM_PeakCheckExtended(&costs[at], disparityCount - 1, 10);
    SGM_PeakCheckExtended_neon(&costs[at], disparityCount - 1, 10);
  }
}

void callMatcher(const Pair& pair) {
  const SgmParams params = {disparityCount, 10};
  std::vector<uint16_t> disparity(pair.pixels), cleaned(pair.pixels);
  std::vector<uint8_t> distinctness(pair.pixels);
  IP_SgmFull(pair.first.data(), pair.reference.data(), pair.pair.reference.data(), pair.width, pair.height, &params,
             disparity.data(), nullptr);
  IP_Sgm(pair.first.data(), pair.reference.data(), pair.pair.reference.data(), pair.width, pair.height,
         distinctness.data(), nullptr);
  done(IP_SgmPostproc(disparity.data(), pair.pair.mask.data(), cleaned.data(), pair.width, pair.height));
  std::vector<uint8_t> memory(nadir_sgm_bytes(pair.width));
  done(nadir_sgm_full(pair.first.data(), pair.reference.data(), pair.pair.reference.data(), pair.width, pair.height,
                      &params, disparity.data(), nullptr, memory.data(), memory.size()));
  const auto width = static_cast<uint16_t>(pair.width), height = static_cast<uint16_t>(pair.height);
  memory.resize(nadir_sgm_postproc_bytes(width, height));
  done(nadir_sgm_postproc(disparity.data(), pair.pair.mask.data(), cleaned.data(), width, height, memory.data(),
                          memory.size()));
  SgmDebugData debug;
  done(IP_SgmMakeDebugData(pair.width, pair.height, disparityCount, &debug));
  IP_SgmFreeDebugData(&debug);
}

}  // namespace

void callStereo() {
  Pair pair;
  pair.census();
  callSteps(pair);
  callSelection();
  callMatcher(pair);
}

}  // namespace nadir::test::counts
