#include "imgproc/point_kernels.hpp"

#include "simd/cpu.hpp"

namespace nadir {

const PointKernels& pointKernels([[maybe_unused]] unsigned cpu) {
#if defined(NADIR_WITH_AVX2)
  if (cpu & cpuAvx2) return pointAvx2;
#endif
  return pointScalar;
}

}  // namespace nadir
