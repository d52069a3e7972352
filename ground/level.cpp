// The calls of include/nadir/level.h.
#include <nadir/level.h>

#include <cmath>
#include <cstdlib>

#include "ground/floor/levelled.hpp"
#include "ground/records/checks.hpp"
#include "ground/records/plane_view.hpp"
#include "ground/result.hpp"
#include "ground/road.hpp"
#include "ground/trust/ground_search.hpp"

using namespace nadir::ground;

struct NadirLevel {
  Shape shape;
  StereoCtx context;
  double columnShift;
  Block* blocks;
  Smoothed left, right;
  uint8_t* taken;
  bool holdsPair;
  double share;
  PlaneSums sums;
};

namespace nadir::ground {

namespace {

// Of the blocks. Where the ground's disparities are small and noisy they lie about it as if at random, but most do.
constexpr double leastShare = 0.4, mostBelow = 0.1;

// Pixels: what is further from the plane than disparities err is not of it.
constexpr double largestOff = 0.5;

// Deviations that say that there is no floor. A floor that fills a quarter of a small picture has 0.006 and 0.13
// degrees, the plane through the things on a shelf 0.012 and 0.74.
constexpr double largestHeightDeviation = 0.01, largestTiltDeviationDeg = 0.5;

bool canLevel(const NadirRoad& road) { return road.shape.hasMap() && road.settings.grid == NADIR_GRID_LEFT; }

NadirLevel* levelIn(Arena& arena, const NadirRoad& road) {
  const uint32_t width = road.shape.width, height = road.shape.height;
  NadirLevel* level = arena.take<NadirLevel>();
  NadirLevel pieces{};
  pieces.shape = road.shape;
  pieces.context = road.context;
  pieces.columnShift = double{road.columnShift};
  pieces.blocks = arena.take<Block>(largestBlockCount(width, height));
  pieces.left = smoothed(arena, width, height);
  pieces.right = smoothed(arena, width, height);
  pieces.taken = arena.take<uint8_t>(road.shape.pixels());
  if (level) *level = pieces;
  return level;
}

bool isGood(const NadirFrame& f, const Shape& shape) {
  const uint64_t rowBytes = uint64_t{shape.width} * f.bits / 8;
  return (f.bits == 8 || f.bits == 16) && f.left && f.right && holdsRows(f.left_stride, rowBytes, shape.height) &&
         holdsRows(f.right_stride, rowBytes, shape.height) &&
         (!f.disparity || (holdsRows(f.disparity_stride, shape.width * sizeof(float), shape.height) &&
                           f.disparity_stride % sizeof(float) == 0));
}

size_t listBlocks(const NadirLevel& level, const NadirFrame& frame, const uint16_t* matched) {
  const uint32_t width = level.shape.width, height = level.shape.height;
  if (frame.disparity) return listBlocks(frame.disparity, frame.disparity_stride, width, height, level.blocks);
  return listBlocks(matched, width, height, level.blocks);
}

bool isGiven(const NadirFrame& frame, uint32_t x, uint32_t y) {
  const void* row = reinterpret_cast<const uint8_t*>(frame.disparity) + y * frame.disparity_stride;
  const float disparity = static_cast<const float*>(row)[x];
  return disparity == disparity;  // not-a-number is no number's equal
}

// Returns how many pixels have a disparity.
uint32_t markKnown(const NadirLevel& level, const NadirFrame& frame, const uint16_t* matched) {
  uint32_t known = 0;
  size_t i = 0;
  for (uint32_t y = 0; y < level.shape.height; ++y)
    for (uint32_t x = 0; x < level.shape.width; ++x, ++i) {
      const bool has = frame.disparity ? isGiven(frame, x, y) : matched[i] != 0;
      level.taken[i] = has ? NADIR_LEVEL_LEFT_OUT : NADIR_LEVEL_UNKNOWN;
      known += has;
    }
  return known;
}

// Takes the known pixels of a block, and returns how many they are.
uint32_t take(const NadirLevel& level, const Block& block) {
  uint8_t* rows = level.taken + size_t{level.shape.width} * (static_cast<uint32_t>(block.y) - (blockSide - 1) / 2) +
                  static_cast<uint32_t>(block.x) - (blockSide - 1) / 2;
  uint32_t taken = 0;
  for (uint32_t k = 0; k < blockSide * blockSide; ++k) {
    uint8_t& pixel = rows[size_t{level.shape.width} * (k / blockSide) + k % blockSide];
    if (pixel == NADIR_LEVEL_LEFT_OUT) pixel = NADIR_LEVEL_TAKEN, ++taken;
  }
  return taken;
}

// What lies on the floor is taken in blocks, so that no single pixel is chosen for what noise made of it.
uint32_t takeFloor(const NadirLevel& level, const DisparityPlane& plane, size_t blocks) {
  uint32_t taken = 0;
  for (size_t i = 0; i < blocks; ++i) {
    const Block& b = level.blocks[i];
    if (std::fabs(double{b.disparity} - plane.at(double{b.x}, double{b.y})) <= largestOff) taken += take(level, b);
  }
  return taken;
}

bool holdsFloor(const Agreement& a, size_t blocks) {
  const auto all = static_cast<double>(blocks);
  const bool isMost = static_cast<double>(a.on) >= leastShare * all && static_cast<double>(a.below) <= mostBelow * all;
  return blocks > 0 && (isMost || clusters(a));
}

bool isFloor(const NadirLevel& level, const UncertainPlane& plane) {
  NadirLevelled found{};
  describe(plane, 1, level.context, level.columnShift, found);
  return found.height_deviation_mm <= largestHeightDeviation * found.height_mm &&
         found.tilt_deviation_deg <= largestTiltDeviationDeg;
}

bool findFloor(NadirLevel& level, const NadirFrame& frame, const uint16_t* matched, UncertainPlane& plane) {
  const uint32_t known = markKnown(level, frame, matched);
  const size_t blocks = listBlocks(level, frame, matched);
  const FoundGround found = searchedGround(level.blocks, blocks);
  level.share = 0;
  if (!holdsFloor(found.agreement, blocks)) return false;
  plane.plane = found.plane;
  level.share = double{1} * takeFloor(level, plane.plane, blocks) / known;
  smooth(frame.left, frame.left_stride, frame.bits, level.left);
  smooth(frame.right, frame.right_stride, frame.bits, level.right);
  return align({level.left, level.right, level.taken}, plane) && isFloor(level, plane);
}

}  // namespace

}  // namespace nadir::ground

