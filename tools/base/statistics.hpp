// Shares, medians and percentiles.
#pragma once

#include <cstddef>
#include <limits>
#include <vector>

#include "ground/records/percentile.hpp"

namespace nadir::tool {

constexpr double noNumber = std::numeric_limits<double>::quiet_NaN();

// part / whole; `ofNothing` where the whole is 0.
double shareOf(size_t part, size_t whole, double ofNothing = noNumber);

// 100 * part / whole, rounded once; NaN where the whole is 0.
double percentOf(size_t part, size_t whole);

using ground::percentileRank;

// The smallest value that `percent` percent of them do not exceed, above 0 and up to 100; NaN where there are no
// values.
double percentileOf(std::vector<double> values, double percent);

// The middle value, or the mean of the two middle ones where their number is even; NaN where there are no values.
double medianOf(std::vector<double> values);

}  // namespace nadir::tool
