// Results of matching, step by step and as a whole.
#include <nadir/nadir.h>

#include <array>

#include "lab/random.hpp"
#include "lab/textured_pair.hpp"
#include "tests/golden/golden.hpp"

namespace nadir::test::golden {
namespace {

constexpr uint32_t disparityCount = 64;

struct Stereo {
  uint32_t width = 121, height = 15;
  std::vector<uint16_t> image;
  std::vector<uint32_t> first, ref;

  size_t pixels() const { return size_t{width} * height; }
};

std::vector<uint32_t> censusOf(const std::vector<uint16_t>& image, const Stereo& stereo) {
  std::vector<uint32_t> codes(image.size(), CENSUS_INVALID);
  IP_Census_5x5(image.data(), codes.data(), stereo.width, stereo.height);
  return codes;
}

// A ground whose disparity grows with y.
Stereo ground() {
  Stereo stereo;
  lab::Random random(12);
  lab::TexturedPair pair = lab::shiftedRows(
      stereo.width, stereo.height, 60, [](uint32_t y) { return 4 + 2 * y; }, random);
  stereo.first = censusOf(pair.first, stereo);
  stereo.ref = censusOf(pair.reference, stereo);
  stereo.image = std::move(pair.reference);
  return stereo;
}

// Codes that no census makes.
Stereo anyCodes() {
  Stereo stereo = ground();
  stereo.first = lab::Random(13).values<uint32_t>(stereo.pixels(), 0xFFFFFFFF);
  stereo.ref = lab::Random(14).values<uint32_t>(stereo.pixels(), 0xFFFFFFFF);
  return stereo;
}

Fingerprint census() { return Fingerprint().add(ground().first).add(ground().ref); }

using CostRow = void (*)(const uint32_t*, const uint32_t*, uint32_t, uint32_t, uint32_t, uint32_t, uint8_t*);

Fingerprint costRows(CostRow function, uint32_t numDisparities) {
  Fingerprint hash;
  for (const Stereo& stereo : {ground(), anyCodes()}) {
    for (uint32_t y = 0; y < stereo.height; ++y) {
      std::vector<uint8_t> costs(stereo.width * disparityCount, 0);
      function(&stereo.first[y * stereo.width], &stereo.ref[y * stereo.width], stereo.width, stereo.height,
               numDisparities, y, costs.data());
      hash.add(costs);
    }
  }
  return hash;
}

using NextRow = void (*)(PcBuffer*, const uint8_t*, const uint8_t*, uint8_t*);

Fingerprint pathCosts(NextRow function, uint32_t dir, uint32_t numDisparities) {
  constexpr uint32_t width = 37;
  lab::Random random(15 + dir);
  PcBuffer pc;
  Fingerprint hash;
  hash.done(PC_Init(&pc, dir, width, numDisparities, 7));
  PC_NextFrame(&pc);
  for (int y = 0; y < 5; ++y) {
    const auto costs = random.values<uint8_t>(width * numDisparities, y < 3 ? 25 : 256);
    const auto p2 = random.values<uint8_t>(width, y < 3 ? 40 : 256);
    auto sums = random.values<uint8_t>(width * numDisparities, 256);
    function(&pc, costs.data(), p2.data(), sums.data());
    hash.add(sums);
  }
  PC_Destroy(&pc);
  return hash;
}

Fingerprint penalties() {
  const Stereo stereo = ground();
  std::array<std::vector<uint8_t>, 4> maps;
  for (auto& map : maps) map.resize(stereo.pixels());
  SGM_CalcP2(stereo.image.data(), stereo.width, stereo.height, maps[0].data(), maps[1].data(), maps[2].data(),
             maps[3].data());
  Fingerprint hash;
  for (const auto& map : maps) hash.add(map);
  return hash;
}

using FindMin = uint32_t (*)(const uint8_t*, uint32_t, uint8_t*, uint32_t*);

Fingerprint minima(FindMin function) {
  Fingerprint hash;
  for (uint32_t count = 0; count <= 256; ++count) {
    const auto costs = lab::Random(count).values<uint8_t>(count + 1, count % 5 ? 256 : 3);
    uint8_t value = 0;
    uint32_t index = 0;
    function(costs.data(), count, &value, &index);
    hash.add(value).add(index);
  }
  return hash;
}

using PeakCheck = int32_t (*)(const uint8_t*, uint32_t, uint32_t);

Fingerprint peaks(PeakCheck function) {
  Fingerprint hash;
  for (uint32_t maxIndex = 0; maxIndex < 256; ++maxIndex) {
    for (const uint32_t ratio : {0u, 10u, 128u, 700u, 0xFFFFFFFFu}) {
      auto costs = lab::Random(maxIndex).values<uint8_t>(maxIndex + 1, 230);
      costs[maxIndex / 2] = static_cast<uint8_t>(maxIndex % 16);
      hash.add(function(costs.data(), maxIndex, ratio));
    }
  }
  return hash;
}

void addBlock(Fingerprint& hash, const uint8_t* block, size_t bytes) {
  hash.add(std::vector<uint8_t>(block, block + bytes));
}

void addDebug(Fingerprint& hash, const SgmDebugData& debug) {
  addBlock(hash, debug.costVolume, debug.costVolumeSize);
  addBlock(hash, debug.aggregatedVolume, debug.aggregatedVolumeSize);
  for (const uint8_t* map : {debug.p2Left, debug.p2UpLeft, debug.p2Up, debug.p2UpRight}) {
    addBlock(hash, map, debug.p2Size);
  }
}

Fingerprint full(const Stereo& stereo, uint32_t ratio, bool withDebug) {
  const SgmParams params{disparityCount, ratio};
  std::vector<uint16_t> disparity(stereo.pixels());
  SgmDebugData debug;
  Fingerprint hash;
  hash.done(IP_SgmMakeDebugData(stereo.width, stereo.height, disparityCount, &debug));
  IP_SgmFull(stereo.first.data(), stereo.ref.data(), stereo.image.data(), stereo.width, stereo.height, &params,
             disparity.data(), withDebug ? &debug : nullptr);
  hash.add(disparity);
  if (withDebug) {
    addDebug(hash, debug);
    addBlock(hash, debug.peakMap, debug.peakMapSize);
  }
  IP_SgmFreeDebugData(&debug);
  return hash;
}

Fingerprint distinct(const Stereo& stereo, bool withDebug) {
  std::vector<uint8_t> map(stereo.pixels());
  SgmDebugData debug;
  Fingerprint hash;
  hash.done(IP_SgmMakeDebugData(stereo.width, stereo.height, disparityCount, &debug));
  IP_Sgm(stereo.first.data(), stereo.ref.data(), stereo.image.data(), stereo.width, stereo.height, map.data(),
         withDebug ? &debug : nullptr);
  hash.add(map);
  if (withDebug) addDebug(hash, debug);
  IP_SgmFreeDebugData(&debug);
  return hash;
}

Fingerprint postproc() {
  constexpr uint32_t width = 83, height = 21;
  lab::Random random(20);
  auto disparity = random.values<uint16_t>(width * height, 985);
  for (uint16_t& value : disparity) value = random.below(3) ? value : uint16_t{0};
  const auto mask = random.values<uint8_t>(width * height, 2);
  std::vector<uint16_t> result(width * height);
  return Fingerprint().done(IP_SgmPostproc(disparity.data(), mask.data(), result.data(), width, height)).add(result);
}

void addPathCosts(std::vector<Case>& cases) {
  for (uint32_t dir = 0; dir < 4; ++dir) {
    for (const uint32_t d : {16u, 64u}) {
      const std::string name = std::to_string(dir) + "_" + std::to_string(d);
      cases.push_back({"PathCosts" + name, [dir, d] { return pathCosts(PC_NextRow, dir, d); }});
      cases.push_back({"PathCostsVector" + name, [dir, d] { return pathCosts(PC_NextRow_neon, dir, d); }});
    }
  }
}

}  // namespace

std::vector<Case> stereoCases() {
  std::vector<Case> cases{
      {"Census", census},
      {"CostRow", [] { return costRows(SGM_CalcDsiRow, 64); }},
      {"CostRow40", [] { return costRows(SGM_CalcDsiRow, 40); }},
      {"CostRowVector", [] { return costRows(SGM_CalcDsiRow_neon, 64); }},
      {"CostRowVector40", [] { return costRows(SGM_CalcDsiRow_neon, 40); }},
      {"Penalties", penalties},
      {"FindMin", [] { return minima(SGM_FindMinIdx); }},
      {"FindMinVector", [] { return minima(SGM_FindMinIdx_neon); }},
      {"PeakCheck", [] { return peaks(SGM_PeakCheckExtended); }},
      {"PeakCheckVector", [] { return peaks(SGM_PeakCheckExtended_neon); }},
      {"SgmFull", [] { return full(ground(), 10, false); }},
      {"SgmFullDebug", [] { return full(ground(), 10, true); }},
      {"SgmFullAnyCodes", [] { return full(anyCodes(), 0, true); }},
      {"Sgm", [] { return distinct(ground(), false); }},
      {"SgmDebug", [] { return distinct(ground(), true); }},
      {"SgmAnyCodes", [] { return distinct(anyCodes(), true); }},
      {"SgmPostproc", postproc},
  };
  addPathCosts(cases);
  return cases;
}

}  // namespace nadir::test::golden
