// These are the exported questions about which way points turn and whether they are equal.
#include "geometry/orientation.hpp"

int32_t IP_Geom_Orientation(int32_t ax, int32_t ay, int32_t bx, int32_t by, int32_t cx, int32_t cy) {
  return nadir::orientation(Point_s32{ax, ay}, Point_s32{bx, by}, Point_s32{cx, cy});
}

int32_t IP_Geom_Orientation_f32(const Point_f32* a, const Point_f32* b, const Point_f32* c) {
  return nadir::orientation(*a, *b, *c);
}

int32_t IP_Geom_ArePointsEqual_f32(const Point_f32* p, const Point_f32* q) {
  return std::fabs(p->x - q->x) < GEOM_EPS && std::fabs(p->y - q->y) < GEOM_EPS;
}
