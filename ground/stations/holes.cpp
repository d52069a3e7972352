// Patches are numbered by region growing and filled by pull and push.
#include "ground/stations/holes.hpp"

#include <nadir/imgproc.h>
#include <nadir/segment.h>

#include <cstring>

#include "ground/records/plane_view.hpp"

namespace nadir::ground {

namespace {

constexpr uint32_t labelCount = UINT16_MAX + 1;

// Every patch of unseen cells gets a number of its own, all other cells 0.
void numberPatches(const Shape& shape, const HoleMemory& m, const uint16_t* heights) {
  for (uint64_t i = 0; i < shape.cells(); ++i) m.labels[i] = heights[i] == 0;
  Img image = imageOf(m.labels, shape.mapWidth, shape.mapHeight);
  const int32_t aboveZeroWithoutStep[] = {0, 0};
  nadir_region_growing(&image, aboveZeroWithoutStep, &image, m.growing, m.growingBytes);
}

void countSizes(const Shape& shape, const HoleMemory& m) {
  std::memset(m.sizes, 0, labelCount * sizeof *m.sizes);
  for (uint64_t i = 0; i < shape.cells(); ++i) ++m.sizes[m.labels[i]];
}

// No hole is left, unless the map shows nothing at all.
void fillAll(const Shape& shape, const HoleMemory& m, const uint16_t* heights) {
  std::memcpy(m.filled, heights, shape.cells() * sizeof *heights);
  Img image = imageOf(m.filled, shape.mapWidth, shape.mapHeight);
  nadir_pull_push(&image, &image, m.pulling, m.pullingBytes);
}

}  // namespace

HoleMemory holeMemory(Arena& arena, const Shape& shape) {
  HoleMemory m{};
  if (shape.fillable == 0) return m;
  const auto width = static_cast<uint16_t>(shape.mapWidth), height = static_cast<uint16_t>(shape.mapHeight);
  m.labels = arena.take<uint16_t>(shape.cells());
  m.filled = arena.take<uint16_t>(shape.cells());
  m.sizes = arena.take<uint32_t>(labelCount);
  m.growing = arena.take<uint8_t>(m.growingBytes = nadir_region_growing_bytes(width, height));
  m.pulling = arena.take<uint8_t>(m.pullingBytes = nadir_pull_push_bytes(width, height));
  return m;
}

uint32_t fillHoles(const Shape& shape, const HoleMemory& m, uint16_t* heights) {
  numberPatches(shape, m, heights);
  countSizes(shape, m);
  fillAll(shape, m, heights);
  uint32_t count = 0;
  for (uint64_t i = 0; i < shape.cells(); ++i) {
    const uint16_t label = m.labels[i];
    if (label == 0 || m.sizes[label] > shape.fillable || m.filled[i] == 0) continue;
    heights[i] = m.filled[i];
    ++count;
  }
  return count;
}

}  // namespace nadir::ground
