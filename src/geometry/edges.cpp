// These are the exported questions about edges.
#include "geometry/edges.hpp"

int32_t IP_Geom_EdgesIntersect(const Edge_s32* e, const Edge_s32* f) { return nadir::edgesIntersect(*e, *f); }

int32_t IP_Geom_EdgesIntersect_f32(const Edge_f32* e, const Edge_f32* f) { return nadir::edgesIntersect(*e, *f); }

int32_t IP_Geom_IsPointOnEdge_f32(const Edge_f32* e, const Point_f32* p) {
  return nadir::orientation(nadir::startOf(*e), nadir::endOf(*e), *p) == 0;
}

int32_t IP_Geom_EdgePoint2_SquaredDistance_s32(const Edge_s32* e, const Point_s32* p) {
  const Line_s32 line = {e->x0, e->y0, (nadir::Wrap32(e->x1) - e->x0).value(), (nadir::Wrap32(e->y1) - e->y0).value()};
  return IP_Geom_LinePoint2_SquaredDistance_s32(&line, p);
}

float IP_Geom_EdgePoint2_SquaredDistance_f32(const Edge_f32* e, const Point_f32* p) {
  const Line_f32 line = {e->x0, e->y0, e->x1 - e->x0, e->y1 - e->y0};
  return IP_Geom_LinePoint2_SquaredDistance_f32(&line, p);
}
