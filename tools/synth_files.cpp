#include "synth_files.hpp"

#include <algorithm>
#include <cmath>

#include "camera_file.hpp"
#include "chunks.hpp"
#include "png.hpp"
#include "text.hpp"

namespace nadir::tool {

namespace {

using nadir::scene::Side;

const char* nameOf(Side side) { return side == Side::left ? "left" : "right"; }

// ---- pictures ----

Bytes pictureFile(const Grid<uint16_t>& picture, Side side, const SynthSettings& settings) {
  return encodePng(picture, {{"Description", format("The %s picture of a rendered pair, intensities from 16 to 4080; "
                                                    "0 is the sensor's dead area.",
                                                    nameOf(side))},
                             {"nadir:scene", settings.scene},
                             {"nadir:seed", std::to_string(settings.seed)},
                             {"Software", software()}});
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
  TextChunks text = disparityTexts(synthDisparityScale, nameOf(side));
  text["Description"] = format(
      "True disparities of the %s picture: value / %u is the disparity in pixels, right column = left column - "
      "disparity. 0: %s.",
      nameOf(side), synthDisparityScale, remark);
  return encodePng(encoded(disparity, synthDisparityScale, 65535, 0), text);
}

// What a matcher can find: the points that both pictures show.
Grid<double> visible(const scene::ViewTruth& truth) {
  Grid<double> disparity = truth.disparity;
  for (size_t i = 0; i < disparity.pixels.size(); ++i)
    if (truth.occluded.pixels[i]) disparity.pixels[i] = 0;
  return disparity;
}

Bytes occlusionFile(const Grid<uint8_t>& occluded, Side side) {
  Grid<uint8_t> mask = occluded;
  for (uint8_t& v : mask.pixels) v = v ? 255 : 0;
  return encodePng(mask, {{"Description",
                           format("255: the other picture does not show this point of the %s picture.", nameOf(side))},
                          {"Software", software()}});
}

Bytes heightFile(const Grid<double>& height, Side side) {
  const std::string description = format(
      "True heights above the ground of what the %s picture shows: value / %u is the height in mm; %u: unknown, "
      "the sky or above 8191 mm.",
      nameOf(side), synthHeightScale, unsigned{synthNoHeight});
  return encodePng(encoded(height, synthHeightScale, synthNoHeight - 1, synthNoHeight),
                   {{chunks::scale, std::to_string(synthHeightScale)},
                    {chunks::noValue, std::to_string(synthNoHeight)},
                    {chunks::units, format("1/%u mm", synthHeightScale)},
                    {"Description", description},
                    {"Software", software()}});
}

// ---- the map ----

// As nadir ground encodes its map: 0 is kept for what is not seen, so the ground is 1 mm high.
Bytes elevationFile(const Rendering& r) {
  Grid<double> shown = r.map.elevation;
  for (size_t i = 0; i < shown.pixels.size(); ++i)
    shown.pixels[i] = r.map.inPicture.pixels[i] ? std::max(1.0, shown.pixels[i]) : 0;
  TextChunks text = elevationTexts(r.mapLayout.cell, r.map.cornerX, r.map.cornerY);
  text["Description"] =
      "True height in mm above the ground of the topmost surface at each cell's centre, hidden or not; what is lower "
      "than 1 mm is 1, 0 is outside the picture. World x grows from column to column, world y from row to row.";
  return encodePng(encoded(shown, 1, 65535, 65535), text);
}

Bytes regionsFile(const scene::MapTruth& map) {
  return encodePng(map.region, {{"Description",
                                 "The object at each cell's centre: 0 is the ground, scene.json tells "
                                 "the others."},
                                {"Software", software()}});
}

// ---- texts ----

Bytes bytesOf(const std::string& text) { return Bytes(text.begin(), text.end()); }

Camera cameraOf(const SynthSettings& settings, const Rendering& r) {
  const scene::CameraSettings& settled = settings.camera;
  const scene::View& view = r.rig.view(settled.reference);
  Camera camera;
  camera.baselineMm = settled.baseline;
  camera.focalPx = settled.focal;
  camera.principalXPx = view.principalX;
  camera.principalYPx = view.principalY;
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

std::string objectText(const scene::Object& object) {
  std::string text = format("{\"kind\": \"%s\", \"region\": %u", object.kind.c_str(), object.region);
  for (const auto& [name, value] : object.numbers) text += format(", \"%s\": %.6f", name.c_str(), value);
  return text + "}";
}

std::string sceneText(const SynthSettings& settings, const Rendering& r) {
  std::string text =
      format("{\n  \"scene\": \"%s\",\n  \"seed\": %llu,\n  \"origin\": \"centre of the %s camera\",\n",
             settings.scene.c_str(), static_cast<unsigned long long>(settings.seed), nameOf(settings.camera.reference));
  text += format("  \"ground_z_mm\": %.6f,\n  \"map_corner_x_mm\": %.6f,\n  \"map_corner_y_mm\": %.6f,\n",
                 r.scene.groundZ, r.map.cornerX, r.map.cornerY);
  text += "  \"objects\": [";
  for (size_t i = 1; i < r.scene.objects.size(); ++i)
    text += (i == 1 ? "\n    " : ",\n    ") + objectText(r.scene.objects[i]);
  return text + (r.scene.objects.size() > 1 ? "\n  ]\n}\n" : "]\n}\n");
}

}  // namespace

std::vector<NamedFile> synthFiles(const SynthSettings& settings, const Rendering& r) {
  const char* dense = "above the horizon, or more than 255 pixels";
  const char* matched = "the right picture does not show the point, or above the horizon, or more than 255 pixels";
  return {{"left.png", pictureFile(r.left, Side::left, settings)},
          {"right.png", pictureFile(r.right, Side::right, settings)},
          {"disparity_gt.png", disparityFile(visible(r.leftTruth), Side::left, matched)},
          {"disparity_left_gt.png", disparityFile(r.leftTruth.disparity, Side::left, dense)},
          {"disparity_right_gt.png", disparityFile(r.rightTruth.disparity, Side::right, dense)},
          {"occlusion_left.png", occlusionFile(r.leftTruth.occluded, Side::left)},
          {"occlusion_right.png", occlusionFile(r.rightTruth.occluded, Side::right)},
          {"height_left_gt.png", heightFile(r.leftTruth.height, Side::left)},
          {"height_right_gt.png", heightFile(r.rightTruth.height, Side::right)},
          {"elevation_gt.png", elevationFile(r)},
          {"regions_gt.png", regionsFile(r.map)},
          {"camera.toml", cameraBytes(cameraOf(settings, r))},
          {"scene.json", bytesOf(sceneText(settings, r))}};
}

}  // namespace nadir::tool
