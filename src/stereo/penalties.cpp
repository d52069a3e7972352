// This walks over a picture and computes the penalties of its rows.
#include "stereo/penalties.hpp"

#include <nadir/stereo.h>

#include <cstring>
#include <initializer_list>

#include "simd/cpu.hpp"

namespace nadir {

void penaltiesOfRow(PenaltyRow penalties, const uint16_t* pixels, const uint16_t* above, size_t width,
                    uint8_t* const p2[4]) {
  if (width == 0) return;
  p2[PC_DIR_LEFT][0] = flatPenalty;
  penalties(pixels + 1, pixels, p2[PC_DIR_LEFT] + 1, width - 1);
  if (!above) {
    for (int dir : {PC_DIR_UPLEFT, PC_DIR_UP, PC_DIR_UPRIGHT}) std::memset(p2[dir], flatPenalty, width);
    return;
  }
  p2[PC_DIR_UPLEFT][0] = flatPenalty;
  penalties(pixels + 1, above, p2[PC_DIR_UPLEFT] + 1, width - 1);
  penalties(pixels, above, p2[PC_DIR_UP], width);
  penalties(pixels, above + 1, p2[PC_DIR_UPRIGHT], width - 1);
  p2[PC_DIR_UPRIGHT][width - 1] = flatPenalty;
}

}  // namespace nadir

void SGM_CalcP2(const uint16_t* image, uint32_t width, uint32_t height, uint8_t* p2Left, uint8_t* p2UpLeft,
                uint8_t* p2Up, uint8_t* p2UpRight) {
  const nadir::PenaltyRow penalties = nadir::stereoKernels(nadir::cpu()).penalties;
  for (size_t y = 0; y < height; ++y) {
    const size_t at = y * width;
    uint8_t* const p2[4] = {p2Left + at, p2UpLeft + at, p2Up + at, p2UpRight + at};
    nadir::penaltiesOfRow(penalties, image + at, y ? image + at - width : nullptr, width, p2);
  }
}
