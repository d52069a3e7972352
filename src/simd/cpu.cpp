// This asks the processor for its vector instructions.
#include "simd/cpu.hpp"

#include <nadir/api.h>

#include <atomic>

namespace nadir {
namespace {

constexpr unsigned notAsked = ~0u;
std::atomic<unsigned> knownLevels{notAsked};

unsigned askProcessor() {
#if defined(NADIR_WITH_NEON)
  return cpuNeon;  // part of what this build was compiled for
#elif defined(NADIR_WITH_SSE41)
  __builtin_cpu_init();
  if (!__builtin_cpu_supports("sse4.1")) return cpuScalar;
  if (!__builtin_cpu_supports("avx2")) return cpuSse41;
  unsigned levels = cpuSse41 | cpuAvx2;
#if defined(NADIR_WITH_AVX512)
  if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512dq") &&
      __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("avx512bitalg"))
    levels |= cpuAvx512;
#endif
  return levels;
#else
  return cpuScalar;
#endif
}

}  // namespace

unsigned cpu() {
  unsigned levels = knownLevels.load(std::memory_order_relaxed);
  if (levels == notAsked) {
    levels = askProcessor();
    knownLevels.store(levels, std::memory_order_relaxed);
  }
  return levels;
}

void setCpu(unsigned levels) { knownLevels.store(levels, std::memory_order_relaxed); }

const char* cpuName(unsigned levels) {
  if (levels & cpuAvx512) return "avx512";
  if (levels & cpuAvx2) return "avx2";
  if (levels & cpuSse41) return "sse4.1";
  return levels & cpuNeon ? "neon" : "scalar";
}

}  // namespace nadir

const char* nadir_simd_level(void) { return nadir::cpuName(nadir::cpu()); }
