/* From the pictures that cameras take to a rectified pair: libnadirground's rectifiers.
 *
 * A rectifier holds, for every pixel of a rectified picture, where in the camera's picture it comes from. It is made
 * once for each camera; taking a picture then reads four pixels for each and takes no memory:
 *
 *   nadir_rectified_views(&left, &right, R, T, &left_view, &right_view, &baseline_mm, NULL);   unless a file has them
 *   nadir_rectifier_create(&left, &left_view, &rectifier, NULL);                               and likewise the right
 *   for each picture { nadir_rectifier_process(rectifier, 16, picture, stride, rectified, rectified_stride); }
 *
 * The rules of ground.h hold: status 0 is success; all checks come before the first write and a call that fails leaves
 * its outputs as they were; records begin with `size`; results are the same to the last bit on every processor in the
 * default floating-point environment. A rectifier does not change while it is used: any number of threads may process
 * with one at the same time.
 *
 * Picture coordinates count from the CENTRE of the top left pixel, (0, 0). A camera looks along its z; x points to the
 * picture's right and y to its lower edge.
 *
 * Where a rectified pixel (u, v) comes from: with the rectified view's focal length f and principal point (cx, cy) and
 * its rotation R, the ray (X, Y, Z) = R^-1 * ((u - cx) / f, (v - cy) / f, 1) is that of the lens's camera. A ray with
 * Z <= 0 comes from nowhere. With x = X / Z, y = Y / Z and r^2 = x^2 + y^2 the lens takes it to (xd, yd):
 *
 *   NADIR_LENS_NONE     xd = x
 *                       yd = y
 *   NADIR_LENS_BROWN    g  = (1 + k1 r^2 + k2 r^4 + k3 r^6) / (1 + k4 r^2 + k5 r^4 + k6 r^6)
 *                       xd = x g + 2 p1 x y + p2 (r^2 + 2 x^2) + s1 r^2 + s2 r^4
 *                       yd = y g + p1 (r^2 + 2 y^2) + 2 p2 x y + s3 r^2 + s4 r^4
 *   NADIR_LENS_FISHEYE  t  = atan(r)
 *                       xd = x (t + k1 t^3 + k2 t^5 + k3 t^7 + k4 t^9) / r
 *                       yd = y (t + k1 t^3 + k2 t^5 + k3 t^7 + k4 t^9) / r
 *
 * and the source is (focal_x_px xd + principal_x_px, focal_y_px yd + principal_y_px), rounded to 1/64 pixel, halves up.
 *
 * Sources: D. Brown, "Decentering distortion of lenses", Photogrammetric Engineering 32(3), 1966 (k1 to k3, p1, p2); D.
 * Claus, A. Fitzgibbon, "A rational function lens distortion model for general cameras", CVPR 2005 (the quotient); J.
 * Weng, P. Cohen, M. Herniou, "Camera calibration with distortion models and accuracy evaluation", PAMI 14(10), 1992
 * (s1 to s4); J. Kannala, S. Brandt, "A generic camera model and calibration method for conventional, wide-angle, and
 * fish-eye lenses", PAMI 28(8), 2006 (the fisheye).
 *
 * A polynomial that was fitted to what a picture shows turns back somewhere outside of it: farther from the axis points
 * come nearer to it again, and would be seen a second time where they do not belong. From the smallest r on at which
 * the distance from the axis (r g, or the fisheye's polynomial) does not grow any more, rays come from nowhere. That r
 * is searched for up to 4095, 89.986 degrees from the axis: from there on rays come from nowhere in any case, but for
 * those of NADIR_LENS_NONE.
 */
#ifndef NADIR_RECTIFY_H
#define NADIR_RECTIFY_H

#include <nadir/ground.h>

