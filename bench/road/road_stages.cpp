// Rounds of a frame and a matching, of each the fastest.
#include "bench/road/road_stages.hpp"

#include <algorithm>
#include <functional>
#include <limits>
#include <memory>

#include "bench/matching.hpp"
#include "bench/road/road_frame.hpp"
#include "bench/timing.hpp"

namespace nadir::bench {
namespace {

constexpr double secondsInAll = 1;
constexpr int minRounds = 9;

// One frame's times: the road tells where its stages begin.
struct StageWatch {
  std::vector<std::pair<std::string, double>> stages;
  double since = 0;
  size_t running = 0;

  void change(const char* name) {
    const double time = processorSeconds();
    if (!stages.empty()) stages[running].second += time - since;
    since = time;
    if (name) running = placeOf(name);
  }

  size_t placeOf(const std::string& name) {
    size_t place = 0;
    while (place < stages.size() && stages[place].first != name) ++place;
    if (place == stages.size()) stages.emplace_back(name, 0.0);
    return place;
  }
};

StageWatch watched(RoadFrame& road) {
  StageWatch watch;
  NadirFrame frame = road.matched();
  frame.user = &watch;
  frame.on_stage = [](void* user, const char* name) { static_cast<StageWatch*>(user)->change(name); };
  road.road.findings(frame);
  return watch;
}

void keepFastest(double& best, double seconds) { best = std::min(best, seconds); }

}  // namespace

double RoadTimes::stage(const std::string& name) const {
  for (const auto& [known, seconds] : stages)
    if (known == name) return seconds;
  return 0;
}

double RoadTimes::afterCleanUp() const { return stage("trust") + stage("points and map") + stage("regions"); }

RoadTimes roadTimes(const lab::TexturedPair& pair, double percentile) {
  constexpr double never = std::numeric_limits<double>::max();
  RoadFrame road(pair, NADIR_UNTIL_ALL, percentile);
  Matching matching(pair);
  RoadTimes times{never, never, watched(road).stages};
  for (auto& stage : times.stages) stage.second = never;
  const double begin = processorSeconds();
  for (int round = 0; round < minRounds || processorSeconds() - begin < secondsInAll; ++round) {
    keepFastest(times.matcher, secondsOf([&] { matching.match(nullptr); }));
    keepFastest(times.whole, secondsOf([&] { road.road.findings(road.matched()); }));
    const StageWatch watch = watched(road);
    for (size_t i = 0; i < times.stages.size(); ++i) keepFastest(times.stages[i].second, watch.stages.at(i).second);
  }
  return times;
}

std::vector<double> modeTimes(const lab::TexturedPair& pair, const std::vector<MatchMode>& modes) {
  std::vector<std::function<void()>> ways;
  for (const MatchMode& mode : modes) {
    lab::RoadPlan plan = RoadFrame::planOf(pair, NADIR_UNTIL_MATCH, 90);
    plan.areas.clear();
    plan.settings.check = mode.check;
    plan.settings.refine = mode.refine;
    plan.settings.range = mode.range;
    plan.settings.support = mode.support;
    const auto road = std::make_shared<lab::Road>(plan);
    ways.push_back(
        [road, &pair] { road->findings(lab::frameOf(pair.first.data(), pair.reference.data(), pair.width)); });
  }
  return fastest(ways);
}

}  // namespace nadir::bench
