// Files are read and paths resolved first; the JSON of run.json is then made of values alone.
#include "tools/sequence/run_settings.hpp"

#include <zlib.h>

#include <filesystem>

#include "tools/base/text.hpp"
#include "tools/pictures/chunks.hpp"
#include "tools/pictures/pictures.hpp"
#include "tools/report/json_parts.hpp"

namespace nadir::tool {

namespace {

// A mask is known by its pixels, so that one that was drawn anew is another one.
struct MaskMark {
  uint32_t width, height;
  std::string sum;
};

std::optional<MaskMark> markOfMask(const std::string& path) {
  if (path.empty()) return {};
  const Grid<uint8_t> mask = readMask(path);
  const uLong sum = crc32_z(0, mask.pixels.data(), mask.pixels.size());
  return MaskMark{mask.width, mask.height, format("%08lx", sum)};
}

// Every way to write a path gives the same one; a link at its end stays.
std::string absolutePath(const std::filesystem::path& path) {
  const std::filesystem::path folder = path.has_parent_path() ? path.parent_path() : ".";
  return (std::filesystem::weakly_canonical(folder) / path.filename()).string();
}

Json maskJson(const std::optional<MaskMark>& mask) {
  if (!mask) return Json();
  return {{"width_px", mask->width}, {"height_px", mask->height}, {"crc32", mask->sum}};
}

Json areasJson(const std::vector<WatchedArea>& areas) {
  Json json = Json::array();
  for (const WatchedArea& area : areas) {
    json.push_back({{"name", area.area.name}, {"ground_mm", cornersJson(area.ground)}, {"cells", area.cells}});
    addRule(json.back(), area.area);
  }
  return json;
}

Json trackJson(const NadirTrackSettings& rule) {
  return {{"noise_mm", rule.noise_mm},
          {"acceleration_mm_per_s2", rule.acceleration_mm_per_s2},
          {"patience_s", rule.patience_s},
          {"disparity_px", rule.disparity_px}};
}

Json sideJson(const NadirLens& lens, const Rotation& rotation) {
  return {{"width_px", lens.width_px},
          {"height_px", lens.height_px},
          {"model", lens.model},
          {"focal_px", {lens.focal_x_px, lens.focal_y_px}},
          {"principal_px", {lens.principal_x_px, lens.principal_y_px}},
          {"coefficients", lens.coefficients},
          {"rotation", rotation}};
}

Json calibrationJson(const Calibration& calibration) {
  return {{"left", sideJson((*calibration.lenses)[0], (*calibration.rotations)[0])},
          {"right", sideJson((*calibration.lenses)[1], (*calibration.rotations)[1])}};
}

struct FirstPair {
  std::string left, right;
};

Json settingsJson(const Road& road, const SequenceRule& rule, const FirstPair& first,
                  const std::optional<MaskMark>& mask, TimeUnit times) {
  const NadirSettings& settings = road.settings;
  return {{"schema", resultSchema},
          {"software", software()},
          {"first_left", first.left},
          {"first_right", first.right},
          {"times", nameOf(times)},
          {"fps", times == TimeUnit::frames ? Json(rule.times.framesPerSecond) : Json()},
          {"average_frames", rule.track.average_frames},
          {"track", trackJson(rule.track)},
          {"maps", rule.products.count(Product::map) > 0},
          {"averages", rule.products.count(Product::average) > 0},
          {"camera", cameraJson(road.camera)},
          {"view", nameOf(road.options.match.view)},
          {"uniqueness", settings.uniqueness},
          {"check", wordOf(checkWords(), settings.check)},
          {"support", settings.support},
          {"refine", wordOf(refineWords(), settings.refine)},
          {"range_px", settings.range},
          {"post_processing", settings.postprocess != 0},
          {"mask", maskJson(mask)},
          {"percentile", settings.percentile},
          {"min_points", settings.min_points},
          {"fill_holes_m2", settings.fill_holes_m2},
          {"region_rule", road.findsRegions() ? ruleJson(settings) : Json()},
          {"areas", areasJson(road.areas)}};
}

}  // namespace

NadirTrackSettings usualTracking() {
  NadirTrackSettings settings;
  nadir_track_settings_fill(&settings);
  settings.average_frames = 10;
  settings.noise_mm = 1;
  settings.disparity_px = 0.15;
  return settings;
}

std::string settingsText(const Road& road, const SequenceRule& rule, const FrameSource& source, TimeUnit times) {
  const std::string left = source.left(0), right = source.right(0);
  const FirstPair first{absolutePath(left), absolutePath(right.empty() ? left : right)};
  Json json = settingsJson(road, rule, first, markOfMask(road.options.mask), times);
  if (rule.range) json["frames"] = {rule.range->begin, rule.range->end};
  if (road.calibration) json["calibration"] = calibrationJson(*road.calibration);  // else the pictures are rectified
  return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

std::optional<TimeUnit> timesIn(const std::string& settings) {
  const Json json = Json::parse(settings, nullptr, false);
  if (!json.is_object() || !json.contains("times") || !json["times"].is_string()) return {};
  return timeUnitNamed(json["times"]);
}

}  // namespace nadir::tool
