// The table that nadir ground prints.
#include "tools/report/ground_report.hpp"

#include <cmath>

#include "ground/records/known_values.hpp"
#include "tools/base/statistics.hpp"
#include "tools/base/text.hpp"
#include "tools/report/map_heights.hpp"

namespace nadir::tool {

namespace {

// Nothing is no part of nothing, where a table has to say something.
double percent(size_t part, size_t whole) { return 100 * shareOf(part, whole, 0); }

void addMap(Table& table, const ground::Result& result) {
  const MapHeights heights = heightsOf(result.map.heights);
  const size_t cells = result.map.heights.pixels.size();
  table.line("pixels with a disparity", percent(ground::countKnown(result.disparity), result.disparity.pixels.size()),
             "%");
  table.line("points over the map", percent(result.map.pointsInside, result.points.size()), "%");
  table.line("seen cells of " + sizeText(result.map.heights.width, result.map.heights.height),
             percent(heights.known - result.map.filled, cells), "%");
  if (result.map.filled > 0) table.line("filled cells", percent(result.map.filled, cells), "%");
  table.line("highest cell", heights.known ? heights.highest : std::nan(""), "mm", 0);
}

void addPlane(Table& table, const ground::Camera& camera, const ground::Result& result) {
  table.gap();
  if (!result.plane) return table.heading("ground plane: none found near the camera file's", "");
  const ground::GroundPlane& plane = *result.plane;
  table.heading("ground plane fitted to the points", "");
  table.line("height", plane.heightMm, format("mm; the camera file says %.1f", camera.heightMm), 1);
  table.line("tilt", plane.tiltDeg, format("degrees; the camera file says %.2f", camera.tiltDeg), 2);
  table.line("pan", plane.panDeg, format("degrees; the camera file says %.2f", camera.panDeg), 2);
  table.line("rms", plane.rmsMm, format("mm, %.2f pixels of disparity", plane.rmsPx), 1);
  table.line("points on it", percent(plane.inliers, result.points.size()), "%", 1);
}

std::string described(const ground::CellSet& set) {
  return format("m2, up to %u mm high, median %u mm", set.highestMm, set.medianMm);
}

void addRegions(Table& table, const ground::Regions& regions, const ground::RegionRule& rule,
                const ground::MapFrame& frame) {
  table.gap();
  table.heading(format("regions: %zu", regions.list.size()), "");
  table.line("higher than", rule.minHeightMm, "mm", 0);
  table.line("joined by steps up to", rule.maxStepMm, "mm", 0);
  table.line("not smaller than", rule.minAreaM2, "m2", 3);
  for (const ground::Region& region : regions.list)
    table.line(format("region %u", region.label), ground::squareMetres(region.set.cells, frame.cells),
               described(region.set) + format(", at x %.0f, y %.0f mm", region.centreXMm, region.centreYMm), 3);
}

void addArea(Table& table, const ground::PlacedArea& place, const ground::Occupancy& area,
             const ground::MapFrame& frame) {
  table.gap();
  table.heading("area \"" + place.area.name + "\"" + (place.wholeOnMap ? "" : ", which reaches beyond the map"), "");
  table.line("size on the map", ground::squareMetres(place.count, frame.cells), "m2", 3);
  table.line("seen", percent(area.seen, place.count), "%");
  if (area.seen == 0) return table.heading("nothing of it was seen", "");
  if (area.regions.empty()) return table.heading("nothing stands in it", "");
  table.line("covered", ground::squareMetres(area.covered.cells, frame.cells), described(area.covered), 3);
  for (const ground::SharedRegion& shared : area.regions)
    table.line(format("region %u", shared.label), ground::squareMetres(shared.set.cells, frame.cells),
               described(shared.set), 3);
}

}  // namespace

std::string groundTable(const ground::Setup& setup, const ground::Result& result, const StageTimes& times) {
  Table table;
  table.heading("stage", "time");
  times.addTo(table);
  table.gap();
  addMap(table, result);
  addPlane(table, setup.camera, result);
  if (result.findings) {
    addRegions(table, result.findings->regions, *setup.settings.regions, setup.frame);
    for (size_t i = 0; i < setup.areas.size(); ++i)
      addArea(table, setup.areas[i], result.findings->areas[i], setup.frame);
  }
  return table.text();
}

}  // namespace nadir::tool
