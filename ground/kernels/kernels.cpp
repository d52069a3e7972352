// Which kernels of the road run on which processor.
#include "ground/kernels/kernels.hpp"

#include <nadir/api.h>

#include <cstring>

#include "simd/dispatch.hpp"

namespace nadir::ground {
namespace {

constexpr Level<RoadKernels> levels[] = {
#if defined(NADIR_WITH_AVX512)
    {cpuAvx512, &roadAvx512},
#endif
#if defined(NADIR_WITH_AVX2)
    {cpuAvx2, &roadAvx2},
#endif
#if defined(NADIR_WITH_SSE41)
    {cpuSse41, &roadSse41},
#endif
    {cpuScalar, &roadScalar},
};

struct NamedLevels {
  const char* name;
  unsigned cpu;
};

constexpr NamedLevels namedLevels[] = {
    {"avx512", cpuSse41 | cpuAvx2 | cpuAvx512}, {"avx2", cpuSse41 | cpuAvx2}, {"sse4.1", cpuSse41}, {"neon", cpuNeon}};

}  // namespace

const RoadKernels& roadKernels(unsigned cpu) { return fastest(levels, cpu); }

const RoadKernels& roadKernels() {
  for (const NamedLevels& level : namedLevels) {
    if (std::strcmp(nadir_simd_level(), level.name) == 0) return roadKernels(level.cpu);
  }
  return roadKernels(cpuScalar);
}

}  // namespace nadir::ground
