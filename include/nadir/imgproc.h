/* Image operations: thresholds, pixel-wise arithmetic, masking, 3x3 neighbourhood filters, smoothing, hole filling,
 * halving and averaging over time.
 *
 * Common to all of them: images are described by Img (image.h) and belong to the caller; the images of a call must
 * agree in width, height and type; each image is walked with its own row stride, width * bytesPerPixel. Every function
 * returns 1 for success. It returns 0, with every output untouched, for a null pointer, images that do not match, a
 * pixel type or a mode outside the stated set. An image without rows is a success with nothing written. Results wrap
 * to the pixel's width, they never saturate. A name that ends in _I replaces its first image by the result. */
#ifndef NADIR_IMGPROC_H
#define NADIR_IMGPROC_H

#include <nadir/api.h>
#include <nadir/image.h>
#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- thresholds ------------------------------------------------------------------------------------------------ */

/* What a threshold does with pixel value v, threshold t, range [lo, hi]. A pixel keeps its value or becomes 0. Modes 0
 * and 4 keep a pixel that equals the threshold, modes 1 and 3 drop it; both bounds belong to the range. */
enum ThresholdMode {
  THRESH_ZERO_BELOW = 0,  /* 0 where v < t */
  THRESH_KEEP_ABOVE = 1,  /* 0 unless v > t */
  THRESH_ZERO_EQUAL = 2,  /* 0 where v == t */
  THRESH_KEEP_BELOW = 3,  /* 0 unless v < t */
  THRESH_ZERO_ABOVE = 4,  /* 0 where v > t */
  THRESH_ZERO_INSIDE = 5, /* 0 where lo <= v <= hi */
  THRESH_ZERO_OUTSIDE = 6 /* 0 where v < lo or v > hi */
};

/* Compares every pixel with one threshold and keeps it or sets it to 0.
 *
 * src, dst   images of equal size and type, IMG_TYPE_U16 or IMG_TYPE_S16; they may be the same image.
 * threshold  only its low 16 bits count, read as signed for S16 images and as unsigned for U16 images.
 * mode       a ThresholdMode from 0 to 4. */
NADIR_API uint32_t IP_Threshold(const Img* src, Img* dst, uint32_t threshold, uint32_t mode);
NADIR_API uint32_t IP_Threshold_I(Img* img, uint32_t threshold, uint32_t mode);

/* Compares every pixel with a closed range and keeps it or sets it to 0: IP_Threshold with `lo` and `hi` in place of
 * the threshold and a mode of 5 or 6. A range with hi < lo is empty: mode 5 keeps every pixel, mode 6 none. */
NADIR_API uint32_t IP_ThresholdRange(const Img* src, Img* dst, uint32_t lo, uint32_t hi, int32_t mode);
NADIR_API uint32_t IP_ThresholdRange_I(Img* img, uint32_t lo, uint32_t hi, int32_t mode);

/* ---- arithmetic and masking ------------------------------------------------------------------------------------ */

/* Operations on pixels a and b. A shift count is the low 8 bits of b read as unsigned (S16 -1 shifts by 255) and is
 * applied to the pixel widened to 32 bits. */
enum ImgOp {
  IMGOP_ADD = 0, /* a + b */
  IMGOP_SUB = 1, /* a - b */
  IMGOP_MUL = 2, /* a * b */
  IMGOP_DIV = 3, /* a / b, rounded toward zero; S16 -32768 / -1 wraps to -32768 */
  IMGOP_SHR = 4, /* a >> n: arithmetic for S16 (n >= 32 leaves the sign), logical for U16 (n >= 16 leaves 0) */
  IMGOP_SHL = 5  /* a << n; n >= 16 leaves 0 */
};

/* Combines two images pixel by pixel: out = a op b, wrapped to 16 bits.
 *
 * a, b, out  images of equal size and type, IMG_TYPE_U16 or IMG_TYPE_S16; `out` may be `a`, `b` or both.
 * op         an ImgOp.
 *
 * A zero divisor raises SIGFPE on every processor. If the signal's handler returns, that pixel's result is 0. */
NADIR_API uint32_t IP_ImgOpImg(const Img* a, const Img* b, Img* out, uint32_t op);
NADIR_API uint32_t IP_ImgOpImg_I(Img* a, const Img* b, uint32_t op);

/* Which pixels a mask lets through. Any other value acts as MASK_CLEAR_SET. */
enum MaskMode {
  MASK_KEEP_SET = 0, /* 0 where the mask is 0 */
  MASK_CLEAR_SET = 1 /* 0 where the mask is not 0 */
};

