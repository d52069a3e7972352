// The list of everything that is timed, and the levels at which it is.
#include "bench/work.hpp"

#include "simd/cpu.hpp"
#include "tests/support/levels.hpp"

namespace nadir::bench {

Works allWorks(const lab::TexturedPair& pair) {
  Works works;
  addImageWorks(works, pair);
  addImgprocWorks(works, pair);
  addSegmentWorks(works, pair);
  addStereoWorks(works, pair);
  addGroundWorks(works, pair);
  addRectifyWorks(works, pair);
  addCheckWorks(works, pair);
  addLevelWorks(works, pair);
  return works;
}

std::vector<Level> levels() {
  std::vector<Level> found;
  for (unsigned level : test::cumulativeLevels()) found.push_back({cpuName(level), level});
  return found;
}

}  // namespace nadir::bench
