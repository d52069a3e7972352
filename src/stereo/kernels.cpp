// Which stereo kernels run on which processor.
#include "stereo/kernels.hpp"

#include "simd/dispatch.hpp"

namespace nadir {
namespace {

constexpr Level<StereoKernels> levels[] = {
#if defined(NADIR_WITH_NEON)
    {cpuNeon, &stereoNeon},
#endif
#if defined(NADIR_WITH_AVX512)
    {cpuAvx512, &stereoAvx512},
#endif
#if defined(NADIR_WITH_AVX2)
    {cpuAvx2, &stereoAvx2},
#endif
#if defined(NADIR_WITH_SSE41)
    {cpuSse41, &stereoSse41},
#endif
    {cpuScalar, &stereoScalar},
};

}  // namespace

const StereoKernels& stereoKernels(unsigned cpu) { return fastest(levels, cpu); }

PathRow pathKernel(unsigned cpu, uint32_t numDisparities) {
  const auto fits = [=](const StereoKernels& kernels) {
    return numDisparities && numDisparities % kernels.pathLanes == 0;
  };
  return fastest(levels, cpu, fits).path;
}

}  // namespace nadir
