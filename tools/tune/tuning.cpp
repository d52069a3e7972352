// The settings that can be tuned, and how each one is scored.
#include "tools/tune/tuning.hpp"

#include <nadir/nadir.h>

#include <cmath>

#include "tools/base/error.hpp"
#include "tools/base/known_values.hpp"
#include "tools/base/text.hpp"
#include "tools/camera/camera_file.hpp"
#include "tools/evaluate/evaluation.hpp"
#include "tools/pictures/pictures.hpp"
#include "tools/road/road.hpp"

namespace nadir::tool {

namespace {

double scoreOf(const Grid<float>& values, const Grid<float>& truth, const Judge& judge) {
  const Grid<float> error = errors(values, truth);
  const size_t compared = countKnown(error);
  const auto right = static_cast<size_t>(
      std::count_if(error.pixels.begin(), error.pixels.end(), [&](float e) { return std::abs(e) <= judge.tolerance; }));
  const double gain = static_cast<double>(right) - judge.wrongCosts * static_cast<double>(compared - right);
  return 100 * gain / static_cast<double>(countKnown(truth));
}

// The mean over all samples of what `score` says of one.
template <class Sample, class Score>
Objective meanOf(std::vector<Sample> samples, Score score) {
  return [samples = std::move(samples), score](uint32_t setting) {
    double sum = 0;
    for (const Sample& sample : samples) sum += score(sample, setting);
    return sum / static_cast<double>(samples.size());
  };
}

template <class Sample, class Read>
std::vector<Sample> readAll(const std::vector<std::string>& folders, Read read) {
  std::vector<Sample> samples;
  for (const std::string& folder : folders) samples.push_back(read(folder));
  return samples;
}

template <class A, class B>
void checkTruth(const Grid<A>& truth, const Grid<B>& values, const std::string& path) {
  if (!sameSize(truth, values))
    throw Error(format("%s is %s, but what it is the truth of is %s", path.c_str(),
                       sizeText(truth.width, truth.height).c_str(), sizeText(values.width, values.height).c_str()));
  if (countKnown(truth) == 0) throw Error(path + " knows no truth at all");
}

// ---- settings of the matcher, judged by its disparities ----

struct MatchSample {
  Pair pair;
  Grid<float> truth;
};

constexpr double truthScale = 256;

MatchSample matchSample(const std::string& folder) {
  const std::string path = folder + "/disparity_gt.png";
  MatchSample sample{readPair(folder + "/left.png", folder + "/right.png"), readDisparity(path, 0, truthScale)};
  checkTruth(sample.truth, sample.pair.left, path);
  return sample;
}

Grid<float> disparitiesOf(const Pair& pair, const MatchOptions& options) {
  StageTimes times;
  return unpacked(matched(pair, {}, options, times).disparity, SGM_DISP_SCALE);
}

Objective matchObjective(const std::vector<std::string>& folders, const Judge& judge) {
  return meanOf(readAll<MatchSample>(folders, matchSample), [judge](const MatchSample& sample, uint32_t uniqueness) {
    MatchOptions options;
    options.uniqueness = uniqueness;
    return scoreOf(disparitiesOf(sample.pair, options), sample.truth, judge);
  });
}

// ---- settings of the map, judged by its heights ----

struct MapSample {
  RoadOptions options;
  Grid<float> disparity, truth;
};

// The pair is matched once, because the settings of the map come later on the road.
MapSample mapSample(const std::string& folder) {
  MapSample sample;
  Pair pair = readPair(folder + "/left.png", folder + "/right.png");
  const std::string path = folder + "/elevation_gt.png";
  sample.options.camera = folder + "/camera.toml";
  sample.options.noRegions = true;
  sample.truth = readHeights(path).heights;
  const Road road = roadOf(sample.options);
  StageTimes untold;
  pair = fittingPair(road, std::move(pair), untold);
  checkTruth(sample.truth, Grid<uint8_t>(road.camera.mapWidthCells, road.camera.mapHeightCells), path);
  MatchOptions options = sample.options.match;
  options.range = road.settings.range;
  sample.disparity = disparitiesOf(pair, options);
  return sample;
}

Objective mapObjective(const std::vector<std::string>& folders, const Judge& judge,
                       void (*change)(RoadOptions&, uint32_t)) {
  return meanOf(readAll<MapSample>(folders, mapSample), [judge, change](const MapSample& sample, uint32_t setting) {
    RoadOptions options = sample.options;
    change(options, setting);
    const Grid<uint16_t> heights = heightsOfGiven(roadOf(options), sample.disparity);
    return scoreOf(unpacked(heights, 1), sample.truth, judge);
  });
}

void setPercentile(RoadOptions& options, uint32_t percentile) { options.percentile = percentile; }
void setMinPoints(RoadOptions& options, uint32_t points) { options.minPoints = points; }

// ---- the list ----

struct KnownSetting {
  Tunable tunable;
  Objective (*objective)(const std::vector<std::string>&, const Judge&);
};

const KnownSetting knownSettings[] = {
    {{"uniqueness", 0, 128, usualSettings().uniqueness, "px", 2,
      "the matcher's peak check, judged by disparity_gt.png"},
     matchObjective},
    {{"percentile", 1, 100, static_cast<uint32_t>(usualSettings().percentile), "mm", 50,
      "which of its points' heights a cell gets, judged by elevation_gt.png"},
     [](const auto& folders, const Judge& judge) { return mapObjective(folders, judge, setPercentile); }},
    {{"min-points", 1, 50, usualSettings().min_points, "mm", 50,
      "cells with fewer points stay unseen, judged by elevation_gt.png"},
     [](const auto& folders, const Judge& judge) { return mapObjective(folders, judge, setMinPoints); }},
};

}  // namespace

const std::vector<Tunable>& tunables() {
  static const std::vector<Tunable> all = [] {
    std::vector<Tunable> list;
    for (const KnownSetting& k : knownSettings) list.push_back(k.tunable);
    return list;
  }();
  return all;
}

Objective objectiveOf(const Tunable& tunable, const std::vector<std::string>& folders, const Judge& judge) {
  for (const KnownSetting& k : knownSettings)
    if (std::string(k.tunable.name) == tunable.name) return k.objective(folders, judge);
  throw Error(format("there is no setting %s", tunable.name));
}

}  // namespace nadir::tool
