// From a pair and a camera to warnings, by the library's interface.
#pragma once

#include <gtest/gtest.h>
#include <nadir/ground.h>

#include <string>
#include <vector>

#include "lab/grid.hpp"
#include "lab/scene/camera.hpp"
#include "lab/scene/render.hpp"

namespace nadir::ground::test {

struct Pair {
  lab::Grid<uint16_t> left, right;
};

// As a camera file has it.
struct CameraNumbers {
  double baseline, focal, principalX, principalY;
  double height, tilt, pan;
  uint16_t mapCells = 128, cell = 40;
  double offsetX = 0, offsetY = 0;
};

struct Judged {
  NadirTrust trust;
  std::vector<NadirWarning> warnings;

  // "none", or the warnings' names with a space between them.
  std::string names() const;
};

// A context whose corner is the map's.
StereoCtx contextOf(const CameraNumbers& camera);

// The left view's disparities, as the matcher gives them.
lab::Grid<uint16_t> disparityOf(const Pair& pair);

// camera  null: the pair is matched and no more.
// uniqueness  of the matcher's peak check
Judged trustOf(const Pair& pair, const CameraNumbers* camera, uint32_t uniqueness = 48);

// ---- rendered pairs ----

struct Rendered {
  Pair pair;
  CameraNumbers camera;
};

// A ready scene as nadir synth renders it; the focal length follows the width.
Rendered rendered(const std::string& scene, uint32_t width, uint32_t height, uint64_t seed, double noise,
                  double mountingHeight = 3000, double tilt = -30);

// The sensor's noise on pictures without.
Pair noisy(Pair pair, double deviation, uint64_t seed);

}  // namespace nadir::ground::test