/* Sets the pixels that a mask selects to 0 and copies the others.
 *
 * src, dst  images of equal size and type, IMG_TYPE_U8 or IMG_TYPE_U16; they may be the same image.
 * mask      an image of IMG_TYPE_U8. Its width and height are not looked at: its first src width * height bytes are
 *           read in memory order, one per pixel, and must exist.
 * mode      a MaskMode. */
NADIR_API uint32_t IP_Mask(const Img* src, const Img* mask, Img* dst, uint32_t mode);
NADIR_API uint32_t IP_Mask_I(Img* img, const Img* mask, uint32_t mode);

/* ---- 3x3 neighbourhood filters: src and dst must not overlap --------------------------------------------------- */

/* Replaces pixels by the median (fifth smallest) of their 3x3 neighbourhood.
 *
 * src, dst  images of equal size and type, IMG_TYPE_U16 or IMG_TYPE_S16, at least 4 columns wide.
 *
 * Written are rows 1 to height - 2 and columns 1 to width - 2 when the width is even, but only to width - 3 when it is
 * odd: pixels are made in pairs. The rest of `dst` keeps what it held; a caller who needs it fills it beforehand.
 * Fewer than 3 rows are a success with nothing written; fewer than 4 columns give 0.
 *
 * Method: medians of sorted columns (J. L. Smith, "Implementing median filters in XC4000E FPGAs", Xcell 23, 1996). */
NADIR_API uint32_t IP_Median3x3(const Img* src, Img* dst);

/* Replaces non-zero pixels by the maximum of their 3x3 neighbourhood; a pixel of 0 stays 0 (no data stays no data).
 *
 * src, dst  images of equal size, IMG_TYPE_U16.
 *
 * The border rows and columns of `dst` keep what they held; fewer than 3 rows or columns leave nothing to write. */
NADIR_API uint32_t IP_Maximum3x3(const Img* src, Img* dst);

/* Morphology in which 0 means "no data". c is the pixel, nz the number of its 8 neighbours that are not 0, lo and hi
 * the minimum and maximum of c and those neighbours. */
enum MorphOp {
  MORPH_ERODE = 0,  /* 0 if c != 0 and nz < 8, else lo */
  MORPH_DILATE = 1, /* hi */
  MORPH_OPEN = 2,   /* erode, then dilate */
  MORPH_CLOSE = 3,  /* dilate, then erode */
  MORPH_CLEAN = 4   /* c != 0: 0 if nz < 4, else c. c == 0: the first neighbour that is not 0 in the order below right,
                       below, below left, right, left, above right, above, above left; 0 if there is none */
};

/* Applies a MorphOp. The border rows and columns of `dst` are copies of the source's.
 *
 * src, dst  images of equal size and type, IMG_TYPE_U8 or IMG_TYPE_U16; 2 rows are copied, a single row gives 0.
 * op        a MorphOp; any other code returns 1 and leaves `dst` as it was.
 *
 * MORPH_OPEN and MORPH_CLOSE allocate one image of the source's size and return 0 where that fails. */
NADIR_API uint32_t IP_Morph3x3(const Img* src, Img* dst, int32_t op);

/* ---- smoothing and hole filling -------------------------------------------------------------------------------- */

/* Smooths an image with the binomial kernel 1 4 6 4 1 in both directions, all 25 weights adding up to 256. The sums are
 * exact and rounded once: (sum + 128) >> 8. Beyond the border the outermost row or column goes on.
 *
 * src, dst  images of equal size, IMG_TYPE_U16, at least 4 columns and 3 rows; smaller ones give 0, those without rows
 *           too. They may be the same image; where they overlap, the result is as if all of `src` were read first.
 * kernel    must be 0.
 *
 * The two columns at the right border are crossed: column width - 2 holds what is right for the last column, and the
 * last column what is right for column width - 2. Programs rely on it.
 *
 * The call allocates 24 bytes per column and returns 0 with `dst` untouched where that fails.
 *
 * Method: P. J. Burt, "Fast filter transforms for image processing", CGIP 16(1), 1981, with its binomial weights. */
NADIR_API uint32_t IP_Gauss(const Img* src, Img* dst, uint32_t kernel);

