// These are the exported functions for one row of matching costs.
#include <nadir/stereo.h>

#include <algorithm>
#include <cstring>

#include "simd/cpu.hpp"
#include "stereo/kernels.hpp"
#include "stereo/pixel_rules.hpp"

namespace nadir {
namespace {

struct Baseline;
using Rules = PixelRules<Baseline>;

// How many disparities of reference column x have a code to compare with: none, at the latest two columns from the end.
size_t comparable(uint32_t width, size_t x, size_t wanted) { return std::min(width - 2 - x, wanted); }

void costsOfAnyCodes(const uint32_t* first, const uint32_t* reference, uint32_t width, size_t wanted,
                     uint8_t* costRow) {
  for (size_t x = 2; const size_t count = comparable(width, x, wanted); ++x) {
    Rules::costsOfAnyCodes(first + x, reference[x], count, costRow + x * disparities);
  }
}

}  // namespace
}  // namespace nadir

void SGM_CalcDsiRow(const uint32_t* first, const uint32_t* reference, uint32_t width, uint32_t height,
                    uint32_t numDisparities, uint32_t row, uint8_t* costRow) {
  std::memset(costRow, nadir::worstCost, size_t{width} * numDisparities);
  if (nadir::isBorderRow(row, height) || width < 5) return;
  for (size_t x = 2; const size_t count = nadir::comparable(width, x, numDisparities); ++x) {
    for (size_t d = 0; d < count; ++d) costRow[x * numDisparities + d] = nadir::Rules::cost(first[x + d], reference[x]);
  }
}

void SGM_CalcDsiRow_neon(const uint32_t* first, const uint32_t* reference, uint32_t width, uint32_t height,
                         uint32_t numDisparities, uint32_t row, uint8_t* costRow) {
  std::memset(costRow, nadir::worstCost, size_t{width} * nadir::disparities);
  if (nadir::isBorderRow(row, height) || width < 5) return;
  if (numDisparities >= nadir::disparities) {
    nadir::stereoKernels(nadir::cpu()).costs(first, reference, width, costRow);
  } else {
    nadir::costsOfAnyCodes(first, reference, width, numDisparities, costRow);
  }
}
