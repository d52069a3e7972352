/* The camera model: calibration records and the transforms between picture, camera, world, custom ground frame and
 * elevation map; the same in fixed point; the elevation map's mask of a polygon drawn in the picture.
 *
 * AXES (docs/axes.svg draws them). All lengths are millimetres, all frames are right-handed.
 *
 *   Image      x to the right, y DOWN, in pixels, not rounded. (0, 0) is the top left. A function that places a pixel
 *              (column, row) itself says whether it takes the pixel's corner (column, row) or its centre, half a pixel
 *              further on both axes; the principal point must be measured the same way.
 *   Camera     origin in the camera's centre; x and y along the image's x and y, z forward along the optical axis.
 *                image x = f * x / z + cx,  image y = f * y / z + cy
 *   World      world = R * (camera - T),  camera = transpose(R) * world + T
 *              With the calibration made from an Orientation T is 0: the origin is the CAMERA'S CENTRE, not the ground.
 *              World z points DOWN, from the camera straight to the ground, which is the plane z = mounting height.
 *              World x and y are parallel to the ground. With tilt and pan 0 the camera looks straight down and world
 *              and camera axes are the same: x points where the picture's right is, y where its LOWER edge is.
 *   Custom     a frame on the ground that two picture points define: z is the height above the ground, UP.
 *   Elevation  map cells u along world x, v along world y, not rounded. (0, 0) is the CORNER of the first cell, where
 *   map        world x and y are smallest; cell (i, j) covers i <= u < i + 1 and j <= v < j + 1, its centre is
 *              (i + 0.5, j + 0.5). Row 0 has the smallest world y. That corner is called the lower left because its
 *              coordinates are the lowest; shown as a picture, first row on top, it is at the TOP left.
 *
 * ANGLES, in degrees. Tilt turns the camera about world x. Pan turns it about the camera's own y axis, that is, the
 * picture's vertical. The optical axis is
 *
 *   world (-sin(pan), sin(tilt) * cos(pan), cos(tilt) * cos(pan))
 *
 *   tilt < 0   raises the view towards -y: the picture's upper edge looks farther away than its lower edge. This is the
 *              usual mounting; -90 looks level, with the picture upright.
 *   tilt > 0   raises the view towards +y: the picture's LOWER edge looks farther away; at +90 the picture is upside
 *              down.
 *   pan > 0    turns the view to the picture's left, towards -x; pan < 0 to its right.
 *
 * The float transforms take the point, then the result, then the external before the internal calibration. The
 * ip_stereo functions take the context first, the fixed-point functions that end in _s32 their output first.
 *
 * Floats are computed in single precision from left to right as written; only sine and cosine are taken in double and
 * then narrowed. Integers wrap in 32 bits. A float beyond the range of the integer that it is converted to becomes the
 * nearest one (2147483647 or -2147483648), not-a-number becomes 0.
 *
 * Pointers must be valid and are not checked unless a function says so. An output point may be the input point. */
#ifndef NADIR_CAMERA_H
#define NADIR_CAMERA_H

#include <nadir/api.h>
#include <nadir/geometry.h>
#include <nadir/image.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- calibration records --------------------------------------------------------------------------------------- */

typedef struct {
  float x, y, z; /* mm */
} Point3_f32;

/* The inner geometry of a stereo camera, as calibrations are stored. */
typedef struct {
  int32_t baseline;    /* distance of the two cameras, 1/256 mm */
  int32_t focalLength; /* 1/256 pixel */
  int32_t principalX;  /* where the optical axis meets the picture, 1/16 pixel from the left */
  int32_t principalY;  /* 1/16 pixel from the top */
} IntCalibParams;

/* The same as numbers to compute with. */
typedef struct {
  float baseline;    /* mm */
  float focalLength; /* f, pixels */
  float principalX;  /* cx, pixels */
  float principalY;  /* cy, pixels */
} IntCalib;

