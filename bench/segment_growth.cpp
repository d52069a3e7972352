// The table of how the time of segmentation grows with the side of a picture.
#include "bench/segment_growth.hpp"

#include <cstdio>

#include "bench/contents.hpp"
#include "bench/segment_calls.hpp"
#include "bench/timing.hpp"

namespace nadir::bench {
namespace {

Picture16 square(const Content& content, uint32_t side) { return makePicture(side, side, content.draw(side)); }

// The time of a pixel in a large picture, as a multiple of that in a small one.
template <class Prepare>
void printGrowth(const Content& content, uint32_t smallSide, uint32_t largeSide, Prepare prepare) {
  const std::vector<double> seconds =
      fastest({prepare(square(content, smallSide)), prepare(square(content, largeSide))});
  const double sides = static_cast<double>(largeSide) / smallSide;
  std::printf(" %.2f |", seconds[1] / seconds[0] / (sides * sides));
  std::fflush(stdout);
}

}  // namespace

void printSegmentGrowth() {
  std::printf("| | IP_CompFind_Process, 128 to 64 | IP_CompFinder_Process, 256 to 128 | IP_RGE_*, 128 to 64 |");
  std::printf(" IP_RGrow_Process, 1024 to 256 |\n|---|--:|--:|--:|--:|\n");
  for (const Content& content : contents()) {
    std::printf("| %s |", content.name.c_str());
    printGrowth(content, 64, 128, labelling);
    printGrowth(content, 128, 256, componentsFound);
    printGrowth(content, 64, 128, [](const Picture16& src) { return regionsListed(src, 0); });
    printGrowth(content, 256, 1024, [](const Picture16& src) { return regionsGrown(src, 0); });
    std::printf("\n");
  }
}

}  // namespace nadir::bench
