// How a lens takes the rays in front of it to its picture; the formulas stand in include/nadir/rectify.h.
#pragma once

#include <nadir/rectify.h>

namespace nadir::ground {

// A place on a picture, in pixels, or where a ray meets the plane at distance 1.
struct PlanePoint {
  double x, y;
};

class LensModel {
 public:
  // Of a lens that was found good. It takes some thousand steps, since it looks for where the lens turns back.
  explicit LensModel(const NadirLens& lens);

  // False where the ray (x, y, 1) comes from nowhere.
  bool shows(const PlanePoint& ray) const { return ray.x * ray.x + ray.y * ray.y < largestSquared_; }

  PlanePoint source(const PlanePoint& ray) const;

 private:
  PlanePoint bent(const PlanePoint& ray) const;

  NadirLens lens_;
  double largestSquared_;  // of a ray's distance from the axis: from here on the lens turns back
};

}  // namespace nadir::ground
