// Cameras, rules, corners, regions and heights as JSON.
#include "tools/report/json_parts.hpp"

#include "tools/base/statistics.hpp"
#include "tools/camera/camera_file.hpp"

namespace nadir::tool {

namespace {

Json boxJson(const NadirRegion& box, const StereoCtx& context) {
  const double cell = context.mapParams.cellSizeX, left = context.lowerLeft.x, top = context.lowerLeft.y;
  return {{"left", measuredJson(left + box.left * cell)},
          {"top", measuredJson(top + box.top * cell)},
          {"right", measuredJson(left + box.right * cell)},
          {"bottom", measuredJson(top + box.bottom * cell)}};
}

}  // namespace

double squareMetres(size_t cells, const StereoCtx& context) {
  return static_cast<double>(cells) * context.mapParams.cellSizeX * context.mapParams.cellSizeY / 1e6;
}

Json measuredJson(double value) { return roundedNumber(value, 1000); }

Json squareMetresJson(size_t cells, const StereoCtx& context) {
  return roundedNumber(squareMetres(cells, context), 1e6);
}

Json shareJson(size_t part, size_t whole) { return measuredJson(shareOf(part, whole, 0)); }

// Tables are made as objects: a null that becomes one by being indexed is torn where there is no memory for it.
Json cameraJson(const Camera& camera) {
  Json json = Json::object();
  for (const CameraKey& key : cameraKeys()) {
    const double value = valueOf(camera, key);
    Json& table = *key.table ? *json.emplace(key.table, Json::object()).first : json;
    table[key.name] = isCount(key) ? Json(static_cast<uint32_t>(value)) : Json(value);
  }
  return json;
}

Json ruleJson(const NadirSettings& settings) {
  return {{"min_height_mm", settings.min_height_mm},
          {"max_step_mm", settings.max_step_mm},
          {"min_area_m2", roundedNumber(settings.min_area_m2, 1e6)},
          {"dip_mm", settings.dip_mm}};
}

Json cornersJson(const std::vector<Point_s32>& corners) {
  Json json = Json::array();
  for (const Point_s32& corner : corners) json.push_back({corner.x, corner.y});
  return json;
}

Json regionJson(const NadirRegion& region, const StereoCtx& context) {
  Json json = {{"label", region.label},
               {"cells", region.cells},
               {"area_m2", squareMetresJson(region.cells, context)},
               {"box_mm", boxJson(region, context)},
               {"centre_mm", {{"x", measuredJson(region.centre_x_mm)}, {"y", measuredJson(region.centre_y_mm)}}},
               {"at_map_edge", region.at_map_edge != 0},
               {"at_picture_edge", region.at_picture_edge != 0}};
  addHeights(json, region.cells, region.highest_mm, region.median_mm);
  return json;
}

Json driftJson(const NadirTrust& t) {
  return {{"height_mm", measuredJson(t.height_off_mm)}, {"height_deviation_mm", measuredJson(t.height_deviation_mm)},
          {"tilt_deg", measuredJson(t.tilt_off_deg)},   {"tilt_deviation_deg", measuredJson(t.tilt_deviation_deg)},
          {"pan_deg", measuredJson(t.pan_off_deg)},     {"pan_deviation_deg", measuredJson(t.pan_deviation_deg)}};
}

Json warningsJson(const Warnings& warnings) {
  Json json = Json::array();
  for (const Warning& warning : warnings) {
    Json numbers = Json::object();
    for (const auto& [name, value] : warning.numbers) numbers[name] = measuredJson(value);
    json.push_back({{"id", warning.id}, {"sentence", warning.sentence}, {"numbers", numbers}});
  }
  return json;
}

void addRule(Json& json, const Area& area) {
  if (area.minHeightMm > 0) json["min_height_mm"] = area.minHeightMm;
  if (area.maxHeightMm > 0) json["max_height_mm"] = area.maxHeightMm;
}

void addHeights(Json& json, uint32_t cells, uint32_t highestMm, uint32_t medianMm) {
  json["highest_mm"] = cells ? Json(highestMm) : Json();
  json["median_mm"] = cells ? Json(medianMm) : Json();
}

}  // namespace nadir::tool
