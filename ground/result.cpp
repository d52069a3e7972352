// Results are made, read and given back.
#include "ground/result.hpp"

#include <cstdlib>

#include "ground/records/checks.hpp"
#include "ground/records/plane_view.hpp"
#include "ground/road.hpp"

namespace nadir::ground {

namespace {

NadirPlane mapPlane(const NadirResult& r, const uint16_t* data) {
  return planeOf(data, r.shape.mapWidth, r.shape.mapHeight);
}

NadirFindings findingsOf(const NadirResult& r) {
  NadirFindings f{};
  f.size = sizeof f;
  f.region_count = r.regionCount;
  f.area_count = r.shape.areas;
  f.share_count = r.shareCount;
  f.points = r.points;
  f.points_inside = r.pointsInside;
  f.seen_cells = r.seenCells;
  f.filled_cells = r.filledCells;
  if (r.matched) f.disparity = planeOf(r.disparity, r.shape.width, r.shape.height);
  if (r.shape.hasMap()) {
    f.heights = mapPlane(r, r.heights);
    f.point_counts = planeOf(r.pointCounts, r.shape.mapWidth, r.shape.mapHeight);
  }
  if (r.shape.hasRegions()) f.labels = mapPlane(r, r.labels);
  f.pixels = &r.pixels;
  f.regions = r.regions;
  f.areas = r.areas;
  f.shares = r.shares;
  f.warning_count = r.warningCount;
  f.warnings = r.warnings;
  f.trust = &r.trust;
  return f;
}

}  // namespace

NadirResult* resultIn(Arena& arena, const Shape& shape) {
  NadirResult* result = arena.take<NadirResult>();
  NadirResult pieces{};
  pieces.shape = shape;
  pieces.disparity = arena.take<uint16_t>(shape.pixels());
  pieces.heights = arena.take<uint16_t>(shape.cells());
  pieces.pointCounts = arena.take<uint32_t>(shape.cells());
  pieces.labels = arena.take<uint16_t>(shape.hasRegions() ? shape.cells() : 0);
  pieces.regions = arena.take<NadirRegion>(shape.regions);
  pieces.areas = arena.take<NadirOccupancy>(shape.areas);
  pieces.shares = arena.take<NadirShare>(uint64_t{shape.areas} * shape.regions);
  if (result) *result = pieces;
  return result;
}

}  // namespace nadir::ground

using namespace nadir::ground;

size_t nadir_result_bytes(const NadirCamera* camera, const NadirSettings* settings, uint32_t areaCount) {
  if (!camera || !settings || judged(*camera, *settings).status) return 0;
  Arena counting(nullptr);
  resultIn(counting, shapeOf(*camera, *settings, areaCount));
  return counting.bytes();
}

NadirStatus nadir_result_create(const NadirRoad* road, NadirResult** result) {
  if (!road || !result) return NADIR_NULL_POINTER;
  Arena counting(nullptr);
  resultIn(counting, road->shape);
  void* block = counting.bytes() ? std::malloc(counting.bytes()) : nullptr;
  if (!block) return NADIR_NO_MEMORY;
  Arena arena(block);
  *result = resultIn(arena, road->shape);
  return NADIR_OK;
}

void nadir_result_destroy(NadirResult* result) { std::free(result); }

NadirStatus nadir_result_read(const NadirResult* result, NadirFindings* findings) {
  if (!result || !findings) return NADIR_NULL_POINTER;
  if (!isWhole(findings)) return NADIR_BAD_RECORD;
  if (!result->holdsFrame) return NADIR_NOTHING_FOUND;
  *findings = findingsOf(*result);
  return NADIR_OK;
}
