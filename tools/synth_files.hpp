// The files that `nadir synth` writes.
#pragma once

#include <string>
#include <vector>

#include "files.hpp"
#include "scene/render.hpp"

namespace nadir::tool {

struct SynthSettings {
  std::string scene = "boxes";
  uint64_t seed = 1;
  nadir::scene::CameraSettings camera;
  nadir::scene::Sensor sensor{5, false};
};

struct Rendering {
  nadir::scene::Rig rig;
  nadir::scene::Scene scene;
  nadir::scene::MapLayout mapLayout;
  Grid<uint16_t> left, right;
  nadir::scene::ViewTruth leftTruth, rightTruth;
  nadir::scene::MapTruth map;
};

// Of disparities, of heights and of elevations.
constexpr unsigned synthDisparityScale = 256;
constexpr unsigned synthHeightScale = 8;
constexpr uint16_t synthNoHeight = 65535;

struct NamedFile {
  std::string name;
  Bytes bytes;
};

std::vector<NamedFile> synthFiles(const SynthSettings& settings, const Rendering& rendering);

}  // namespace nadir::tool
