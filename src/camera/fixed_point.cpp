// These are the transforms on fixed-point numbers: each widens its input, calls its twin for floats and narrows the
// result.
#include <nadir/camera.h>

#include <cmath>

#include "core/round.hpp"
#include "core/wrap.hpp"

namespace nadir {
namespace {

constexpr float lengthUnit = 0.0625f;               // mm or pixels per count
constexpr float coefficientUnit = 0.000244140625f;  // 1/4096

float widened(int32_t counts) { return static_cast<float>(counts) * lengthUnit; }

Point3_f32 widened(const Point3_s32& p) { return {widened(p.x), widened(p.y), widened(p.z)}; }

// Coordinates round half up, calibrations half away from zero.
int32_t coordinate(float v) { return truncated(std::floor(0.5f + v * 16.0f)); }
int32_t calibration(float v, float scale) { return truncated(std::round(v * scale)); }

Point3_s32 narrowed(const Point3_f32& p) { return {coordinate(p.x), coordinate(p.y), coordinate(p.z)}; }

ExtCalib externalOf(const TrafoParams& trafo) {
  ExtCalib ext;
  for (int i = 0; i < 9; ++i) ext.R[i] = static_cast<float>(trafo.ext.R[i]) * coefficientUnit;
  for (int i = 0; i < 3; ++i) ext.T[i] = widened(trafo.ext.T[i]);
  return ext;
}

IntCalib internalOf(const TrafoParams& trafo) {
  IntCalib calib;
  ip_params2internalCalib(&trafo.intParams, &calib);
  return calib;
}

}  // namespace
}  // namespace nadir

uint32_t ip_orientation2trafo(const Orientation* orientation, ExtCalibFixed* ext) {
  ExtCalib exact;
  ip_orientation2externalCalib(orientation, &exact);
  for (int i = 0; i < 9; ++i) ext->R[i] = nadir::calibration(exact.R[i], 4096.0f);
  for (int i = 0; i < 3; ++i) ext->T[i] = nadir::calibration(exact.T[i], 16.0f);
  return 1;
}

uint32_t ip_createTrafoParams(const Orientation* orientation, const IntCalibParams* params, TrafoParams* trafo) {
  trafo->reserved = 0;
  trafo->intParams = *params;
  return ip_orientation2trafo(orientation, &trafo->ext);
}

uint32_t ip_trafoParams2calib(const TrafoParams* trafo, ExtCalib* ext, IntCalib* calib) {
  *ext = nadir::externalOf(*trafo);
  *calib = nadir::internalOf(*trafo);
  return 1;
}

void ip_world2cam_s32(Point3_s32* cam, const Point3_s32* world, const TrafoParams* trafo) {
  const ExtCalib ext = nadir::externalOf(*trafo);
  const Point3_f32 exact = nadir::widened(*world);
  Point3_f32 result;
  ip_world2cam(&exact, &result, &ext);
  *cam = nadir::narrowed(result);
}

void ip_world2img_s32(Point_s32* img, const Point3_s32* world, const TrafoParams* trafo) {
  const ExtCalib ext = nadir::externalOf(*trafo);
  const IntCalib calib = nadir::internalOf(*trafo);
  const Point3_f32 exact = nadir::widened(*world);
  Point_f32 result;
  ip_world2img(&exact, &result, &ext, &calib);
  *img = {nadir::coordinate(result.x), nadir::coordinate(result.y)};
}

void ip_img2groundplane_s32(Point3_s32* world, const Point_s32* img, int32_t planeHeight, const TrafoParams* trafo) {
  const Point_f32 exact = {nadir::widened(img->x), nadir::widened(img->y)};
  Point3_f32 result;
  ip_img2world_f32(&result, &exact, trafo, nadir::widened(planeHeight));
  *world = nadir::narrowed(result);
}

uint32_t ip_img2world_f32(Point3_f32* world, const Point_f32* img, const TrafoParams* trafo, float planeHeight) {
  const ExtCalib ext = nadir::externalOf(*trafo);
  const IntCalib calib = nadir::internalOf(*trafo);
  return ip_img2world(img, world, &ext, &calib, planeHeight);
}

uint32_t ip_calcMapRect_s32(Point3_s32* corners, int32_t mapSize, int32_t planeHeight, const TrafoParams* trafo) {
  const Point_s32 principal = {trafo->intParams.principalX, trafo->intParams.principalY};
  Point3_s32 centre;
  ip_img2groundplane_s32(&centre, &principal, planeHeight, trafo);
  const int32_t half = mapSize / 2;
  const int32_t left = (nadir::Wrap32(centre.x) - half).value(), right = (nadir::Wrap32(centre.x) + half).value();
  const int32_t low = (nadir::Wrap32(centre.y) - half).value(), high = (nadir::Wrap32(centre.y) + half).value();
  corners[0] = {left, low, centre.z};
  corners[1] = {left, high, centre.z};
  corners[2] = {right, high, centre.z};
  corners[3] = {right, low, centre.z};
  return 1;
}

int32_t ip_millimeter2CalibCoord_s32(int32_t millimeters) { return (nadir::Wrap32(millimeters) * 16).value(); }

int32_t ip_calibCoord2Millimeter_s32(int32_t calibCoord) { return calibCoord >> 4; }

int32_t ip_gridCoord2Coord_s32(int32_t grid, int32_t origin, uint32_t cellSize) {
  return static_cast<int32_t>((cellSize >> 1) + cellSize * static_cast<uint32_t>(grid) + static_cast<uint32_t>(origin));
}

int32_t ip_coord2GridCoord_s32(int32_t coord, int32_t origin, uint32_t cellSize) {
  const int32_t offset = (nadir::Wrap32(coord) - origin).value();
  if (cellSize == 0 || offset < 0) return 0;
  return static_cast<int32_t>(static_cast<uint32_t>(offset) / cellSize);
}
