// Works of ground.h: frames of the road, and what goes from frame to frame.
#include <nadir/stereo.h>

#include <memory>

#include "bench/road/road_frame.hpp"
#include "bench/work.hpp"
#include "lab/road.hpp"

namespace nadir::bench {
namespace {

constexpr uint32_t averaged = 5;

NadirTrackSettings tracking() {
  NadirTrackSettings settings;
  lab::demand(nadir_track_settings_fill(&settings));
  settings.average_frames = averaged;
  return settings;
}

std::string percentText(double percentile) { return ", percentile " + std::to_string(static_cast<int>(percentile)); }

void addFrames(Works& works, const lab::TexturedPair& pair) {
  const uint64_t pixels = pair.first.size();
  const auto match = std::make_shared<RoadFrame>(pair, NADIR_UNTIL_MATCH, 90);
  works.push_back(
      {"nadir_road_process, until the match", pixels, 7 * pixels, [=] { match->road.findings(match->matched()); }});
  for (const double percentile : {90.0, 50.0, 100.0}) {
    const auto walk = std::make_shared<RoadFrame>(pair, NADIR_UNTIL_ALL, percentile);
    walk->keepDisparities();
    works.push_back({"nadir_road_process" + percentText(percentile), pixels, 7 * pixels,
                     [=] { walk->road.findings(walk->matched()); }});
    works.push_back({"nadir_road_process, given disparities" + percentText(percentile), pixels, 4 * pixels,
                     [=] { walk->road.findings(walk->given()); }});
  }
}

void addPoints(Works& works, const lab::TexturedPair& pair) {
  const auto walk = std::make_shared<RoadFrame>(pair, NADIR_UNTIL_MAP, 90);
  walk->road.findings(walk->matched());
  const auto points = std::make_shared<std::vector<NadirPoint>>(pair.first.size());
  works.push_back({"nadir_road_points", pair.first.size(), (2 + sizeof(NadirPoint)) * pair.first.size(), [=] {
                     const NadirFrame frame = walk->matched();
                     size_t count;
                     lab::demand(nadir_road_points(walk->road.road(), &frame, walk->road.result(), points->data(),
                                                   points->size(), &count));
                   }});
}

// Their time does not depend on the picture.
void addCreations(Works& works, const std::shared_ptr<RoadFrame>& walk) {
  works.push_back(
      {"nadir_road_create, nadir_result_create and destroy", 0, 0, [=] { const lab::Road road(walk->plan); }});
  works.push_back({"nadir_tracker_create and destroy", 0, 0, [=] { const lab::Tracker t(walk->road, tracking()); }});
}

void addTracking(Works& works, const std::shared_ptr<RoadFrame>& walk) {
  const auto tracker = std::make_shared<lab::Tracker>(walk->road, tracking());
  const auto saved = std::make_shared<std::vector<uint8_t>>(tracker->saved());
  const auto measured = std::make_shared<NadirMeasurement>(lab::emptyRecord<NadirMeasurement>());
  measured->heights = walk->road.findings(walk->matched()).heights;
  works.push_back(
      {"nadir_tracker_step", 0, 0, [=] { lab::demand(nadir_tracker_step(tracker->get(), walk->road.result(), 0)); }});
  works.push_back(
      {"nadir_tracker_replay", 0, 0, [=] { lab::demand(nadir_tracker_replay(tracker->get(), measured.get())); }});
  works.push_back({"nadir_tracker_average of 5 maps", 0, 0, [=] {
                     NadirPlane mean;
                     lab::demand(nadir_tracker_average(tracker->get(), &mean));
                   }});
  works.push_back(
      {"nadir_tracker_save", 0, 0, [=] { nadir_tracker_save(tracker->get(), saved->data(), saved->size()); }});
  works.push_back({"nadir_tracker_load", 0, 0,
                   [=] { lab::demand(nadir_tracker_load(tracker->get(), saved->data(), saved->size())); }});
}

}  // namespace

void addGroundWorks(Works& works, const lab::TexturedPair& pair) {
  addFrames(works, pair);
  addPoints(works, pair);
  const auto walk = std::make_shared<RoadFrame>(pair, NADIR_UNTIL_ALL, 90);
  addCreations(works, walk);
  addTracking(works, walk);
}

}  // namespace nadir::bench
