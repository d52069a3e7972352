/* Stereo matching: census transform, semi-global matching along four paths, disparity selection, clean-up.
 *
 * Geometry. Two rectified pictures of equal size; corresponding points lie in the same row. The SECOND picture is the
 * reference: its pixel (x, y) with disparity d matches pixel (x + d, y) of the FIRST one, and every result lies on the
 * second picture's grid. With the left camera's picture as the first and the right one's as the second, disparities
 * are positive for points in front of the cameras. For a result on the left grid, mirror both pictures left to right
 * and swap them; then mirror the result.
 *
 * Ranges. A matching cost is 0 to 24, P1 is 7, P2 is 17 to 39; a path's cost is therefore at most 63 and the sum of
 * four paths at most 252: everything fits in unsigned bytes, which is what makes the matcher fast. All arithmetic on
 * them wraps at 256.
 *
 * Methods. R. Zabih, J. Woodfill, "Non-parametric local transforms for computing visual correspondence", ECCV 1994
 * (census); H. Hirschmueller, "Stereo processing by semiglobal matching and mutual information", IEEE PAMI 30(2), 2008
 * (path costs); M. Shimizu, M. Okutomi, "Precise sub-pixel estimation on area-based matching", ICCV 2001 (the
 * equiangular sub-pixel fit).
 *
 * Unless a function says otherwise its pointers must be valid and are not checked, buffers must not overlap, nothing is
 * allocated, and images lie row after row without padding. The names with _neon stand for the vector variant's result
 * and layout, on whatever processor. */
#ifndef NADIR_STEREO_H
#define NADIR_STEREO_H

#include <nadir/api.h>
#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- census transform and matching costs ----------------------------------------------------------------------- */

/* The census code of a pixel without data (intensity 0). Every cost that it takes part in is 24. */
#define CENSUS_INVALID 0xFFAAA555u

/* Computes the 24-bit census codes of a picture.
 *
 * Bit 23 - k of a code is 1 where the k-th of the 24 neighbours in the 5x5 window (row by row from the top left, the
 * centre left out) is strictly smaller than the centre. A centre of 0 has the code CENSUS_INVALID.
 *
 * src            width * height intensities, 0 meaning no data.
 * dst            width * height codes. Rows 2 to height - 3 and columns 2 to width - 3 are written; the frame of two
 *                pixels keeps what it held (the matcher never reads it).
 * width, height  pixels, at least 5 each; a smaller picture has no such pixel and nothing is written. */
NADIR_API void IP_Census_5x5(const uint16_t* src, uint32_t* dst, uint32_t width, uint32_t height);

/* Computes the matching costs of one image row: the Hamming distances of census codes.
 *
 * The cost of pixel x at disparity d is the number of bits in which code x of the reference row and code x + d of the
 * first row differ, 24 if one of them is CENSUS_INVALID. It is computed for x from 2 to width - 3 and for d below
 * min(numDisparities, width - 2 - x); every other cost of the row is 24, and so is the whole row for the two rows at
 * the top and at the bottom of the picture.
 *
 * censusFirstRow, censusRefRow  the codes of this row, `width` each.
 * width, height                 of the whole picture, pixels; width at least 3.
 * numDisparities                disparities per pixel.
 * row                           which row this is, to find the border rows.
 * costRow                       receives width * numDisparities bytes: the costs of pixel x from x * numDisparities,
 *                               disparity 0 first. */
NADIR_API void SGM_CalcDsiRow(const uint32_t* censusFirstRow, const uint32_t* censusRefRow, uint32_t width,
                              uint32_t height, uint32_t numDisparities, uint32_t row, uint8_t* costRow);

/* SGM_CalcDsiRow with a stride of 64 bytes per pixel whatever numDisparities is: costRow receives width * 64 bytes, of
 * which numDisparities (at most 64) per pixel are computed. The costs are the same for codes that IP_Census_5x5 made.
 * For any other code with a top byte that is not 0, disparities are done in blocks of 16 in which the two top bytes,
 * or-ed, are or-ed into each of the three difference bytes; those behind the last whole block are done as in
 * SGM_CalcDsiRow. */
NADIR_API void SGM_CalcDsiRow_neon(const uint32_t* censusFirstRow, const uint32_t* censusRefRow, uint32_t width,
                                   uint32_t height, uint32_t numDisparities, uint32_t row, uint8_t* costRow);

/* ---- path-cost aggregation ------------------------------------------------------------------------------------- */

