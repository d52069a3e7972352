// The stations in their order, and a frame's points one by one.
#include "ground/records/checks.hpp"
#include "ground/records/plane_view.hpp"
#include "ground/result.hpp"
#include "ground/road.hpp"
#include "ground/stations/occupancy.hpp"
#include "ground/stations/picture_edge.hpp"

namespace nadir::ground {

namespace {

// Every row must hold the picture's, and 16-bit rows may begin anywhere.
bool isGood(const NadirFrame& f, const Shape& shape) {
  const uint64_t rowBytes = uint64_t{shape.width} * f.bits / 8;
  const auto holds = [&](size_t stride, uint64_t bytes) { return holdsRows(stride, bytes, shape.height); };
  if (f.disparity)
    return holds(f.disparity_stride, shape.width * sizeof(float)) && f.disparity_stride % sizeof(float) == 0;
  return (f.bits == 8 || f.bits == 16) && f.left && f.right && holds(f.left_stride, rowBytes) &&
         holds(f.right_stride, rowBytes) && (!f.mask || holds(f.mask_stride, shape.width));
}

const float* givenRow(const NadirFrame& frame, uint32_t y) {
  const auto* bytes = reinterpret_cast<const uint8_t*>(frame.disparity) + y * frame.disparity_stride;
  return reinterpret_cast<const float*>(bytes);
}

// The road's own pixels tell a given picture's values apart from its holes.
NadirPixelCounts givenCounts(const NadirFrame& frame, const Shape& shape) {
  NadirPixelCounts counts{};
  counts.size = sizeof counts;
  for (uint32_t y = 0; y < shape.height; ++y) {
    const float* row = givenRow(frame, y);
    for (uint32_t x = 0; x < shape.width; ++x) counts.value += row[x] == row[x];  // not-a-number is no number's equal
  }
  counts.ambiguous = static_cast<uint32_t>(shape.pixels()) - counts.value;
  return counts;
}

DisparityRows disparityRows(const NadirRoad& road, const NadirFrame& frame, const NadirResult& r) {
  return {frame, r.disparity, road.shape, road.columnShift};
}

void findDisparities(const NadirRoad& road, const NadirFrame& frame, const Stages& stages, NadirResult& r) {
  r.matched = !frame.disparity;
  if (r.matched)
    match(frame, road.settings, road.shape, road.match, stages, r.disparity, r.pixels);
  else
    r.pixels = givenCounts(frame, road.shape);
}

void findHeights(const NadirRoad& road, const NadirFrame& frame, const Stages& stages, NadirResult& r) {
  stages.begin("points and map");
  const MapCounts counts = mapHeights(disparityRows(road, frame, r), road.context, road.placing, road.settings,
                                      road.shape, road.sort, r.heights, r.pointCounts);
  r.points = counts.points;
  r.pointsInside = counts.inside;
  r.seenCells = counts.seen;
  if (road.shape.fillable == 0) return;
  stages.begin("hole filling");
  r.filledCells = fillHoles(road.shape, road.holes, r.heights);
}

// Not-a-number is not larger than anything.
float largestGiven(const NadirFrame& frame, const Shape& shape) {
  float largest = 0;
  for (uint32_t y = 0; y < shape.height; ++y) {
    const float* row = givenRow(frame, y);
    for (uint32_t x = 0; x < shape.width; ++x) largest = row[x] > largest ? row[x] : largest;
  }
  return largest;
}

void findPictureEdge(const NadirRoad& road, const NadirFrame& frame, NadirResult& r) {
  const double largest = r.matched ? largestDisparityOf(road.match.halvings) : double{largestGiven(frame, road.shape)};
  const PictureEdge edge = pictureEdge(road.settings, road.shape, road.match.halvings, road.columnShift, largest);
  markAtPictureEdge(disparityRows(road, frame, r), edge, road.shape, road.sort, r.labels, r.regions);
}

void findWhatStands(const NadirRoad& road, const NadirFrame& frame, const Stages& stages, NadirResult& r) {
  stages.begin("regions");
  r.regionCount =
      findRegions(r.heights, road.context, road.settings, road.shape, road.areas, road.regions, r.labels, r.regions);
  if (r.regionCount > 0) findPictureEdge(road, frame, r);
  r.shareCount =
      fillOccupancies(road.areas, r.heights, r.labels, r.regionCount, leastCells(road.settings, road.context.mapParams),
                      road.shape, road.regions, r.areas, r.shares);
}

// The matcher's pictures and codes are still there when it is done.
MatchedFrame matchedFrame(const NadirRoad& road) {
  const PassMemory& m = road.match.pass;
  const Shape& s = road.shape;
  const uint32_t halvings = road.match.halvings;
  return {{m.raw, road.match.cleaned, m.reference, m.mask, s.width, s.height, rangeEndOf(halvings)},
          {m.firstCodes, m.referenceCodes, m.first, m.reference, s.width, s.height, m.walk, m.walkBytes, halvings > 0,
           m.raw},
          road.settings.grid == NADIR_GRID_LEFT,
          road.settings.uniqueness};
}

void judgeFrame(const NadirRoad& road, const NadirFrame& frame, const Stages& stages, NadirResult& r) {
  stages.begin("trust");
  const MatchedFrame matched = matchedFrame(road);
  const ViewDisparities disparities{r.disparity, frame.disparity, frame.disparity_stride, road.shape.width,
                                    road.shape.height};
  r.warningCount =
      static_cast<uint32_t>(judge(r.matched ? &matched : nullptr, road.shape.hasMap() ? &road.mount : nullptr,
                                  disparities, road.trust.blocks, r.trust, r.warnings));
}

void work(const NadirRoad& road, const NadirFrame& frame, NadirResult& r) {
  const Stages stages(frame);
  findDisparities(road, frame, stages, r);
  judgeFrame(road, frame, stages, r);
  if (road.shape.hasMap()) findHeights(road, frame, stages, r);
  if (road.shape.hasRegions()) findWhatStands(road, frame, stages, r);
  r.holdsFrame = true;
  stages.end();
}

// What a frame and its result must be to be looked at again.
NadirStatus againStatus(const NadirRoad& road, const NadirFrame& frame, const NadirResult& result) {
  if (!isWhole(&frame)) return NADIR_BAD_RECORD;
  if (!areEqual(road.shape, result.shape)) return NADIR_FOREIGN_RESULT;
  if (!road.shape.hasMap() || !result.holdsFrame) return NADIR_NOTHING_FOUND;
  if (result.matched ? frame.disparity != nullptr : !frame.disparity || !isGood(frame, road.shape))
    return NADIR_BAD_FRAME;
  return NADIR_OK;
}

DisparityPicture disparityPicture(const NadirRoad& road, const NadirFrame& frame, const NadirResult& r) {
  const uint32_t width = road.shape.width, height = road.shape.height;
  if (r.matched) return {r.disparity, width * sizeof *r.disparity, false, width, height, road.columnShift};
  return {frame.disparity, frame.disparity_stride, true, width, height, road.columnShift};
}

NadirGroundPlane described(const NearPlane& p) {
  return {sizeof(NadirGroundPlane),
          static_cast<uint32_t>(p.points),
          static_cast<uint32_t>(p.inliers),
          0,
          p.heightMm,
          p.tiltDeg,
          p.panDeg,
          p.axisBelowHorizonDeg,
          p.rollDeg,
          p.rmsMm,
          p.rmsPx};
}

// As many of the points as there is room for are written; all are counted.
struct PointList {
  NadirPoint* points;
  size_t room, count;

