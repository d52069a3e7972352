#include "tools/report/ground_report.hpp"

#include <cmath>

#include "ground/known_values.hpp"

namespace nadir::tool {

namespace {

void addMap(Table& table, const GroundResult& result) {
  const ground::MapHeights heights = ground::heightsOf(result.map.heights);
  const size_t cells = result.map.heights.pixels.size();
  table.line("pixels with a disparity",
             100 * share(ground::countKnown(result.disparity), result.disparity.pixels.size()), "%");
  table.line("points over the map", 100 * share(result.map.pointsInside, result.points.size()), "%");
  table.line("seen cells of " + sizeText(result.map.heights.width, result.map.heights.height),
             100 * share(heights.known - result.map.filled, cells), "%");
  if (result.map.filled > 0) table.line("filled cells", 100 * share(result.map.filled, cells), "%");
  table.line("highest cell", heights.known ? heights.highest : std::nan(""), "mm", 0);
}

void addPlane(Table& table, const GroundResult& result) {
  table.gap();
  if (!result.plane) return table.heading("ground plane: none found near the camera file's", "");
  const ground::GroundPlane& plane = *result.plane;
  const ground::Camera& camera = result.camera;
  table.heading("ground plane fitted to the points", "");
  table.line("height", plane.heightMm, format("mm; the camera file says %.1f", camera.heightMm), 1);
  table.line("tilt", plane.tiltDeg, format("degrees; the camera file says %.2f", camera.tiltDeg), 2);
  table.line("pan", plane.panDeg, format("degrees; the camera file says %.2f", camera.panDeg), 2);
  table.line("rms", plane.rmsMm, format("mm, %.2f pixels of disparity", plane.rmsPx), 1);
  table.line("points on it", 100 * share(plane.inliers, result.points.size()), "%", 1);
}

std::string described(const ground::CellSet& set) {
  return format("m2, up to %u mm high, median %u mm", set.highestMm, set.medianMm);
}

void addRegions(Table& table, const Findings& findings, const ground::MapFrame& frame) {
  const ground::RegionRule& rule = findings.rule;
  table.gap();
  table.heading(format("regions: %zu", findings.regions.list.size()), "");
  table.line("higher than", rule.minHeightMm, "mm", 0);
  table.line("joined by steps up to", rule.maxStepMm, "mm", 0);
  table.line("not smaller than", rule.minAreaM2, "m2", 3);
  for (const ground::Region& region : findings.regions.list)
    table.line(format("region %u", region.label), ground::squareMetres(region.set.cells, frame.cells),
               described(region.set) + format(", at x %.0f, y %.0f mm", region.centreXMm, region.centreYMm), 3);
}

void addArea(Table& table, const ground::Occupancy& area, const ground::MapFrame& frame) {
  table.gap();
  table.heading("area \"" + area.area.name + "\"" + (area.place.wholeOnMap ? "" : ", which reaches beyond the map"),
                "");
  table.line("size on the map", ground::squareMetres(area.place.count, frame.cells), "m2", 3);
  table.line("seen", 100 * share(area.seen, area.place.count), "%");
  if (area.seen == 0) return table.heading("nothing of it was seen", "");
  if (area.regions.empty()) return table.heading("nothing stands in it", "");
  table.line("covered", ground::squareMetres(area.covered.cells, frame.cells), described(area.covered), 3);
  for (const ground::SharedRegion& shared : area.regions)
    table.line(format("region %u", shared.label), ground::squareMetres(shared.set.cells, frame.cells),
               described(shared.set), 3);
}

}  // namespace

double share(size_t part, size_t whole) {
  return whole == 0 ? 0 : static_cast<double>(part) / static_cast<double>(whole);
}

std::string groundTable(const GroundResult& result, const StageTimes& times) {
  Table table;
  table.heading("stage", "time");
  times.addTo(table);
  table.gap();
  addMap(table, result);
  addPlane(table, result);
  if (result.findings) {
    addRegions(table, *result.findings, result.frame);
    for (const ground::Occupancy& area : result.findings->areas) addArea(table, area, result.frame);
  }
  return table.text();
}

}  // namespace nadir::tool
