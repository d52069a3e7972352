#include "bench/work.hpp"

#include "core/cpu.hpp"

namespace nadir::bench {

Works allWorks(const Scene& scene) {
  Works works;
  addImageWorks(works, scene);
  addImgprocWorks(works, scene);
  addStereoWorks(works, scene);
  return works;
}

std::vector<Level> levels() {
  std::vector<Level> found = {{cpuName(cpuScalar), cpuScalar}};
  for (unsigned bit : {cpuNeon, cpuSse41, cpuAvx2, cpuAvx512}) {
    const unsigned set = found.back().cpu | bit;
    if (cpu() & bit) found.push_back({cpuName(set), set});
  }
  return found;
}

}  // namespace nadir::bench
