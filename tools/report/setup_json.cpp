// Records of the library and tables of the camera file, member by member.
#include "tools/report/setup_json.hpp"

#include <cmath>

#include "tools/camera/camera_file.hpp"
#include "tools/report/json_parts.hpp"

namespace nadir::tool {

namespace {

Json areaJson(const Area& area) {
  Json json = {{"name", area.name}, {"unit", nameOf(area.unit)}, {"corners", cornersJson(area.corners)}};
  addRule(json, area);
  return json;
}

Json areasJson(const std::vector<Area>& areas) {
  Json json = Json::array();
  for (const Area& area : areas) json.push_back(areaJson(area));
  return json;
}

Json valueOf(const CalibrationItem& item) {
  if (!item.word.empty() && std::isnan(item.numbers.front())) return item.word;
  return item.numbers.size() == 1 ? Json(item.numbers.front()) : Json(item.numbers);
}

// Whether they are right is said when a road is made.
Json lensesJson(const std::string& path) {
  Json json = Json::object();
  for (const CalibrationItem& item : tomlItems(readCalibrationFile(path))) {
    const size_t point = item.key.find('.');
    const std::string table = item.key.substr(0, point);
    if (point == std::string::npos || (table != "left_lens" && table != "right_lens" && table != "pose")) continue;
    (*json.emplace(table, Json::object()).first)[item.key.substr(point + 1)] = valueOf(item);
  }
  return json.empty() ? Json() : json;
}

Json lensJson(const NadirLens& lens) {
  return {{"width_px", lens.width_px},
          {"height_px", lens.height_px},
          {"model", lens.model},
          {"focal_x_px", lens.focal_x_px},
          {"focal_y_px", lens.focal_y_px},
          {"principal_x_px", lens.principal_x_px},
          {"principal_y_px", lens.principal_y_px},
          {"coefficients", lens.coefficients}};
}

Json viewJson(const NadirRectifiedView& view) {
  return {
      {"width_px", view.width_px}, {"height_px", view.height_px},           {"rotation", view.rotation},
      {"focal_px", view.focal_px}, {"principal_x_px", view.principal_x_px}, {"principal_y_px", view.principal_y_px}};
}

Json rectifierJson(const Calibration& calibration) {
  const auto& lenses = *calibration.lenses;
  const auto views = viewsOf(calibration);
  return {{"left", {{"lens", lensJson(lenses[0])}, {"view", viewJson(views[0])}}},
          {"right", {{"lens", lensJson(lenses[1])}, {"view", viewJson(views[1])}}}};
}

}  // namespace

Json cameraFileJson(const std::string& path) {
  Json json = cameraJson(readCameraBeforeMount(path));
  json["areas"] = areasJson(readAreasOfCamera(path));
  json["lenses"] = lensesJson(path);
  return json;
}

Json setupJson(const NadirSettings& s) {
  return {{"until", s.until},
          {"grid", s.grid},
          {"uniqueness", s.uniqueness},
          {"postprocess", s.postprocess},
          {"min_points", s.min_points},
          {"percentile", s.percentile},
          {"fill_holes_m2", s.fill_holes_m2},
          {"min_height_mm", s.min_height_mm},
          {"max_step_mm", s.max_step_mm},
          {"min_area_m2", s.min_area_m2},
          {"check", s.check},
          {"refine", s.refine},
          {"range", s.range},
          {"support", s.support},
          {"dip_mm", s.dip_mm}};
}

Json setupJson(const NadirTrackSettings& s) {
  return {{"average_frames", s.average_frames},
          {"noise_mm", s.noise_mm},
          {"acceleration_mm_per_s2", s.acceleration_mm_per_s2},
          {"patience_s", s.patience_s},
          {"disparity_px", s.disparity_px}};
}

Json setupJson(const Road& road) {
  std::vector<Area> areas;
  for (const WatchedArea& watched : road.areas) areas.push_back(watched.area);
  return {{"camera", cameraJson(road.camera)},
          {"settings", setupJson(road.settings)},
          {"areas", areasJson(areas)},
          {"scale_down", road.options.scaleDown},
          {"rectifier", road.calibration ? rectifierJson(*road.calibration) : Json()}};
}

}  // namespace nadir::tool
