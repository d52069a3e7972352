// Which point kernels run on which processor.
#include "imgproc/point_kernels.hpp"

#include "simd/dispatch.hpp"

namespace nadir {
namespace {

constexpr Level<PointKernels> levels[] = {
#if defined(NADIR_WITH_AVX2)
    {cpuAvx2, &pointAvx2},
#endif
    {cpuScalar, &pointScalar},
};

}  // namespace

const PointKernels& pointKernels(unsigned cpu) { return fastest(levels, cpu); }

}  // namespace nadir
