// What a result says about its own worth: the records as they will stand in the public header.
#pragma once

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* What a number is worth that nothing could be measured for: not-a-number. Shares go from 0 to 1. */
typedef struct NadirTrust {
  uint32_t size;
  uint32_t searched;                  /* 1: the ground was looked for at every tilt, and found_... say what was found */
  double dark_left, dark_right;       /* pixels darker than an eighth of the matcher's 12 bits, no data included */
  double clipped_left, clipped_right; /* pixels at the end of the sensor's range */
  double matched;                     /* of the pixels that can have a disparity, those that the matcher gave one */
  double value;                       /* the same after the clean-up */
  double range_end;    /* of all pixels, those within 3.5 pixels of the largest disparity that is found */
  double cut_off;      /* of all pixels, those of them beside a pixel without one */
  double on_ground;    /* of the blocks with a disparity, those on the ground where the camera file has it */
  double below_ground; /* and those below it by more than twice their uncertainty */
  double height_off_mm, tilt_off_deg, pan_off_deg; /* what to add to the camera file's mount, as this frame shows it */
  double height_deviation_mm, tilt_deviation_deg, pan_deviation_deg; /* their standard deviations */
  double found_height_mm, found_tilt_deg, found_pan_deg,
      found_share;                      /* the plane with most blocks on it, at any tilt */
  double map_seen;                      /* of the map's cells, those whose ground lies within the picture */
  double least_top_mm, greatest_top_mm; /* greatest height that can be measured above them: the least, the most */
} NadirTrust;

#define NADIR_WARNING_TOO_DARK 1
#define NADIR_WARNING_OVEREXPOSED 2
#define NADIR_WARNING_SAME_PICTURE 3
#define NADIR_WARNING_SWAPPED 4
#define NADIR_WARNING_TOO_NEAR 5
#define NADIR_WARNING_LOW_DENSITY 6
#define NADIR_WARNING_GROUND_ELSEWHERE 7
#define NADIR_WARNING_BELOW_GROUND 8
#define NADIR_WARNING_MAP_ELSEWHERE 9

#define NADIR_WARNINGS 9 /* a result has at most one of each */

/* Why a result may not be relied on. The number stays with its meaning for good. */
typedef struct NadirWarning {
  uint32_t size;
  uint32_t id;       /* NADIR_WARNING_... */
  uint32_t count;    /* of the numbers */
  uint32_t reserved; /* 0 */
  double numbers[4];
} NadirWarning;

#ifdef __cplusplus
}
#endif
