// The members of a frame's line in their order.
#include "tools/sequence/frame_line.hpp"

#include "tools/report/json_parts.hpp"

namespace nadir::tool {

namespace {

// Tenths of a millimetre are below what a track knows; null says that nothing is tracked.
void addTrack(Json& json, const std::optional<ground::TrackedHeight>& track) {
  json["tracked_mm"] = track ? roundedNumber(track->mm, 10) : Json();
  json["tracked_mm_per_s"] = track ? roundedNumber(track->mmPerS, 10) : Json();
  json["tracked_deviation_mm"] = track ? roundedNumber(track->deviationMm, 10) : Json();
}

Json watchedJson(const ground::PlacedArea& area, const ground::Occupancy& o,
                 const std::optional<ground::TrackedHeight>& track) {
  Json json = {{"name", area.area.name},
               {"seen_cells", o.seen},
               {"covered_cells", o.covered.cells},
               {"covered_share", shareJson(o.covered.cells, area.count)}};
  addHeights(json, o.covered);
  addTrack(json, track);
  return json;
}

}  // namespace

std::string frameLine(const FrameReport& report, const ground::Setup& setup) {
  Json json = {{"schema", resultSchema},
               {"frame", report.number},
               {"name", report.name},
               {"time_s", roundedNumber(report.seconds, 1e6)},
               {"warnings", warningsJson(report.warnings)}};
  if (!report.error.empty()) {
    json["error"] = report.error;
  } else {
    json["seen_cells"] = report.seenCells;
    json["regions"] = report.findings ? Json::array() : Json();
    json["areas"] = report.findings ? Json::array() : Json();
  }
  if (report.findings) {
    for (const ground::Region& region : report.findings->regions.list)
      json["regions"].push_back(regionJson(region, setup.frame));
    for (size_t i = 0; i < report.tracks.size(); ++i)
      json["areas"].push_back(watchedJson(setup.areas[i], report.findings->areas[i], report.tracks[i]));
  }
  return json.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace nadir::tool
