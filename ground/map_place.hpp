// Where a map lies on the ground, as a picture of it says too.
#pragma once

namespace nadir::ground {

// Lengths in mm, the corner in the world. A file that does not say where its map lies leaves them NaN.
struct MapPlace {
  double cellMm, leftMm, topMm;
};

// True where both say where they lie, and these are different places. Half a millimetre is what files may round.
bool liesElsewhere(const MapPlace& a, const MapPlace& b);

}  // namespace nadir::ground
