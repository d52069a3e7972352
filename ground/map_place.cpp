// The one comparison of the places of two maps.
#include "ground/map_place.hpp"

#include <cmath>

namespace nadir::ground {

// No comparison with NaN is true, so that a place that is unknown contradicts none.
bool liesElsewhere(const MapPlace& a, const MapPlace& b) {
  const auto differ = [](double one, double other) { return std::abs(one - other) > 0.5; };
  return differ(a.cellMm, b.cellMm) || differ(a.leftMm, b.leftMm) || differ(a.topMm, b.topMm);
}

}  // namespace nadir::ground
