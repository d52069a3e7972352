// The ground as the points show it, to check the mount that the camera file claims.
#pragma once

#include <nadir/ground.h>

#include <optional>
#include <vector>

namespace nadir::tool {

// Height, tilt and pan are what the camera file would have to say for this plane to be the ground.
struct GroundPlane {
  double heightMm;
  double tiltDeg, panDeg;
  double axisBelowHorizonDeg;  // the same plane in other words: how far the optical axis points down, and how far the
  double rollDeg;              // picture's right side is turned down (means little for a camera that looks down itself)
  double rmsMm;                // of the inliers' distances to the plane
  double rmsPx;                // of the inliers' disparities to the plane's
  size_t inliers;              // points within `tolerancePx` of the plane
};

constexpr double planeTolerancePx = 0.5;

// Fits a plane to the points that lie on the largest one not unlike the expected ground (its direction within 10
// degrees and its distance within 25 percent of the mount's). Nothing where a tenth of the points do not agree on one.
std::optional<GroundPlane> fitGroundPlane(const std::vector<NadirPoint>& points, const StereoCtx& context);

}  // namespace nadir::tool
