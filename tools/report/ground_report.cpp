// The table that nadir ground prints.
#include "tools/report/ground_report.hpp"

#include <cmath>

#include "tools/base/statistics.hpp"
#include "tools/base/text.hpp"
#include "tools/report/json_parts.hpp"
#include "tools/report/map_heights.hpp"

namespace nadir::tool {

namespace {

// Nothing is no part of nothing, where a table has to say something.
double percent(size_t part, size_t whole) { return 100 * shareOf(part, whole, 0); }

// How high things are measured all over the map.
std::string topText(const NadirTrust& trust) {
  if (std::isnan(trust.least_top_mm)) return "px";
  return format("px; measures up to %.0f mm above the ground", trust.least_top_mm);
}

void addMap(Table& table, const Road& road, const PairResult& result) {
  const NadirFindings& f = result.findings;
  const MapHeights heights = heightsOf(gridOf<uint16_t>(f.heights));
  const size_t cells = size_t{f.heights.width} * f.heights.height;
  table.line("pixels with a disparity", percent(f.pixels->value, result.picture.pixels.size()), "%");
  if (result.given.pixels.empty())
    table.line("largest disparity that is found", road.settings.range, topText(*f.trust));
  table.line("points over the map", percent(f.points_inside, f.points), "%");
  table.line("seen cells of " + sizeText(f.heights.width, f.heights.height), percent(f.seen_cells, cells), "%");
  if (f.filled_cells > 0) table.line("filled cells", percent(f.filled_cells, cells), "%");
  table.line("highest cell", heights.known ? heights.highest : std::nan(""), "mm", 0);
}

void addPlane(Table& table, const Camera& camera, const PairResult& result) {
  table.gap();
  if (!result.plane) return table.heading("ground plane: none found near the camera file's", "");
  const NadirGroundPlane& plane = *result.plane;
  table.heading("ground plane fitted to the points", "");
  table.line("height", plane.height_mm, format("mm; the camera file says %.1f", camera.heightMm), 1);
  table.line("tilt", plane.tilt_deg, format("degrees; the camera file says %.2f", camera.tiltDeg), 2);
  table.line("pan", plane.pan_deg, format("degrees; the camera file says %.2f", camera.panDeg), 2);
  table.line("rms", plane.rms_mm, format("mm, %.2f pixels of disparity", plane.rms_px), 1);
  table.line("points on it", percent(plane.inliers, result.findings.points), "%", 1);
}

std::string described(uint32_t highestMm, uint32_t medianMm) {
  return format("m2, up to %u mm high, median %u mm", highestMm, medianMm);
}

void addRegions(Table& table, const Road& road, const NadirFindings& findings) {
  table.gap();
  table.heading(format("regions: %u", findings.region_count), "");
  table.line("higher than", road.settings.min_height_mm, "mm", 0);
  table.line("joined by steps up to", road.settings.max_step_mm, "mm", 0);
  if (road.settings.dip_mm > 0) table.line("parted by dips of", road.settings.dip_mm, "mm", 0);
  table.line("not smaller than", road.settings.min_area_m2, "m2", 3);
  for (uint32_t i = 0; i < findings.region_count; ++i) {
    const NadirRegion& region = findings.regions[i];
    table.line(format("region %u", region.label), region.area_m2,
               described(region.highest_mm, region.median_mm) +
                   format(", at x %.0f, y %.0f mm", region.centre_x_mm, region.centre_y_mm) +
                   (region.at_picture_edge ? "; cut off by the picture's edge" : ""),
               3);
  }
}

void addArea(Table& table, const WatchedArea& place, const NadirOccupancy& area, const NadirShare* shares,
             const StereoCtx& context) {
  table.gap();
  table.heading("area \"" + place.area.name + "\"" + (place.wholeOnMap ? "" : ", which reaches beyond the map"), "");
  table.line("size on the map", squareMetres(place.cells, context), "m2", 3);
  table.line("seen", percent(area.seen_cells, place.cells), "%");
  if (area.seen_cells == 0) return table.heading("nothing of it was seen", "");
  if (area.share_count == 0) return table.heading("nothing stands in it", "");
  table.line("covered", squareMetres(area.covered_cells, context), described(area.highest_mm, area.median_mm), 3);
  for (uint32_t i = 0; i < area.share_count; ++i) {
    const NadirShare& shared = shares[area.first_share + i];
    table.line(format("region %u", shared.label), squareMetres(shared.cells, context),
               described(shared.highest_mm, shared.median_mm), 3);
  }
}

}  // namespace

std::string groundTable(const Road& road, const PairResult& result, const StageTimes& times) {
  const NadirFindings& findings = result.findings;
  Table table;
  table.heading("stage", "time");
  times.addTo(table);
  table.gap();
  addMap(table, road, result);
  addPlane(table, road.camera, result);
  if (road.findsRegions()) addRegions(table, road, findings);
  for (uint32_t i = 0; i < findings.area_count; ++i)
    addArea(table, road.areas[i], findings.areas[i], findings.shares, road.context);
  return table.text();
}

}  // namespace nadir::tool
