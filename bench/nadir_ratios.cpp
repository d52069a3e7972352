// Prints what docs/measured/benchmarks.md holds: how much faster each vector level is than scalar code, how the library
// compares with others, and what it allocates. Only ratios: they mean something on other machines too.
#include <cstdio>
#include <memory>
#include <string>

#include "bench/limits.hpp"
#include "bench/matching.hpp"
#include "bench/peers.hpp"
#include "bench/polygon_cells.hpp"
#include "bench/segment_growth.hpp"
#include "bench/table_head.hpp"
#include "bench/timing.hpp"
#include "bench/work.hpp"
#include "lab/heap.hpp"
#include "simd/cpu.hpp"

namespace nadir::bench {
namespace {

using Calls = std::vector<std::function<void()>>;

// The call at each of the levels.
Calls atLevels(const std::function<void()>& call, const std::vector<Level>& all) {
  Calls calls;
  for (const Level& level : all) {
    calls.push_back([&call, cpu = level.cpu] {
      setCpu(cpu);
      call();
    });
  }
  return calls;
}

void printLevels(const lab::TexturedPair& pair) {
  const std::vector<Level> all = levels();
  std::printf("\n### %s pixels\n\n", lab::sizeText(pair).c_str());
  printHead({""}, all);
  for (const Work& work : allWorks(pair)) {
    if (work.pixels == 0) continue;
    const std::vector<double> seconds = fastest(atLevels(work.run, all));
    std::printf("| %s |", work.name.c_str());
    for (double s : seconds) std::printf(" %.2f |", seconds[0] / s);
    std::printf("\n");
    std::fflush(stdout);
  }
}

void printPeers(const std::string& size, const std::vector<Peer>& found, const std::vector<Level>& columns) {
  if (found.empty()) std::printf("| %s | | not part of this build |\n", size.c_str());
  for (const Peer& peer : found) {
    Calls calls = atLevels(peer.ours, columns);
    calls.push_back(peer.theirs);
    const std::vector<double> seconds = fastest(calls);
    std::printf("| %s | %s | %s |", size.c_str(), peer.against.c_str(), peer.name.c_str());
    for (size_t i = 0; i < columns.size(); ++i) std::printf(" %.2f |", seconds.back() / seconds[i]);
    std::printf("\n");
    std::fflush(stdout);
  }
}

void printAllPeers(const lab::TexturedPair (&pairs)[2]) {
  std::vector<Level> columns = levels();
  if (columns.size() > 1) columns.erase(columns.begin());  // a peer without vectors is none
  printHead({"size", "ours", "OpenCV"}, columns);
  for (const lab::TexturedPair& pair : pairs) printPeers(lab::sizeText(pair), peers(pair), columns);
  for (uint32_t side : {128u, 256u})
    printPeers(std::to_string(side) + "x" + std::to_string(side), componentPeers(side), columns);
  printPeers("1000x1000", polygonPeers(), columns);
}

// The machine itself copies as many bytes, and the standard library sorts as many keys.
void printLimits(const std::string& size, const std::vector<Limit>& found) {
  for (const Limit& limit : found) {
    const std::vector<double> seconds = fastest({limit.ours, limit.theirs});
    std::printf("| %s | %s | %s | %.2f |\n", size.c_str(), limit.name.c_str(), limit.against.c_str(),
                seconds[0] / seconds[1]);
    std::fflush(stdout);
  }
}

// The time of a pixel, as a multiple of that in a picture of 640x480.
void printMatchingGrowth() {
  std::printf("| size | ratio |\n|---|--:|\n");
  const auto matchingOf = [](uint32_t width, uint32_t height) {
    return std::make_shared<Matching>(lab::texturedPair(width, height));
  };
  const auto usual = matchingOf(640, 480);
  const uint32_t sizes[][2] = {{160, 120}, {320, 240}, {1280, 960}, {2560, 1920}};
  for (const auto& size : sizes) {
    const auto other = matchingOf(size[0], size[1]);
    const std::vector<double> seconds = fastest({[&] { usual->match(nullptr); }, [&] { other->match(nullptr); }});
    const double pixels = static_cast<double>(other->pixels) / static_cast<double>(usual->pixels);
    std::printf("| %s | %.2f |\n", lab::sizeText(other->pair).c_str(), seconds[1] / seconds[0] / pixels);
    std::fflush(stdout);
  }
}

void printHeap(const lab::TexturedPair& pair) {
  Matching matching(pair);
  const double imageBytes = static_cast<double>(matching.pixels * sizeof(uint16_t));
  const auto print = [&](const char* what, const std::function<void()>& call) {
    lab::heap::watch();
    call();
    std::printf("| %s | %s | %zu | %.3f |\n", lab::sizeText(pair).c_str(), what, lab::heap::allocations(),
                static_cast<double>(lab::heap::bytes()) / imageBytes);
  };
  print("IP_SgmFull", [&] { matching.match(nullptr); });
  print("IP_SgmPostproc", [&] { matching.clean(); });
  print("whole frame", [&] { matching.wholeFrame(); });
}

void run() {
  const unsigned best = cpu();
  const lab::TexturedPair pairs[] = {lab::texturedPair(320, 240), lab::texturedPair(640, 480)};
  std::printf("## Vector levels\n\nSpeed as a multiple of the scalar code's, all levels in one run.\n");
  for (const lab::TexturedPair& pair : pairs) printLevels(pair);
  setCpu(best);

  std::printf(
      "\n## OpenCV\n\nIts time divided by ours, one thread each, in one run, ours at each vector level. Its matchers "
      "take 8-bit\npictures and have other costs, paths and checks: they do the same task, not the same "
      "computation.\n\n");
  printAllPeers(pairs);
  setCpu(best);

  std::printf(
      "\n## Limits\n\nOur time divided by that of memcpy over the same bytes, or of std::stable_sort: near 1 is the "
      "machine's limit.\n\n| size | ours | against | ratio |\n|---|---|---|--:|\n");
  for (const lab::TexturedPair& pair : pairs) printLimits(lab::sizeText(pair), memoryLimits(pair));
  printLimits("65536 keys", sortingLimits());

  std::printf("\n## Matching\n\nThe time of a pixel in IP_SgmFull, divided by that in a picture of 640x480.\n\n");
  printMatchingGrowth();

  std::printf(
      "\n## Elevation mask\n\nThe time of asking for every cell whether it lies in a polygon, divided by that of the "
      "library's spans.\n\n");
  printPolygonCells();

  std::printf(
      "\n## Segmentation\n\nThe time of a pixel in a large square picture, divided by that in a small one (sides in "
      "pixels): about 1\nwhere time grows with the number of pixels and with nothing else. Small noise runs faster "
      "still, since a processor "
      "learns\nits branches by heart.\n\n");
  printSegmentGrowth();

  std::printf("\n## Memory\n\nWhat a call allocates in all, divided by the bytes of one 16-bit picture.\n\n");
  std::printf("| size | call | allocations | ratio |\n|---|---|--:|--:|\n");
  for (const lab::TexturedPair& pair : pairs) printHeap(pair);
}

}  // namespace
}  // namespace nadir::bench

int main() { nadir::bench::run(); }
