// Roads are made of a camera, settings and areas, and given back.
#include "ground/road.hpp"

#include <cmath>
#include <cstdlib>

#include "ground/records/checks.hpp"
#include "ground/records/plane_view.hpp"
#include "ground/stations/halves.hpp"

namespace nadir::ground {

namespace {

int32_t fixedPoint(double value, double scale) { return static_cast<int32_t>(std::lround(value * scale)); }

// libnadir's view of a camera: baseline, focal length and principal point rounded to its fixed-point units.
StereoCtx stereoContext(const NadirCamera& camera, uint32_t grid) {
  const double principalX = camera.principal_x_px + (grid == NADIR_GRID_RIGHT ? camera.column_shift_px : 0);
  const IntCalibParams inner = {fixedPoint(camera.baseline_mm, 256), fixedPoint(camera.focal_px, 256),
                                fixedPoint(principalX, 16), fixedPoint(camera.principal_y_px, 16)};
  const Orientation mount = {static_cast<float>(camera.height_mm), static_cast<float>(camera.tilt_deg),
                             static_cast<float>(camera.pan_deg)};
  const auto cell = static_cast<uint16_t>(camera.cell_mm);
  const ElevMapParams map = {static_cast<uint16_t>(camera.map_width_cells),
                             static_cast<uint16_t>(camera.map_height_cells), cell, cell};
  StereoCtx context;
  ip_stereo_init(&context, &inner, &mount, &map);
  context.lowerLeft.x += static_cast<float>(camera.map_offset_x_mm);
  context.lowerLeft.y += static_cast<float>(camera.map_offset_y_mm);
  return context;
}

// The codes of the pictures are not needed any more when points are sorted: 8 bytes a pixel.
SortMemory sortMemoryOver(const MatchMemory& match, Arena& arena, const Shape& shape) {
  return sortMemory(arena, shape, match.pass.firstCodes, reinterpret_cast<uint16_t*>(match.pass.referenceCodes));
}

// The road stands at the beginning of its own block; null where the arena has none.
NadirRoad* roadIn(Arena& arena, const Shape& shape, const NadirSettings& settings) {
  NadirRoad* road = arena.take<NadirRoad>();
  NadirRoad pieces{};
  pieces.shape = shape;
  pieces.match = matchMemory(arena, shape, settings);
  if (shape.hasMap()) pieces.sort = sortMemoryOver(pieces.match, arena, shape);
  pieces.holes = holeMemory(arena, shape);
  pieces.regions = regionMemory(arena, shape, settings);
  pieces.areas = areaMemory(arena, shape);
  pieces.trust = trustMemory(arena, shape);
  if (road) *road = pieces;
  return road;
}

void setUp(NadirRoad& road, const NadirCamera& camera, const NadirSettings& settings) {
  road.settings = settings;
  if (!road.shape.hasMap()) return;
  road.columnShift = static_cast<float>(camera.column_shift_px);
  road.context = stereoContext(camera, settings.grid);
  road.placing = placingOf(road.context, road.shape, road.sort.rayX);
  road.mount = {&road.context, camera.column_shift_px,
                mapView(road.context, camera.column_shift_px, largestDisparityOf(road.match.halvings), road.shape.width,
                        road.shape.height)};
}

Judgement placeAreas(NadirRoad& road, const NadirArea* areas) {
  for (uint32_t i = 0; i < road.shape.areas; ++i) {
    Judgement j = placeArea(areas[i], road.context, road.shape, road.areas[i]);
    j.area = i;
    if (j.status) return j;
  }
  return {};
}

Judgement made(const NadirCamera& camera, const NadirSettings& settings, const NadirArea* areas, const Shape& shape,
               NadirRoad*& road) {
  Arena counting(nullptr);
  roadIn(counting, shape, settings);
  void* block = counting.bytes() ? std::malloc(counting.bytes()) : nullptr;
  if (!block) return {NADIR_NO_MEMORY};
  Arena arena(block);
  NadirRoad* whole = roadIn(arena, shape, settings);
  setUp(*whole, camera, settings);
  const Judgement j = placeAreas(*whole, areas);
  if (j.status)
    nadir_road_destroy(whole);
  else
    road = whole;
  return j;
}

// Whether things of a height are measured over all of the map that is seen; none is missed where nothing is seen.
bool reaches(uint32_t range, const NadirCamera& camera, const NadirSettings& settings, double tallestMm) {
  const Shape shape = shapeOf(camera, settings, 0);
  const StereoCtx context = stereoContext(camera, settings.grid);
  const double largest = largestDisparityOf(halvings(range, shape));
  return !(leastTop(context, camera.column_shift_px, largest, shape.width, shape.height) < tallestMm);
}

// Ranges that end where the one before them does, since smaller pictures would be too narrow, are of no use.
uint32_t leastRange(const NadirCamera& camera, const NadirSettings& settings, double tallestMm) {
  const Shape shape = shapeOf(camera, settings, 0);
  const uint32_t longerOnes[] = {NADIR_RANGE_122, NADIR_RANGE_244};
  uint32_t range = NADIR_RANGE_61;
  for (const uint32_t longer : longerOnes) {
    const bool isLonger = halvings(longer, shape) > halvings(range, shape);
    if (isLonger && !reaches(range, camera, settings, tallestMm)) range = longer;
  }
  return range;
}

NadirStatus told(const Judgement& j, NadirFault* fault) {
  if (fault) *fault = {sizeof *fault, j.area, j.corner, 0, j.field};
  return j.status;
}

}  // namespace

}  // namespace nadir::ground