/* Fills holes, pixels of 0, from what surrounds them; all other pixels are copied.
 *
 * The image is halved again and again until it is a single pixel wide or high. Each coarse pixel is the rounded mean of
 * those of its 2x2 finer pixels that are no holes, or a hole if all are; an odd last row or column is left out. On the
 * way back each hole takes the coarse pixel that covers it, or the nearest in an odd last row or column. Only where a
 * pixel of the coarsest image stays a hole do holes remain: an image of zeros stays one.
 *
 * src, dst  images of equal size, IMG_TYPE_U16; they may be the same image. Both sides must have at least 2 pixels and
 *           one of them less than 4096; other sizes give 0.
 *
 * The call allocates less than a byte per pixel. Where that fails it STILL RETURNS 1 and writes nothing: a caller who
 * must know compares.
 *
 * Method: S. J. Gortler, R. Grzeszczuk, R. Szeliski, M. F. Cohen, "The lumigraph", SIGGRAPH 1996, section 3.4, with
 * weights of 0 and 1. */
NADIR_API int32_t IP_PullPush(const Img* src, Img* dst);

/* The bytes of working memory that nadir_pull_push takes; 0 for a size that it refuses. */
NADIR_API size_t nadir_pull_push_bytes(uint16_t width, uint16_t height);

/* IP_PullPush in memory of the caller's: it allocates nothing, and 1 means that the holes were filled.
 *
 * memory  at least nadir_pull_push_bytes(width, height) bytes at an even address, apart from both images.
 * bytes   how many there are; 0 is returned with `dst` untouched where they are too few or the address is odd. */
NADIR_API int32_t nadir_pull_push(const Img* src, Img* dst, void* memory, size_t bytes);

/* ---- halving and averaging over time --------------------------------------------------------------------------- */

/* Halves a 640 x 480 image by keeping the upper left pixel of every 2x2 block: pixel (x, y) is pixel (2x, 2y) of the
 * source. Nothing is averaged.
 *
 * src  640 x 480 pixels.
 * dst  320 x 240 pixels, not overlapping `src`.
 *
 * Of the types only the bit IMG_TYPE_U16 is looked at; both must have it. A bytesPerPixel of 0, which Img_Init gives to
 * a sum of types, counts as 2. */
NADIR_API uint32_t IP_ScaleVga2Qvga(const Img* src, Img* dst);

/* What an average over frames remembers besides its two images. */
typedef struct {
  uint32_t invalidValue;    /* a pixel of this value says nothing and does not count; above 65535: every pixel counts */
  uint32_t minValidPercent; /* an average needs more valid frames than this percentage of all */
  uint32_t frameCount;      /* frames added since IP_Utils_ImgAvrgInit */
} ImgAvrgState;

/* Begins an average over frames: clears both images and sets the state to invalidValue 0, minValidPercent 50 and
 * frameCount 0. The caller may change the first two afterwards.
 *
 * frame  an image of IMG_TYPE_U16; only its description is read.
 * sum    an image of IMG_TYPE_S32 of the frame's size: the sums of the valid pixels.
 * count  an image of IMG_TYPE_U16: how many there were. All of it is cleared. Its size is not compared; its rows
 *        begin where its own descriptor says, and must hold as many pixels as the frame's.
 * state  must not be null; it is not checked. */
NADIR_API int32_t IP_Utils_ImgAvrgInit(const Img* frame, Img* sum, Img* count, ImgAvrgState* state);

/* Adds a frame: where a pixel differs from invalidValue it is added to its sum, which wraps at 32 bits, and its count
 * grows by one and wraps at 16 bits. frameCount grows by one, also for a frame without rows. The arguments are those of
 * IP_Utils_ImgAvrgInit; no two of the images may overlap. */
NADIR_API int32_t IP_Utils_ImgAvrgAdd(const Img* frame, Img* sum, Img* count, ImgAvrgState* state);

/* Gives the average of the frames added so far: sum / count, rounded toward zero and cut to 16 bits, where the count is
 * greater than minValidPercent * frameCount / 100, and 0 elsewhere. That product wraps at 32 bits and is divided as a
 * signed number, rounded toward zero; should it be negative, every pixel with a count has its average.
 *
 * out  an image of IMG_TYPE_U16 of the size of `sum`, overlapping neither of the others.
 *
 * Sums, counts and state stay as they are: more frames may follow. */
NADIR_API uint32_t IP_Utils_ImgAvrgProcess(Img* out, const Img* sum, const Img* count, const ImgAvrgState* state);

#ifdef __cplusplus
}
#endif

#endif
