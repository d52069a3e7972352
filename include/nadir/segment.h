/* Segmentation: connected components, region growing and regions of elevation maps.
 *
 * Common to all of them: coordinates are pixels or cells, x to the right and y downwards. Labels are 16-bit, 0 is no
 * region, regions are numbered 1, 2, ... in the raster order of their first pixel: topmost, then leftmost. Rectangles
 * are half-open, columns x0 .. x1 - 1 and rows y0 .. y1 - 1. 8-connected pixels touch along a side or at a corner,
 * 4-connected ones along a side. The time of every call grows with the number of pixels, whatever they show.
 *
 * Method: runs of neighbouring pixels are found row by row and linked to those of the row above; a forest of disjoint
 * sets keeps which provisional labels mean the same region (A. Rosenfeld, J. L. Pfaltz, "Sequential operations in
 * digital picture processing", JACM 13(4), 1966; R. E. Tarjan, "Efficiency of a good but not linear set union
 * algorithm", JACM 22(2), 1975; L. He, Y. Chao, K. Suzuki, "A run-based two-scan labeling algorithm", IEEE TIP 17(5),
 * 2008). */
#ifndef NADIR_SEGMENT_H
#define NADIR_SEGMENT_H

#include <nadir/api.h>
#include <nadir/geometry.h>
#include <nadir/image.h>
#include <nadir/vector.h>
#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- labelling of small images --------------------------------------------------------------------------------- */

/* Lays a label map of IMG_TYPE_U16, 128 x 128, over `buffer`, whose bytes stay as they are.
 *
 * Returns 1, or 0 with `map` untouched if bufferBytes is below 32768 or `map` is null. */
NADIR_API int32_t IP_CompFind_CreateLabelMap(Img* map, void* buffer, uint32_t bufferBytes);

/* Lays a vector of VECTOR_TYPE_U16 over `buffer` and makes it 4096 zeros. `sizes` and `buffer` must not be null.
 *
 * Returns 1, or 0 with nothing touched if bufferBytes is below 8192. */
NADIR_API int32_t IP_CompFind_CreateComponentSizes(Vector* sizes, void* buffer, uint32_t bufferBytes);

/* Labels the 8-connected components of the pixels above a threshold and counts their pixels.
 *
 * src        IMG_TYPE_U16 or IMG_TYPE_S16, 1 to 128 columns and rows.
 * labelMap   an image of IMG_TYPE_U16 over memory for at least src's pixels, as IP_CompFind_CreateLabelMap makes it.
 *            Its width and height become those of `src`, and its width * height pixels the labels; the memory behind
 *            them stays as it was. It must not overlap `src`.
 * sizes      a vector of VECTOR_TYPE_U16, as IP_CompFind_CreateComponentSizes makes it. With k components it becomes
 *            k + 1 long: element 0 is the number of pixels without a label, element l that of component l.
 * threshold  a pixel belongs to a component if its value is greater than this one. Of the number only the low 16 bits
 *            count, read as signed: in a U16 image, 32768 to 65535 are negative and every pixel is above them.
 *
 * A RUN OF SUCH PIXELS THAT REACHES THE LAST COLUMN of its row IS NEVER LABELLED: it counts as background.
 *
 * Returns 1. Returns 0 with the outputs untouched for another type or size. No pointer may be null. Nothing is
 * allocated; the call takes some 14 KiB of stack.
 *
 * The only images with more components than `sizes` has room for by default, 4096, have that many in 128 x 128 pixels.
 * A vector that is too short for k + 1 elements is filled up, and the labels are right all the same. */
NADIR_API int32_t IP_CompFind_Process(const Img* src, Img* labelMap, Vector* sizes, const int32_t* threshold);

/* ---- components with their pixels ------------------------------------------------------------------------------ */

/* A pixel's place. */
typedef struct {
  uint16_t x, y;
} Position_u16;

/* One component. positions[i] and values[i] belong together, i < pixelCount, in raster order. contour[j] with
 * j < contourCount are indices into them, ascending: the pixels at an end of their run, and those whose neighbour above
 * or below is 0 in the source (or lies above the first or below the last row of the area of interest). The columns of
 * the area of interest play no part in that. */
typedef struct {
  uint16_t label;
  Position_u16* positions;
  uint16_t* values;
  uint32_t pixelCount;
  uint16_t* contour;
  uint32_t contourCount;
  int32_t xMin, yMin, xEnd, yEnd; /* bounding box, half-open */
} ComponentEntry;

