// The point test looks at every edge for every cell. Here each edge is looked at once for every row.
//
// Let y be a row and ab an edge that is not horizontal and has y between a.y and b.y, both included. The orientation of
// a, b and (x, y) grows or falls with x and is 0 where the edge's line passes the row: at the root. The point test
// - counts the edge, by +1 upwards and -1 downwards, for exactly the points to the left of its root, provided that y is
//   not the larger of a.y and b.y; and
// - finds exactly the point at the root on the boundary.
// So the winding number along a row changes only at roots: sorted, they cut it into spans. A horizontal edge counts
// nothing; the points of its own row between its ends are on the boundary. All other edges are not met by the row.
//
// This holds for exact arithmetic, the point test's wraps around at 32 bits. Its orientation
//
//   (p.x - b.x) * (b.y - a.y) - (p.y - b.y) * (b.x - a.x)
//
// comes out exact, whatever wrapped around on the way, if its true value lies within 31 bits. It does where
// X * Yp + Y * Xp < 2^31 with X and Y the extents of vertices and cell centres together, Xp and Yp those of the
// polygon. Larger grids take the point test for every cell.
#include "geometry/polygon_cells.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "core/wrap.hpp"
#include "geometry/polygon.hpp"

namespace nadir {
namespace {

struct Extent {
  int64_t min, max;

  void include(int64_t v) {
    min = std::min(min, v);
    max = std::max(max, v);
  }
  void include(const Extent& other) {
    include(other.min);
    include(other.max);
  }
  uint64_t length() const { return static_cast<uint64_t>(max - min); }
};

// The coordinates of `count` cells, without wrapping around.
Extent centresOf(int32_t first, int32_t step, uint32_t count) {
  return {first, first + int64_t{step} * (int64_t{count} - 1)};
}

bool isExact(const Polygon_s32& poly, const CellGrid& grid) {
  const Point_s32& first = poly.vertices[0];
  Extent polyX = {first.x, first.x}, polyY = {first.y, first.y};
  Extent x = centresOf(grid.x0, grid.stepX, grid.width), y = centresOf(grid.y0, grid.stepY, grid.height);
  if (x.max > INT32_MAX || y.max > INT32_MAX) return false;
  for (uint32_t k = 0; k < poly.count; ++k) {
    polyX.include(poly.vertices[k].x);
    polyY.include(poly.vertices[k].y);
  }
  x.include(polyX);
  y.include(polyY);
  const uint64_t left = x.length() * polyY.length(), right = y.length() * polyX.length();
  return left <= INT32_MAX && right <= INT32_MAX - left;
}

void testEveryCell(const Polygon_s32& poly, const CellGrid& grid, uint8_t* cells) {
  Wrap32 y = grid.y0;
  for (uint32_t r = 0; r < grid.height; ++r, y = y + grid.stepY) {
    Wrap32 x = grid.x0;
    for (uint32_t c = 0; c < grid.width; ++c, x = x + grid.stepX) {
      const Point_s32 centre = {x.value(), y.value()};
      *cells++ = static_cast<uint8_t>(IP_Polygon_IsInside(&poly, &centre));
    }
  }
}

// n / q rounded up, q > 0.
int64_t dividedUp(int64_t n, int64_t q) { return n / q + (n % q > 0); }
int64_t dividedDown(int64_t n, int64_t q) { return -dividedUp(-n, q); }

// A span is the cells begin <= c < end of a row.
struct Span {
  int64_t begin, end;
};

// The cells whose centres lie at x with lo <= x * scale <= hi, x counted from the first centre.
Span cellsBetween(int64_t lo, int64_t hi, int64_t scale, int32_t stepX) {
  return {dividedUp(lo, scale * stepX), dividedDown(hi, scale * stepX) + 1};
}

// The cells at the root of the edge ab in row y, one or none; `begin` is in any case the number of cells to its left.
Span cellsAtRoot(const Point_s32& a, const Point_s32& b, int64_t y, const CellGrid& grid) {
  const int64_t dx = int64_t{b.x} - a.x, dy = int64_t{b.y} - a.y;
  const int64_t root = (y - b.y) * dx + (int64_t{b.x} - grid.x0) * dy;  // times dy, from the first centre
  return dy > 0 ? cellsBetween(root, root, dy, grid.stepX) : cellsBetween(-root, -root, -dy, grid.stepX);
}

// An edge counts for the cells to its left.
struct Crossing {
  int64_t cellsLeft;
  int32_t winding;
};

class Row {
 public:
  Row(const CellGrid& grid, uint32_t r, uint8_t* cells)
      : grid_(grid), y_(grid.y0 + int64_t{r} * grid.stepY), cells_(cells) {}

  void mark(const Polygon_s32& poly) {
    std::memset(cells_, 0, grid_.width);
    for (uint32_t k = 0; k < poly.count; ++k) count(poly.vertices[k], poly.vertices[nextVertex(k, poly.count)]);
    fillWound();
    for (uint32_t k = 0; k < poly.count; ++k) fillBoundary(poly.vertices[k], poly.vertices[nextVertex(k, poly.count)]);
  }

 private:
  void count(const Point_s32& a, const Point_s32& b) {
    if ((a.y <= y_) == (b.y <= y_)) return;
    insert({cellsAtRoot(a, b, y_, grid_).begin, a.y <= y_ ? 1 : -1});
  }

  // Keeps the crossings sorted from right to left.
  void insert(const Crossing& crossing) {
    size_t i = crossings_++;
    for (; i > 0 && sorted_[i - 1].cellsLeft < crossing.cellsLeft; --i) sorted_[i] = sorted_[i - 1];
    sorted_[i] = crossing;
  }

  void fillWound() {
    int32_t winding = 0;
    for (size_t i = 0; i < crossings_; ++i) {
      winding += sorted_[i].winding;
      const int64_t next = i + 1 < crossings_ ? sorted_[i + 1].cellsLeft : 0;
      if (winding != 0) fill({next, sorted_[i].cellsLeft});
    }
  }

  void fillBoundary(const Point_s32& a, const Point_s32& b) {
    if (y_ < std::min(a.y, b.y) || y_ > std::max(a.y, b.y)) return;
    if (a.y != b.y) {
      fill(cellsAtRoot(a, b, y_, grid_));
    } else {
      const int64_t first = grid_.x0;
      fill(cellsBetween(std::min(a.x, b.x) - first, std::max(a.x, b.x) - first, 1, grid_.stepX));
    }
  }

  void fill(const Span& span) {
    const int64_t begin = std::max<int64_t>(span.begin, 0), end = std::min<int64_t>(span.end, grid_.width);
    if (begin < end) std::memset(cells_ + begin, 1, static_cast<size_t>(end - begin));
  }

  const CellGrid& grid_;
  const int64_t y_;
  uint8_t* const cells_;
  Crossing sorted_[mostCellPolygonVertices];
  size_t crossings_ = 0;
};

}  // namespace

void markCellsInside(const Polygon_s32& poly, const CellGrid& grid, uint8_t* cells) {
  if (grid.width == 0 || grid.height == 0) return;
  if (poly.count == 0 || grid.stepX == 0 || !isExact(poly, grid)) return testEveryCell(poly, grid, cells);
  for (uint32_t r = 0; r < grid.height; ++r) Row(grid, r, cells + size_t{r} * grid.width).mark(poly);
}

}  // namespace nadir
