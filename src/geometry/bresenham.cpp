// This walks along a line over the pixels of a raster.
#include <nadir/geometry.h>

#include <cstdlib>

void IP_Utils_Bresenham(const Point_s32* from, const Point_s32* to, int32_t userData, BresenhamCallback callback) {
  // 64 bits: twice the error term of the longest line does not fit into 32.
  const int64_t dx = std::llabs(int64_t{to->x} - from->x), dy = std::llabs(int64_t{to->y} - from->y);
  const int32_t stepX = from->x < to->x ? 1 : -1, stepY = from->y < to->y ? 1 : -1;
  const Point_s32 last = *to;
  Point_s32 p = *from;
  int64_t error = dx - dy;
  for (;;) {
    callback(p.x, p.y, userData);
    if (p.x == last.x && p.y == last.y) return;
    const int64_t twice = 2 * error;
    if (twice > -dy) {
      error -= dy;
      p.x += stepX;
    }
    if (twice < dx) {
      error += dx;
      p.y += stepY;
    }
  }
}
