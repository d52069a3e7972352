#include "tools/tune/tuning.hpp"

#include <nadir/nadir.h>

#include <cmath>

#include "ground/known_values.hpp"
#include "ground/map.hpp"
#include "tools/base/error.hpp"
#include "tools/base/text.hpp"
#include "tools/camera/camera_file.hpp"
#include "tools/evaluate/evaluation.hpp"
#include "tools/pictures/pictures.hpp"
#include "tools/road/pair_input.hpp"

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

Grid<uint16_t> matched(const Pair& pair, uint32_t uniqueness) {
  StageTimes unused;
  MatchOptions options;
  options.uniqueness = uniqueness;
  return match(pair, options, unused).disparity;
}

Objective matchObjective(const std::vector<std::string>& folders, const Judge& judge) {
  return meanOf(readAll<MatchSample>(folders, matchSample), [judge](const MatchSample& sample, uint32_t uniqueness) {
    return scoreOf(unpacked(matched(sample.pair, uniqueness), SGM_DISP_SCALE), sample.truth, judge);
  });
}

// ---- settings of the map, judged by its heights ----

struct MapSample {
  std::vector<WorldPoint> points;
  MapFrame frame;
  float groundZ;
  Grid<float> truth;
};

// Matched once: the settings of the map come later on the road.
MapSample mapSample(const std::string& folder) {
  const Pair pair = readPair(folder + "/left.png", folder + "/right.png");
  const Camera camera = readCamera(folder + "/camera.toml");
  const StereoCtx context = stereoContext(camera, View::left);
  const Grid<float> disparity = unpacked(matched(pair, MatchOptions().uniqueness), SGM_DISP_SCALE);
  const std::string path = folder + "/elevation_gt.png";
  const MapSample sample{worldPoints(disparity, pair.left, context, static_cast<float>(camera.columnShiftPx)),
                         mapFrame(context, camera), context.orientation.height, readHeights(path).heights};
  checkTruth(sample.truth, Grid<uint8_t>(sample.frame.cells.width, sample.frame.cells.height), path);
  return sample;
}

Objective mapObjective(const std::vector<std::string>& folders, const Judge& judge, CellRule (*rule)(uint32_t)) {
  return meanOf(readAll<MapSample>(folders, mapSample), [judge, rule](const MapSample& sample, uint32_t setting) {
    const ElevationMap map = elevationMap(sample.points, sample.frame, sample.groundZ, rule(setting));
    return scoreOf(unpacked(map.heights, 1), sample.truth, judge);
  });
}

CellRule withPercentile(uint32_t percentile) { return {static_cast<double>(percentile), CellRule().minPoints}; }

CellRule withMinPoints(uint32_t points) { return {CellRule().percentile, points}; }

// ---- the list ----

struct Known {
  Tunable tunable;
  Objective (*objective)(const std::vector<std::string>&, const Judge&);
};

const Known known[] = {
    {{"uniqueness", 0, 128, MatchOptions().uniqueness, "px", 2, "the matcher's peak check, judged by disparity_gt.png"},
     matchObjective},
    {{"percentile", 1, 100, static_cast<uint32_t>(CellRule().percentile), "mm", 50,
      "which of its points' heights a cell gets, judged by elevation_gt.png"},
     [](const auto& folders, const Judge& judge) { return mapObjective(folders, judge, withPercentile); }},
    {{"min-points", 1, 50, CellRule().minPoints, "mm", 50,
      "cells with fewer points stay unseen, judged by elevation_gt.png"},
     [](const auto& folders, const Judge& judge) { return mapObjective(folders, judge, withMinPoints); }},
};

}  // namespace

const std::vector<Tunable>& tunables() {
  static const std::vector<Tunable> all = [] {
    std::vector<Tunable> list;
    for (const Known& k : known) list.push_back(k.tunable);
    return list;
  }();
  return all;
}

Objective objectiveOf(const Tunable& tunable, const std::vector<std::string>& folders, const Judge& judge) {
  for (const Known& k : known)
    if (std::string(k.tunable.name) == tunable.name) return k.objective(folders, judge);
  throw Error(format("there is no setting %s", tunable.name));
}

}  // namespace nadir::tool
