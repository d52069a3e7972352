// Prints what docs/measured/road.md holds: how long the road and its stages take beside the matcher. Only ratios: they
// mean something on other machines too. With --modes: how long each way of matching takes beside a single pass.
#include <nadir/ground.h>

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

const std::vector<MatchMode>& modes() {
  static const std::vector<MatchMode> all = {
      {"one pass", NADIR_CHECK_NONE, NADIR_REFINE_NONE, NADIR_RANGE_61, 0},
      {"--refine surface", NADIR_CHECK_NONE, NADIR_REFINE_SURFACE, NADIR_RANGE_61, 0},
      {"--check flip", NADIR_CHECK_FLIP, NADIR_REFINE_NONE, NADIR_RANGE_61, 0},
      {"--check flip --support 8", NADIR_CHECK_FLIP, NADIR_REFINE_NONE, NADIR_RANGE_61, 8},
      {"--check sides", NADIR_CHECK_SIDES, NADIR_REFINE_NONE, NADIR_RANGE_61, 0},
      {"--check both", NADIR_CHECK_BOTH, NADIR_REFINE_NONE, NADIR_RANGE_61, 0},
      {"--range 122", NADIR_CHECK_NONE, NADIR_REFINE_NONE, NADIR_RANGE_122, 0},
      {"--range 244", NADIR_CHECK_NONE, NADIR_REFINE_NONE, NADIR_RANGE_244, 0},
      {"--check flip --refine surface --range 122", NADIR_CHECK_FLIP, NADIR_REFINE_SURFACE, NADIR_RANGE_122, 0}};
  return all;
}

void printModes(const lab::TexturedPair& pair, const std::vector<Level>& all) {
  std::vector<std::vector<double>> times;
  for (const Level& level : all) {
    setCpu(level.cpu);
    times.push_back(modeTimes(pair, modes()));
  }
  for (size_t mode = 0; mode < modes().size(); ++mode) {
    std::printf("| %s | `%s` |", lab::sizeText(pair).c_str(), modes()[mode].name);
    for (const std::vector<double>& seconds : times) std::printf(" %.2f |", seconds[mode] / seconds[0]);
    std::printf("\n");
    std::fflush(stdout);
  }
}

void printAllModes() {
  const std::vector<Level> all = levels();
  printHead({"size", "mode"}, all);
  for (const auto& [width, height] : {std::pair<uint32_t, uint32_t>{320, 240}, {640, 480}, {1280, 960}})
    printModes(lab::texturedPair(width, height), all);
}

void printAllStages() {
  const std::vector<Level> all = levels();
  printHead({"size", "percentile", "stage"}, all);
  for (const auto& [width, height] : {std::pair<uint32_t, uint32_t>{320, 240}, {640, 480}, {1280, 960}})
    for (const double percentile : {90.0, 50.0, 100.0}) printRoad(lab::texturedPair(width, height), percentile, all);
}

}  // namespace
}  // namespace nadir::bench

int main(int count, char** words) {
  if (count > 1 && std::string(words[1]) == "--modes")
    nadir::bench::printAllModes();
  else
    nadir::bench::printAllStages();
}