  void add(const StereoCtx& context, uint32_t x, uint32_t y, float disparity, uint32_t cell) {
    const Point_f32 image = {static_cast<float>(x), static_cast<float>(y)};
    Point3_f32 world;
    if (!ip_stereo_disp2world(&context, &image, &world, disparity)) return;
    if (count < room) points[count] = {world.x, world.y, world.z, disparity, x, y, cell, 0};
    ++count;
  }
};

void addRow(PointList& list, const NadirRoad& road, const DisparityRows& rows, uint32_t y) {
  const SortMemory& m = road.sort;
  rows.read(y, m.disparity);
  placeRow(road.context, road.placing, road.shape, y, m.disparity, m.cells, m.heights);
  for (uint32_t x = 0; x < road.shape.width; ++x) list.add(road.context, x, y, m.disparity[x], m.cells[x]);
}

}  // namespace

}  // namespace nadir::ground

using namespace nadir::ground;

NadirStatus nadir_road_process(NadirRoad* road, const NadirFrame* frame, NadirResult* result) {
  if (!road || !frame || !result) return NADIR_NULL_POINTER;
  if (!isWhole(frame)) return NADIR_BAD_RECORD;
  if (!areEqual(road->shape, result->shape)) return NADIR_FOREIGN_RESULT;
  if (!isGood(*frame, road->shape)) return NADIR_BAD_FRAME;
  work(*road, *frame, *result);
  return NADIR_OK;
}

NadirStatus nadir_road_points(NadirRoad* road, const NadirFrame* frame, const NadirResult* result, NadirPoint* points,
                              size_t room, size_t* count) {
  if (!road || !frame || !result || !count || (room > 0 && !points)) return NADIR_NULL_POINTER;
  if (const NadirStatus status = againStatus(*road, *frame, *result)) return status;
  const DisparityRows rows = disparityRows(*road, *frame, *result);
  PointList list{points, room, 0};
  for (uint32_t y = 0; y < road->shape.height; ++y) addRow(list, *road, rows, y);
  *count = list.count;
  return NADIR_OK;
}

NadirStatus nadir_road_ground_plane(NadirRoad* road, const NadirFrame* frame, const NadirResult* result,
                                    NadirGroundPlane* plane) {
  if (!road || !frame || !result || !plane) return NADIR_NULL_POINTER;
  if (!isWhole(plane)) return NADIR_BAD_RECORD;
  if (const NadirStatus status = againStatus(*road, *frame, *result)) return status;
  NearPlane found{};
  if (!nearPlane(disparityPicture(*road, *frame, *result), road->context, road->trust.judges, found))
    return NADIR_NOTHING_FOUND;
  *plane = described(found);
  return NADIR_OK;
}
