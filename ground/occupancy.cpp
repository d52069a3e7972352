// The cells of an area, counted by what stands on them.
#include "ground/occupancy.hpp"

#include <map>

namespace nadir::ground {

Occupancy occupancyOf(const PlacedArea& area, const Grid<uint16_t>& heights, const Regions& regions) {
  Occupancy o;
  std::vector<uint16_t> covered;
  std::map<uint16_t, std::vector<uint16_t>> shared;
  for (size_t i = 0; i < heights.pixels.size(); ++i) {
    if (!area.cells.pixels[i]) continue;
    o.seen += heights.pixels[i] != 0;
    if (const uint16_t label = regions.labels.pixels[i]) {
      covered.push_back(heights.pixels[i]);
      shared[label].push_back(heights.pixels[i]);
    }
  }
  o.covered = cellSet(covered);
  for (const auto& [label, cells] : shared) o.regions.push_back({label, cellSet(cells)});
  return o;
}

}  // namespace nadir::ground
