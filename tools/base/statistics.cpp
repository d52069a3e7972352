// Shares, medians and percentiles of plain numbers.
#include "tools/base/statistics.hpp"

#include <algorithm>

namespace nadir::tool {

double shareOf(size_t part, size_t whole, double ofNothing) {
  return whole == 0 ? ofNothing : static_cast<double>(part) / static_cast<double>(whole);
}

double percentOf(size_t part, size_t whole) {
  return whole == 0 ? noNumber : 100.0 * static_cast<double>(part) / static_cast<double>(whole);
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
