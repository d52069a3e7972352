// The mean of the last maps of a sequence.
#pragma once

#include <deque>

#include "lab/grid.hpp"

namespace nadir::ground {

using lab::Grid;

class MapWindow {
 public:
  explicit MapWindow(size_t frames) : frames_(frames) {}

  void add(Grid<uint16_t> heights);

  // Cell by cell the mean of the heights in the window, rounded down, where more than half of its maps have one;
  // elsewhere 0. Needs a map.
  Grid<uint16_t> mean() const;

 private:
  size_t frames_;
  std::deque<Grid<uint16_t>> maps_;
};

}  // namespace nadir::ground
