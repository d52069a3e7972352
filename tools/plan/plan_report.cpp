// Puts a plan's numbers into words.
#include "tools/plan/plan_report.hpp"

#include <algorithm>
#include <cmath>

#include "tools/base/text.hpp"
#include "tools/report/json_parts.hpp"

namespace nadir::tool {

namespace {

Json pointJson(const GroundPoint& point) { return {measuredJson(point.xMm), measuredJson(point.yMm)}; }

Json distanceJson(double mm) { return std::isnan(mm) ? Json() : measuredJson(mm); }

Json placeJson(const PlannedPlace& place) {
  return {{"place", place.name},
          {"column_px", measuredJson(place.pixel.column)},
          {"row_px", measuredJson(place.pixel.row)},
          {"ground_mm", pointJson(place.ground)},
          {"forward_mm", measuredJson(place.forwardMm)},
          {"disparity_px", measuredJson(place.disparityPx)},
          {"height_step_mm", measuredJson(place.stepMm)},
          {"greatest_height_mm", measuredJson(place.greatestHeightMm)},
          {"limited_by", place.rangeEndsIt ? "range" : "picture"},
          {"points_per_cell", measuredJson(place.pointsPerCell)}};
}

struct Sides {
  double left, right, nearest, farthest;
};

Sides sidesOf(const Plan& plan) {
  Sides s{1e30, -1e30, 1e30, -1e30};
  for (const GroundPoint& p : plan.outline) {
    s.left = std::min(s.left, p.xMm), s.right = std::max(s.right, p.xMm);
    s.nearest = std::min(s.nearest, -p.yMm), s.farthest = std::max(s.farthest, -p.yMm);
  }
  return s;
}

void addCamera(const Camera& camera, Table& table) {
  table.heading("camera", "");
  table.line("focal length", camera.focalPx, "px, pictures of " + sizeText(camera.widthPx, camera.heightPx));
  table.line("baseline", camera.baselineMm, "mm");
  table.line("height", camera.heightMm, "mm");
  table.line("tilt", camera.tiltDeg, "degrees; 0 looks straight down, negative towards the picture's upper edge");
}

void addGround(const Plan& plan, Table& table) {
  const Sides s = sidesOf(plan);
  table.heading("ground that both pictures show", "");
  table.line("from left of the camera", s.left, "mm along the pictures' rows");
  table.line("to right of it", s.right, "mm");
  table.line("from before the camera", s.nearest, "mm, negative behind it");
  table.line("to", s.farthest, plan.reachesHorizon ? "mm, where disparities end, at 2 pixels" : "mm");
  table.line("area", plan.areaM2, "m2", 2);
}

void addPlace(const PlannedPlace& place, Table& table) {
  table.heading(format("%s, %.0f mm before the camera", place.name, place.forwardMm), "");
  table.line("disparity of the ground", place.disparityPx, "px");
  table.line("height for 1/16 pixel", place.stepMm, "mm", 2);
  table.line("greatest height measured", place.greatestHeightMm,
             place.rangeEndsIt ? "mm, where the range ends" : "mm, where the pictures end", 0);
  table.line("pixels for a cell", place.pointsPerCell, "of the map");
}

}  // namespace

std::string planTable(const Plan& plan) {
  const Camera& camera = plan.camera;
  Table table;
  addCamera(camera, table);
  table.gap();
  addGround(plan, table);
  for (const PlannedPlace& place : plan.places) table.gap(), addPlace(place, table);
  table.gap();
  table.heading(format("things of %g mm are measured", plan.tallestMm), "");
  if (std::isnan(plan.tallestFromMm)) {
    table.heading("  nowhere in the middle of the pictures", "");
  } else {
    table.line("from", plan.tallestFromMm, "mm before the camera");
    table.line("to", plan.tallestToMm, "mm, in the middle of the pictures");
  }
  table.gap();
  table.heading("settings", "");
  table.line("range", plan.rangePx, format("px (--range), for things up to %g mm", plan.tallestMm), 0);
  table.line("side of a cell", camera.cellMm, "mm, a map of " + sizeText(camera.mapWidthCells, camera.mapHeightCells),
             0);
  table.line("cells for a person", plan.cellsPerPerson, "seen from above");
  return table.text();
}

std::string planJson(const Plan& plan) {
  Json outline = Json::array(), places = Json::array();
  for (const GroundPoint& point : plan.outline) outline.push_back(pointJson(point));
  for (const PlannedPlace& place : plan.places) places.push_back(placeJson(place));
  const Sides s = sidesOf(plan);
  const Json json = {{"schema", 1},
                     {"camera", cameraJson(plan.camera)},
                     {"tallest_mm", plan.tallestMm},
                     {"range_px", plan.rangePx},
                     {"ground",
                      {{"left_mm", measuredJson(s.left)},
                       {"right_mm", measuredJson(s.right)},
                       {"near_mm", measuredJson(s.nearest)},
                       {"far_mm", measuredJson(s.farthest)},
                       {"area_m2", measuredJson(plan.areaM2)},
                       {"reaches_horizon", plan.reachesHorizon},
                       {"outline_mm", outline}}},
                     {"places", places},
                     {"tallest_from_mm", distanceJson(plan.tallestFromMm)},
                     {"tallest_to_mm", distanceJson(plan.tallestToMm)},
                     {"cell_mm", plan.camera.cellMm},
                     {"cells_per_person", measuredJson(plan.cellsPerPerson)}};
  return json.dump(2) + "\n";
}

}  // namespace nadir::tool
