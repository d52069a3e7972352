/* Plane geometry: points, edges, lines, triangles, rectangles, polygons, polylines and digital lines.
 *
 * Common to all of it:
 * - Coordinates are in any one unit. In a picture x points right and y down, and "left" and "right" in this file are
 *   meant on such a picture; nothing depends on it.
 * - Integer results are computed in 32 bits that wrap around, with no test for overflow. They are exact while the
 *   products of coordinate differences stay below 2^30: differences up to 32767 are always safe.
 * - Float results are computed in single precision, from left to right as written. Two float tests share the tolerance
 *   GEOM_EPS, in the coordinates' unit: equality of points, and deviation of a point from a line.
 * - Pointers must be valid and are not checked, unless a function says what null gives. Inputs may be the same record,
 *   and an output may be one of the inputs unless it says otherwise. Nothing is allocated. */
#ifndef NADIR_GEOMETRY_H
#define NADIR_GEOMETRY_H

#include <nadir/api.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Floats that are less than this apart count as equal, a point that lies less than this off a line counts as on it. */
#define GEOM_EPS 0.01f

typedef struct {
  int32_t x, y;
} Point_s32;

typedef struct {
  float x, y;
} Point_f32;

/* The segment between two points, start first. */
typedef struct {
  int32_t x0, y0, x1, y1;
} Edge_s32;

typedef struct {
  float x0, y0, x1, y1;
} Edge_f32;

/* The infinite line through (x, y) along (dx, dy), which need not have length 1. */
typedef struct {
  int32_t x, y, dx, dy;
} Line_s32;

typedef struct {
  float x, y, dx, dy;
} Line_f32;

/* An axis-parallel rectangle: the points with x0 <= x < x1 and y0 <= y < y1. It is EMPTY when x0 == x1 or y0 == y1, and
 * only then: one with x0 > x1 is taken as it stands. */
typedef struct {
  int32_t x0, y0, x1, y1;
} Rect_s32;

typedef struct {
  uint32_t x0, y0, x1, y1;
} Rect_u32;

/* ---- points, edges and lines ----------------------------------------------------------------------------------- */

/* Tells which way the path a, b, c turns: the sign of
 *
 *   (cx - bx) * (by - ay) - (cy - by) * (bx - ax)
 *
 * Returns +1, -1 or 0 for points on one line. (0,0), (1,0), (1,1) gives -1: with y downwards -1 is a turn to the right
 * (clockwise on the screen). Every orientation in this library has this sign. */
NADIR_API int32_t IP_Geom_Orientation(int32_t ax, int32_t ay, int32_t bx, int32_t by, int32_t cx, int32_t cy);

/* IP_Geom_Orientation of float points, where nearly collinear counts as collinear.
 *
 * With u = b - a, v = c - b and K = u.y * v.x - u.x * v.y the result is 0 if |K| < GEOM_EPS or if |K| / sqrt(max(|u|^2,
 * |v|^2)) < GEOM_EPS, that is, if a point lies less than GEOM_EPS off the longer leg's line; else the sign of K. The
 * root and the quotient are taken in double precision, the quotient is then narrowed. Not-a-number in gives -1. */
NADIR_API int32_t IP_Geom_Orientation_f32(const Point_f32* a, const Point_f32* b, const Point_f32* c);

/* Returns 1 if |p.x - q.x| < GEOM_EPS and |p.y - q.y| < GEOM_EPS, else 0. */
NADIR_API int32_t IP_Geom_ArePointsEqual_f32(const Point_f32* p, const Point_f32* q);

/* Tells whether two edges cross.
 *
 * Returns 1 if each edge's end points lie on different sides of the other edge, or if an end point of one edge is
 * collinear with the other and lies strictly inside its bounding box; else 0. So three kinds of contact do NOT count:
 * a shared end point (adjacent edges of a polygon do not intersect), an end point on the inside of a horizontal or
 * vertical edge (its box has no inside), and axis-parallel edges that overlap. */
NADIR_API int32_t IP_Geom_EdgesIntersect(const Edge_s32* e, const Edge_s32* f);

/* IP_Geom_EdgesIntersect with IP_Geom_Orientation_f32; "strictly inside" means at least GEOM_EPS off each side. */
NADIR_API int32_t IP_Geom_EdgesIntersect_f32(const Edge_f32* e, const Edge_f32* f);

/* Returns 1 if `p` lies on the INFINITE line through the edge, by IP_Geom_Orientation_f32 of start, end and `p`; else
 * 0. A point far beyond the edge's ends gives 1 too: edge (0,0)-(1,0) and point (5,0) give 1. */
NADIR_API int32_t IP_Geom_IsPointOnEdge_f32(const Edge_f32* e, const Point_f32* p);

/* Computes the squared distance of a point from a line: N * N / L with L = dx * dx + dy * dy and
 * N = dy * p.x - dx * p.y + y * dx - x * dy, rounded toward zero; 0 if L is 0.
 *
 * N * N wraps in 32 bits, so the result is a distance only while |N| is below 46341; beyond, it may be negative. */