/* The predecessor of pixel (x, y) on a path. */
enum PathDir {
  PC_DIR_LEFT = 0,   /* (x - 1, y): paths run left to right and start anew in every row */
  PC_DIR_UPLEFT = 1, /* (x - 1, y - 1) */
  PC_DIR_UP = 2,     /* (x, y - 1) */
  PC_DIR_UPRIGHT = 3 /* (x + 1, y - 1) */
};

/* The path costs of one direction: one row of pixel slots, or two that alternate, whatever the height of the image.
 * A slot is numDisparities path costs and 16 pad bytes that stand for "no predecessor". Made by PC_Init, to be given
 * back to PC_Destroy; to be used by one thread at a time. */
typedef struct {
  uint32_t width;          /* pixels of a row */
  uint32_t numDisparities; /* per pixel, D; also the stride of cost and sum rows, bytes */
  uint8_t* costsA;         /* path costs, buffer A */
  uint8_t* costsB;         /* path costs, buffer B */
  uint32_t costsSize;      /* bytes of each: D + 16 (LEFT), width * (D + 16) (UP), (width + 1) * (D + 16) */
  uint32_t costStride;     /* bytes from slot to slot: D + 16; 0 for LEFT */
  uint8_t* minA;           /* the smallest path cost of each slot, buffer A */
  uint8_t* minB;           /* the same, buffer B */
  uint32_t minSize;        /* bytes of each: 1 (LEFT), width (UP), width + 1 */
  uint32_t minStride;      /* 1; 0 for LEFT */
  uint8_t* prevCosts;      /* where the next row reads its first pixel's predecessor */
  uint8_t* curCosts;       /* where the next row writes its first pixel */
  uint8_t* prevMin;        /* the same for the minima */
  uint8_t* curMin;
  uint32_t dir;       /* PathDir */
  uint32_t p1;        /* P1, the penalty of a disparity step of one */
  uint32_t fillValue; /* ~P1; its low byte 255 - P1 is the path cost of "no predecessor" */
} PcBuffer;

/* Allocates the buffers of one direction. Their contents are undefined until PC_NextFrame.
 *
 * pc              receives the record.
 * dir             a PathDir.
 * width           pixels of a row.
 * numDisparities  disparities per pixel; a multiple of 16 if PC_NextRow_neon is to use vectors.
 * p1              P1; the matcher uses 7.
 *
 * Returns 1. Returns 0 for a null `pc`; for a direction above 3 or without memory, and then nothing is allocated and
 * the record is all zero. */
NADIR_API int32_t PC_Init(PcBuffer* pc, uint32_t dir, uint32_t width, uint32_t numDisparities, int32_t p1);

/* Frees the buffers and sets their pointers to null. Harmless when called twice or on an all-zero record. */
NADIR_API void PC_Destroy(PcBuffer* pc);

/* Fills every path cost with 255 - P1, every minimum with 0, and sets the positions for a first row. */
NADIR_API void PC_ResetBuffer(PcBuffer* pc);

/* Starts an image; to be called before its first row. The same as PC_ResetBuffer. */
NADIR_API void PC_NextFrame(PcBuffer* pc);

/* Makes the row just written the previous one. PC_NextRow ends with it; there is no need to call it. */
NADIR_API void PC_SwapBuffer(PcBuffer* pc);

/* Aggregates one image row and adds the path costs to a row of sums. With Lp the predecessor's path costs, mp their
 * minimum, C the pixel's costs and P2 its penalty:
 *
 *   L[d] = C[d] + min(Lp[d], Lp[d - 1] + P1, Lp[d + 1] + P1, mp + P2) - mp      (modulo 256)
 *
 * Where there is no predecessor, and for d - 1 and d + 1 outside the range, Lp is 255 - P1, and mp is 0: the first
 * pixel of a path has L[d] = C[d] + P2. Rows must come in order, from the top of the image.
 *
 * costRow  width * numDisparities costs.
 * p2Row    width penalties of this direction.
 * sumRow   width * numDisparities sums, added to modulo 256. */
NADIR_API void PC_NextRow(PcBuffer* pc, const uint8_t* costRow, const uint8_t* p2Row, uint8_t* sumRow);

/* PC_NextRow with vectors of 16 disparities. The results are the same; numDisparities that are not a multiple of 16 are
 * computed one by one. */
NADIR_API void PC_NextRow_neon(PcBuffer* pc, const uint8_t* costRow, const uint8_t* p2Row, uint8_t* sumRow);

