// A scene as the cameras see it, with the truth about it.
#pragma once

#include <string>

#include "lab/scene/render.hpp"

namespace nadir::tool {

using lab::Grid;

struct SynthSettings {
  std::string scene;
  uint64_t seed = 1;
  nadir::scene::CameraSettings camera;
  nadir::scene::Sensor sensor{5, false, 0};
};

// A frame of a sequence and its time; a single pair is the first frame.
struct Moment {
  uint32_t frame = 0;
  double seconds = 0;
};

struct Rendering {
  nadir::scene::Rig rig;
  nadir::scene::Scene scene;
  nadir::scene::MapLayout mapLayout;
  Grid<uint16_t> left, right;
  nadir::scene::ViewTruth leftTruth, rightTruth;
  nadir::scene::MapTruth map;
};

// The scene and its map. Throws where the camera is mounted too low for it.
Rendering arranged(const SynthSettings& settings, const Moment& moment);

// Adds the two pictures, and the truth about both; rowDone is called after each row of each.
void renderPictures(Rendering& rendering, const SynthSettings& settings, const Moment& moment,
                    const nadir::scene::RowDone& rowDone);
void renderTruth(Rendering& rendering, const nadir::scene::RowDone& rowDone);

}  // namespace nadir::tool
