// The functions of stereo.h. Those that work on a row or on one pixel's costs are called for a whole picture.
#include <cstdlib>
#include <memory>

#include "bench/matching.hpp"
#include "bench/work.hpp"

namespace nadir::bench {
namespace {

using Shared = std::shared_ptr<Matching>;
constexpr uint64_t volume = Matching::disparities;  // bytes per pixel
constexpr int32_t penaltyOne = 7;

void addCostWorks(Works& works, const Shared& m) {
  works.push_back({"IP_Census_5x5", m->pixels, 6 * m->pixels, [=] { m->census(m->pair.first, m->censusFirst); }});
  const auto rows = [=](auto calcRow) {
    return [=] {
      for (uint32_t y = 0; y < m->height; ++y) {
        const uint64_t at = uint64_t{y} * m->width;
        calcRow(&m->censusFirst[at], &m->censusRef[at], m->width, m->height, Matching::disparities, y,
                m->steps.costVolume + at * volume);
      }
    };
  };
  const uint64_t bytes = (8 + volume) * m->pixels;
  works.push_back({"SGM_CalcDsiRow", m->pixels, bytes, rows(SGM_CalcDsiRow)});
  works.push_back({"SGM_CalcDsiRow_neon", m->pixels, bytes, rows(SGM_CalcDsiRow_neon)});
  works.push_back({"SGM_CalcP2", m->pixels, 6 * m->pixels, [=] {
                     SGM_CalcP2(m->pair.reference.data(), m->width, m->height, m->steps.p2Left, m->steps.p2UpLeft,
                                m->steps.p2Up, m->steps.p2UpRight);
                   }});
}

// The four directions' buffers.
struct Paths {
  PcBuffer pc[4];
  explicit Paths(uint32_t width) {
    for (uint32_t dir = 0; dir < 4; ++dir) {
      if (!PC_Init(&pc[dir], dir, width, Matching::disparities, penaltyOne)) std::abort();
    }
    for (PcBuffer& path : pc) PC_NextFrame(&path);
  }
  ~Paths() {
    for (PcBuffer& path : pc) PC_Destroy(&path);
  }
  Paths(const Paths&) = delete;
  Paths& operator=(const Paths&) = delete;
};

void addPathWorks(Works& works, const Shared& m) {
  const auto paths = std::make_shared<Paths>(m->width);
  const auto sums = std::make_shared<std::vector<uint8_t>>(m->pixels * volume);
  const auto rows = [=](auto nextRow) {
    return [=] {
      const uint8_t* const p2[4] = {m->steps.p2Left, m->steps.p2UpLeft, m->steps.p2Up, m->steps.p2UpRight};
      for (PcBuffer& path : paths->pc) PC_NextFrame(&path);
      for (uint64_t at = 0; at < m->pixels; at += m->width) {
        for (size_t dir = 0; dir < 4; ++dir) {
          nextRow(&paths->pc[dir], m->steps.costVolume + at * volume, p2[dir] + at, sums->data() + at * volume);
        }
      }
    };
  };
  const uint64_t bytes = 4 * (3 * volume + 1) * m->pixels;
  works.push_back({"PC_NextRow, 4 paths", m->pixels, bytes, rows(PC_NextRow)});
  works.push_back({"PC_NextRow_neon, 4 paths", m->pixels, bytes, rows(PC_NextRow_neon)});

  PcBuffer* const up = &paths->pc[PC_DIR_UP];
  const uint64_t rowBytes = 2 * (volume + 17) * m->width;
  works.push_back({"PC_Init and PC_Destroy", 0, 0, [=] {
                     PcBuffer pc;
                     PC_Init(&pc, PC_DIR_UP, m->width, Matching::disparities, penaltyOne);
                     PC_Destroy(&pc);
                   }});
  works.push_back({"PC_ResetBuffer", m->width, rowBytes, [=] { PC_ResetBuffer(up); }});
  works.push_back({"PC_NextFrame", m->width, rowBytes, [=] { PC_NextFrame(up); }});
  works.push_back({"PC_SwapBuffer", 0, 0, [=, keep = paths] { PC_SwapBuffer(up); }});
}

void addSelectionWorks(Works& works, const Shared& m) {
  const auto everyPixel = [=](auto select) {
    return [=] {
      for (uint64_t i = 0; i < m->pixels; ++i) select(m->steps.aggregatedVolume + i * volume);
    };
  };
  const auto minimum = [](auto find) {
    return [=](const uint8_t* sums) {
      uint8_t value;
      uint32_t index;
      find(sums, Matching::disparities, &value, &index);
    };
  };
  const auto peak = [](auto check) {
    return [=](const uint8_t* sums) { check(sums, Matching::disparities - 1, Matching::params.uniquenessRatio); };
  };
  const uint64_t bytes = volume * m->pixels;
  works.push_back({"SGM_FindMinIdx", m->pixels, bytes, everyPixel(minimum(SGM_FindMinIdx))});
  works.push_back({"SGM_FindMinIdx_neon", m->pixels, bytes, everyPixel(minimum(SGM_FindMinIdx_neon))});
  works.push_back({"SGM_PeakCheckExtended", m->pixels, bytes, everyPixel(peak(SGM_PeakCheckExtended))});
  works.push_back({"SGM_PeakCheckExtended_neon", m->pixels, bytes, everyPixel(peak(SGM_PeakCheckExtended_neon))});
}

void addFrameWorks(Works& works, const Shared& m) {
  const uint64_t matchBytes = 12 * m->pixels;
  works.push_back({"IP_SgmFull", m->pixels, matchBytes, [=] { m->match(nullptr); }});
  works.push_back({"IP_SgmFull with debug data", m->pixels, matchBytes + (2 * volume + 5) * m->pixels,
                   [=] { m->match(&m->steps); }});
  works.push_back({"IP_Sgm", m->pixels, 11 * m->pixels, [=] {
                     IP_Sgm(m->censusFirst.data(), m->censusRef.data(), m->pair.reference.data(), m->width, m->height,
                            m->distinctiveness.data(), nullptr);
                   }});
  works.push_back({"IP_SgmMakeDebugData and Free", 0, 0, [=] {
                     SgmDebugData debug;
                     IP_SgmMakeDebugData(m->width, m->height, Matching::disparities, &debug);
                     IP_SgmFreeDebugData(&debug);
                   }});
  works.push_back({"IP_SgmPostproc", m->pixels, 5 * m->pixels, [=] { m->clean(); }});
  works.push_back({"whole frame", m->pixels, 7 * m->pixels, [=] { m->wholeFrame(); }});
}

}  // namespace

void addStereoWorks(Works& works, const lab::TexturedPair& pair) {
  const auto matching = std::make_shared<Matching>(pair);
  addCostWorks(works, matching);
  addPathWorks(works, matching);
  addSelectionWorks(works, matching);
  addFrameWorks(works, matching);
}

}  // namespace nadir::bench
