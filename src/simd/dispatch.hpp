// Choosing among the kernels of several instruction levels.
#pragma once

#include <cstddef>

#include "simd/cpu.hpp"

namespace nadir {

// One table of kernels and the level (a Cpu bit) that a processor needs for it.
template <class Kernels>
struct Level {
  unsigned bit;
  const Kernels* kernels;
};

// The first kernels among those of `levels` that run on the levels `cpu` (a set of Cpu bits) and that `fits` holds for.
// The fastest level comes first. The last one is cpuScalar, which every processor has, and is taken if no other is.
template <class Kernels, size_t n, class Fits>
const Kernels& fastest(const Level<Kernels> (&levels)[n], unsigned cpu, Fits fits) {
  for (const Level<Kernels>& level : levels) {
    if ((cpu & level.bit) && fits(*level.kernels)) return *level.kernels;
  }
  return *levels[n - 1].kernels;
}

template <class Kernels, size_t n>
const Kernels& fastest(const Level<Kernels> (&levels)[n], unsigned cpu) {
  return fastest(levels, cpu, [](const Kernels&) { return true; });
}

}  // namespace nadir
