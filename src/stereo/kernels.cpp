#include "stereo/kernels.hpp"

#include "simd/cpu.hpp"

namespace nadir {
namespace {

// The kernels of each level this build has, fastest first.
struct Level {
  unsigned bit;
  const StereoKernels* kernels;
};

constexpr Level levels[] = {
#if defined(NADIR_WITH_NEON)
    {cpuNeon, &stereoNeon},
#elif defined(NADIR_WITH_SSE41)
    {cpuAvx512, &stereoAvx512},
    {cpuAvx2, &stereoAvx2},
    {cpuSse41, &stereoSse41},
#endif
    {cpuScalar, &stereoScalar},
};

}  // namespace

const StereoKernels& stereoKernels(unsigned cpu) {
  for (const Level& level : levels) {
    if (cpu & level.bit) return *level.kernels;
  }
  return stereoScalar;
}

PathRow pathKernel(unsigned cpu, uint32_t numDisparities) {
  for (const Level& level : levels) {
    const bool fits = numDisparities && numDisparities % level.kernels->pathLanes == 0;
    if ((cpu & level.bit) && fits) return level.kernels->path;
  }
  return stereoScalar.path;
}

}  // namespace nadir
