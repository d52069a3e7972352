// Which 3x3 kernels run on which processor.
#include "imgproc/filter3x3_kernels.hpp"

#include "simd/dispatch.hpp"

namespace nadir {
namespace {

constexpr Level<Filter3x3Kernels> levels[] = {
#if defined(NADIR_WITH_NEON)
    {cpuNeon, &filter3x3Neon},
#endif
#if defined(NADIR_WITH_AVX512)
    {cpuAvx512, &filter3x3Avx512},
#endif
#if defined(NADIR_WITH_AVX2)
    {cpuAvx2, &filter3x3Avx2},
#endif
#if defined(NADIR_WITH_SSE41)
    {cpuSse41, &filter3x3Sse41},
#endif
    {cpuScalar, &filter3x3Scalar},
};

}  // namespace

const Filter3x3Kernels& filter3x3Kernels(unsigned cpu) { return fastest(levels, cpu); }

}  // namespace nadir
