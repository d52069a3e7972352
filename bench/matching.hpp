// Everything that matching one pair reads and writes, step by step.
#pragma once

#include <nadir/stereo.h>

#include <cstdint>
#include <vector>

#include "lab/textured_pair.hpp"

namespace nadir::bench {

struct Matching {
  static constexpr uint32_t disparities = 64;
  static constexpr SgmParams params = {disparities, 10};

  lab::TexturedPair pair;
  uint32_t width, height;
  uint64_t pixels;
  std::vector<uint32_t> censusFirst, censusRef;
  SgmDebugData steps;  // the costs, penalties and sums of this pair
  std::vector<uint16_t> disparity, cleaned;
  std::vector<uint8_t> distinctiveness;

  explicit Matching(const lab::TexturedPair& matched);
  ~Matching();
  Matching(const Matching&) = delete;
  Matching& operator=(const Matching&) = delete;

  void census(const std::vector<uint16_t>& picture, std::vector<uint32_t>& codes) const;
  void match(SgmDebugData* debug);
  void clean();

  // Makes a cleaned disparity image of two pictures.
  void wholeFrame();
};

}  // namespace nadir::bench
