// The mean of the last maps of a sequence.
#pragma once

#include "ground/records/arena.hpp"
#include "ground/records/shape.hpp"

namespace nadir::ground {

struct MapWindow {
  uint32_t room, count, next;  // maps that it holds at most, that it holds, and the place of the next one
  uint16_t* maps;
  uint16_t *mean, *counts;  // memory of a mean
  int32_t* sums;
};

MapWindow mapWindow(Arena& arena, const Shape& shape, uint32_t room);

void addMap(MapWindow& window, const Shape& shape, const NadirPlane& heights);

// Cell by cell the mean of the heights in the window, rounded down, where more than half of its maps have one;
// elsewhere 0. Needs a map.
const uint16_t* meanOf(const MapWindow& window, const Shape& shape);

}  // namespace nadir::ground
