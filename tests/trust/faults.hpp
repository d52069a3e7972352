// Pairs and cameras spoilt as users spoil them, each with the one warning that it must give.
#pragma once

#include "tests/trust/trust_of.hpp"

namespace nadir::ground::test {

struct Fault {
  std::string name;     // for people
  std::string warning;  // the fixed name
  Pair pair;
  CameraNumbers camera;
};

// Of the pictures alone: they need no camera.
std::vector<Fault> spoiltPictures(const Rendered& good);

// Of the camera file. For a camera that looks ahead a pan is a small roll, and one of 5 degrees cannot be told.
std::vector<Fault> spoiltCameras(const Rendered& good, bool smallPans);

// A floor with a square pit in it, where the camera looks; the camera file has the floor's height.
Rendered pit(uint32_t width, uint32_t height, double depthMm, double sideMm, uint64_t seed);

// A box whose top is nearer than the range, below a camera that looks straight down.
Rendered nearBox(uint32_t width, uint32_t height, double topMm, double sideMm, uint64_t seed);

}  // namespace nadir::ground::test