/* How the camera is mounted. */
typedef struct {
  float height; /* of the camera's centre above the ground, mm: the ground is the plane world z = height */
  float tilt;   /* about world x, degrees; negative raises the view towards world -y, the picture's upper side */
  float pan;    /* about the camera's y, degrees; positive turns the view to the picture's left */
} Orientation;

/* How one frame lies in another: world = R * (camera - T). */
typedef struct {
  float R[9]; /* rotation from camera to world, row after row: column 2 is the optical axis in world coordinates */
  float T[3]; /* the world's origin in camera coordinates, mm */
} ExtCalib;

/* A frame on the ground that two picture points define. The points are pixels, taken at their corner (x, y). */
typedef struct {
  uint32_t enabled;    /* 0: the custom frame is the world frame and the other fields are not looked at */
  uint16_t originX;    /* the picture point over the frame's reference point on the ground, pixels */
  uint16_t originY;    /* pixels */
  uint16_t directionX; /* the picture point over a ground point towards which the x axis points, pixels */
  uint16_t directionY; /* pixels */
  int32_t offsetX;     /* custom coordinates that the reference point gets, mm */
  int32_t offsetY;     /* mm */
} CustomFrameParams;

/* Converts the stored integers: each is converted to float, then baseline and focal length are multiplied by 1/256,
 * the principal point by 1/16. */
NADIR_API void ip_params2internalCalib(const IntCalibParams* params, IntCalib* calib);

/* Makes the rotation of a mounting. With t = -tilt, p = -pan in radians, R is the transpose of B * A:
 *
 *   A = | 1    0       0     |     B = | cos(p)  0  -sin(p) |
 *       | 0  cos(t)  sin(t)  |         |   0     1     0    |
 *       | 0  -sin(t) cos(t)  |         | sin(p)  0   cos(p) |
 *
 * orientation  its height is not used.
 * ext          receives R, and T = (0, 0, 0).
 *
 * An angle becomes radians in single precision, -(degrees * 3.1415927) / 180. Returns 1. */
NADIR_API uint32_t ip_orientation2externalCalib(const Orientation* orientation, ExtCalib* ext);

/* ---- between camera, world and custom frame -------------------------------------------------------------------- */

/* camera = transpose(R) * world + T. Returns 1. */
NADIR_API uint32_t ip_world2cam(const Point3_f32* world, Point3_f32* cam, const ExtCalib* ext);

/* world = R * (camera - T). Returns 1. */
NADIR_API uint32_t ip_cam2world(const Point3_f32* cam, Point3_f32* world, const ExtCalib* ext);

/* custom = R * (world - T) with the custom frame's calibration, which ip_params2extCalibCustom makes. Returns 1. */
NADIR_API uint32_t ip_world2custom(const Point3_f32* world, Point3_f32* custom, const ExtCalib* ext);

/* Makes the calibration of a ground frame. Its z points up from the ground (custom z = height - world z), x along the
 * ground towards the direction point, and y to the left of x as seen from above. The ground point under the origin
 * pixel gets the custom coordinates (offsetX, offsetY, 0).
 *
 * params, orientation  the camera.
 * frame                the frame; both its pixels must look at the ground.
 * ext                  receives the calibration for ip_world2custom; for a frame that is not enabled the identity
 *                      rotation and T = 0.
 *
 * Returns 1. Returns 0 with `ext` untouched if the frame is enabled and its two ground points are the same (squared
 * distance below 2^-23). */
NADIR_API uint32_t ip_params2extCalibCustom(const IntCalibParams* params, const Orientation* orientation,
                                            const CustomFrameParams* frame, ExtCalib* ext);

/* ---- between picture and space --------------------------------------------------------------------------------- */

/* Projects: image x = f * x / zc + cx, image y = f * y / zc + cy, where zc is z, but at least 50 mm.
 *
 * Returns 1 if z > 50. Returns 0 for a point nearer or behind the camera (or not-a-number); the image point is then
 * written all the same, computed with zc = 50. */
NADIR_API uint32_t ip_cam2img(const Point3_f32* cam, Point_f32* img, const IntCalib* calib);

