// Where a percentile stands among sorted values.
#pragma once

#include <cmath>
#include <cstddef>

namespace nadir::ground {

// Among `count` values that are sorted upwards, the place of the smallest one that `percent` percent of them do not
// exceed. There must be a value, and `percent` lies above 0 and up to 100.
//
// A decimal fraction of a percent is not exact in binary: 90.1 % of 1000 may come out a little above 901, and must not
// become 902.
inline size_t percentileRank(size_t count, double percent) {
  const double reached = std::ceil(percent * static_cast<double>(count) / 100 - 1e-9);
  const auto place = static_cast<size_t>(reached);
  return place < 1 ? 0 : place > count ? count - 1 : place - 1;
}

}  // namespace nadir::ground
