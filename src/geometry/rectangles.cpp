// Rectangles are intersected, united and grown here.
#include <nadir/geometry.h>

#include <algorithm>

#include "core/wrap.hpp"

namespace nadir {
namespace {

template <class Rect>
bool isEmpty(const Rect& r) {
  return r.x0 == r.x1 || r.y0 == r.y1;
}

template <class Rect>
bool overlap(const Rect& a, const Rect& b) {
  return b.x0 < a.x1 && b.x1 > a.x0 && a.y0 < b.y1 && a.y1 > b.y0;
}

template <class Rect>
void setUnion(const Rect& a, const Rect& b, Rect& out) {
  if (isEmpty(a) && isEmpty(b)) return;
  if (isEmpty(a)) {
    out = b;
  } else if (isEmpty(b)) {
    out = a;
  } else {
    out = {std::min(a.x0, b.x0), std::min(a.y0, b.y0), std::max(a.x1, b.x1), std::max(a.y1, b.y1)};
  }
}

}  // namespace
}  // namespace nadir

int32_t IP_Geom_Intersects_s32(const Rect_s32* a, const Rect_s32* b) {
  return !nadir::isEmpty(*a) && !nadir::isEmpty(*b) && nadir::overlap(*a, *b);
}

int32_t IP_Geom_Intersects_u32(const Rect_u32* a, const Rect_u32* b) {
  return !nadir::isEmpty(*a) && !nadir::isEmpty(*b) && nadir::overlap(*a, *b);
}

void IP_Geom_SetUnion_s32(const Rect_s32* a, const Rect_s32* b, Rect_s32* out) { nadir::setUnion(*a, *b, *out); }

void IP_Geom_SetUnion_u32(const Rect_u32* a, const Rect_u32* b, Rect_u32* out) { nadir::setUnion(*a, *b, *out); }

void IP_Geom_SetIntersection_s32(const Rect_s32* a, const Rect_s32* b, Rect_s32* out) {
  *out = {0, 0, 0, 0};
  if (!nadir::overlap(*a, *b)) return;
  *out = {std::max(a->x0, b->x0), std::max(a->y0, b->y0), std::min(a->x1, b->x1), std::min(a->y1, b->y1)};
}

void IP_Geom_RectGrow_s32(Rect_s32* r, int32_t gx, int32_t gy) {
  *r = {(nadir::Wrap32(r->x0) - gx).value(), (nadir::Wrap32(r->y0) - gy).value(), (nadir::Wrap32(r->x1) + gx).value(),
        (nadir::Wrap32(r->y1) + gy).value()};
}