NADIR_API int32_t IP_Geom_LinePoint2_SquaredDistance_s32(const Line_s32* l, const Point_s32* p);

/* The same for floats: with s = (x, y), t = s + (dx, dy) and d = t - s, computed back from t, it is N * N / L with
 * L = d.x * d.x + d.y * d.y and N = d.y * p.x - d.x * p.y + s.y * t.x - s.x * t.y; 0 unless L > 2^-23. */
NADIR_API float IP_Geom_LinePoint2_SquaredDistance_f32(const Line_f32* l, const Point_f32* p);

/* Computes the squared distance of a point from the INFINITE line through an edge, by the line's function above; the
 * edge's ends play no part. An edge without length gives 0. */
NADIR_API int32_t IP_Geom_EdgePoint2_SquaredDistance_s32(const Edge_s32* e, const Point_s32* p);
NADIR_API float IP_Geom_EdgePoint2_SquaredDistance_f32(const Edge_f32* e, const Point_f32* p);

/* Finds the grid point nearest to where two lines cross.
 *
 * To stay inside 32 bits the directions are first shortened, in copies: m = max(|dx|, |dy|) above 128 divides both
 * components by k = ceil(m / 128), rounded to nearest with halves away from zero. Then, with d1 and d2 for them,
 *
 *   det = d2.x * d1.y - d2.y * d1.x
 *   T = d2.y * (l1.x - l2.x) + d2.x * (l2.y - l1.y)
 *   out = (l1.x + T * d1.x / det, l1.y + T * d1.y / det)
 *
 * with quotients rounded to nearest, halves away from zero. A direction component of -2^31 is outside the domain.
 *
 * Returns 1, or 0 with `out` untouched if the shortened directions are parallel. */
NADIR_API int32_t IP_Geom_IntersectLines(const Line_s32* l1, const Line_s32* l2, Point_s32* out);

/* Finds where two lines cross: with det = l1.dy * l2.dx - l1.dx * l2.dy and
 * T = (l1.x - l2.x) * l2.dy + (l2.y - l1.y) * l2.dx it is (l1.dx * T / det + l1.x, l1.dy * T / det + l1.y).
 *
 * Returns 1, or 0 with `out` untouched if |det| < GEOM_EPS. The bound is absolute: short directions count as parallel.
 */
NADIR_API int32_t IP_Geom_IntersectLines_f32(const Line_f32* l1, const Line_f32* l2, Point_f32* out);

/* Computes the barycentric weights of a point: p = w[0] * a + w[1] * b + w[2] * c with weights that add up to 1.
 *
 * triangle  its three vertices a, b, c.
 * weights   receives the weights of a, b, c: integers, each converted to float and multiplied by the float 1 / D, where
 *           D = (c.y - a.y) * (b.x - a.x) - (c.x - a.x) * (b.y - a.y) is twice the triangle's signed area.
 *
 * Returns 1 if `p` is inside or on the border of a triangle with D > 0 (clockwise on the screen), else 0. For D < 0
 * the weights are right but the result is 0 for EVERY point: order the vertices accordingly. Returns -1 with nothing
 * written for a null pointer or D = 0. */
NADIR_API int32_t IP_Geom_Barycentric(const Point_s32* triangle, const Point_s32* p, float* weights);

/* ---- rectangles ------------------------------------------------------------------------------------------------ */

/* Returns 1 if neither rectangle is empty and they overlap, else 0. Touching along a side is no overlap. */
NADIR_API int32_t IP_Geom_Intersects_s32(const Rect_s32* a, const Rect_s32* b);
NADIR_API int32_t IP_Geom_Intersects_u32(const Rect_u32* a, const Rect_u32* b);

/* Computes the smallest rectangle that holds both. An empty one adds nothing; if both are empty, `out` is left as it
 * was. */
NADIR_API void IP_Geom_SetUnion_s32(const Rect_s32* a, const Rect_s32* b, Rect_s32* out);
NADIR_API void IP_Geom_SetUnion_u32(const Rect_u32* a, const Rect_u32* b, Rect_u32* out);

/* Computes the common part of two rectangles, {0, 0, 0, 0} where they do not overlap. `out` is cleared before the
 * inputs are read: written over one of them it is {0, 0, 0, 0}, whatever they were. */
NADIR_API void IP_Geom_SetIntersection_s32(const Rect_s32* a, const Rect_s32* b, Rect_s32* out);

/* Moves the left and right sides outwards by gx, the upper and lower ones by gy. Negative amounts shrink, even past
 * empty; nothing is clamped. */
NADIR_API void IP_Geom_RectGrow_s32(Rect_s32* r, int32_t gx, int32_t gy);

/* ---- polygons and polylines ------------------------------------------------------------------------------------ */

/* A polygon: a count and that many vertices right behind it. Whoever creates it decides how many fit; no function here
 * ever adds one. Edge k runs from vertex k to vertex (k + 1) % count, so the last edge closes the polygon. A POLYLINE
 * is the same record without the closing edge. */
__extension__ typedef struct {
  uint32_t count;
  Point_s32 vertices[];
} Polygon_s32;

