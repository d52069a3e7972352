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

// Neighbouring pixels lie over one cell, whose count would have to be ready before the next one can be added: four
// quarters of the picture are walked together. Pixels over no cell have a place of their own behind the last one, which
// is faster than to ask.
template <class Use>
void forEachPixel(const SortMemory& m, uint32_t pixels, uint32_t cells, Use use) {
  const uint32_t quarter = pixels / 4;
  const auto cellOf = [&](uint32_t i) { return m.cells[i] < cells ? m.cells[i] : cells; };
  for (uint32_t i = 0; i < quarter; ++i)
    for (uint32_t k = 0; k < 4; ++k) use(i + k * quarter, cellOf(i + k * quarter));
  for (uint32_t i = 4 * quarter; i < pixels; ++i) use(i, cellOf(i));
}

// This sorts by counting, since no order is needed within a cell. Returns how many lie over a cell.
uint32_t sortByCell(const SortMemory& m, uint32_t pixels, uint32_t cells, uint32_t* counts) {
  std::memset(m.begins, 0, (size_t{cells} + 1) * sizeof *m.begins);
  forEachPixel(m, pixels, cells, [&](uint32_t, uint32_t cell) { ++m.begins[cell]; });
  std::memcpy(counts, m.begins, cells * sizeof *counts);
  uint32_t inside = 0;
  for (uint32_t i = 0; i < cells; ++i) m.begins[i] = inside += counts[i];
  m.begins[cells] = pixels;
  forEachPixel(m, pixels, cells, [&](uint32_t i, uint32_t cell) { m.sorted[--m.begins[cell]] = m.heights[i]; });
  return inside;
}

// A larger height is never stored as a smaller number, so it does not matter that heights are chosen as they are
// stored.
uint32_t chooseHeights(const SortMemory& m, const NadirSettings& settings, uint64_t cells, const uint32_t* counts,
                       uint16_t* heights) {
  const auto ranked = roadKernels().ranked;
  uint32_t seen = 0;
  for (uint64_t i = 0; i < cells; ++i) {
    const bool sees = counts[i] >= settings.min_points;
    heights[i] = sees ? ranked(m.sorted + m.begins[i], counts[i], percentileRank(counts[i], settings.percentile)) : 0;
    seen += sees;
  }
  return seen;
}

}  // namespace

SortMemory sortMemory(Arena& arena, const Shape& shape, uint32_t* cells, uint16_t* heights) {
  SortMemory m{cells, heights, heights ? heights + shape.pixels() : nullptr, nullptr, nullptr, nullptr};
  m.begins = arena.take<uint32_t>(shape.cells() + 1);
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
  for (uint32_t y = 0; y < shape.height; ++y) {
    const size_t at = size_t{y} * shape.width;
    rows.read(y, m.disparity);
    found.points += countPoints(m.disparity, shape.width);
    placeRow(context, placing, shape, y, m.disparity, m.cells + at, m.heights + at);
  }
  found.inside = sortByCell(m, static_cast<uint32_t>(shape.pixels()), static_cast<uint32_t>(shape.cells()), counts);
  found.seen = chooseHeights(m, settings, shape.cells(), counts, heights);
  return found;
}

}  // namespace nadir::ground