/* The point on a pixel's viewing ray at depth z (mm): ((x - cx) / f * z, (y - cy) / f * z, z). Returns 1. */
NADIR_API uint32_t ip_img2cam(const Point_f32* img, Point3_f32* cam, const IntCalib* calib, float z);

/* The point where a pixel's viewing ray meets the plane world z = h.
 *
 * With (rx, ry, 1) = ((x - cx) / f, (y - cy) / f, 1) and l = h / (R[7] * ry + R[6] * rx + R[8]) it is the world point
 * of camera (rx * l, ry * l, l). h in mm; the mounting height gives the ground. A ray that runs parallel to the plane
 * gives infinities, one that leads away from it the point behind the camera; neither is detected. Returns 1. */
NADIR_API uint32_t ip_img2world(const Point_f32* img, Point3_f32* world, const ExtCalib* ext, const IntCalib* calib,
                                float h);

/* ip_world2cam, then ip_cam2img, whose result it returns. */
NADIR_API uint32_t ip_world2img(const Point3_f32* world, Point_f32* img, const ExtCalib* ext, const IntCalib* calib);

/* ip_img2cam at the depth z = f * baseline / disparity.
 *
 * disparity  pixels: a value of the matcher's disparity image divided by 16.
 *
 * Returns 1, or 0 with `cam` untouched for a disparity of 2^-23 or less: the matcher's "none" is 0. */
NADIR_API uint32_t ip_disp2cam(const Point_f32* img, Point3_f32* cam, const IntCalib* calib, float disparity);

/* ip_disp2cam, then ip_cam2world. Returns 1, or 0 with `world` untouched where ip_disp2cam fails. */
NADIR_API uint32_t ip_disp2world(const Point_f32* img, Point3_f32* world, const ExtCalib* ext, const IntCalib* calib,
                                 float disparity);

/* ---- elevation maps and the stereo context --------------------------------------------------------------------- */

/* The grid of an elevation map. */
typedef struct {
  uint16_t width;     /* cells along world x */
  uint16_t height;    /* cells along world y */
  uint16_t cellSizeX; /* mm */
  uint16_t cellSizeY; /* mm */
} ElevMapParams;

/* Everything about one stereo camera and its elevation map. ip_stereo_init fills it and nothing else changes it; it
 * owns no memory. */
typedef struct {
  IntCalib intCalib;
  ExtCalib extCalib;
  Point_f32 lowerLeft;      /* world x and y of the map's corner (0, 0), mm */
  IntCalibParams intParams; /* what it was made from: */
  Orientation orientation;
  ElevMapParams mapParams;
} StereoCtx;

/* Fills the context: copies the three records, makes both calibrations, and centres the map under the principal point
 * on the plane at the mounting height. Returns 1. */
NADIR_API uint32_t ip_stereo_init(StereoCtx* ctx, const IntCalibParams* params, const Orientation* orientation,
                                  const ElevMapParams* map);

/* Finds the corner (0, 0) of a map: the world x and y of the plane's point under the principal point, less half the
 * map.
 *
 * Half the map is (map width / 2, rounded down) * cellSizeX mm on BOTH axes, whatever the map's height and cellSizeY:
 * only a square map is centred along y.
 *
 * lowerLeft  receives world x and y, mm.
 * h          the plane, world z in mm. */
NADIR_API void ip_calcMapRectLowerLeft(const ExtCalib* ext, const IntCalib* calib, const ElevMapParams* map,
                                       Point_f32* lowerLeft, float h);

/* World to map cells: u = (x - lowerLeft x) / cellSizeX, v = (y - lowerLeft y) / cellSizeY. Points outside the map give
 * coordinates below 0 or beyond its size. Returns 1. */
NADIR_API uint32_t ip_world2elev(const Point_f32* world, Point_f32* map, const ElevMapParams* params,
                                 const Point_f32* lowerLeft);

/* Map cells to world: x = lowerLeft x + cellSizeX * u, y = lowerLeft y + cellSizeY * v. Returns 1. */
NADIR_API uint32_t ip_elev2world(const Point_f32* map, Point_f32* world, const ElevMapParams* params,
                                 const Point_f32* lowerLeft);

