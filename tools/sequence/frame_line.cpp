// The members of a frame's line in their order.
#include "tools/sequence/frame_line.hpp"

#include "tools/report/json_parts.hpp"

namespace nadir::tool {

namespace {

Json watchedJson(const WatchedArea& area, const NadirOccupancy& o, const NadirTrack& track) {
  Json json = {{"name", area.area.name},
               {"seen_cells", o.seen_cells},
               {"covered_cells", o.covered_cells},
               {"covered_share", shareJson(o.covered_cells, area.cells)}};
  addHeights(json, o.covered_cells, o.highest_mm, o.median_mm);
  json["piece_mm"] = o.piece_mm ? Json(o.piece_mm) : Json();
  addTrack(json, track);
  return json;
}

}  // namespace

// Tenths of a millimetre are below what a track knows; null says that nothing is tracked.
void addTrack(Json& area, const NadirTrack& track) {
  area["tracked_mm"] = track.active ? roundedNumber(track.height_mm, 10) : Json();
  area["tracked_mm_per_s"] = track.active ? roundedNumber(track.rate_mm_per_s, 10) : Json();
  area["tracked_deviation_mm"] = track.active ? roundedNumber(track.deviation_mm, 10) : Json();
}

Json frameLine(const FrameReport& report, const Road& road) {
  const NadirFindings& found = report.findings;
  Json json = {{"schema", resultSchema},
               {"frame", report.number},
               {"name", report.name},
               {"time_s", roundedNumber(report.seconds, 1e6)},
               {"warnings", warningsJson(report.warnings)}};
  if (!report.error.empty()) {
    json["error"] = report.error;
  } else {
    json["seen_cells"] = found.seen_cells + found.filled_cells;
    json["mount_drift"] = driftJson(*found.trust);
    json["regions"] = road.findsRegions() ? Json::array() : Json();
    json["areas"] = road.findsRegions() ? Json::array() : Json();
  }
  for (uint32_t i = 0; i < found.region_count; ++i)
    json["regions"].push_back(regionJson(found.regions[i], road.context));
  for (size_t i = 0; i < report.tracks.size(); ++i)
    json["areas"].push_back(watchedJson(road.areas[i], found.areas[i], report.tracks[i]));
  return json;
}

std::string lineText(const Json& line) { return line.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n"; }

}  // namespace nadir::tool
