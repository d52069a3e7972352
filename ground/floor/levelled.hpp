// Mounts from planes that are uncertain.
#pragma once

#include <nadir/level.h>

#include "ground/floor/alignment.hpp"

namespace nadir::ground {

// Planes of several pairs, each weighted by how certain it is: sums of the inverse covariances, and of these times the
// planes.
struct PlaneSums {
  uint32_t pairs = 0;
  double certainty[9] = {}, weighted[3] = {};
  double squares = 0;  // of the planes, in standard deviations
};

void add(PlaneSums& sums, const UncertainPlane& plane);

// Of sums that hold a plane of pictures of that size.
UncertainPlane meanOf(const PlaneSums& sums, uint32_t width, uint32_t height);

// Fills all but the floor's share.
void describe(const UncertainPlane& plane, uint32_t pairs, const StereoCtx& context, double columnShift,
              NadirLevelled& levelled);

}  // namespace nadir::ground
