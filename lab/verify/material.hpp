// The stages' material: a rendered scene and what is known about it. Nothing of it comes from the library, so that a
// stage that goes wrong spoils no other.
#pragma once

#include <nadir/nadir.h>

#include "lab/grid.hpp"

namespace nadir::verify {

using lab::converted;
using lab::Grid;

struct Material {
  Grid<uint16_t> left, right;  // the pair, with an area without data
  Grid<uint16_t> disparity;    // of the right picture, SGM_DISP_SCALE per pixel, 0 where the left one does not show it
  Grid<uint8_t> occluded;      // of the right picture, 1: the left one does not show it
  Grid<uint16_t> groundDepth;  // of the right picture, mm below the camera
  Grid<uint16_t> elevation;    // the map: mm above the ground, 0 outside the picture
  IntCalibParams calibration;  // of the right picture's camera
  Orientation orientation;
  ElevMapParams map;
};

// The same on every processor. Another seed is another scene.
Material renderedMaterial(uint64_t seed = 1);

}  // namespace nadir::verify
