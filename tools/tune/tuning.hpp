// How well a setting does on pairs with a known truth.
#pragma once

#include <string>
#include <vector>

#include "tools/tune/best_setting.hpp"

namespace nadir::tool {

// A setting that can be tuned: a whole number that an option of the commands takes.
struct Tunable {
  const char* name;
  uint32_t low, high, usual;
  const char* unit;  // of errors, "px" or "mm"
  double tolerance;  // up to here a value is right, in that unit
  const char* meaning;
};

const std::vector<Tunable>& tunables();

struct Judge {
  double tolerance;   // a value with a larger error is wrong
  double wrongCosts;  // what a right value gains is 1
};

// The score of one pair, in percent: 100 * (right - wrongCosts * wrong) / truth, counted over the pixels (cells) whose
// truth is known; those without a value are neither right nor wrong. Of several pairs: the mean of their scores.
//
// folders  each holds left.png, right.png and disparity_gt.png, or for settings of the map camera.toml and
//          elevation_gt.png instead of the last. They are read here, once; throws where that fails.
Objective objectiveOf(const Tunable& tunable, const std::vector<std::string>& folders, const Judge& judge);

}  // namespace nadir::tool
