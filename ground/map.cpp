// Points are sorted by cell and height, and every cell takes one of its heights.
#include "ground/map.hpp"

#include <algorithm>
#include <cmath>
#include <tuple>

namespace nadir::ground {

namespace {

struct Sample {
  size_t cell;
  float height;
  bool operator<(const Sample& other) const { return std::tie(cell, height) < std::tie(other.cell, other.height); }
};

// The samples come in order of cell and height.
std::vector<Sample> samples(const std::vector<WorldPoint>& points, const MapFrame& frame, float groundZ) {
  std::vector<Sample> samples;
  for (const WorldPoint& p : points)
    if (const std::optional<size_t> cell = cellUnder(p.world, frame)) samples.push_back({*cell, groundZ - p.world.z});
  std::sort(samples.begin(), samples.end());
  return samples;
}

// The place of the smallest value that `percentile` percent of the values do not exceed. A whole number may come out a
// little too large, which must not reach for the next value.
size_t rank(size_t count, double percentile) {
  const auto place = static_cast<size_t>(std::ceil(percentile / 100 * static_cast<double>(count) - 1e-9));
  return std::clamp<size_t>(place, 1, count) - 1;
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

ElevationMap elevationMap(const std::vector<WorldPoint>& points, const MapFrame& frame, float groundZ,
                          const CellRule& rule) {
  const std::vector<Sample> ordered = samples(points, frame, groundZ);
  ElevationMap map{{frame.cells.width, frame.cells.height}, ordered.size(), 0};
  for (size_t begin = 0, end; begin < ordered.size(); begin = end) {
    end = begin;
    while (end < ordered.size() && ordered[end].cell == ordered[begin].cell) ++end;
    if (end - begin < rule.minPoints) continue;
    map.heights.pixels[ordered[begin].cell] = storedHeight(ordered[begin + rank(end - begin, rule.percentile)].height);
  }
  return map;
}

}  // namespace nadir::ground
