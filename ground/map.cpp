// Points are sorted by cell, and every cell takes one of its heights.
#include "ground/map.hpp"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "ground/records/percentile.hpp"

namespace nadir::ground {

namespace {

// The points over the map: which cell each lies over, and the height that it would give it.
struct Samples {
  std::vector<size_t> cells;
  std::vector<uint16_t> heights;
};

Samples samplesOf(const std::vector<WorldPoint>& points, const MapFrame& frame, float groundZ) {
  Samples samples;
  samples.cells.reserve(points.size());
  samples.heights.reserve(points.size());
  for (const WorldPoint& p : points)
    if (const std::optional<size_t> cell = cellUnder(p.world, frame)) {
      samples.cells.push_back(*cell);
      samples.heights.push_back(storedHeight(groundZ - p.world.z));
    }
  return samples;
}

// The heights of one cell after the other, in no order within a cell. ends[cell] is where those of a cell end.
struct ByCell {
  std::vector<size_t> ends;
  std::vector<uint16_t> heights;
};

// This sorts by counting, since no order is needed within a cell.
ByCell byCell(const Samples& samples, size_t cells) {
  ByCell sorted{std::vector<size_t>(cells), std::vector<uint16_t>(samples.heights.size())};
  for (const size_t cell : samples.cells) ++sorted.ends[cell];
  std::partial_sum(sorted.ends.begin(), sorted.ends.end(), sorted.ends.begin());
  std::vector<size_t> next = sorted.ends;
  for (size_t i = 0; i < samples.cells.size(); ++i) sorted.heights[--next[samples.cells[i]]] = samples.heights[i];
  return sorted;
}

}  // namespace

MapFrame mapFrame(const StereoCtx& context, const Camera& camera) {
  return {context.mapParams,
          {context.lowerLeft.x + static_cast<float>(camera.mapOffsetXMm),
           context.lowerLeft.y + static_cast<float>(camera.mapOffsetYMm)}};
}

MapPlace placeOf(const MapFrame& frame) {
  return {static_cast<double>(frame.cells.cellSizeX), frame.corner.x, frame.corner.y};
}

std::optional<size_t> cellUnder(const Point3_f32& world, const MapFrame& frame) {
  const Point_f32 place = {world.x, world.y};
  Point_f32 cell;
  ip_world2elev(&place, &cell, &frame.cells, &frame.corner);
  if (!(cell.x >= 0 && cell.y >= 0 && cell.x < frame.cells.width && cell.y < frame.cells.height)) return {};
  return static_cast<size_t>(cell.y) * frame.cells.width + static_cast<size_t>(cell.x);
}

uint16_t storedHeight(double mm) {
  return static_cast<uint16_t>(std::clamp<double>(std::floor(mm + 0.5), lowestStoredMm, highestStoredMm));
}

// A larger height is never stored as a smaller number, so it does not matter that heights are chosen as they are
// stored.
ElevationMap elevationMap(const std::vector<WorldPoint>& points, const MapFrame& frame, float groundZ,
                          const CellRule& rule) {
  ElevationMap map{{frame.cells.width, frame.cells.height}, 0, 0};
  ByCell sorted = byCell(samplesOf(points, frame, groundZ), map.heights.pixels.size());
  map.pointsInside = sorted.heights.size();
  auto begin = sorted.heights.begin();
  for (size_t cell = 0; cell < sorted.ends.size(); ++cell) {
    const auto end = sorted.heights.begin() + static_cast<std::ptrdiff_t>(sorted.ends[cell]);
    const auto count = static_cast<size_t>(end - begin);
    if (count > 0 && count >= rule.minPoints) {
      const auto wanted = begin + static_cast<std::ptrdiff_t>(percentileRank(count, rule.percentile));
      std::nth_element(begin, wanted, end);
      map.heights.pixels[cell] = *wanted;
    }
    begin = end;
  }
  return map;
}

}  // namespace nadir::ground