/* The transforms above with the context's calibrations and map; each returns what the one of its name returns. */
NADIR_API uint32_t ip_stereo_world2cam(const StereoCtx* ctx, const Point3_f32* world, Point3_f32* cam);
NADIR_API uint32_t ip_stereo_cam2world(const StereoCtx* ctx, const Point3_f32* cam, Point3_f32* world);
NADIR_API uint32_t ip_stereo_cam2img(const StereoCtx* ctx, const Point3_f32* cam, Point_f32* img);
NADIR_API uint32_t ip_stereo_world2img(const StereoCtx* ctx, const Point3_f32* world, Point_f32* img);
NADIR_API uint32_t ip_stereo_img2cam(const StereoCtx* ctx, const Point_f32* img, Point3_f32* cam, float z);
NADIR_API uint32_t ip_stereo_img2world(const StereoCtx* ctx, const Point_f32* img, Point3_f32* world, float h);
NADIR_API uint32_t ip_stereo_disp2world(const StereoCtx* ctx, const Point_f32* img, Point3_f32* world, float disparity);
NADIR_API uint32_t ip_stereo_world2elev(const StereoCtx* ctx, const Point3_f32* world, Point_f32* map);

/* ip_elev2world, with `z` (world z in mm, not a height above the ground) as the third coordinate. Returns 1. */
NADIR_API uint32_t ip_stereo_elev2world(const StereoCtx* ctx, const Point_f32* map, Point3_f32* world, float z);

/* The map cell under a pixel on the plane world z = h: ip_stereo_img2world, then ip_stereo_world2elev. Returns 1. */
NADIR_API uint32_t ip_stereo_img2elev(const StereoCtx* ctx, const Point_f32* img, Point_f32* map, float h);

/* The pixel over a map cell on the plane world z = z: ip_stereo_elev2world, then ip_stereo_world2img, whose result it
 * returns. */
NADIR_API uint32_t ip_stereo_elev2img(const StereoCtx* ctx, const Point_f32* map, Point_f32* img, float z);

/* ---- fixed point -------------------------------------------------------------------------------------------------
 *
 * Lengths and heights in 1/16 mm ("calibration coordinates"), picture positions in 1/16 pixel, rotation coefficients in
 * 1/4096. A transform widens its inputs to float (each integer converted, then multiplied by 1/16 or 1/4096), runs the
 * float transform and rounds each coordinate back to floor(16 * value + 0.5): halves go up. */

typedef struct {
  int32_t x, y, z; /* 1/16 mm */
} Point3_s32;

/* ExtCalib in fixed point. */
typedef struct {
  int32_t R[9]; /* 1/4096 */
  int32_t T[3]; /* 1/16 mm */
} ExtCalibFixed;

/* The whole calibration as one flat record. */
typedef struct {
  int32_t reserved; /* 0; read by nobody */
  IntCalibParams intParams;
  ExtCalibFixed ext;
} TrafoParams;

/* ip_orientation2externalCalib in fixed point; coefficients are rounded to nearest with halves AWAY FROM ZERO. Returns
 * 1. */
NADIR_API uint32_t ip_orientation2trafo(const Orientation* orientation, ExtCalibFixed* ext);

/* Makes the flat record: ip_orientation2trafo and a copy of `params`. Returns 1. */
NADIR_API uint32_t ip_createTrafoParams(const Orientation* orientation, const IntCalibParams* params,
                                        TrafoParams* trafo);

/* Widens the flat record to the float calibrations. Returns 1. */
NADIR_API uint32_t ip_trafoParams2calib(const TrafoParams* trafo, ExtCalib* ext, IntCalib* calib);

/* ip_world2cam in fixed point. */
NADIR_API void ip_world2cam_s32(Point3_s32* cam, const Point3_s32* world, const TrafoParams* trafo);

/* ip_world2img in fixed point. The status is dropped: for a point within 50 mm of the camera or behind it the output is
 * what ip_cam2img writes for it. */
