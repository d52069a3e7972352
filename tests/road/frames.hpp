// Frames and plans that the tests of the road share.
#pragma once

#include "lab/road.hpp"
#include "lab/textured_pair.hpp"

namespace nadir::test {

// Two pairs of one size, so that what a frame leaves behind would show in the next.
inline const lab::TexturedPair& somePair(size_t which = 0) {
  static const lab::TexturedPair pairs[] = {lab::texturedPair(163, 97), [] {
                                              lab::TexturedPair swapped = lab::texturedPair(163, 97);
                                              std::swap(swapped.first, swapped.reference);
                                              return swapped;
                                            }()};
  return pairs[which % 2];
}

inline NadirFrame pairFrame(size_t which = 0) {
  const lab::TexturedPair& pair = somePair(which);
  NadirFrame frame = lab::frameOf(pair.first.data(), pair.reference.data(), pair.width);
  if (which % 3 == 2) {
    frame.mask = pair.mask.data();
    frame.mask_stride = pair.width;
  }
  return frame;
}

// Everything that takes memory: areas of both units, holes to fill.
inline lab::RoadPlan fullPlan(uint32_t grid = NADIR_GRID_LEFT) {
  static constexpr int32_t pixels[] = {5, 5, 150, 9, 140, 92, 20, 90};
  static constexpr int32_t ground[] = {-2000, -4000, 3000, -4000, 2500, 1000};
  lab::RoadPlan plan = lab::planOf(lab::cameraOver(somePair()));
  plan.settings.grid = grid;
  plan.settings.fill_holes_m2 = 1;
  plan.areas = {{sizeof(NadirArea), NADIR_AREA_PIXELS, 4, 0, pixels, 0, 0},
                {sizeof(NadirArea), NADIR_AREA_GROUND_MM, 3, 0, ground, 0, 0}};
  return plan;
}

inline NadirTrackSettings fullTracking() {
  NadirTrackSettings settings;
  lab::demand(nadir_track_settings_fill(&settings));
  settings.average_frames = 3;
  return settings;
}

}  // namespace nadir::test
