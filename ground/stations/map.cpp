// Points are sorted by cell, and every cell takes one of its heights.
#include "ground/stations/map.hpp"

#include <cmath>
#include <cstring>

#include "ground/records/percentile.hpp"

namespace nadir::ground {

namespace {

uint32_t countPoints(const float* disparity, uint32_t n) {
  uint32_t points = 0;
  for (uint32_t i = 0; i < n; ++i) points += disparity[i] > leastDisparity;
  return points;
}

void countCells(const uint32_t* cells, uint32_t n, uint32_t* counts) {
  for (uint32_t i = 0; i < n; ++i)
    if (cells[i] != noCell) ++counts[cells[i]];
}

// From counts to where each cell's heights end.
uint32_t addUp(const uint32_t* counts, uint64_t cells, uint32_t* ends) {
  uint32_t sum = 0;
  for (uint64_t i = 0; i < cells; ++i) ends[i] = sum += counts[i];
  return sum;
}

// This sorts by counting, since no order is needed within a cell. The ends become the beginnings.
void sortByCell(const SortMemory& m, uint64_t pixels) {
  for (uint64_t i = 0; i < pixels; ++i)
    if (m.cells[i] != noCell) m.sorted[--m.ends[m.cells[i]]] = m.heights[i];
}

// A larger height is never stored as a smaller number, so it does not matter that heights are chosen as they are
// stored.
uint32_t chooseHeights(const SortMemory& m, const NadirSettings& settings, uint64_t cells, const uint32_t* counts,
                       uint16_t* heights) {
  const auto ranked = roadKernels().ranked;
  uint32_t seen = 0;
  for (uint64_t i = 0; i < cells; ++i) {
    const bool sees = counts[i] >= settings.min_points;
    heights[i] = sees ? ranked(m.sorted + m.ends[i], counts[i], percentileRank(counts[i], settings.percentile)) : 0;
    seen += sees;
  }
  return seen;
}

}  // namespace

SortMemory sortMemory(Arena& arena, const Shape& shape, uint32_t* cells, uint16_t* heights) {
  SortMemory m{cells, heights, heights ? heights + shape.pixels() : nullptr, nullptr, nullptr, nullptr};
  m.ends = arena.take<uint32_t>(shape.cells());
  m.disparity = arena.take<float>(shape.width);
  m.rayX = arena.take<float>(shape.width);
  return m;
}

Placing placingOf(const StereoCtx& context, const Shape& shape, float* rayX) {
  const IntCalib& calib = context.intCalib;
  for (uint32_t x = 0; x < shape.width; ++x) rayX[x] = (static_cast<float>(x) - calib.principalX) / calib.focalLength;
  Placing placing{};
  placing.rayX = rayX;
  placing.focalTimesBaseline = calib.focalLength * calib.baseline;
  std::memcpy(placing.rotation, context.extCalib.R, sizeof placing.rotation);
  std::memcpy(placing.translation, context.extCalib.T, sizeof placing.translation);
  placing.left = context.lowerLeft.x;
  placing.top = context.lowerLeft.y;
  placing.cellX = context.mapParams.cellSizeX;
  placing.cellY = context.mapParams.cellSizeY;
  placing.mapWidth = shape.mapWidth;
  placing.mapHeight = shape.mapHeight;
  placing.groundZ = context.orientation.height;
  return placing;
}

void DisparityRows::read(uint32_t row, float* disparity) const {
  if (frame_.disparity) {
    const auto* bytes = reinterpret_cast<const uint8_t*>(frame_.disparity) + row * frame_.disparity_stride;
    roadKernels().pixelsGiven(reinterpret_cast<const float*>(bytes), shift_, disparity, width_);
  } else {
    roadKernels().pixelsOf(matched_ + size_t{row} * width_, shift_, disparity, width_);
  }
}

void placeRow(const StereoCtx& context, const Placing& placing, const Shape& shape, uint32_t y, const float* disparity,
              uint32_t* cells, uint16_t* heights) {
  const IntCalib& calib = context.intCalib;
  const float rayY = (static_cast<float>(y) - calib.principalY) / calib.focalLength;
  roadKernels().place(disparity, shape.width, rayY, placing, cells, heights);
}

MapCounts mapHeights(const DisparityRows& rows, const StereoCtx& context, const Placing& placing,
                     const NadirSettings& settings, const Shape& shape, const SortMemory& m, uint16_t* heights,
                     uint32_t* counts) {
  MapCounts found{};
  std::memset(counts, 0, shape.cells() * sizeof *counts);
  for (uint32_t y = 0; y < shape.height; ++y) {
    const size_t at = size_t{y} * shape.width;
    rows.read(y, m.disparity);
    found.points += countPoints(m.disparity, shape.width);
    placeRow(context, placing, shape, y, m.disparity, m.cells + at, m.heights + at);
    countCells(m.cells + at, shape.width, counts);
  }
  found.inside = addUp(counts, shape.cells(), m.ends);
  sortByCell(m, shape.pixels());
  found.seen = chooseHeights(m, settings, shape.cells(), counts, heights);
  return found;
}

}  // namespace nadir::ground
