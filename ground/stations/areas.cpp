// Polygons in pixels or on the ground become cells of the map.
#include "ground/stations/areas.hpp"

#include <nadir/geometry.h>

#include <cmath>
#include <cstring>

namespace nadir::ground {

namespace {

struct Extent {
  double left, top, right, bottom;
  bool holds(int32_t x, int32_t y) const { return x >= left && x <= right && y >= top && y <= bottom; }
};

Extent extentOf(const StereoCtx& context) {
  const ElevMapParams& map = context.mapParams;
  const double cell = map.cellSizeX;
  return {context.lowerLeft.x, context.lowerLeft.y, context.lowerLeft.x + map.width * cell,
          context.lowerLeft.y + map.height * cell};
}

bool isInReach(double mm) { return std::fabs(mm) <= NADIR_AREA_REACH; }

bool isInReach(const Extent& map) {
  return isInReach(map.left) && isInReach(map.top) && isInReach(map.right) && isInReach(map.bottom);
}

// The ground's world z in the whole millimetres that the library's mask takes.
double groundZ(const StereoCtx& context) { return std::round(context.orientation.height); }

// The library's mask rounds corners this way: floor(mm) + 0.5, less its fraction.
int32_t wholeMm(float mm) { return static_cast<int32_t>(std::floor(mm) + 0.5); }

// A ground point that is seen lies before the camera, unless the ray rises to the sky.
bool seesGround(const Point_f32& pixel, const StereoCtx& context, Point3_f32& ground) {
  Point_f32 back;
  ip_stereo_img2world(&context, &pixel, &ground, static_cast<float>(groundZ(context)));
  return ip_stereo_world2img(&context, &ground, &back) && isInReach(ground.x) && isInReach(ground.y);
}

Judgement projectCorners(const NadirArea& area, const StereoCtx& context, PlacedArea& placed) {
  for (uint32_t i = 0; i < area.corner_count; ++i) {
    const Point_f32 pixel = {static_cast<float>(area.corners[2 * i]), static_cast<float>(area.corners[2 * i + 1])};
    Point3_f32 place;
    if (!seesGround(pixel, context, place)) return {NADIR_CORNER_OFF_GROUND, "corners", 0, i};
    placed.ground[2 * i] = wholeMm(place.x);
    placed.ground[2 * i + 1] = wholeMm(place.y);
  }
  return {};
}

// A polygon as libnadir takes it, the corners behind their count.
struct PolygonRecord {
  explicit PolygonRecord(const NadirArea& area) {
    words[0] = static_cast<int32_t>(area.corner_count);
    std::memcpy(words + 1, area.corners, 2 * area.corner_count * sizeof(int32_t));
  }
  const Polygon_s32* get() const { return reinterpret_cast<const Polygon_s32*>(words); }
  int32_t words[1 + 2 * mostCorners];
};

// libnadir counts picture points from the first pixel's corner, cameras from its centre. Its plane is the ground
// whatever the corners show: the values are a single pixel of it.
Judgement markPixels(const NadirArea& area, StereoCtx context, const Shape& shape, uint8_t* mask) {
  if (groundZ(context) > UINT16_MAX) return {NADIR_CAMERA_TOO_HIGH, "height_mm"};
  context.intCalib.principalX += 0.5f;
  context.intCalib.principalY += 0.5f;
  const auto ground = static_cast<uint16_t>(groundZ(context));
  const ImgC plane = {1, 1, 2, IMG_TYPE_U16, &ground};
  Img image;
  Img_Init(&image, shape.mapWidth, shape.mapHeight, IMG_TYPE_U8, mask);
  const PolygonRecord polygon(area);
  if (!IP_Utils_CreateElevMaskFromImgPoly(polygon.get(), &context, &plane, &image)) return {NADIR_NO_MEMORY};
  return {};
}

// The cells whose centres that function asks about, in whole millimetres.
void markGround(const NadirArea& area, const StereoCtx& context, const Shape& shape, uint8_t* mask) {
  const PolygonRecord polygon(area);
  const int32_t cell = context.mapParams.cellSizeX;
  const int32_t left = static_cast<int32_t>(context.lowerLeft.x) + cell / 2;
  const int32_t top = static_cast<int32_t>(context.lowerLeft.y) + cell / 2;
  for (uint32_t y = 0; y < shape.mapHeight; ++y)
    for (uint32_t x = 0; x < shape.mapWidth; ++x) {
      const Point_s32 centre = {left + static_cast<int32_t>(x) * cell, top + static_cast<int32_t>(y) * cell};
      mask[y * shape.mapWidth + x] = static_cast<uint8_t>(IP_Polygon_IsInside(polygon.get(), &centre));
    }
}

Judgement markCells(const NadirArea& area, const StereoCtx& context, const Shape& shape, PlacedArea& placed) {
  if (area.unit == NADIR_AREA_PIXELS) {
    const Judgement projected = projectCorners(area, context, placed);
    return projected.status ? projected : markPixels(area, context, shape, placed.mask);
  }
  std::memcpy(placed.ground, area.corners, 2 * area.corner_count * sizeof(int32_t));
  markGround(area, context, shape, placed.mask);
  return {};
}

void measure(const Shape& shape, const Extent& map, PlacedArea& placed) {
  placed.cells = 0;
  for (uint32_t i = 0; i < shape.cells(); ++i) {
    if (placed.mask[i] == 0) continue;
    if (placed.cells++ == 0) placed.firstCell = i;
    placed.endCell = i + 1;
  }
  placed.wholeOnMap = true;
  for (uint32_t i = 0; i < placed.corners; ++i)
    placed.wholeOnMap &= map.holds(placed.ground[2 * i], placed.ground[2 * i + 1]);
}

}  // namespace

PlacedArea* areaMemory(Arena& arena, const Shape& shape) {
  PlacedArea* areas = arena.take<PlacedArea>(shape.areas);
  auto* masks = arena.take<uint8_t>(shape.areas * shape.cells());
  for (uint32_t i = 0; areas && i < shape.areas; ++i) areas[i].mask = masks + i * shape.cells();
  return areas;
}

Judgement placeArea(const NadirArea& area, const StereoCtx& context, const Shape& shape, PlacedArea& placed) {
  if (const Judgement j = judged(area); j.status) return j;
  const Extent map = extentOf(context);
  if (!isInReach(map)) return {NADIR_MAP_OUT_OF_REACH, "map_width_cells"};
  placed.corners = area.corner_count;
  placed.leastMm = static_cast<uint16_t>(area.min_height_mm);
  placed.mostMm = static_cast<uint16_t>(area.max_height_mm);
  if (const Judgement j = markCells(area, context, shape, placed); j.status) return j;
  measure(shape, map, placed);
  if (placed.cells == 0) return {NADIR_AREA_WITHOUT_CELLS};
  return {};
}

}  // namespace nadir::ground