using namespace nadir::ground;

size_t nadir_road_bytes(const NadirCamera* camera, const NadirSettings* settings, uint32_t areaCount) {
  if (!camera || !settings || judged(*camera, *settings).status) return 0;
  Arena counting(nullptr);
  roadIn(counting, shapeOf(*camera, *settings, areaCount), *settings);
  return counting.bytes();
}

NadirStatus nadir_road_create(const NadirCamera* camera, const NadirSettings* settings, const NadirArea* areas,
                              uint32_t areaCount, NadirRoad** road, NadirFault* fault) {
  if (fault && !isWhole(fault)) return NADIR_BAD_RECORD;
  if (!camera || !settings || !road || (areaCount > 0 && !areas)) return told({NADIR_NULL_POINTER}, fault);
  *road = nullptr;
  if (const Judgement j = judged(*camera, *settings); j.status) return told(j, fault);
  Shape shape = shapeOf(*camera, *settings, areaCount);
  shape.settings = settingsHash(*settings);
  return told(made(*camera, *settings, areas, shape, *road), fault);
}

NadirStatus nadir_road_range(const NadirCamera* camera, const NadirSettings* settings, double tallestMm,
                             uint32_t* range) {
  if (!camera || !settings || !range) return NADIR_NULL_POINTER;
  if (const Judgement j = judged(*camera, *settings); j.status) return j.status;
  if (!(tallestMm >= 0 && tallestMm <= 65534)) return NADIR_BAD_SETTING;
  if (settings->until == NADIR_UNTIL_MATCH) return NADIR_NOTHING_FOUND;
  *range = leastRange(*camera, *settings, tallestMm);
  return NADIR_OK;
}

void nadir_road_destroy(NadirRoad* road) { std::free(road); }

NadirStatus nadir_road_context(const NadirRoad* road, StereoCtx* context) {
  if (!road || !context) return NADIR_NULL_POINTER;
  if (!road->shape.hasMap()) return NADIR_NOTHING_FOUND;
  *context = road->context;
  return NADIR_OK;
}

NadirStatus nadir_road_area(const NadirRoad* road, uint32_t index, NadirPlacedArea* area) {
  if (!road || !area) return NADIR_NULL_POINTER;
  if (!isWhole(area)) return NADIR_BAD_RECORD;
  if (index >= road->shape.areas) return NADIR_NOTHING_FOUND;
  const PlacedArea& a = road->areas[index];
  *area = {sizeof *area, a.cells,  a.wholeOnMap,
           a.corners,    a.ground, planeOf(a.mask, road->shape.mapWidth, road->shape.mapHeight)};
  return NADIR_OK;
}
