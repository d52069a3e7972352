// One pair taken through the steps of matching.
#include "bench/matching.hpp"

#include <cstdlib>

namespace nadir::bench {

Matching::Matching(const lab::TexturedPair& matched)
    : pair(matched),
      width(matched.width),
      height(matched.height),
      pixels(uint64_t{width} * height),
      censusFirst(pixels),
      censusRef(pixels),
      disparity(pixels),
      cleaned(pixels),
      distinctiveness(pixels) {
  if (!IP_SgmMakeDebugData(width, height, disparities, &steps)) std::abort();
  census(pair.first, censusFirst);
  census(pair.reference, censusRef);
  match(&steps);
}

Matching::~Matching() { IP_SgmFreeDebugData(&steps); }

void Matching::census(const std::vector<uint16_t>& picture, std::vector<uint32_t>& codes) const {
  IP_Census_5x5(picture.data(), codes.data(), width, height);
}

void Matching::match(SgmDebugData* debug) {
  IP_SgmFull(censusFirst.data(), censusRef.data(), pair.reference.data(), width, height, &params, disparity.data(),
             debug);
}

void Matching::clean() { IP_SgmPostproc(disparity.data(), pair.mask.data(), cleaned.data(), width, height); }

void Matching::wholeFrame() {
  census(pair.first, censusFirst);
  census(pair.reference, censusRef);
  match(nullptr);
  clean();
}

}  // namespace nadir::bench
