// Arranges a scene before its cameras and has it rendered.
#include "tools/synth/rendering.hpp"

#include <cmath>

#include "lab/scene/ready_scenes.hpp"
#include "tools/base/error.hpp"
#include "tools/base/text.hpp"

namespace nadir::tool {

using nadir::scene::Side;

namespace {

// What is 300 mm away has a disparity of 217 pixels for the default camera, and the truth's pictures store up to 255.
constexpr double clearance = 300;  // mm

void checkHeight(const scene::Scene& what, const scene::Rig& rig) {
  const double highest = std::max(rig.left.centre.z, rig.right.centre.z);
  if (rig.mountingHeight - highest < what.tallest + clearance)
    throw Error(format("the scene %s is up to %.0f mm high; a camera must be mounted at least %.0f mm above that",
                       what.name.c_str(), what.tallest, clearance));
}

}  // namespace

Rendering arranged(const SynthSettings& settings, const Moment& moment) {
  Rendering r{};
  r.rig = scene::makeRig(settings.camera);
  r.scene = scene::makeScene(settings.scene, r.rig, settings.seed, moment.seconds);
  checkHeight(r.scene, r.rig);
  // A map of 128 cells is as large as the library's region growing takes; at this size it covers what the default
  // camera sees.
  r.mapLayout.cell = static_cast<uint32_t>(std::max(1.0, std::floor(settings.camera.mountingHeight / 75 + 0.5)));
  r.map = mapTruth(r.scene, r.rig, r.mapLayout);
  return r;
}

void renderPictures(Rendering& r, const SynthSettings& settings, const Moment& moment, const scene::RowDone& rowDone) {
  scene::Sensor sensor = settings.sensor;
  sensor.frame = moment.frame;
  r.left = picture(r.scene, r.rig, Side::left, sensor, rowDone);
  r.right = picture(r.scene, r.rig, Side::right, sensor, rowDone);
}

void renderTruth(Rendering& r, const scene::RowDone& rowDone) {
  r.leftTruth = truth(r.scene, r.rig, Side::left, rowDone);
  r.rightTruth = truth(r.scene, r.rig, Side::right, rowDone);
}

}  // namespace nadir::tool
