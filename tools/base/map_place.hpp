// Where a map lies on the ground, as a picture of it says too.
#pragma once

#include <cmath>

namespace nadir::tool {

// Lengths in mm, the corner in the world. A file that does not say where its map lies leaves them NaN.
struct MapPlace {
  double cellMm, leftMm, topMm;
};

// True where both say where they lie, and these are different places: no comparison with NaN is true. Half a millimetre
// is what files may round.
inline bool liesElsewhere(const MapPlace& a, const MapPlace& b) {
  const auto differ = [](double one, double other) { return std::abs(one - other) > 0.5; };
  return differ(a.cellMm, b.cellMm) || differ(a.leftMm, b.leftMm) || differ(a.topMm, b.topMm);
}

}  // namespace nadir::tool
