// The cells of an area, counted by what stands on them.
#include "ground/stations/occupancy.hpp"

#include <cmath>

#include "ground/stations/cell_groups.hpp"

namespace nadir::ground {

namespace {

uint32_t countSeen(const PlacedArea& area, const uint16_t* heights) {
  uint32_t seen = 0;
  for (uint32_t i = area.firstCell; i < area.endCell; ++i) seen += area.mask[i] != 0 && heights[i] != 0;
  return seen;
}

// Half of what a region must have, rounded up.
uint32_t enoughCells(double leastOfRegion, const PlacedArea& area) {
  const double whole = leastOfRegion < area.cells ? leastOfRegion : area.cells;
  return static_cast<uint32_t>(-std::floor(-whole / 2));
}

// The cells of dropped regions count as those of kept ones do.
uint32_t highestPiece(const PlacedArea& area, const uint16_t* heights, uint32_t enough, const RegionMemory& m) {
  uint16_t* const counts = m.kept;
  uint32_t highest = 0;
  for (uint32_t i = area.firstCell; i < area.endCell; ++i) counts[m.grown[i]] = 0;
  for (uint32_t i = area.firstCell; i < area.endCell; ++i)
    counts[m.grown[i]] = static_cast<uint16_t>(counts[m.grown[i]] + area.mask[i]);
  for (uint32_t i = area.firstCell; i < area.endCell; ++i) {
    const uint16_t label = m.grown[i];
    if (label != 0 && area.mask[i] != 0 && counts[label] >= enough && heights[i] > highest) highest = heights[i];
  }
  return highest;
}

NadirOccupancy occupancyOf(const PlacedArea& area, uint32_t seen, const CellSet& covered, uint32_t firstShare,
                           uint32_t pieceMm) {
  return {sizeof(NadirOccupancy), area.cells, seen, covered.cells, covered.highestMm,
          covered.medianMm,       firstShare, 0,    pieceMm};
}

NadirShare shareOf(uint32_t label, const CellSet& set) {
  return {sizeof(NadirShare), label, set.cells, set.highestMm, set.medianMm, 0};
}

}  // namespace

uint32_t fillOccupancies(const PlacedArea* areas, const uint16_t* heights, const uint16_t* labels, uint32_t regions,
                         double leastOfRegion, const Shape& shape, const RegionMemory& m, NadirOccupancy* occupancies,
                         NadirShare* shares) {
  const auto cells = static_cast<uint32_t>(shape.cells());
  uint32_t count = 0;
  for (uint32_t a = 0; a < shape.areas; ++a) {
    const uint8_t* mask = areas[a].mask;
    const auto inside = [mask](uint32_t i) { return mask[i] != 0; };
    const uint32_t covered = sortByGroup(labels, heights, cells, regions, inside, m.begins, m.sorted);
    const uint32_t piece = highestPiece(areas[a], heights, enoughCells(leastOfRegion, areas[a]), m);
    occupancies[a] = occupancyOf(areas[a], countSeen(areas[a], heights), cellSet(m.sorted, covered), count, piece);
    for (uint32_t label = 1; label <= regions; ++label)
      if (const uint32_t shared = m.begins[label + 1] - m.begins[label])
        shares[count++] = shareOf(label, cellSet(m.sorted + m.begins[label], shared));
    occupancies[a].share_count = count - occupancies[a].first_share;
  }
  return count;
}

}  // namespace nadir::ground