/* ---- disparity selection --------------------------------------------------------------------------------------- */

/* Computes the penalty P2 of every pixel and direction: P2 = max(39 - (|I(p) - I(q)| >> 4), 17) with q the predecessor
 * of pixel p. A disparity step costs less where the intensity changes. P2 is 39 where q lies outside the picture.
 *
 * image    width * height intensities.
 * p2...    width * height bytes each, one map per PathDir. */
NADIR_API void SGM_CalcP2(const uint16_t* image, uint32_t width, uint32_t height, uint8_t* p2Left, uint8_t* p2UpLeft,
                          uint8_t* p2Up, uint8_t* p2UpRight);

/* Finds the smallest of `count` costs, the first of them among equals.
 *
 * minValue, minIndex  receive the value and its index; 255 and 255 when no cost is below 255.
 *
 * Returns the index. */
NADIR_API uint32_t SGM_FindMinIdx(const uint8_t* costs, uint32_t count, uint8_t* minValue, uint32_t* minIndex);

/* SGM_FindMinIdx by keys of 16 bits, cost * 256 + index: at most 256 costs, and where there are costs but none below
 * 255 the index is 0. */
NADIR_API uint32_t SGM_FindMinIdx_neon(const uint8_t* costs, uint32_t count, uint8_t* minValue, uint32_t* minIndex);

/* Decides whether a pixel's costs have one distinct minimum.
 *
 * The winner is the smallest of costs[0] to costs[maxIndex], the first of them among equals. With m0 its cost, it must
 * beat every cost that is not its direct neighbour by margin = max((uniquenessRatio * m0 >> 7) mod 256, 6), and it must
 * lie in 2 to maxIndex - 2, so that the sub-pixel fit has neighbours.
 *
 * costs            maxIndex + 1 bytes.
 * maxIndex         the last disparity that counts, at most 255.
 * uniquenessRatio  1/128 units: 128 asks for a runner-up of twice the winner's cost.
 *
 * Returns the winner's index, or 0 for a rejected pixel. */
NADIR_API int32_t SGM_PeakCheckExtended(const uint8_t* costs, uint32_t maxIndex, uint32_t uniquenessRatio);
NADIR_API int32_t SGM_PeakCheckExtended_neon(const uint8_t* costs, uint32_t maxIndex, uint32_t uniquenessRatio);

/* ---- matching a whole pair ------------------------------------------------------------------------------------- */

/* Disparity images hold pixels * SGM_DISP_SCALE in 16 bits, 0 for "no disparity". */
#define SGM_DISP_SCALE 16
#define SGM_SUBPIX_SHIFT 4

typedef struct {
  uint32_t numDisparities;  /* must be 64: disparities 0 to 63 pixels are searched */
  uint32_t uniquenessRatio; /* of the peak check, 1/128 units */
} SgmParams;

/* What the matcher computed on its way, made by IP_SgmMakeDebugData for one size of image and reusable for any number
 * of calls. Volumes hold numDisparities bytes per pixel, pixels row after row; maps one byte per pixel. */
typedef struct {
  uint8_t* costVolume;     /* matching costs */
  uint32_t costVolumeSize; /* bytes */
  uint8_t* p2Left;         /* P2 of the four directions */
  uint8_t* p2UpLeft;
  uint8_t* p2Up;
  uint8_t* p2UpRight;
  uint32_t p2Size;               /* bytes of each */
  uint8_t* aggregatedVolume;     /* sums of the four path costs */
  uint32_t aggregatedVolumeSize; /* bytes */
  uint8_t* peakMap;              /* winning index of each pixel, 0 where it was rejected; IP_SgmFull only */
  uint32_t peakMapSize;          /* bytes */
} SgmDebugData;

/* Matches a rectified pair: semi-global matching over 64 disparities along four paths, uniqueness check, and refinement
 * to 1/16 pixel by the equiangular fit.
 *
 * censusFirst, censusRef  width * height census codes of the first and of the second (reference) picture; their frame
 *                         of two pixels is never read.
 * image                   width * height intensities of the reference picture; P2 follows its edges.
 * width, height           pixels. A width below 5 gives an image of 0.
 * params                  with numDisparities = 64; any other number gives an image of 0.
 * disparity               receives width * height disparities in 1/16 pixel on the reference grid: 0 for none, else 24
 *                         to 984. The four rightmost columns are always 0.
 * debug                   null, or a record made for this size and 64 disparities; its P2 maps are filled only if they
 *                         are large enough.
 *
 * Allocates a few rows (about 260 bytes per column without a debug record), once per call. Where that fails,
 * `disparity` is all 0 and the blocks of `debug` hold anything. */
