// Polygons in pixels or on the ground become cells of the map.
#include "ground/areas.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>

#include "lab/image.hpp"
#include "tools/base/error.hpp"
#include "tools/base/text.hpp"

namespace nadir::ground {

namespace {

[[noreturn]] void complain(const Area& area, const std::string& reason) {
  throw tool::Error(tool::format("%s: area \"%s\": %s", area.origin.c_str(), area.name.c_str(), reason.c_str()));
}

struct Extent {
  double left, top, right, bottom;
};

Extent extentOf(const MapFrame& frame) {
  const double cell = frame.cells.cellSizeX;
  return {frame.corner.x, frame.corner.y, frame.corner.x + frame.cells.width * cell,
          frame.corner.y + frame.cells.height * cell};
}

bool isInReach(double mm) { return std::abs(mm) <= areaReach; }

void checkReach(const Area& area, const Extent& map) {
  for (const double edge : {map.left, map.top, map.right, map.bottom})
    if (!isInReach(edge))
      complain(area, tool::format("areas need a map that ends within %d m of the camera, this one reaches from x %.0f, "
                                  "y %.0f to x %.0f, y %.0f mm",
                                  areaReach / 1000, map.left, map.top, map.right, map.bottom));
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

std::vector<Point_s32> onGround(const Area& area, const StereoCtx& context) {
  if (area.unit == AreaUnit::groundMm) return area.corners;
  std::vector<Point_s32> ground;
  for (const Point_s32& corner : area.corners) {
    const Point_f32 pixel = {static_cast<float>(corner.x), static_cast<float>(corner.y)};
    Point3_f32 place;
    if (!seesGround(pixel, context, place))
      complain(area, tool::format("corner %zu, pixel [%d, %d], does not show the ground within %d m of the camera",
                                  ground.size() + 1, corner.x, corner.y, areaReach / 1000));
    ground.push_back({wholeMm(place.x), wholeMm(place.y)});
  }
  return ground;
}

// The library counts picture points from the first pixel's corner, camera files from its centre. Its plane is the
// ground whatever the corners show: the values are a single pixel of it.
Grid<uint8_t> maskOfPixels(const Area& area, const MapFrame& frame, StereoCtx context) {
  context.intCalib.principalX += 0.5f;
  context.intCalib.principalY += 0.5f;
  context.lowerLeft = frame.corner;
  if (groundZ(context) > 65535) complain(area, "areas in pixels need a camera that is at most 65 m high");
  const auto ground = static_cast<uint16_t>(groundZ(context));
  ImgC plane;
  ImgC_Init(&plane, 1, 1, IMG_TYPE_U16, &ground);
  Grid<uint8_t> mask(frame.cells.width, frame.cells.height);
  Img image = imageOf(mask);
  if (!IP_Utils_CreateElevMaskFromImgPoly(PolygonRecord(area.corners).get(), &context, &plane, &image))
    throw std::bad_alloc();
  return mask;
}

// The cells whose centres that function asks about, in whole millimetres.
Grid<uint8_t> maskOfGround(const std::vector<Point_s32>& corners, const MapFrame& frame) {
  const PolygonRecord polygon(corners);
  const int32_t cell = frame.cells.cellSizeX;
  const int32_t left = static_cast<int32_t>(frame.corner.x) + cell / 2;
  const int32_t top = static_cast<int32_t>(frame.corner.y) + cell / 2;
  Grid<uint8_t> mask(frame.cells.width, frame.cells.height);
  for (uint32_t y = 0; y < mask.height; ++y)
    for (uint32_t x = 0; x < mask.width; ++x) {
      const Point_s32 centre = {left + static_cast<int32_t>(x) * cell, top + static_cast<int32_t>(y) * cell};
      mask.at(x, y) = static_cast<uint8_t>(IP_Polygon_IsInside(polygon.get(), &centre));
    }
  return mask;
}

bool isOn(const Extent& map, const Point_s32& p) {
  return p.x >= map.left && p.x <= map.right && p.y >= map.top && p.y <= map.bottom;
}

}  // namespace

PolygonRecord::PolygonRecord(const std::vector<Point_s32>& corners) : words_(1 + 2 * corners.size()) {
  words_[0] = static_cast<int32_t>(corners.size());
  std::memcpy(words_.data() + 1, corners.data(), corners.size() * sizeof(Point_s32));
}

const Polygon_s32* PolygonRecord::get() const { return reinterpret_cast<const Polygon_s32*>(words_.data()); }

PlacedArea placedArea(const Area& area, const MapFrame& frame, const StereoCtx& context) {
  const Extent map = extentOf(frame);
  checkReach(area, map);
  PlacedArea a{area, onGround(area, context), {}};
  a.cells = area.unit == AreaUnit::pixels ? maskOfPixels(area, frame, context) : maskOfGround(area.corners, frame);
  a.count = static_cast<size_t>(std::count(a.cells.pixels.begin(), a.cells.pixels.end(), 1));
  a.wholeOnMap = std::all_of(a.ground.begin(), a.ground.end(), [&map](const Point_s32& p) { return isOn(map, p); });
  if (a.count == 0)
    complain(area, tool::format("holds the centre of no cell of the map, which reaches from x %.0f, y %.0f to x %.0f, "
                                "y %.0f mm",
                                map.left, map.top, map.right, map.bottom));
  return a;
}

}  // namespace nadir::ground