NADIR_API void ip_world2img_s32(Point_s32* img, const Point3_s32* world, const TrafoParams* trafo);

/* ip_img2world in fixed point; the plane's height, world z, in 1/16 mm. */
NADIR_API void ip_img2groundplane_s32(Point3_s32* world, const Point_s32* img, int32_t planeHeight,
                                      const TrafoParams* trafo);

/* ip_img2world with the widened calibration; pixels and millimetres, nothing is rounded. Returns 1. */
NADIR_API uint32_t ip_img2world_f32(Point3_f32* world, const Point_f32* img, const TrafoParams* trafo,
                                    float planeHeight);

/* The corners of a square on the plane, centred under the principal point.
 *
 * corners      receives four points, in the order (-x, -y), (-x, +y), (+x, +y), (+x, -y) from the centre, each
 *              mapSize / 2 (rounded toward zero) away from it on both axes, all with the centre's z.
 * mapSize      side of the square, 1/16 mm.
 * planeHeight  world z of the plane, 1/16 mm.
 *
 * Returns 1. */
NADIR_API uint32_t ip_calcMapRect_s32(Point3_s32* corners, int32_t mapSize, int32_t planeHeight,
                                      const TrafoParams* trafo);

/* millimeters * 16. */
NADIR_API int32_t ip_millimeter2CalibCoord_s32(int32_t millimeters);

/* calibCoord / 16, rounded DOWN: -1 gives -1. */
NADIR_API int32_t ip_calibCoord2Millimeter_s32(int32_t calibCoord);

/* The centre of grid cell `grid`: cellSize / 2 (rounded down) + cellSize * grid + origin. Any one unit. */
NADIR_API int32_t ip_gridCoord2Coord_s32(int32_t grid, int32_t origin, uint32_t cellSize);

/* The grid cell that holds `coord`: (coord - origin) / cellSize, rounded down; 0 below the origin and for a cellSize of
 * 0. */
NADIR_API int32_t ip_coord2GridCoord_s32(int32_t coord, int32_t origin, uint32_t cellSize);

/* ---- elevation mask -------------------------------------------------------------------------------------------- */

/* Marks the cells of an elevation map whose centres lie inside a polygon that was drawn in the picture.
 *
 * The polygon is projected along the viewing rays onto one plane world z = h. h is the median of `values` at the
 * vertices (those inside the image, and only values that are not 0); if none of them has a value, the median of all
 * values that are not 0.
 *
 * polygon  vertices are pixels, projected through their CENTRES; at most 100 of them. One outside the image has no
 *          value but is projected all the same. It need not be simple (see IP_Polygon_IsInside).
 * ctx      made by ip_stereo_init; its map gives the cells.
 * values   an image of unsigned 16-bit values, world z in mm, 0 meaning none.
 * mask     an image of IMG_TYPE_U8 of the map's width and height: 1 where the centre lies inside or on the boundary of
 *          the projected polygon, 0 elsewhere. Row 0 has the smallest world y.
 *
 * Everything on the plane is rounded to whole millimetres: a projected vertex coordinate w to floor(w) + 0.5 truncated
 * toward zero (floor(w) if that is not negative, else floor(w) + 1); the first cell's centre is the map's corner
 * truncated toward zero plus cellSizeX / 2 and cellSizeY / 2, rounded down.
 *
 * When the whole image is sampled, samples are counted in 16 bits: after 65536 the counter starts again at 0 and later
 * values overwrite the first ones; the median is that of as many values as the counter says.
 *
 * Returns 1. Returns 0 with `mask` untouched for a null pointer, more than 100 vertices, values of less than two bytes,
 * a failed allocation (614400 bytes, released before the mask is filled), or if there is no value (or a multiple of
 * 65536 of them). A mask of another size or type is left untouched and STILL GIVES 1: compare them beforehand. */
NADIR_API int32_t IP_Utils_CreateElevMaskFromImgPoly(const Polygon_s32* polygon, const StereoCtx* ctx,
                                                     const ImgC* values, Img* mask);

#ifdef __cplusplus
}
#endif

#endif
