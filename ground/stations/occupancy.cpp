// The cells of an area, counted by what stands on them.
#include "ground/stations/occupancy.hpp"

#include "ground/stations/cell_groups.hpp"

namespace nadir::ground {

namespace {

uint32_t countSeen(const PlacedArea& area, const uint16_t* heights, uint64_t cells) {
  uint32_t seen = 0;
  for (uint64_t i = 0; i < cells; ++i) seen += area.mask[i] != 0 && heights[i] != 0;
  return seen;
}

NadirOccupancy occupancyOf(const PlacedArea& area, uint32_t seen, const CellSet& covered, uint32_t firstShare) {
  return {sizeof(NadirOccupancy), area.cells, seen, covered.cells, covered.highestMm, covered.medianMm, firstShare, 0};
}

NadirShare shareOf(uint32_t label, const CellSet& set) {
  return {sizeof(NadirShare), label, set.cells, set.highestMm, set.medianMm, 0};
}

}  // namespace

uint32_t fillOccupancies(const PlacedArea* areas, const uint16_t* heights, const uint16_t* labels, uint32_t regions,
                         const Shape& shape, const RegionMemory& m, NadirOccupancy* occupancies, NadirShare* shares) {
  const auto cells = static_cast<uint32_t>(shape.cells());
  uint32_t count = 0;
  for (uint32_t a = 0; a < shape.areas; ++a) {
    const uint8_t* mask = areas[a].mask;
    const auto inside = [mask](uint32_t i) { return mask[i] != 0; };
    const uint32_t covered = sortByGroup(labels, heights, cells, regions, inside, m.begins, m.sorted);
    occupancies[a] = occupancyOf(areas[a], countSeen(areas[a], heights, cells), cellSet(m.sorted, covered), count);
    for (uint32_t label = 1; label <= regions; ++label)
      if (const uint32_t shared = m.begins[label + 1] - m.begins[label])
        shares[count++] = shareOf(label, cellSet(m.sorted + m.begins[label], shared));
    occupancies[a].share_count = count - occupancies[a].first_share;
  }
  return count;
}

}  // namespace nadir::ground