NADIR_API void IP_SgmFull(const uint32_t* censusFirst, const uint32_t* censusRef, const uint16_t* image, uint32_t width,
                          uint32_t height, const SgmParams* params, uint16_t* disparity, SgmDebugData* debug);

/* The bytes of working memory that nadir_sgm_full takes for pictures of a width; 0 for one that no memory can serve. */
NADIR_API size_t nadir_sgm_bytes(uint32_t width);

/* IP_SgmFull in memory of the caller's: it allocates nothing and says whether it has matched.
 *
 * memory  at least nadir_sgm_bytes(width) bytes at any address, apart from all other buffers. What they hold does not
 *         matter before the call and means nothing after it, so that one block serves frame after frame.
 * bytes   how many there are.
 *
 * Returns 1 with `disparity` (and `debug`) as IP_SgmFull leaves them. Returns 0 with nothing written for a width below
 * 5, any other number of disparities than 64, or memory that is null or too small. */
NADIR_API int32_t nadir_sgm_full(const uint32_t* censusFirst, const uint32_t* censusRef, const uint16_t* image,
                                 uint32_t width, uint32_t height, const SgmParams* params, uint16_t* disparity,
                                 SgmDebugData* debug, void* memory, size_t bytes);

/* IP_SgmFull that measures how distinct each pixel's minimum is instead of locating it.
 *
 * distinctiveness  receives width * height bytes: the smallest sum outside the winner and its two neighbours, minus the
 *                  winner's (255 minus the winner's where there is none outside); 0 for no distinct winner. The four
 *                  rightmost columns are 255.
 *
 * A width below 5 gives 255 everywhere. Where memory runs out nothing is written to `distinctiveness`. The peak map of
 * `debug` is not touched. */
NADIR_API void IP_Sgm(const uint32_t* censusFirst, const uint32_t* censusRef, const uint16_t* image, uint32_t width,
                      uint32_t height, uint8_t* distinctiveness, SgmDebugData* debug);

/* Allocates the blocks of a debug record; their contents are undefined.
 *
 * Returns 1. Returns 0 without memory: all pointers are null then, the sizes up to that of the block that failed are
 * stored and the later ones 0, and the record must not be given to a driver. */
NADIR_API int32_t IP_SgmMakeDebugData(uint32_t width, uint32_t height, uint32_t numDisparities, SgmDebugData* debug);

/* Frees the blocks and sets their pointers to null; the sizes stay. Harmless when called twice. */
NADIR_API void IP_SgmFreeDebugData(SgmDebugData* debug);

/* Cleans a disparity image: clears what the mask covers, takes the 3x3 median, drops disparities with fewer than 4
 * neighbours that have one, and fills pixels without a disparity from a neighbour (IP_Mask with MASK_CLEAR_SET,
 * IP_Median3x3, IP_Morph3x3 with MORPH_CLEAN). The median's outermost pixels count as without disparity.
 *
 * disparity      width * height disparities.
 * mask           width * height bytes; a byte that is not 0 discards that pixel's disparity.
 * result         receives width * height disparities; may be the same buffer as `disparity`.
 * width, height  pixels; only the low 16 bits count.
 *
 * Returns 1. Returns 0 for a null pointer or without memory for one scratch image, with `result` untouched; and when a
 * step refuses the size (fewer than 4 columns, a single row), with `result` then holding the masked image. */
NADIR_API uint32_t IP_SgmPostproc(const uint16_t* disparity, const uint8_t* mask, uint16_t* result, uint32_t width,
                                  uint32_t height);

/* The bytes of working memory that nadir_sgm_postproc takes. */
NADIR_API size_t nadir_sgm_postproc_bytes(uint16_t width, uint16_t height);

/* IP_SgmPostproc in memory of the caller's: it allocates nothing.
 *
 * memory  at least nadir_sgm_postproc_bytes(width, height) bytes at an even address, apart from all other buffers.
 * bytes   how many there are; 0 is returned with `result` untouched where they are too few or the address is odd. */
NADIR_API uint32_t nadir_sgm_postproc(const uint16_t* disparity, const uint8_t* mask, uint16_t* result, uint16_t width,
                                      uint16_t height, void* memory, size_t bytes);

#ifdef __cplusplus
}
#endif

#endif
