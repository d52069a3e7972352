// A pair goes the road as any caller's would.
#include "tests/trust/trust_of.hpp"

#include <nadir/ground.h>

#include <algorithm>
#include <cmath>
#include <memory>

#include "lab/random.hpp"
#include "lab/scene/ready_scenes.hpp"

namespace nadir::ground::test {

namespace {

using lab::Grid;

struct Destroy {
  void operator()(NadirRoad* road) const { nadir_road_destroy(road); }
  void operator()(NadirResult* result) const { nadir_result_destroy(result); }
};

NadirCamera cameraRecord(const Pair& pair, const CameraNumbers& c) {
  return {sizeof(NadirCamera),
          pair.left.width,
          pair.left.height,
          c.cell,
          c.mapCells,
          c.mapCells,
          c.baseline,
          c.focal,
          c.principalX,
          c.principalY,
          0,
          c.height,
          c.tilt,
          c.pan,
          c.offsetX,
          c.offsetY};
}

// A pair that went the road, to its end or, without a camera, until the match.
class Way {
 public:
  Way(const Pair& pair, const CameraNumbers* camera, uint32_t uniqueness) {
    const NadirCamera record = cameraRecord(pair, camera ? *camera : CameraNumbers{});
    NadirSettings settings;
    nadir_settings_fill(&settings, &record);
    settings.uniqueness = uniqueness;
    settings.until = camera ? NADIR_UNTIL_ALL : NADIR_UNTIL_MATCH;
    NadirRoad* road = nullptr;
    NadirResult* result = nullptr;
    EXPECT_EQ(nadir_road_create(&record, &settings, nullptr, 0, &road, nullptr), NADIR_OK);
    EXPECT_EQ(nadir_result_create(road, &result), NADIR_OK);
    road_.reset(road);
    result_.reset(result);
    NadirFrame frame{};
    frame.size = sizeof frame;
    frame.bits = 16;
    frame.left = pair.left.pixels.data();
    frame.right = pair.right.pixels.data();
    frame.left_stride = frame.right_stride = pair.left.width * sizeof(uint16_t);
    EXPECT_EQ(nadir_road_process(road, &frame, result), NADIR_OK);
    findings_.size = sizeof findings_;
    EXPECT_EQ(nadir_result_read(result, &findings_), NADIR_OK);
  }

  const NadirFindings& findings() const { return findings_; }

 private:
  std::unique_ptr<NadirRoad, Destroy> road_;
  std::unique_ptr<NadirResult, Destroy> result_;
  NadirFindings findings_{};
};

int32_t fixedPoint(double value, double scale) { return static_cast<int32_t>(std::lround(value * scale)); }

}  // namespace

std::string Judged::names() const {
  std::string names;
  for (const NadirWarning& w : warnings) names += (names.empty() ? "" : " ") + std::string(nadir_warning_name(w.id));
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
  const Way way(pair, nullptr, 48);
  const NadirPlane& plane = way.findings().disparity;
  const auto* pixels = static_cast<const uint16_t*>(plane.data);
  return {plane.width, plane.height, std::vector<uint16_t>(pixels, pixels + size_t{plane.width} * plane.height)};
}

Judged trustOf(const Pair& pair, const CameraNumbers* camera, uint32_t uniqueness) {
  const Way way(pair, camera, uniqueness);
  const NadirFindings& f = way.findings();
  return {*f.trust, {f.warnings, f.warnings + f.warning_count}};
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
