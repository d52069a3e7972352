// Shares, medians and percentiles of plain numbers.
#include "tools/base/statistics.hpp"

#include <algorithm>
#include <cmath>

namespace nadir::tool {

double shareOf(size_t part, size_t whole, double ofNothing) {
  return whole == 0 ? ofNothing : static_cast<double>(part) / static_cast<double>(whole);
}

double percentOf(size_t part, size_t whole) {
  return whole == 0 ? noNumber : 100.0 * static_cast<double>(part) / static_cast<double>(whole);
}

// A decimal fraction of a percent is not exact in binary: 90.1 % of 1000 may come out a little above 901, and must not
// become 902.
size_t percentileRank(size_t count, double percent) {
  const double reached = std::ceil(percent * static_cast<double>(count) / 100 - 1e-9);
  return std::clamp<size_t>(static_cast<size_t>(reached), 1, count) - 1;
}

double percentileOf(std::vector<double> values, double percent) {
  if (values.empty()) return noNumber;
  std::sort(values.begin(), values.end());
  return values[percentileRank(values.size(), percent)];
}

double medianOf(std::vector<double> values) {
  if (values.empty()) return noNumber;
  std::sort(values.begin(), values.end());
  return (values[(values.size() - 1) / 2] + values[values.size() / 2]) / 2;
}

}  // namespace nadir::tool
