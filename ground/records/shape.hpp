// The sizes that follow from a camera and its settings: what a road, its results and its trackers have to agree on.
#pragma once

#include <nadir/ground.h>

namespace nadir::ground {

// Only whole numbers without a gap between them: shapes are compared as bytes.
struct Shape {
  uint32_t width, height;        // of the pictures
  uint32_t mapWidth, mapHeight;  // 0 where the road ends at the match
  uint32_t until;
  uint32_t areas;     // 0 where the road ends before them
  uint32_t regions;   // at most this many stand on a map
  uint32_t fillable;  // cells of the largest hole that is filled
  uint64_t settings;  // their hash; a road sets it, to which nothing that was found with others is of use

  uint64_t pixels() const { return uint64_t{width} * height; }
  uint64_t cells() const { return uint64_t{mapWidth} * mapHeight; }
  bool hasMap() const { return until >= NADIR_UNTIL_MAP; }
  bool hasRegions() const { return until == NADIR_UNTIL_ALL; }
};

// Of a camera and settings that were found good.
Shape shapeOf(const NadirCamera& camera, const NadirSettings& settings, uint32_t areaCount);

uint64_t settingsHash(const NadirSettings& settings);

bool areEqual(const Shape& a, const Shape& b);

}  // namespace nadir::ground