__extension__ typedef struct {
  uint32_t count;
  Point_f32 vertices[];
} Polygon_f32;

/* Tells whether no two edges of a polygon intersect in the sense of IP_Geom_EdgesIntersect, whose exceptions hold here
 * too: polygons that touch themselves at a vertex or along an axis-parallel edge pass. The time grows with the square
 * of the count.
 *
 * Returns 1 if none do, or for fewer than four vertices; else 0. */
NADIR_API int32_t IP_Polygon_IsSimple(const Polygon_s32* poly);
NADIR_API int32_t IP_Polygon_IsSimple_f32(const Polygon_f32* poly);

/* Tells where a point lies: inside is what the polygon winds round, in either direction and however often.
 *
 * onBoundary  the result for a point on an edge or vertex, whatever it is.
 *
 * Returns onBoundary on the boundary, 1 inside, 0 outside; 0 for a polygon without vertices.
 *
 * Method: winding number by crossings of a ray (D. Sunday, "Inclusion of a point in a polygon", 2001), after the exact
 * test for each edge whether the point lies on it. */
NADIR_API int32_t IP_Polygon_IsInsideContour(const Polygon_s32* poly, const Point_s32* p, uint32_t onBoundary);

/* IP_Polygon_IsInsideContour with the boundary inside: returns 1 or 0. */
NADIR_API int32_t IP_Polygon_IsInside(const Polygon_s32* poly, const Point_s32* p);

/* IP_Polygon_IsInside with IP_Geom_Orientation_f32. A point is on an edge if it is collinear with it and less than
 * GEOM_EPS outside its bounding box. */
NADIR_API int32_t IP_Polygon_IsInside_f32(const Polygon_f32* poly, const Point_f32* p);

/* Removes the vertex of this index: the later ones move down by one, count goes down by one, and the slot that becomes
 * free keeps its bytes. An index that is no vertex changes nothing. */
NADIR_API void IP_Polygon_Erase(Polygon_s32* poly, uint32_t index);
NADIR_API void IP_Polygon_Erase_f32(Polygon_f32* poly, uint32_t index);

/* Removes vertices in the middle of a straight run. From i = 0 on: while vertices i, i + 1 and i + 2 (modulo count) are
 * collinear, vertex i + 1 is erased; then i goes up by one. Repeated vertices go, a polygon that lies on one line loses
 * all its vertices, and so does one with fewer than three.
 *
 * Integer vertices i, j, k are collinear if (k.x - i.x) * (j.y - i.y) == (k.y - i.y) * (j.x - i.x), float ones if
 * IP_Geom_Orientation_f32 gives 0. */
NADIR_API void IP_Polygon_RemoveCollinearPoints(Polygon_s32* poly);
NADIR_API void IP_Polygon_RemoveCollinearPoints_f32(Polygon_f32* poly);

/* Tells on which side of a polyline a point lies: the orientation of start, end and `p` for the segment whose INFINITE
 * line is nearest to `p` by IP_Geom_EdgePoint2_SquaredDistance, the first of equally near ones. A far segment whose
 * extension passes near `p` may be chosen.
 *
 * Returns +1, -1 or 0 as IP_Geom_Orientation does. Returns -2 for a null pointer, fewer than two vertices, or if no
 * distance is below the largest value of its type. */
NADIR_API int32_t IP_Polyline_Orientation(const Polygon_s32* line, const Point_s32* p);
NADIR_API int32_t IP_Polyline_Orientation_f32(const Polygon_f32* line, const Point_f32* p);

/* Computes the smallest squared distance of a point from a polygon's outline, inside or outside alike.
 *
 * Each edge's foot is where IP_Geom_IntersectLines_f32 crosses its line with the perpendicular through `p`; a foot
 * outside the edge's bounding box is replaced by the end point nearer to it, the edge's end if both are equally near.
 * On an edge too short to have a foot (squared length below GEOM_EPS) it is the end point nearer to `p`.
 *
 * Returns the squared distance; 3.4028235e38 for a polygon without vertices. */
NADIR_API float IP_Polygon_SquaredDist(const Polygon_f32* poly, const Point_f32* p);

/* ---- digital lines --------------------------------------------------------------------------------------------- */

/* Called for each point of a digital line. */
typedef void (*BresenhamCallback)(int32_t x, int32_t y, int32_t userData);

/* Visits every grid point of the digital line between two points, in order and both ends included, with a step in x, y
 * or both from each to the next. No clipping: any two points will do. The way back may choose other points where the
 * line passes half-way between two.
 *
 * userData  passed through to the callback.
 * callback  called max(|dx|, |dy|) + 1 times.
 *
 * Method: J. E. Bresenham, "Algorithm for computer control of a digital plotter", IBM Systems Journal 4(1), 1965, in
 * the form with one error term for all octants. */
NADIR_API void IP_Utils_Bresenham(const Point_s32* from, const Point_s32* to, int32_t userData,
                                  BresenhamCallback callback);

#ifdef __cplusplus
}
#endif

#endif
