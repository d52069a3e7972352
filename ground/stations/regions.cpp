// The library grows the regions; here they are measured, and the small ones dropped.
#include "ground/stations/regions.hpp"

#include <cmath>
#include <cstring>

#include "ground/records/plane_view.hpp"
#include "ground/stations/cell_groups.hpp"

namespace nadir::ground {

// What is known of a label after one walk over the cells.
struct Extent {
  uint32_t cells;
  uint32_t left, top, right, bottom;  // half-open
  uint32_t sumX, sumY;                // of the cells' columns and rows
};

namespace {

// The heights that count, 0 elsewhere. Of areas that overlap the first one is put on top.
void chooseCells(const uint16_t* heights, const NadirSettings& settings, const Shape& shape, const PlacedArea* areas,
                 uint16_t* chosen) {
  const auto least = static_cast<uint16_t>(settings.min_height_mm);
  for (uint64_t i = 0; i < shape.cells(); ++i) chosen[i] = heights[i] > least ? heights[i] : uint16_t{0};
  for (uint32_t a = shape.areas; a-- > 0;) {
    const PlacedArea& area = areas[a];
    if (!area.hasRule()) continue;
    const uint16_t low = area.leastMm ? area.leastMm : least, high = area.mostMm ? area.mostMm : uint16_t{65535};
    for (uint64_t i = 0; i < shape.cells(); ++i)
      if (area.mask[i]) chosen[i] = heights[i] > low && heights[i] <= high ? heights[i] : uint16_t{0};
  }
}

void grow(const uint16_t* chosen, const NadirSettings& settings, const Shape& shape, const RegionMemory& m) {
  const ImgC map = {static_cast<uint16_t>(shape.mapWidth), static_cast<uint16_t>(shape.mapHeight), 2, IMG_TYPE_U16,
                    chosen};
  const RgeParams params = {0, 0, 0, 0, static_cast<int32_t>(std::floor(settings.max_step_mm)), 0};
  Img labels = imageOf(m.grown, shape.mapWidth, shape.mapHeight);
  nadir_elevation_regions_process(m.state, &map, &params);
  nadir_elevation_regions_label_map(m.state, &labels);
}

void enlarge(Extent& e, uint32_t x, uint32_t y) {
  if (e.cells == 0) e = {0, x, y, x, y, 0, 0};
  ++e.cells;
  e.left = x < e.left ? x : e.left;
  e.right = x + 1 > e.right ? x + 1 : e.right;
  e.bottom = y + 1;
  e.sumX += x;
  e.sumY += y;
}

double squareMetres(uint32_t cells, const ElevMapParams& map) {
  return static_cast<double>(cells) * map.cellSizeX * map.cellSizeY / 1e6;
}

// So much of the least area of a region rises above the place where it meets another one, or they are one.
constexpr uint32_t partsOfAnArea = 4;

// More cells than the map has are none that a part could have: so many are as good as any number above.
PartRule partRule(const NadirSettings& settings, const ElevMapParams& map, const Shape& shape) {
  const double asked = std::ceil(leastCells(settings, map) / partsOfAnArea);
  const double most = static_cast<double>(shape.cells()) + 1, least = asked < most ? asked : most;
  return {static_cast<uint16_t>(std::ceil(settings.dip_mm)), least > 1 ? static_cast<uint32_t>(least) : 1};
}

// Returns the highest label.
uint32_t measureLabels(const Shape& shape, const RegionMemory& m) {
  uint32_t count = 0;
  std::memset(m.extents, 0, (shape.cells() + 1) * sizeof(Extent));
  for (uint32_t y = 0; y < shape.mapHeight; ++y)
    for (uint32_t x = 0; x < shape.mapWidth; ++x) {
      const uint16_t label = m.grown[y * shape.mapWidth + x];
      if (label == 0) continue;
      enlarge(m.extents[label], x, y);
      count = label > count ? label : count;
    }
  return count;
}

// The centre of a cell is half a cell from its corner.
Point_f32 centreOf(const Extent& e, const StereoCtx& context) {
  const Point_f32 cell = {static_cast<float>((e.sumX + 0.5 * e.cells) / e.cells),
                          static_cast<float>((e.sumY + 0.5 * e.cells) / e.cells)};
  Point_f32 world;
  ip_elev2world(&cell, &world, &context.mapParams, &context.lowerLeft);
  return world;
}

bool touchesEdge(const Extent& e, const Shape& shape) {
  return e.left == 0 || e.top == 0 || e.right == shape.mapWidth || e.bottom == shape.mapHeight;
}

NadirRegion described(const Extent& e, uint32_t label, const StereoCtx& context, const Shape& shape) {
  const Point_f32 centre = centreOf(e, context);
  return {sizeof(NadirRegion),
          label,
          e.cells,
          0,
          0,
          e.left,
          e.top,
          e.right,
          e.bottom,
          touchesEdge(e, shape),
          centre.x,
          centre.y,
          squareMetres(e.cells, context.mapParams),
          0,
          0};
}

// Regions that are large enough are numbered in the order of the library's, which is that of their first cells.
uint32_t keepLarge(uint32_t grown, const StereoCtx& context, const NadirSettings& settings, const Shape& shape,
                   const RegionMemory& m, NadirRegion* regions) {
  uint32_t count = 0;
  m.kept[0] = 0;  // cells of no region
  for (uint32_t label = 1; label <= grown; ++label) {
    const Extent& e = m.extents[label];
    const bool keeps = e.cells > 0 && squareMetres(e.cells, context.mapParams) >= settings.min_area_m2;
    m.kept[label] = static_cast<uint16_t>(keeps ? ++count : 0);
    if (keeps) regions[count - 1] = described(e, count, context, shape);
  }
  return count;
}

void addHeights(const uint16_t* heights, const uint16_t* labels, const Shape& shape, const RegionMemory& m,
                NadirRegion* regions, uint32_t count) {
  const auto every = [](uint32_t) { return true; };
  sortByGroup(labels, heights, static_cast<uint32_t>(shape.cells()), count, every, m.begins, m.sorted);
  for (uint32_t i = 0; i < count; ++i) {
    const CellSet set = cellSet(m.sorted + m.begins[i + 1], regions[i].cells);
    regions[i].highest_mm = set.highestMm;
    regions[i].median_mm = set.medianMm;
  }
}

}  // namespace

double leastCells(const NadirSettings& settings, const ElevMapParams& map) {
  return settings.min_area_m2 * 1e6 / map.cellSizeX / map.cellSizeY;
}

RegionMemory regionMemory(Arena& arena, const Shape& shape, const NadirSettings& settings) {
  RegionMemory m{};
  if (!shape.hasRegions()) return m;
  const size_t stateBytes = nadir_elevation_regions_bytes();
  void* state = arena.take<uint8_t>(stateBytes);
  m.state = state ? nadir_elevation_regions_init(state, stateBytes) : nullptr;
  if (settings.dip_mm > 0) m.parts = arena.take<PartCell>(shape.cells());
  m.grown = arena.take<uint16_t>(shape.cells());
  m.kept = arena.take<uint16_t>(shape.cells() + 1);
  m.extents = arena.take<Extent>(shape.cells() + 1);
  m.begins = arena.take<uint32_t>(uint64_t{shape.regions} + 2);
  m.sorted = arena.take<uint16_t>(shape.cells());
  return m;
}

uint32_t findRegions(const uint16_t* heights, const StereoCtx& context, const NadirSettings& settings,
                     const Shape& shape, const PlacedArea* areas, const RegionMemory& m, uint16_t* labels,
                     NadirRegion* regions) {
  uint16_t* chosen = labels;  // which are written when these are no longer needed
  chooseCells(heights, settings, shape, areas, chosen);
  grow(chosen, settings, shape, m);
  if (m.parts) part(chosen, partRule(settings, context.mapParams, shape), shape, m.parts, m.grown);
  const uint32_t count = keepLarge(measureLabels(shape, m), context, settings, shape, m, regions);
  for (uint64_t i = 0; i < shape.cells(); ++i) labels[i] = m.kept[m.grown[i]];
  addHeights(heights, labels, shape, m, regions, count);
  return count;
}

}  // namespace nadir::ground
