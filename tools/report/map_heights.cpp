// Extremes and middle of the heights.
#include "tools/report/map_heights.hpp"

#include <algorithm>
#include <iterator>

namespace nadir::tool {

MapHeights heightsOf(const Grid<uint16_t>& heights) {
  std::vector<uint16_t> known;
  std::copy_if(heights.pixels.begin(), heights.pixels.end(), std::back_inserter(known),
               [](uint16_t v) { return v != 0; });
  if (known.empty()) return {};
  std::sort(known.begin(), known.end());
  return {known.size(), known.front(), known[known.size() / 2], known.back()};
}

}  // namespace nadir::tool