#ifdef __cplusplus
extern "C" {
#endif

#define NADIR_LENS_NONE 0    /* all coefficients are 0 */
#define NADIR_LENS_BROWN 1   /* k1 k2 p1 p2 k3 k4 k5 k6 s1 s2 s3 s4, in this order; what a calibration lacks is 0 */
#define NADIR_LENS_FISHEYE 2 /* k1 k2 k3 k4, the others are 0 */

/* A camera as it takes pictures. */
typedef struct NadirLens {
  uint32_t size;
  uint32_t width_px, height_px;          /* of its picture: each 5 to 65535, and at most 2^25 pixels in all */
  uint32_t model;                        /* NADIR_LENS_... */
  double focal_x_px, focal_y_px;         /* more than 0, at most 1e6 */
  double principal_x_px, principal_y_px; /* at most 1e6 in size, as the coefficients */
  double coefficients[12];
} NadirLens;

/* One of both rectified pictures: a camera without distortion at the place of the lens's. */
typedef struct NadirRectifiedView {
  uint32_t size;
  uint32_t width_px, height_px; /* each 5 to 65535, and at most 2^25 pixels in all */
  uint32_t reserved;            /* 0 */
  double rotation[9]; /* takes directions of the lens's camera to those of the rectified one, row by row: R1, R2 */
  double focal_px;    /* more than 0, at most 1e6 */
  double principal_x_px, principal_y_px; /* at most 1e6 in size */
} NadirRectifiedView;

/* Rotations are taken whose rows are perpendicular unit vectors to a thousandth and which do not mirror. */

typedef struct NadirRectifier NadirRectifier;

/* Finds the views of a rectified pair where a calibration has none.
 *
 * rotation, translation_mm  from the left camera to the right one: x_right = rotation * x_left + translation
 * baseline_mm               receives the translation's length, which is more than 0 and at most 1e6
 *
 * Each camera is turned by half of the rotation between them, and then both by the smallest rotation that lays the
 * baseline along the rows (J.-Y. Bouguet, "Camera calibration toolbox", 2004); square roots are all that it takes. Both
 * views have the size of the left picture, the smallest of the four focal lengths, and one principal point, so that
 * what is infinitely far has disparity 0. It is chosen so that the rays which both lenses would have through the
 * middles of their pictures without distortion lie around the middle of the views: their mean is there.
 *
 * NADIR_BAD_CAMERA where a number is out of range, where the right camera is not on the right (more than 60 degrees
 * from the picture's right after the first turn; the fault names `translation_mm`), or where the cameras look apart so
 * that a middle is not seen or the principal point would lie more than 1e6 pixels away (`rotation`). Of the right
 * lens's members the fault's `area` is 1, else 0. */
NADIR_API NadirStatus nadir_rectified_views(const NadirLens* left, const NadirLens* right, const double rotation[9],
                                            const double translation_mm[3], NadirRectifiedView* left_view,
                                            NadirRectifiedView* right_view, double* baseline_mm, NadirFault* fault);

/* The bytes of a rectifier: 6 for each pixel of the view and less than a thousand more. 0 where the view is null or a
 * number of it out of range; its rotation is not looked at. */
NADIR_API size_t nadir_rectifier_bytes(const NadirRectifiedView* view);

/* Makes a rectifier.
 *
 * rectifier  receives it, to be given back to nadir_rectifier_destroy
 * fault      null, or receives which number is out of range (NADIR_BAD_CAMERA) */
NADIR_API NadirStatus nadir_rectifier_create(const NadirLens* lens, const NadirRectifiedView* view,
                                             NadirRectifier** rectifier, NadirFault* fault);
NADIR_API void nadir_rectifier_destroy(NadirRectifier* rectifier); /* null is accepted */

/* Takes a picture of the lens to that of the view. Each pixel is the mean of the four around its source, weighted by
 * how near they are (bilinear), halves up. It becomes 0, no data, where one of those that have a weight is missing: it
 * lies outside of the picture or, with 16 bits, is 0. With 8 bits a 0 is black, as in NadirFrame; a pixel that would
 * become 0 of such black ones becomes 1.
 *
 * bits               of a pixel: 8, or 16 as this processor orders bytes
 * picture            of the lens's size
 * rectified          of the view's size; must not overlap the picture
 * stride,            bytes from row to row; 16-bit rows may begin at any address. What lies between rows is neither
 * rectified_stride   read nor written
 *
 * NADIR_BAD_FRAME where the bits or a stride are out of range. */
NADIR_API NadirStatus nadir_rectifier_process(const NadirRectifier* rectifier, uint32_t bits, const void* picture,
                                              size_t stride, void* rectified, size_t rectified_stride);

/* Says where a pixel of the view comes from, to 1/64 pixel. NADIR_NOTHING_FOUND where that is nowhere or outside of the
 * picture, and where there is no such pixel. */
NADIR_API NadirStatus nadir_rectifier_source(const NadirRectifier* rectifier, uint32_t column, uint32_t row,
                                             double* source_x_px, double* source_y_px);

#ifdef __cplusplus
}
#endif

#endif
