// This computes a point's barycentric coordinates in a triangle.
#include <nadir/geometry.h>

#include <algorithm>

#include "core/wrap.hpp"

int32_t IP_Geom_Barycentric(const Point_s32* triangle, const Point_s32* p, float* weights) {
  if (!triangle || !p || !weights) return -1;
  const Point_s32 a = triangle[0], b = triangle[1], c = triangle[2];
  const nadir::Wrap32 abx = nadir::Wrap32(b.x) - a.x, aby = nadir::Wrap32(b.y) - a.y;
  const nadir::Wrap32 acx = nadir::Wrap32(c.x) - a.x, acy = nadir::Wrap32(c.y) - a.y;
  const nadir::Wrap32 apx = nadir::Wrap32(p->x) - a.x, apy = nadir::Wrap32(p->y) - a.y;
  const int32_t area = (acy * abx - acx * aby).value();
  if (area == 0) return -1;
  const int32_t ofB = (apx * acy - apy * acx).value();
  const int32_t ofC = (apy * abx - apx * aby).value();
  const int32_t ofA = (nadir::Wrap32(area) - (nadir::Wrap32(ofB) + ofC)).value();
  const float scale = 1.0f / static_cast<float>(area);
  weights[0] = static_cast<float>(ofA) * scale;
  weights[1] = static_cast<float>(ofB) * scale;
  weights[2] = static_cast<float>(ofC) * scale;
  // Without overflow the lower bounds would do; the upper ones turn away what wrapped around.
  return ofA >= 0 && ofB >= 0 && ofC >= 0 && area >= ofA && area >= std::max(ofB, ofC);
}
