// Prints what docs/benchmarks.md holds: how much faster each vector level is than scalar code, how the library compares
// with others, and what it allocates. Only ratios: they mean something on other machines too.
#include <cstdio>
#include <string>

#include "bench/matching.hpp"
#include "bench/peers.hpp"
#include "bench/polygon_cells.hpp"
#include "bench/segment_growth.hpp"
#include "bench/timing.hpp"
#include "bench/work.hpp"
#include "core/cpu.hpp"
#include "tests/alloc/heap.hpp"

namespace nadir::bench {
namespace {

std::vector<double> secondsOfLevels(const Work& work, const std::vector<Level>& all) {
  std::vector<std::function<void()>> ways;
  for (const Level& level : all) {
    ways.push_back([&] {
      setCpu(level.cpu);
      work.run();
    });
  }
  return fastest(ways);
}

void printLevels(const Scene& scene) {
  const std::vector<Level> all = levels();
  std::printf("\n### %s pixels\n\n| |", sizeText(scene).c_str());
  for (const Level& level : all) std::printf(" %s |", level.name.c_str());
  std::printf("\n|---|");
  for (size_t i = 0; i < all.size(); ++i) std::printf("--:|");
  std::printf("\n");
  for (const Work& work : allWorks(scene)) {
    if (work.pixels == 0) continue;
    const std::vector<double> seconds = secondsOfLevels(work, all);
    std::printf("| %s |", work.name.c_str());
    for (double s : seconds) std::printf(" %.2f |", seconds[0] / s);
    std::printf("\n");
    std::fflush(stdout);
  }
}

void printPeers(const std::string& size, const std::vector<Peer>& found) {
  if (found.empty()) std::printf("| %s | | not part of this build | |\n", size.c_str());
  for (const Peer& peer : found) {
    const std::vector<double> seconds = fastest({peer.ours, peer.theirs});
    std::printf("| %s | %s | %s | %.2f |\n", size.c_str(), peer.against.c_str(), peer.name.c_str(),
                seconds[1] / seconds[0]);
    std::fflush(stdout);
  }
}

void printHeap(const Scene& scene) {
  Matching matching(scene);
  const double imageBytes = static_cast<double>(matching.pixels * sizeof(uint16_t));
  const auto print = [&](const char* what, const std::function<void()>& call) {
    test::heap::watch();
    call();
    std::printf("| %s | %s | %zu | %.3f |\n", sizeText(scene).c_str(), what, test::heap::allocations(),
                static_cast<double>(test::heap::bytes()) / imageBytes);
  };
  print("IP_SgmFull", [&] { matching.match(nullptr); });
  print("IP_SgmPostproc", [&] { matching.clean(); });
  print("whole frame", [&] { matching.wholeFrame(); });
}

void run() {
  const unsigned best = cpu();
  const Scene scenes[] = {makeScene(320, 240), makeScene(640, 480)};
  std::printf("## Vector levels\n\nSpeed as a multiple of the scalar code's, all levels in one run.\n");
  for (const Scene& scene : scenes) printLevels(scene);
  setCpu(best);

  std::printf(
      "\n## OpenCV\n\nIts time divided by ours, one thread each, in one run. Its matchers take 8-bit pictures and have "
      "other costs,\n"
      "paths and checks: they do the same task, not the same computation.\n\n");
  std::printf("| size | ours | OpenCV | ratio |\n|---|---|---|--:|\n");
  for (const Scene& scene : scenes) printPeers(sizeText(scene), peers(scene));
  for (uint32_t side : {128u, 256u})
    printPeers(std::to_string(side) + "x" + std::to_string(side), componentPeers(side));

  std::printf(
      "\n## Elevation mask\n\nThe time of asking for every cell whether it lies in a polygon, divided by that of the "
      "library's spans.\n\n");
  printPolygonCells();

  std::printf(
      "\n## Segmentation\n\nThe time of a pixel in a large square picture, divided by that in a small one (sides in "
      "pixels): about 1\nwhere time grows with the number of pixels and with nothing else.\n\n");
  printSegmentGrowth();

  std::printf("\n## Memory\n\nWhat a call allocates in all, divided by the bytes of one 16-bit picture.\n\n");
  std::printf("| size | call | allocations | ratio |\n|---|---|--:|--:|\n");
  for (const Scene& scene : scenes) printHeap(scene);
}

}  // namespace
}  // namespace nadir::bench

int main() { nadir::bench::run(); }