/* All components of an image: entries 0 .. count - 1, entry l - 1 for label l. The entries' pointers lead into the
 * pools of the same record, so a copy of the record points into the original. What lies behind the used parts of
 * entries and pools is left as it was. */
typedef struct {
  uint32_t count;
  ComponentEntry entries[16384];
  Position_u16 positionPool[65536];
  uint16_t valuePool[65536];
  uint16_t contourPool[65536];
} ComponentList;

/* Working memory for finding components, some 300 KiB. One finder serves one call at a time. */
typedef struct CompFinder CompFinder;

/* Makes a finder. Returns null if there is no memory. */
NADIR_API CompFinder* IP_CompFinder_Init(void);

/* Frees a finder. A null pointer is accepted. */
NADIR_API void IP_CompFinder_Close(CompFinder* finder);

/* Finds the 8-connected components of the pixels that are not 0.
 *
 * finder  its earlier use plays no part in the result.
 * src     IMG_TYPE_U16, 1 to 256 columns and rows.
 * out     receives the components; must not overlap `src`.
 *
 * A RUN OF SUCH PIXELS THAT STARTS IN THE LAST COLUMN, and so is one pixel long, IS DROPPED: it counts as background,
 * except for the contours of its neighbours. Longer runs that end there are kept.
 *
 * Returns 1, also where nothing is found. Returns 0 with `out->count` 0 for another type or size. No pointer may be
 * null. Nothing is allocated. */
NADIR_API int32_t IP_CompFinder_Process(CompFinder* finder, const Img* src, ComponentList* out);

/* IP_CompFinder_Process for the part of the image inside `aoi`, clamped to the image; positions are still those of the
 * whole image. The last column is then the last one inside. An area with x1 <= x0 or y1 <= y0 means the whole image;
 * one that lies outside the image has no component, which is a success. */
NADIR_API int32_t IP_CompFinder_ProcessAoi(CompFinder* finder, const Img* src, const Rect_s32* aoi, ComponentList* out);

/* ---- small blobs ----------------------------------------------------------------------------------------------- */

/* Removes small components: sets their pixels to 0 and copies all others.
 *
 * src, dst  images of equal size and type, IMG_TYPE_U16 or IMG_TYPE_S16, 1 to 128 columns and rows; they may be the
 *           same image.
 * minSize   components as IP_CompFind_Process finds them with threshold 0 stay if they have at least so many pixels.
 *
 * The pixels WITHOUT a label (S16: also the negative ones; both types: also the runs that reach the last column) are
 * judged as one: they stay if there are at least minSize of them, else all become 0.
 *
 * Returns 1. Returns 0 with `dst` untouched for a null pointer, images that do not match, another type or size, or if
 * there is no memory (41 KiB for the call). */
NADIR_API int32_t IP_ContourFilter(const Img* src, Img* dst, uint32_t minSize);
NADIR_API int32_t IP_ContourFilter_I(Img* img, uint32_t minSize);

/* ---- region growing -------------------------------------------------------------------------------------------- */

/* Labels the 8-connected regions of pixels above a threshold whose values change in small steps.
 *
 * Two neighbours are linked if both are greater than the threshold and differ by at most the step; a region is what
 * links connect, so its values may climb far.
 *
 * src     IMG_TYPE_U16, any size.
 * params  two numbers: params[0] the threshold, params[1] the largest step. With a negative step nothing is labelled.
 *         With a negative threshold every pixel is above it.
 * labels  IMG_TYPE_U16, the size of `src`; may be the same image. Receives the regions' labels; the label after 65535
 *         is 0, then 1 again.
 *
 * Returns 1; an image without pixels is a success. Returns 0 with `labels` untouched for a null pointer, another type
 * or size, or if there is no memory: the call allocates 4 bytes a pixel. It takes little stack, it does not recurse. */
NADIR_API int32_t IP_RGrow_Process(const Img* src, const int32_t* params, Img* labels);

/* The bytes of working memory that nadir_region_growing takes; 0 for a size that no memory can serve. */
NADIR_API size_t nadir_region_growing_bytes(uint32_t width, uint32_t height);

/* IP_RGrow_Process in memory of the caller's: it allocates nothing.
 *
 * memory  at least nadir_region_growing_bytes(width, height) bytes at an address that is a multiple of 4, apart from
 * both images. bytes   how many there are; 0 is returned with `labels` untouched where they are too few or the address
 * is another. */
NADIR_API int32_t nadir_region_growing(const Img* src, const int32_t* params, Img* labels, void* memory, size_t bytes);

