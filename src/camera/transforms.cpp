// These are the transforms between world, camera and picture that all others are made of.
#include <nadir/camera.h>

#include "core/constants.hpp"
#include "core/matrix.hpp"

namespace nadir {
namespace {

constexpr float nearestDepth = 50.0f;           // mm; what lies nearer is projected from here, as camera.h says
constexpr float leastDisparity = floatEpsilon;  // pixels

// The point at depth 1 that the pixel looks at.
Point3_f32 rayOf(const Point_f32& img, const IntCalib& calib) {
  return {(img.x - calib.principalX) / calib.focalLength, (img.y - calib.principalY) / calib.focalLength, 1.0f};
}

Point3_f32 scaled(const Point3_f32& p, float factor) { return {p.x * factor, p.y * factor, p.z * factor}; }

}  // namespace
}  // namespace nadir

uint32_t ip_world2cam(const Point3_f32* world, Point3_f32* cam, const ExtCalib* ext) {
  const float* rotation = ext->R;
  const Point3_f32 w = *world;
  *cam = {nadir::dot(rotation, 3, w.x, w.y, w.z) + ext->T[0], nadir::dot(rotation + 1, 3, w.x, w.y, w.z) + ext->T[1],
          nadir::dot(rotation + 2, 3, w.x, w.y, w.z) + ext->T[2]};
  return 1;
}

uint32_t ip_cam2world(const Point3_f32* cam, Point3_f32* world, const ExtCalib* ext) {
  const float* rotation = ext->R;
  const float x = cam->x - ext->T[0], y = cam->y - ext->T[1], z = cam->z - ext->T[2];
  *world = {nadir::dot(rotation, 1, x, y, z), nadir::dot(rotation + 3, 1, x, y, z),
            nadir::dot(rotation + 6, 1, x, y, z)};
  return 1;
}

uint32_t ip_world2custom(const Point3_f32* world, Point3_f32* custom, const ExtCalib* ext) {
  return ip_cam2world(world, custom, ext);
}

uint32_t ip_cam2img(const Point3_f32* cam, Point_f32* img, const IntCalib* calib) {
  const bool inFront = cam->z > nadir::nearestDepth;
  const float depth = inFront ? cam->z : nadir::nearestDepth, f = calib->focalLength;
  *img = {f * cam->x / depth + calib->principalX, f * cam->y / depth + calib->principalY};
  return inFront;
}

uint32_t ip_img2cam(const Point_f32* img, Point3_f32* cam, const IntCalib* calib, float z) {
  *cam = nadir::scaled(nadir::rayOf(*img, *calib), z);
  return 1;
}

uint32_t ip_img2world(const Point_f32* img, Point3_f32* world, const ExtCalib* ext, const IntCalib* calib, float h) {
  const Point3_f32 ray = nadir::rayOf(*img, *calib);
  const Point3_f32 cam = nadir::scaled(ray, h / nadir::dot(ext->R + 6, 1, ray.x, ray.y, ray.z));
  return ip_cam2world(&cam, world, ext);
}

uint32_t ip_world2img(const Point3_f32* world, Point_f32* img, const ExtCalib* ext, const IntCalib* calib) {
  Point3_f32 cam;
  ip_world2cam(world, &cam, ext);
  return ip_cam2img(&cam, img, calib);
}

uint32_t ip_disp2cam(const Point_f32* img, Point3_f32* cam, const IntCalib* calib, float disparity) {
  if (disparity <= nadir::leastDisparity) return 0;
  return ip_img2cam(img, cam, calib, calib->focalLength * calib->baseline / disparity);
}

uint32_t ip_disp2world(const Point_f32* img, Point3_f32* world, const ExtCalib* ext, const IntCalib* calib,
                       float disparity) {
  Point3_f32 cam;
  if (!ip_disp2cam(img, &cam, calib, disparity)) return 0;
  return ip_cam2world(&cam, world, ext);
}
