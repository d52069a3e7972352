// What holds where a caller says nothing.
#include <nadir/ground.h>

#include "ground/records/checks.hpp"

namespace nadir::ground {

namespace {

// A threshold that every error of matching passes lets a few pixels through and a strict one empties the picture: 48 of
// 128 is where rejecting more pixels stops making the rest better.
constexpr uint32_t usualUniqueness = 48;

// Height and step count in sides of a cell, the area in cells. A cell that is half on an object and half beside it has
// a height in between, so a larger step would join things that touch; on the ground nearly all noise stays below the
// height, and what exceeds it are single cells and small islands at the edges of objects.
constexpr double usualHeight = 1.5, usualStep = 1, usualArea = 30;

}  // namespace

}  // namespace nadir::ground

using namespace nadir::ground;

NadirStatus nadir_settings_fill(NadirSettings* settings, const NadirCamera* camera) {
  if (!settings) return NADIR_NULL_POINTER;
  if (camera && !isWhole(camera)) return NADIR_BAD_RECORD;
  const double cell = camera ? camera->cell_mm : 0;
  *settings = {sizeof *settings,
               NADIR_UNTIL_ALL,
               NADIR_GRID_LEFT,
               usualUniqueness,
               1,
               1,
               90,
               0,
               usualHeight * cell,
               usualStep * cell,
               usualArea * cell * cell / 1e6,
               NADIR_CHECK_NONE,
               NADIR_REFINE_NONE,
               NADIR_RANGE_61,
               0,
               0};
  return NADIR_OK;
}

NadirStatus nadir_track_settings_fill(NadirTrackSettings* settings) {
  if (!settings) return NADIR_NULL_POINTER;
  *settings = {sizeof *settings, 0, 10, 1500, 0.5, 0};
  return NADIR_OK;
}