/* ---- regions of elevation maps --------------------------------------------------------------------------------- */

/* IP_RGE_* keep what they found in ONE STATE OF THE WHOLE PROCESS, and nothing guards it: only one thread at a time may
 * call any of them, and what a thread extracts belongs to the last IP_RGE_Process of whichever thread. Programs with
 * several threads hold a lock of their own from IP_RGE_Process to the last extraction. */

/* What IP_RGE_Process takes for a region. */
typedef struct {
  int32_t x0, y0, x1, y1; /* area of interest, half-open, clamped to the map; all four 0: the whole map */
  int32_t maxStep;        /* largest difference of height between neighbours, in the map's unit */
  int32_t minValue;       /* a cell takes part if it is greater */
} RgeParams;

/* One region. positions[i] and values[i] with i < pixelCount are its cells and their heights in raster order. */
typedef struct {
  uint16_t label;
  uint32_t pixelCount;
  Position_u16* positions;
  uint16_t* values;
  int32_t xMin, yMin, xEnd, yEnd; /* bounding box, half-open */
} RegionEntry;

/* All regions: entries 0 .. count - 1, entry l - 1 for label l. The entries' pointers lead into the pools of the same
 * record. What lies behind the used parts of entries and pools is left as it was. */
typedef struct {
  uint32_t count;
  RegionEntry entries[16384];
  Position_u16 positionPool[16384];
  uint16_t valuePool[16384];
} RegionList;

/* Makes the state ready. To be called once before the first IP_RGE_Process; again does no harm, what was found stays.
 * Returns 1. */
NADIR_API int32_t IP_RGE_Init(void);

/* Finds the regions of an elevation map and keeps them for the extraction below.
 *
 * In a row, neighbouring cells that take part and differ by at most maxStep form a run; a larger step starts a new run.
 * Runs of neighbouring rows are linked if in at least one column both have a cell and the two differ by at most
 * maxStep; corners do not link (4-connected). A region is what links connect.
 *
 * elev    IMG_TYPE_U16, at most 128 columns and rows. Its pixels must stay alive and as they are until the last
 *         extraction.
 * params  null: the whole map, maxStep 0, minValue 0. An area without rows or columns has no regions, a success.
 *
 * Returns 1. Returns 0 for a null `elev`, another type or size; what was found before then stays. */
NADIR_API int32_t IP_RGE_Process(const ImgC* elev, const RgeParams* params);

/* Writes the labels of the last processed map into `map`, with 0 where there is no region.
 *
 * map  IMG_TYPE_U16, at least as wide and high as the processed map; cell (x, y) goes to pixel (x, y). All of it is
 *      overwritten.
 *
 * Returns 1, or 0 with nothing written for a null pointer, another type, a smaller map, or if nothing was processed. */
NADIR_API int32_t IP_RGE_CreateLabelMap(Img* map);

/* Lists the regions of the last processed map with their cells. `out` must not be null; its count is 0 if nothing was
 * processed. Returns 1. */
NADIR_API int32_t IP_RGE_CreateRegionList(RegionList* out);

/* The same in a state of the caller's instead of that of the process: one state for each thread, and nothing is shared.
 * The records and what is found are those of IP_RGE_*. */
typedef struct NadirElevationRegions NadirElevationRegions;

/* The bytes of memory that hold a state. */
NADIR_API size_t nadir_elevation_regions_bytes(void);

/* Makes a state in memory of the caller's, which holds it for as long as it is used; there is nothing to give back.
 *
 * memory  at least nadir_elevation_regions_bytes() bytes, aligned as malloc aligns. They must stay where they are.
 * bytes   how many there are.
 *
 * Returns the state, in which no map was processed yet; null for memory that is null, too small or not
 * aligned. */
NADIR_API NadirElevationRegions* nadir_elevation_regions_init(void* memory, size_t bytes);

/* IP_RGE_Process, IP_RGE_CreateLabelMap and IP_RGE_CreateRegionList with a state; each returns 0 for a null one, and
 * nadir_elevation_regions_list for a null list as well. */
NADIR_API int32_t nadir_elevation_regions_process(NadirElevationRegions* state, const ImgC* elev,
                                                  const RgeParams* params);
NADIR_API int32_t nadir_elevation_regions_label_map(const NadirElevationRegions* state, Img* map);
NADIR_API int32_t nadir_elevation_regions_list(const NadirElevationRegions* state, RegionList* out);

#ifdef __cplusplus
}
#endif

#endif
