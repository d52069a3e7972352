// The list of everything that is timed, and the levels at which it is.
#include "bench/work.hpp"

#include "lab/levels.hpp"
#include "simd/cpu.hpp"

namespace nadir::bench {

Works allWorks(const Scene& scene) {
  Works works;
  addImageWorks(works, scene);
  addImgprocWorks(works, scene);
  addSegmentWorks(works, scene);
  addStereoWorks(works, scene);
  return works;
}

std::vector<Level> levels() {
  std::vector<Level> found;
  for (unsigned level : test::cumulativeLevels()) found.push_back({cpuName(level), level});
  return found;
}

}  // namespace nadir::bench
