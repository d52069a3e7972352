/* What is wrong with a pair of pictures, if anything: a part of libnadirground.
 *
 * A pair that is not rectified, is blurred, dark or exchanged gives disparities too, wrong ones. This looks at the
 * pictures alone, without a calibration, and names the first thing to be put right, with the numbers that say so:
 *
 *   nadir_checker_create(width_px, height_px, &checker, NULL);
 *   NadirPair pair = {sizeof pair, 16, 61, 0, left, right};
 *   nadir_checker_process(checker, &pair, &checkup);
 *   puts(nadir_verdict_name(checkup.verdict));
 *
 * Method. Light, noise, texture and blur are told from either picture's intensities and their differences. Rows are
 * told by the matcher: where both pictures show the same rows nearly all of them can be matched, and ever less the
 * further they are off. The pictures, halved to at most 512 columns, are matched with one of them moved by 16 rows up
 * to 16 rows down, and the densities in 6 x 4 parts of the picture vote for a shift, a turn and a scale. One picture is
 * then drawn with its rows moved accordingly and matched again; in blocks of 8 x 8 pixels the costs of the rows above
 * and below say by what fraction of a row the vote was off; a surface of second degree through these is the answer, and
 * this is done three times. On five real pairs it was within 0.06 rows, 0.05 degrees and 0.1 percent of what they had
 * been spoilt by.
 *
 * Rules are those of ground.h: status 0 is success; a checker is one block of memory from one call of malloc and serves
 * one thread at a time; processing takes no memory; results are the same to the last bit on every processor in the
 * default floating-point environment; a call that fails leaves its outputs as they were. */
#ifndef NADIR_CHECK_H
#define NADIR_CHECK_H

#include <nadir/ground.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The first of these that holds, in this order, is a pair's verdict. */
#define NADIR_VERDICT_GOOD 0
#define NADIR_VERDICT_SIZE 1        /* a picture is not of the checker's size */
#define NADIR_VERDICT_SAME 2        /* the same picture twice */
#define NADIR_VERDICT_EXPOSURE 3    /* too dark, overexposed, or one picture nearly twice as bright as the other */
#define NADIR_VERDICT_TEXTURELESS 4 /* there is nothing to match */
#define NADIR_VERDICT_BLURRED 5     /* out of focus: Gaussians of a standard deviation of 2.5 pixels are named */
#define NADIR_VERDICT_SWAPPED 6     /* left and right are exchanged */
#define NADIR_VERDICT_OFFSET 7      /* one picture lies higher, by 0.6 rows at least, and that is all */
#define NADIR_VERDICT_TURNED 8      /* one picture is turned, by 0.3 degrees at least, and that is all */
#define NADIR_VERDICT_UNRECTIFIED 9 /* rows differ by more than a shift and a turn, or do not fit at all */
#define NADIR_VERDICT_RANGE 10      /* disparities lie beyond the range, or below 0 */
#define NADIR_VERDICTS 11           /* they go from 0 to below this */

/* A verdict's fixed name in lower case, "swapped"; null for a number that is none. Static storage. */
NADIR_API const char* nadir_verdict_name(uint32_t verdict);

/* What to do about it, a sentence; null likewise. It may be put in other words by a later version. */
NADIR_API const char* nadir_verdict_advice(uint32_t verdict);

/* The pictures to look at. */
typedef struct NadirPair {
  uint32_t size;
  uint32_t bits;     /* of a pixel: 16 or 8, as in NadirFrame */
  uint32_t range;    /* NADIR_RANGE_...: what is nearer is beyond the range */
  uint32_t reserved; /* 0 */
  NadirPlane left, right;
} NadirPair;

/* Where rows differ by how much. It has no size: it will not grow. */
typedef struct NadirRowOffset {
  float column, row;  /* of the right picture, the middle of a block, pixels */
  float rows;         /* so many rows further down the left picture shows the same */
  float disparity_px; /* of the left picture's column to the right one's */
} NadirRowOffset;

/* What was found. Shares go from 0 to 1, intensities are those of 16 bits (8 bits count 16 times), and not-a-number
 * stands for what could not be measured. What is measured in blocks leaves out blocks of which too little is matched.
 */
typedef struct NadirCheckup {
  uint32_t size;
  uint32_t verdict;              /* NADIR_VERDICT_... */
  uint32_t halvings;             /* how often the pictures were halved to be matched */
  uint32_t range;                /* the least of NADIR_RANGE_... that holds 98 percent of the blocks; 0: none does */
  const NadirRowOffset* offsets; /* of the blocks; as long as the checker does, until it looks at the next pair */
  size_t offset_count;
  double mean_left, mean_right;       /* intensity */
  double dark_left, dark_right;       /* pixels darker than an eighth of 12 bits, no data included */
  double clipped_left, clipped_right; /* pixels at the end of a sensor's range of 8, 10, 12, 14 or 16 bits */
  double gain;                        /* how many times as bright as the left picture the right one is */
  double noise_left, noise_right;     /* standard deviation in the smoothest tenth of the picture, intensity */
  double texture_left, texture_right; /* standard deviation in the median square of 16 x 16 pixels, without the noise */
  double blur_left_px, blur_right_px; /* standard deviation of the Gaussian that edges look blurred by; sharp pictures
                                         have 0.4 to 0.8 */
  double matched;                     /* of all pixels, those that can be matched as the pictures are */
  double matched_aligned;             /* and after their rows were moved to where they belong */
  double unmoved;                     /* of the blocks, those in the same place of both pictures */
  double row_offset_px;               /* NadirRowOffset.rows of the whole picture, mean */
  double row_offset_left_px, row_offset_middle_px, row_offset_right_px; /* of its thirds from left to right */
  double row_offset_top_px, row_offset_centre_px, row_offset_bottom_px; /* and from top to bottom */
  double turn_deg;      /* of the left picture against the right one, clockwise as it is seen */
  double scale_percent; /* by how much the left picture is higher than the right one */
  double bend_px;       /* what shift, turn and scale leave over, root mean square, rows */
  double least_disparity_px, largest_disparity_px; /* 2 and 98 percent of the blocks lie below */
  double nearer, behind;                           /* of the blocks, those beyond the pair's range, and those below 0 */
} NadirCheckup;

typedef struct NadirChecker NadirChecker;

/* The bytes of a checker; 0 for a size that nadir_checker_create would refuse. About 4 bytes for each pixel, 16 for
 * each one of a halved picture, 300 for each column of that, and 264000 more. */
NADIR_API size_t nadir_checker_bytes(uint32_t width_px, uint32_t height_px);

/* Makes a checker for pictures of a size: sides of 64 to 65535 pixels and at most 2^25 pixels in all, else
 * NADIR_BAD_CAMERA.
 *
 * checker  receives it, to be given back to nadir_checker_destroy.
 * fault    null, or receives which side is out of range. */
NADIR_API NadirStatus nadir_checker_create(uint32_t width_px, uint32_t height_px, NadirChecker** checker,
                                           NadirFault* fault);
NADIR_API void nadir_checker_destroy(NadirChecker* checker); /* null is accepted */

/* Looks at a pair. NADIR_BAD_SETTING for a range that is none; NADIR_BAD_FRAME for a picture without data, other bits
 * or a stride that does not hold its rows. A picture of another size than the checker's is no error but the verdict
 * SIZE, and nothing is measured then. */
NADIR_API NadirStatus nadir_checker_process(NadirChecker* checker, const NadirPair* pair, NadirCheckup* checkup);

#ifdef __cplusplus
}
#endif

#endif
