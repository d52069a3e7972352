// The material: a small scene, rendered once.
#include "lab/verify/material.hpp"

#include <cmath>

#include "lab/scene/ready_scenes.hpp"
#include "lab/scene/render.hpp"

namespace nadir::verify {

namespace {

using scene::Side;

// Small enough to be rendered in a moment by a slow processor; everything in the picture has 4 to 30 pixels of
// disparity.
scene::CameraSettings camera() {
  scene::CameraSettings settings;
  settings.width = 200;
  settings.height = 150;
  settings.baseline = 260;
  settings.focal = 156.25;
  settings.mountingHeight = 3000;
  settings.tilt = -30;
  settings.pan = 5;
  settings.reference = Side::right;
  return settings;
}

uint16_t rounded(double value) { return static_cast<uint16_t>(std::floor(value + 0.5)); }

Grid<uint16_t> matchable(const scene::ViewTruth& truth) {
  Grid<uint16_t> disparity = converted<uint16_t>(truth.disparity, [](double d) { return rounded(d * SGM_DISP_SCALE); });
  for (size_t i = 0; i < disparity.pixels.size(); ++i)
    if (truth.occluded.pixels[i]) disparity.pixels[i] = 0;
  return disparity;
}

Grid<uint16_t> seenHeights(const scene::MapTruth& truth) {
  Grid<uint16_t> map = converted<uint16_t>(truth.elevation, [](double mm) { return rounded(std::max(1.0, mm)); });
  for (size_t i = 0; i < map.pixels.size(); ++i)
    if (!truth.inPicture.pixels[i]) map.pixels[i] = 0;
  return map;
}

}  // namespace

Material renderedMaterial(uint64_t seed) {
  const scene::CameraSettings settings = camera();
  const scene::Rig rig = makeRig(settings);
  const scene::Scene what = scene::makeScene("people", rig, seed);
  const scene::Sensor sensor{5, true, 0};
  const auto nothing = [] {};
  const scene::ViewTruth seen = truth(what, rig, Side::right, nothing);
  constexpr uint32_t cells = 100, cellMm = 50;
  Material m;
  m.left = picture(what, rig, Side::left, sensor, nothing);
  m.right = picture(what, rig, Side::right, sensor, nothing);
  m.disparity = matchable(seen);
  m.occluded = seen.occluded;
  m.groundDepth = converted<uint16_t>(seen.height, [&](double mm) { return rounded(rig.mountingHeight - mm); });
  m.elevation = seenHeights(mapTruth(what, rig, {cells, cells, cellMm}));
  m.calibration = {260 * 256, 40000, (200 - 1) * 8, (150 - 1) * 8};  // 156.25 * 256, the middles in sixteenths
  m.orientation = {3000, -30, 5};
  m.map = {cells, cells, cellMm, cellMm};
  return m;
}

}  // namespace nadir::verify
