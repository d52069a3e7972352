// Encodes the pictures of a scene, and what is true about it, as files.
#include "tools/synth/scene_files.hpp"

#include <algorithm>
#include <cmath>
#include <map>

#include "tools/base/json_value.hpp"
#include "tools/base/text.hpp"
#include "tools/camera/camera_file.hpp"
#include "tools/pictures/chunks.hpp"
#include "tools/pictures/png.hpp"

namespace nadir::tool {

namespace {

using nadir::scene::Side;

// The renderer stands alone and has a word of its own for the views.
View viewOf(Side side) { return side == Side::left ? View::left : View::right; }

const char* nameOf(Side side) { return nameOf(viewOf(side)); }

MapPlace placeOf(const Rendering& r) { return {static_cast<double>(r.mapLayout.cell), r.map.cornerX, r.map.cornerY}; }

// ---- pictures ----

Bytes pictureFile(const Grid<uint16_t>& picture, Side side, const SynthSettings& settings) {
  const std::string description = format(
      "The %s picture of a rendered pair, intensities from 16 to 4080; 0 is the sensor's dead area.", nameOf(side));
  return encodePng(picture, pictureTexts(description, {{"nadir:scene", settings.scene},
                                                       {"nadir:seed", std::to_string(settings.seed)}}));
}

// value * scale, rounded; `none` where that is not a number or above `most`.
Grid<uint16_t> encoded(const Grid<double>& values, double scale, double most, uint16_t none) {
  Grid<uint16_t> out(values.width, values.height, none);
  for (size_t i = 0; i < out.pixels.size(); ++i) {
    const double rounded = std::floor(values.pixels[i] * scale + 0.5);
    if (rounded >= 0 && rounded <= most) out.pixels[i] = static_cast<uint16_t>(rounded);
  }
  return out;
}

Bytes disparityFile(const Grid<double>& disparity, Side side, const char* remark) {
  TextChunks text = disparityTexts(synthDisparityScale, viewOf(side));
  text[chunks::description] = format(
      "True disparities of the %s picture: value / %u is the disparity in pixels, right column = left column - "
      "disparity. 0: %s.",
      nameOf(side), synthDisparityScale, remark);
  return encodePng(encoded(disparity, synthDisparityScale, 65535, 0), text);
}

// A matcher can find the points that both pictures show.
Grid<double> visibleDisparities(const scene::ViewTruth& truth) {
  Grid<double> disparity = truth.disparity;
  for (size_t i = 0; i < disparity.pixels.size(); ++i)
    if (truth.occluded.pixels[i]) disparity.pixels[i] = 0;
  return disparity;
}

Bytes occlusionFile(const Grid<uint8_t>& occluded, Side side) {
  Grid<uint8_t> mask = occluded;
  for (uint8_t& v : mask.pixels) v = v ? 255 : 0;
  return encodePng(
      mask, pictureTexts(format("255: the other picture does not show this point of the %s picture.", nameOf(side))));
}

Bytes heightFile(const Grid<double>& height, Side side) {
  const std::string description = format(
      "True heights above the ground of what the %s picture shows: value / %u is the height in mm; %u: unknown, "
      "the sky or above 8191 mm.",
      nameOf(side), synthHeightScale, unsigned{synthNoHeight});
  return encodePng(encoded(height, synthHeightScale, synthNoHeight - 1, synthNoHeight),
                   pictureTexts(description, {{chunks::scale, std::to_string(synthHeightScale)},
                                              {chunks::noValue, std::to_string(synthNoHeight)},
                                              {chunks::units, format("1/%u mm", synthHeightScale)}}));
}

// ---- the map ----

// The map is encoded as nadir ground does it: 0 is kept for what is not seen, so the ground is 1 mm high.
Bytes elevationFile(const Rendering& r) {
  Grid<double> shown = r.map.elevation;
  for (size_t i = 0; i < shown.pixels.size(); ++i)
    shown.pixels[i] = r.map.inPicture.pixels[i] ? std::max(1.0, shown.pixels[i]) : 0;
  TextChunks text = elevationTexts(placeOf(r));
  text[chunks::description] =
      "True height in mm above the ground of the topmost surface at each cell's centre, hidden or not; what is lower "
      "than 1 mm is 1, 0 is outside the picture. World x grows from column to column, world y from row to row.";
  return encodePng(encoded(shown, 1, 65535, 65535), text);
}

Bytes regionsFile(const Rendering& r) {
  TextChunks text = elevationTexts(placeOf(r));
  text[chunks::units] = regionUnits;
  text[chunks::description] =
      "The object at each cell's centre, whether the picture shows it or not: 0 is the ground, scene.json tells the "
      "others.";
  return encodePng(r.map.region, text);
}

// ---- texts ----

Camera cameraOf(const SynthSettings& settings, const Rendering& r) {
  const scene::CameraSettings& settled = settings.camera;
  const scene::Pinhole& seenFrom = r.rig.camera(settled.reference);
  Camera camera;
  camera.baselineMm = settled.baseline;
  camera.focalPx = settled.focal;
  camera.principalXPx = seenFrom.principalX;
  camera.principalYPx = seenFrom.principalY;
  camera.widthPx = settled.width;
  camera.heightPx = settled.height;
  camera.heightMm = settled.mountingHeight;
  camera.tiltDeg = settled.tilt;
  camera.panDeg = settled.pan;
  camera.mapWidthCells = r.mapLayout.width;
  camera.mapHeightCells = r.mapLayout.height;
  camera.cellMm = r.mapLayout.cell;
  return camera;
}

// Six decimals of a millimetre are more than anybody can measure, and the same on every machine.
Json rounded(double value) { return roundedNumber(value, 1e6); }

Json objectJson(const scene::Object& object) {
  Json json = {{"kind", object.kind}, {"region", object.region}};
  for (const auto& [name, value] : object.numbers) json[name] = rounded(value);
  if (object.footprint.empty()) return json;
  json["footprint_mm"] = Json::array();
  for (const scene::Vec& corner : object.footprint)
    json["footprint_mm"].push_back({rounded(corner.x), rounded(corner.y)});
  return json;
}

// A region as nadir ground would find it if it saw everything: the cells of the map that the picture shows.
struct TrueRegion {
  std::string kind;  // of its first object
  size_t cells = 0;
  double columns = 0, rows = 0;  // the sums of its cells' centres
  double highest = 0;            // mm
};

// The regions by number; one that no cell shows is not there.
std::map<uint32_t, TrueRegion> trueRegions(const Rendering& r) {
  std::map<uint32_t, TrueRegion> regions;
  for (uint32_t y = 0; y < r.map.region.height; ++y)
    for (uint32_t x = 0; x < r.map.region.width; ++x) {
      if (r.map.region.at(x, y) == 0 || !r.map.inPicture.at(x, y)) continue;
      TrueRegion& region = regions[r.map.region.at(x, y)];
      ++region.cells;
      region.columns += x + 0.5;
      region.rows += y + 0.5;
      region.highest = std::max(region.highest, r.map.elevation.at(x, y));
    }
  const auto& objects = r.scene.objects;
  for (auto object = objects.rbegin(); object != objects.rend(); ++object)
    if (regions.count(object->region)) regions[object->region].kind = object->kind;
  return regions;
}

// The keys are those of the summary of nadir ground.
Json regionJson(uint32_t number, const TrueRegion& region, const Rendering& r) {
  const auto cells = static_cast<double>(region.cells);
  const double cell = r.mapLayout.cell;
  return {{"region", number},
          {"kind", region.kind},
          {"cells", region.cells},
          {"area_m2", rounded(cells * cell * cell / 1e6)},
          {"centre_mm",
           {{"x", rounded(r.map.cornerX + cell * region.columns / cells)},
            {"y", rounded(r.map.cornerY + cell * region.rows / cells)}}},
          {"highest_mm", rounded(region.highest)}};
}

Json objectsJson(const scene::Scene& scene) {
  Json json = Json::array();
  for (size_t i = 1; i < scene.objects.size(); ++i) json.push_back(objectJson(scene.objects[i]));
  return json;
}

std::string sceneText(const SynthSettings& settings, const Rendering& r) {
  Json json = {{"scene", settings.scene},
               {"seed", settings.seed},
               {"origin", format("centre of the %s camera", nameOf(settings.camera.reference))},
               {"ground_z_mm", rounded(r.scene.groundZ)},
               {"map_corner_x_mm", rounded(r.map.cornerX)},
               {"map_corner_y_mm", rounded(r.map.cornerY)},
               {"objects", objectsJson(r.scene)},
               {"regions", Json::array()}};
  for (const auto& [number, region] : trueRegions(r)) json["regions"].push_back(regionJson(number, region, r));
  return json.dump(1) + "\n";
}

}  // namespace

std::string areaText(const std::string& name, double left, double top, double right, double bottom) {
  return format("[[area]]\nname = \"%s\"\nground_mm = [[%.0f, %.0f], [%.0f, %.0f], [%.0f, %.0f], [%.0f, %.0f]]\n",
                name.c_str(), left, top, right, top, right, bottom, left, bottom);
}

std::string momentLine(const scene::Scene& scene, const Moment& moment) {
  const Json json = {{"frame", moment.frame}, {"time_s", rounded(moment.seconds)}, {"objects", objectsJson(scene)}};
  return json.dump() + "\n";
}

std::vector<NamedFile> synthPictures(const SynthSettings& settings, const Rendering& r) {
  return {{"left.png", pictureFile(r.left, Side::left, settings)},
          {"right.png", pictureFile(r.right, Side::right, settings)}};
}

std::vector<NamedFile> synthTruth(const Rendering& r) {
  const char* dense = "above the horizon, or more than 255 pixels";
  const char* matched = "the right picture does not show the point, or above the horizon, or more than 255 pixels";
  return {{"disparity_gt.png", disparityFile(visibleDisparities(r.leftTruth), Side::left, matched)},
          {"disparity_left_gt.png", disparityFile(r.leftTruth.disparity, Side::left, dense)},
          {"disparity_right_gt.png", disparityFile(r.rightTruth.disparity, Side::right, dense)},
          {"occlusion_left.png", occlusionFile(r.leftTruth.occluded, Side::left)},
          {"occlusion_right.png", occlusionFile(r.rightTruth.occluded, Side::right)},
          {"height_left_gt.png", heightFile(r.leftTruth.height, Side::left)},
          {"height_right_gt.png", heightFile(r.rightTruth.height, Side::right)},
          {"elevation_gt.png", elevationFile(r)},
          {"regions_gt.png", regionsFile(r)}};
}

std::vector<NamedFile> synthTexts(const SynthSettings& settings, const Rendering& r) {
  return {{"camera.toml", cameraBytes(cameraOf(settings, r))}, {"scene.json", bytesOf(sceneText(settings, r))}};
}

}  // namespace nadir::tool
