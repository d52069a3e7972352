#include "imgproc/smooth_kernels.hpp"

#include "simd/cpu.hpp"

namespace nadir {

const SmoothKernels& smoothKernels([[maybe_unused]] unsigned cpu) {
#if defined(NADIR_WITH_AVX2)
  if (cpu & cpuAvx2) return smoothAvx2;
#endif
  return smoothScalar;
}

}  // namespace nadir
