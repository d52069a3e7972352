// One pair taken through the steps of matching.
#include "bench/matching.hpp"

#include <cstdlib>

namespace nadir::bench {

Matching::Matching(const Scene& pair)
    : scene(pair),
      width(pair.width),
      height(pair.height),
      pixels(uint64_t{width} * height),
      censusFirst(pixels),
      censusRef(pixels),
      disparity(pixels),
      cleaned(pixels),
      distinctiveness(pixels) {
  if (!IP_SgmMakeDebugData(width, height, disparities, &steps)) std::abort();
  census(scene.first, censusFirst);
  census(scene.reference, censusRef);
  match(&steps);
}

Matching::~Matching() { IP_SgmFreeDebugData(&steps); }

void Matching::census(const std::vector<uint16_t>& picture, std::vector<uint32_t>& codes) const {
  IP_Census_5x5(picture.data(), codes.data(), width, height);
}

void Matching::match(SgmDebugData* debug) {
  IP_SgmFull(censusFirst.data(), censusRef.data(), scene.reference.data(), width, height, &params, disparity.data(),
             debug);
}

void Matching::clean() { IP_SgmPostproc(disparity.data(), scene.mask.data(), cleaned.data(), width, height); }

void Matching::wholeFrame() {
  census(scene.first, censusFirst);
  census(scene.reference, censusRef);
  match(nullptr);
  clean();
}

}  // namespace nadir::bench
