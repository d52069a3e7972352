// A polygon drawn in the picture becomes a mask of the elevation map.
#include <nadir/camera.h>
#include <nadir/numeric.h>

#include <cmath>
#include <cstring>
#include <new>

#include "core/memory.hpp"
#include "core/pixels.hpp"
#include "core/round.hpp"
#include "core/wrap.hpp"
#include "geometry/polygon_cells.hpp"

namespace nadir {
namespace {

constexpr uint32_t mostSamples = 640 * 480;

// The values other than 0. The counter starts again after 65535: a larger image keeps its last values only.
struct Samples {
  uint16_t* values;
  uint16_t count;

  void add(uint16_t value) {
    if (value != 0) values[count++] = value;
  }
};

uint16_t valueAt(const ImgC& values, size_t byte) {
  uint16_t value;
  std::memcpy(&value, static_cast<const unsigned char*>(values.data) + byte, sizeof value);
  return value;
}

void sampleVertices(const Polygon_s32& polygon, const ImgC& values, Samples& samples) {
  for (uint32_t k = 0; k < polygon.count; ++k) {
    const Point_s32& p = polygon.vertices[k];
    if (p.x < 0 || p.x >= values.width || p.y < 0 || p.y >= values.height) continue;
    const size_t pixel = static_cast<size_t>(p.x) + size_t{values.width} * static_cast<size_t>(p.y);
    samples.add(valueAt(values, pixel * values.bytesPerPixel));
  }
}

void sampleImage(const ImgC& values, Samples& samples) {
  for (size_t y = 0; y < values.height; ++y) {
    const size_t row = y * values.width * values.bytesPerPixel;
    for (size_t x = 0; x < values.width; ++x) samples.add(valueAt(values, row + x * sizeof(uint16_t)));
  }
}

// World z of the plane; 0, which is no value, where there is none.
uint16_t planeHeight(const Polygon_s32& polygon, const ImgC& values) {
  const Scratch<uint16_t> buffer(mostSamples);
  if (!buffer) return 0;
  Samples samples = {buffer.get(), 0};
  sampleVertices(polygon, values, samples);
  if (samples.count == 0) sampleImage(values, samples);
  uint16_t median = 0;
  IP_Utl_Median_u16(samples.values, samples.count, &median);
  return median;
}

int32_t wholeMillimetres(float v) { return truncated(static_cast<double>(std::floor(v)) + 0.5); }

Point_s32 projected(const Point_s32& pixel, const StereoCtx& ctx, float height) {
  const Point_f32 centre = {static_cast<float>(pixel.x) + 0.5f, static_cast<float>(pixel.y) + 0.5f};
  Point3_f32 world;
  ip_stereo_img2world(&ctx, &centre, &world, height);
  return {wholeMillimetres(world.x), wholeMillimetres(world.y)};
}

bool fitsMap(const Img& mask, const ElevMapParams& map) {
  return mask.width == map.width && mask.height == map.height && mask.type == IMG_TYPE_U8;
}

CellGrid cellsOf(const StereoCtx& ctx) {
  const ElevMapParams& map = ctx.mapParams;
  return {(Wrap32(truncated(ctx.lowerLeft.x)) + (map.cellSizeX >> 1)).value(),
          (Wrap32(truncated(ctx.lowerLeft.y)) + (map.cellSizeY >> 1)).value(),
          map.width,
          map.height,
          map.cellSizeX,
          map.cellSizeY};
}

// A polygon on the stack.
struct LocalPolygon {
  alignas(Polygon_s32) unsigned char bytes[sizeof(Polygon_s32) + mostCellPolygonVertices * sizeof(Point_s32)];
};

}  // namespace
}  // namespace nadir

int32_t IP_Utils_CreateElevMaskFromImgPoly(const Polygon_s32* polygon, const StereoCtx* ctx, const ImgC* values,
                                           Img* mask) {
  if (!polygon || !ctx || !values || !values->data || !mask) return 0;
  if (polygon->count > nadir::mostCellPolygonVertices || values->bytesPerPixel < sizeof(uint16_t)) return 0;
  const uint16_t height = nadir::planeHeight(*polygon, *values);
  if (height == 0) return 0;
  if (!nadir::fitsMap(*mask, ctx->mapParams)) return 1;
  if (!mask->data && nadir::pixelCount(*mask) != 0) return 0;

  nadir::LocalPolygon storage;
  Polygon_s32& onPlane = *new (storage.bytes) Polygon_s32;
  onPlane.count = polygon->count;
  for (uint32_t k = 0; k < polygon->count; ++k) {
    onPlane.vertices[k] = nadir::projected(polygon->vertices[k], *ctx, height);
  }
  markCellsInside(onPlane, nadir::cellsOf(*ctx), static_cast<uint8_t*>(mask->data));
  return 1;
}
