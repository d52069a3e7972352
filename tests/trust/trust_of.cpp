// Mirrors, matches and cleans up as the road does, then judges.
#include "tests/trust/trust_of.hpp"

#include <nadir/nadir.h>

#include <algorithm>
#include <cmath>
#include <memory>

#include "ground/trust/warnings.hpp"
#include "lab/random.hpp"
#include "lab/scene/ready_scenes.hpp"

namespace nadir::ground::test {

namespace {

using lab::Grid;

// What a road keeps for matching, on the matcher's grid.
struct Matching {
  Grid<uint16_t> first, reference, raw, cleaned;
  Grid<uint32_t> firstCodes, referenceCodes;
  Grid<uint8_t> mask;
  std::vector<uint8_t> walk;

  explicit Matching(Pair pair)
      : first(std::move(pair.right)),
        reference(std::move(pair.left)),
        raw(first.width, first.height),
        cleaned(raw),
        firstCodes(raw.width, raw.height),
        referenceCodes(firstCodes),
        mask(raw.width, raw.height),
        walk(nadir_sgm_bytes(raw.width)) {
    mirror(first);
    mirror(reference);
    IP_Census_5x5(first.pixels.data(), firstCodes.pixels.data(), raw.width, raw.height);
    IP_Census_5x5(reference.pixels.data(), referenceCodes.pixels.data(), raw.width, raw.height);
    const SgmParams params{64, 48};
    nadir_sgm_full(firstCodes.pixels.data(), referenceCodes.pixels.data(), reference.pixels.data(), raw.width,
                   raw.height, &params, raw.pixels.data(), nullptr, walk.data(), walk.size());
    IP_SgmPostproc(raw.pixels.data(), mask.pixels.data(), cleaned.pixels.data(), raw.width, raw.height);
  }

  MatchedFrame frame() {
    return {
        {raw.pixels.data(), cleaned.pixels.data(), reference.pixels.data(), mask.pixels.data(), raw.width, raw.height},
        {firstCodes.pixels.data(), referenceCodes.pixels.data(), first.pixels.data(), reference.pixels.data(),
         raw.width, raw.height, walk.data(), walk.size(), strip.data()},
        true};
  }

  std::vector<uint16_t> strip = std::vector<uint16_t>(size_t{lookRows(raw.width, raw.height)} * raw.width);
};

int32_t fixedPoint(double value, double scale) { return static_cast<int32_t>(std::lround(value * scale)); }

}  // namespace

std::string Judged::names() const {
  std::string names;
  for (const NadirWarning& w : warnings) names += (names.empty() ? "" : " ") + std::string(warningName(w.id));
  return names.empty() ? "none" : names;
}

StereoCtx contextOf(const CameraNumbers& c) {
  const IntCalibParams inner = {fixedPoint(c.baseline, 256), fixedPoint(c.focal, 256), fixedPoint(c.principalX, 16),
                                fixedPoint(c.principalY, 16)};
  const Orientation mount = {static_cast<float>(c.height), static_cast<float>(c.tilt), static_cast<float>(c.pan)};
  const ElevMapParams map = {c.mapCells, c.mapCells, c.cell, c.cell};
  StereoCtx context;
  ip_stereo_init(&context, &inner, &mount, &map);
  context.lowerLeft.x += static_cast<float>(c.offsetX);
  context.lowerLeft.y += static_cast<float>(c.offsetY);
  return context;
}

Grid<uint16_t> disparityOf(const Pair& pair) {
  Matching matching(pair);
  mirror(matching.cleaned);
  return matching.cleaned;
}

Judged trustOf(const Pair& pair, const CameraNumbers* camera) {
  Matching matching(pair);
  const MatchedFrame frame = matching.frame();
  Grid<uint16_t> disparity = matching.cleaned;
  mirror(disparity);
  StereoCtx context{};
  MountView mount{};
  if (camera) {
    context = contextOf(*camera);
    mount = {&context, 0, mapView(context, 0, disparity.width, disparity.height)};
  }
  std::vector<Block> blocks(largestBlockCount(disparity.width, disparity.height));
  Judged judged{{}, std::vector<NadirWarning>(NADIR_WARNINGS), mount.map};
  const ViewDisparities view{disparity.pixels.data(), nullptr, 0, disparity.width, disparity.height};
  judged.warnings.resize(
      judge(&frame, camera ? &mount : nullptr, view, blocks.data(), judged.trust, judged.warnings.data()));
  return judged;
}

Rendered rendered(const std::string& name, uint32_t width, uint32_t height, uint64_t seed, double noise,
                  double mountingHeight, double tilt) {
  scene::CameraSettings s;
  s.width = width;
  s.height = height;
  s.focal *= width / 640.0;
  s.mountingHeight = mountingHeight;
  s.tilt = tilt;
  const scene::Rig rig = scene::makeRig(s);
  const scene::Scene scene = scene::makeScene(name, rig, seed);
  const scene::Sensor sensor{noise, false, 0};
  CameraNumbers camera{s.baseline, s.focal, (width - 1) / 2.0, (height - 1) / 2.0, mountingHeight, tilt, 0};
  camera.cell = static_cast<uint16_t>(std::max(1.0, std::floor(mountingHeight / 75 + 0.5)));
  return {
      {picture(scene, rig, scene::Side::left, sensor, [] {}), picture(scene, rig, scene::Side::right, sensor, [] {})},
      camera};
}

// A sum of twelve even numbers is close to a normal distribution of deviation 1.
Pair noisy(Pair pair, double deviation, uint64_t seed) {
  lab::Random random(seed);
  for (Grid<uint16_t>* picture : {&pair.left, &pair.right})
    for (uint16_t& pixel : picture->pixels) {
      double sum = -6;
      for (int i = 0; i < 12; ++i) sum += random.below(65536) / 65536.0;
      pixel = static_cast<uint16_t>(std::clamp(pixel + deviation * sum + 0.5, 16.0, 4080.0));
    }
  return pair;
}

}  // namespace nadir::ground::test