size_t nadir_level_bytes(const NadirRoad* road) {
  if (!road || !canLevel(*road)) return 0;
  Arena counting(nullptr);
  levelIn(counting, *road);
  return counting.bytes();
}

NadirStatus nadir_level_create(const NadirRoad* road, NadirLevel** level) {
  if (!road || !level) return NADIR_NULL_POINTER;
  if (!canLevel(*road)) return NADIR_BAD_SETTING;
  void* block = std::malloc(nadir_level_bytes(road));
  if (!block) return NADIR_NO_MEMORY;
  Arena arena(block);
  *level = levelIn(arena, *road);
  return NADIR_OK;
}

void nadir_level_destroy(NadirLevel* level) { std::free(level); }

NadirStatus nadir_level_add(NadirLevel* level, const NadirFrame* frame, const NadirResult* result) {
  if (!level || !frame || !result) return NADIR_NULL_POINTER;
  if (!isWhole(frame)) return NADIR_BAD_RECORD;
  if (!areEqual(level->shape, result->shape)) return NADIR_FOREIGN_RESULT;
  if (!isGood(*frame, level->shape)) return NADIR_BAD_FRAME;
  if (!result->holdsFrame || (!result->matched && !frame->disparity)) return NADIR_NOTHING_FOUND;
  level->holdsPair = true;
  UncertainPlane plane{};
  if (!findFloor(*level, *frame, result->disparity, plane)) return NADIR_NOTHING_FOUND;
  add(level->sums, plane);
  return NADIR_OK;
}

NadirStatus nadir_level_read(const NadirLevel* level, NadirLevelled* levelled) {
  if (!level || !levelled) return NADIR_NULL_POINTER;
  if (!isWhole(levelled)) return NADIR_BAD_RECORD;
  if (level->sums.pairs == 0) return NADIR_NOTHING_FOUND;
  const UncertainPlane mean = meanOf(level->sums, level->shape.width, level->shape.height);
  NadirLevelled found{};
  found.size = sizeof found;
  describe(mean, level->sums.pairs, level->context, level->columnShift, found);
  found.floor_share = level->share;
  *levelled = found;
  return NADIR_OK;
}

NadirStatus nadir_level_taken(const NadirLevel* level, NadirPlane* taken) {
  if (!level || !taken) return NADIR_NULL_POINTER;
  if (!level->holdsPair) return NADIR_NOTHING_FOUND;
  *taken = planeOf(level->taken, level->shape.width, level->shape.height);
  return NADIR_OK;
}
