// How people walk: at an even pace along a path, bobbing with every step.
#pragma once

#include <vector>

#include "lab/scene/solids.hpp"

namespace nadir::scene {

struct Footing {
  double x, y;  // world, mm
  double dip;   // how much less tall than in mid-step, mm
};

struct Walk {
  std::vector<Site> corners;  // the last one leads back to the first, so that two mean to and fro
  double speed;               // mm per second
  double step;                // mm
  double bob;                 // how much the head goes up and down, mm
  double begun;               // how far along the path at the beginning, mm

  Footing at(double seconds) const;
};

}  // namespace nadir::scene
