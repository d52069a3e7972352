// Which smoothing kernels run on which processor.
#include "imgproc/smooth_kernels.hpp"

#include "simd/dispatch.hpp"

namespace nadir {
namespace {

constexpr Level<SmoothKernels> levels[] = {
#if defined(NADIR_WITH_AVX2)
    {cpuAvx2, &smoothAvx2},
#endif
    {cpuScalar, &smoothScalar},
};

}  // namespace

const SmoothKernels& smoothKernels(unsigned cpu) { return fastest(levels, cpu); }

}  // namespace nadir
