// The ground as the points show it near the camera file's plane.
#pragma once

#include <nadir/camera.h>

#include <cstddef>
#include <cstdint>

namespace nadir::ground {

// Height, tilt and pan are what the camera file would have to say for this plane to be the ground.
struct NearPlane {
  double heightMm;
  double tiltDeg, panDeg;
  double axisBelowHorizonDeg;  // the same plane in other words: how far the optical axis points down, and how far the
  double rollDeg;              // picture's right side is turned down (means little for a camera that looks down itself)
  double rmsMm;                // of the inliers' distances to the plane
  double rmsPx;                // of the inliers' disparities to the plane's
  size_t inliers;              // points within half a pixel of the plane
  size_t points;               // in all
};

// A picture of disparities, row y begins y * stride bytes behind the first.
struct DisparityPicture {
  const void* data;
  size_t stride;
  bool given;  // floats in pixels, not-a-number for none; else 1/16 pixel in 16 bits, 0 for none
  uint32_t width, height;
  float columnShift;
};

// A point of the picture: where its ray goes, and its inverse depth.
struct RayPoint {
  double u, v, w;
};

constexpr size_t nearPlaneJudges = 4000;

// Fits a plane to the points that lie on the largest one not unlike the expected ground (its direction within 10
// degrees and its distance within 25 percent of the mount's). False where a tenth of the points do not agree on one.
//
// memory  room for nearPlaneJudges points
bool nearPlane(const DisparityPicture& picture, const StereoCtx& context, RayPoint* memory, NearPlane& plane);

}  // namespace nadir::ground
