// Prints what docs/measured/road.md holds: how long the road and its stages take beside the matcher. Only ratios: they
// mean something on other machines too.
#include <cstdio>
#include <functional>
#include <string>

#include "bench/road/road_stages.hpp"
#include "bench/table_head.hpp"
#include "simd/cpu.hpp"

namespace nadir::bench {
namespace {

// What of the road is told of, in its order, by the time that it took.
using RoadPart = std::pair<std::string, std::function<double(const RoadTimes&)>>;

std::vector<RoadPart> roadParts(const RoadTimes& times) {
  std::vector<RoadPart> parts = {{"whole", [](const RoadTimes& t) { return t.whole; }},
                                 {"all after the clean-up", [](const RoadTimes& t) { return t.afterCleanUp(); }}};
  for (const auto& stage : times.stages)
    parts.emplace_back(stage.first, [name = stage.first](const RoadTimes& t) { return t.stage(name); });
  return parts;
}

void printRoad(const lab::TexturedPair& pair, double percentile, const std::vector<Level>& all) {
  std::vector<RoadTimes> times;
  for (const Level& level : all) {
    setCpu(level.cpu);
    times.push_back(roadTimes(pair, percentile));
  }
  for (const auto& [name, seconds] : roadParts(times[0])) {
    std::printf("| %s | %.0f | %s |", lab::sizeText(pair).c_str(), percentile, name.c_str());
    for (const RoadTimes& t : times) std::printf(" %.3f |", seconds(t) / t.matcher);
    std::printf("\n");
    std::fflush(stdout);
  }
}

void run() {
  const std::vector<Level> all = levels();
  printHead({"size", "percentile", "stage"}, all);
  for (const auto& [width, height] : {std::pair<uint32_t, uint32_t>{320, 240}, {640, 480}, {1280, 960}})
    for (const double percentile : {90.0, 50.0, 100.0}) printRoad(lab::texturedPair(width, height), percentile, all);
}

}  // namespace
}  // namespace nadir::bench

int main() { nadir::bench::run(); }
