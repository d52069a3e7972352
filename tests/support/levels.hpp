// The levels of vector instructions that tests and benchmarks go through.
#pragma once

#include <vector>

#include "simd/cpu.hpp"

namespace nadir::test {

// The levels of this processor, lowest first, each with all below it. To be asked before setCpu().
inline std::vector<unsigned> cumulativeLevels() {
  std::vector<unsigned> levels = {cpuScalar};
  for (unsigned bit : {cpuNeon, cpuSse41, cpuAvx2, cpuAvx512}) {
    if (cpu() & bit) levels.push_back(levels.back() | bit);
  }
  return levels;
}

}  // namespace nadir::test
