// This walks over a picture and takes the census of its rows.
#include <nadir/stereo.h>

#include "simd/cpu.hpp"
#include "stereo/kernels.hpp"

void IP_Census_5x5(const uint16_t* src, uint32_t* dst, uint32_t width, uint32_t height) {
  if (width < 5 || height < 5) return;
  const nadir::CensusRow census = nadir::stereoKernels(nadir::cpu()).census;
  const size_t stride = width;
  for (size_t y = 2; y < height - 2; ++y) {
    const uint16_t* const top = src + (y - 2) * stride;
    const uint16_t* const rows[5] = {top, top + stride, top + 2 * stride, top + 3 * stride, top + 4 * stride};
    census(rows, dst + y * stride + 2, stride - 4);
  }
}
