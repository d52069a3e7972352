/* A mount found from pictures of open floor: libnadirground's levels.
 *
 *   nadir_road_create(&camera, &settings, NULL, 0, &road, NULL);    until the map or more, NADIR_GRID_LEFT
 *   nadir_level_create(road, &level);
 *   for each pair { nadir_road_process(road, &frame, result); nadir_level_add(level, &frame, result); }
 *   nadir_level_read(level, &levelled);
 *
 * The road's camera gives the optics; its mount is not used, so any numbers will do that a camera may have. The rules
 * of ground.h hold. A level serves one thread at a time.
 *
 * A floor is the plane that most of the picture lies on, with hardly anything below it. Its disparities are a linear
 * function of column x and row y, d = a x + b y + c. The matcher's disparities find it; then both pictures are laid
 * over each other under the plane, and a, b and c are moved until the intensities L(x, y) and R(x - d, y) of all pixels
 * on the floor fit best (Gauss-Newton; B. Lucas, T. Kanade, "An iterative image registration technique", IJCAI 1981):
 * what a matcher rounds, as looking straight down, where all of a floor has one disparity, does not matter then. Both
 * pictures are smoothed before (1 4 6 4 1 in rows and columns) and the right one is read between its pixels by cubics
 * (R. Keys, "Cubic convolution interpolation for digital image processing", IEEE ASSP 29(6), 1981); gradients are those
 * of the left one alone, whose noise then has no part in what is found. One gain and one offset between the pictures
 * are taken out, and pixels count less the worse they fit.
 */
#ifndef NADIR_LEVEL_H
#define NADIR_LEVEL_H

#include <nadir/ground.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct NadirLevel NadirLevel;

/* A mount in the words of NadirCamera (height, tilt, pan), and its direction in others.
 *
 * A plane gives height, tilt and pan: they are what the camera would have to say for it to be the ground. What a plane
 * does not tell is which way the camera looks over it, since a floor looks the same all around; a NadirCamera's world
 * turns with the camera. Nor can a NadirCamera say that the picture is turned about its optical axis (roll): a floor
 * that lies askew in a picture which looks ahead is told as pan. pan_deg is not-a-number where the camera looks along
 * the floor (tilt beyond 89 degrees), roll_deg where it looks straight down (within a degree).
 *
 * A deviation is stated so that an error exceeds it in one of ten cases: it is 1.645 standard deviations. These come
 * from how far the plane moves when one part of the picture after the other is left out (the jackknife), and from 0.003
 * pixel that all parts may have in common. So they know of noise and of texture, but not of optics that are wrong: a
 * focal length that is wrong by a percent makes a height wrong by a percent. */
typedef struct NadirLevelled {
  uint32_t size;
  uint32_t pairs; /* that it was found from */
  double height_mm, tilt_deg, pan_deg;
  double height_deviation_mm, tilt_deviation_deg, pan_deviation_deg;
  double axis_below_horizon_deg; /* how far the optical axis points down, and */
  double roll_deg;               /* how far the picture's right side is turned down */
  double axis_deviation_deg, roll_deviation_deg;
  double floor_share; /* of the last pair's pixels with a disparity, those on its floor; 0 without */
  double plane[3];    /* of all pairs: a, b and c of the disparities as they are matched, pixels */
} NadirLevelled;

/* The bytes of a level; 0 for a road that nadir_level_create refuses. */
NADIR_API size_t nadir_level_bytes(const NadirRoad* road);

/* Makes a level for results of a road and of roads with the same camera. It may outlive them.
 *
 * level  receives it, to be given back to nadir_level_destroy
 *
 * NADIR_BAD_SETTING where the road ends before the map or measures the right view. */
NADIR_API NadirStatus nadir_level_create(const NadirRoad* road, NadirLevel** level);
NADIR_API void nadir_level_destroy(NadirLevel* level); /* null is accepted */

/* Takes a pair of open floor.
 *
 * frame   the one that was processed into `result`; its pictures are read, and its disparities where it has some
 * result  of a road with the camera's size and settings
 *
 * NADIR_NOTHING_FOUND where there is no floor: less than two fifths of what has a disparity lies on one plane, or what
 * does (18 in a hundred at least) scatters about it as what only crosses it; something lies below it; or the parts of
 * the picture do not agree on it to a hundredth of its height and half a degree. The level is then as it was before,
 * but for nadir_level_taken and floor_share. It stays as it was altogether where no frame was processed into the
 * result, or one whose disparities were given and `frame` has none: NADIR_NOTHING_FOUND, too. NADIR_FOREIGN_RESULT for
 * results of another size or with other settings, NADIR_BAD_FRAME where a picture is missing or where the bits or a
 * stride are out of range. */
NADIR_API NadirStatus nadir_level_add(NadirLevel* level, const NadirFrame* frame, const NadirResult* result);

/* Says what all pairs so far tell, the more certain ones more. Where they differ by more than their deviations, the
 * deviations grow. NADIR_NOTHING_FOUND before the first. */
NADIR_API NadirStatus nadir_level_read(const NadirLevel* level, NadirLevelled* levelled);

#define NADIR_LEVEL_UNKNOWN 0  /* no disparity */
#define NADIR_LEVEL_LEFT_OUT 1 /* off the floor */
#define NADIR_LEVEL_TAKEN 2

/* Shows which pixels of the last pair were taken for the floor: uint8_t, NADIR_LEVEL_... The plane holds until the next
 * pair. NADIR_NOTHING_FOUND before the first. */
NADIR_API NadirStatus nadir_level_taken(const NadirLevel* level, NadirPlane* taken);

#ifdef __cplusplus
}
#endif

#endif
