/* The road from a pair of pictures to what stands on the ground: libnadirground, which stands on libnadir.
 *
 * STATUS 0 IS SUCCESS here, unlike in libnadir, whose functions return 1 for it: here a status says what was wrong.
 *
 * One call goes from two rectified pictures, or from disparities, to a map of heights above the ground, the regions
 * that stand on it and what of them lies in areas of interest:
 *
 *   nadir_settings_fill(&settings, &camera);
 *   nadir_road_create(&camera, &settings, areas, area_count, &road, NULL);
 *   nadir_result_create(road, &result);
 *   for each frame { nadir_road_process(road, &frame, result); nadir_result_read(result, &findings); }
 *
 * Objects. A road holds the camera, the settings and the memory that a frame needs; a result holds what one frame gave;
 * a tracker holds what outlives a frame. Each is one block of memory from one call of malloc, whose bytes are known
 * before; nadir_road_create borrows 614400 bytes more for each area in pixels, one after the other, and gives them
 * back. Nothing else allocates: processing, reading and stepping take no memory at all. A road, a result or a tracker
 * serves one thread at a time, and any number of them may be at work side by side: they share nothing. A frame's
 * findings do not depend on the frames before, so frames may be worked on in any order on any number of threads, each
 * with a road and a result of its own.
 *
 * World. The origin is the measured view's camera centre, x points to the picture's right, y to its lower edge, z
 * down; the ground is the plane z = height_mm. Picture coordinates count from the CENTRE of the top left pixel, (0, 0).
 * A map's row 0 lies at its smallest world y, its column 0 at its smallest world x. Lengths are millimetres and angles
 * degrees unless a name says otherwise.
 *
 * Records begin with `size`, the bytes of the record as the caller was compiled with it. nadir_settings_fill and
 * nadir_track_settings_fill set it; in all other records that go in or are filled the caller does, after setting
 * everything to 0: `NadirFault fault = {0}; fault.size = sizeof fault;`. A library that is newer than the caller then
 * knows which members the caller lacks; one that is older refuses the record (NADIR_BAD_RECORD). Records in arrays that
 * findings lead to lie `size` bytes apart. NadirPlane and NadirPoint have no size: they will not grow.
 *
 * Linking: CMake's nadir::ground, or pkg-config's nadirground, which is -lnadirground -lnadir.
 *
 * Rules as in libnadir: all checks come before the first write, a call that fails leaves its outputs as they were
 * (nadir_road_process says what holds for results); nothing is read or written outside the stated extent; buffers of
 * different arguments must not overlap; no exceptions, threads, files, environment or logging. A result is the same to
 * the last bit on every processor in the default floating-point environment (nadir.h). Another one changes heights,
 * regions and what is measured of a result; of a frame of pictures only the disparities stay what they are.
 */
#ifndef NADIR_GROUND_H
#define NADIR_GROUND_H

#include <nadir/api.h>
#include <nadir/camera.h>
#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- what calls return ----------------------------------------------------------------------------------------- */

typedef int32_t NadirStatus;

#define NADIR_OK 0
#define NADIR_NO_MEMORY 1        /* malloc gave none, or no memory can hold that much */
#define NADIR_NULL_POINTER 2     /* a pointer that must lead somewhere is null */
#define NADIR_BAD_RECORD 3       /* a record's `size` is smaller than its first version or larger than this library's */
#define NADIR_BAD_CAMERA 4       /* a number of the camera is missing or out of range; the fault names it */
#define NADIR_BAD_SETTING 5      /* a setting is out of range; the fault names it */
#define NADIR_BAD_AREA 6         /* an area's number of corners, its unit, a corner or a height is out of range */
#define NADIR_MAP_OUT_OF_REACH 7 /* areas need a map that ends within NADIR_AREA_REACH of the camera */
#define NADIR_CAMERA_TOO_HIGH 8  /* areas in pixels need a camera that is at most 65535 mm high */
#define NADIR_CORNER_OFF_GROUND 9   /* a corner does not show the ground within NADIR_AREA_REACH of the camera */
#define NADIR_AREA_WITHOUT_CELLS 10 /* an area holds the centre of no cell of the map */
#define NADIR_BAD_FRAME 11      /* a picture is missing; or the bits, a stride, a measured height are out of range */
#define NADIR_FOREIGN_RESULT 12 /* the result or measurement is of a road of another size or other settings */
#define NADIR_NOTHING_FOUND 13  /* there is none: no frame was processed, or no such area, or no plane */
#define NADIR_BAD_STATE 14      /* what was saved is damaged, of another version or of another road */
#define NADIR_BAD_TIME 15       /* frames go back in time */

/* A status in words, static storage; "unknown status" for any other number. */
NADIR_API const char* nadir_status_text(NadirStatus status);

/* Where a fault lies. What does not apply is null or 0. */
typedef struct NadirFault {
  uint32_t size;
  uint32_t area;     /* which of the areas, from 0 */
  uint32_t corner;   /* which of its corners, from 0 */
  uint32_t reserved; /* 0 */
  const char* field; /* the member's name, "tilt_deg"; static storage */
} NadirFault;

/* ---- what a road is made of ------------------------------------------------------------------------------------ */

/* A stereo camera that looks at the ground: its optics, its mount and the map that it fills. All members must be set;
 * with NADIR_UNTIL_MATCH only width_px and height_px are read. */
typedef struct NadirCamera {
  uint32_t size;
  uint32_t width_px, height_px; /* of both pictures: each 5 to 65535, and at most 2^25 pixels in all */
  uint32_t cell_mm;             /* side of a map's cell: 1 to 65535 */
  uint32_t map_width_cells;     /* along world x: 1 to 65535 */
  uint32_t map_height_cells;    /* along world y: 1 to 65535 */
  double baseline_mm;           /* more than 0, at most 1e6 */
  double focal_px;              /* more than 0, at most 1e6 */
  double principal_x_px;        /* of the left picture; at most 1e6 in size, as the next two */
  double principal_y_px;        /* of both */
  double column_shift_px;       /* right principal column minus the left one's: added to a matched disparity it gives
                                   the one that is 0 at infinity */
  double height_mm;             /* of the camera's centre above the ground: more than 0, at most 1e6 */
  double tilt_deg;              /* 0 looks straight down, towards -90 raises the upper edge to the horizon; -90 to 90 */
  double pan_deg;               /* about the picture's vertical, positive to its left; -90 to 90 */
  double map_offset_x_mm;       /* moves the map from where it lies by itself: its corner of smallest x and y is half */
  double map_offset_y_mm;       /* its WIDTH away, on both axes, from where the optical axis meets the ground; <= 1e6 */
} NadirCamera;

/* How far from the origin an area or a map with areas may reach, mm or pixels: its sides are told by products of two
 * differences in 32 bits. */
#define NADIR_AREA_REACH 23000

#define NADIR_AREA_PIXELS 0    /* corners are pixels of the measured view, where the ground shows */
#define NADIR_AREA_GROUND_MM 1 /* corners are world x and y */

/* An area of interest: a polygon. Its inside is what IP_Polygon_IsInside says, its edge included. */
typedef struct NadirArea {
  uint32_t size;
  uint32_t unit;          /* NADIR_AREA_... */
  uint32_t corner_count;  /* 3 to 100 */
  uint32_t reserved;      /* 0 */
  const int32_t* corners; /* x, y, x, y, ...; each at most NADIR_AREA_REACH in size */
  uint32_t min_height_mm; /* in this area regions are cells higher than this; 0: as the settings say */
  uint32_t max_height_mm; /* and not higher than this, so that a lamp or a beam is left out; 0: whatever height.
                             Both 0 to 65535, and the second more than the first unless it is 0. Where areas overlap,
                             the first one that has either rules the cell */
} NadirArea;

#define NADIR_UNTIL_MATCH 0 /* disparities alone; the camera needs a size and nothing else */
#define NADIR_UNTIL_MAP 1   /* and the elevation map */
#define NADIR_UNTIL_ALL 2   /* and regions and areas; the map then has at most NADIR_LARGEST_REGION_MAP cells a side */

#define NADIR_LARGEST_REGION_MAP 128

#define NADIR_GRID_LEFT 0 /* the view that is measured: its pixels get the disparities, its camera is the origin */
#define NADIR_GRID_RIGHT 1

/* What is matched again to tell guesses from measurements; each check costs one pass of the matcher. Disparities agree
 * that differ by a pixel and a half at most. */
#define NADIR_CHECK_NONE 0
#define NADIR_CHECK_FLIP 1  /* both pictures upside down: where both passes agree their mean is taken, the rest goes */
#define NADIR_CHECK_SIDES 2 /* the other view measured: what it does not confirm goes, so what only one view shows */
#define NADIR_CHECK_BOTH 3

/* Where both ways up do not agree, one of them may still be right, above all along the rims of things. It stays if it
 * has support: if so many of the 48 pixels around that both agree on lie within three quarters of a pixel of it, and
 * more than of the other. The fewer are asked for, the denser is the result and the more often wrong; 0 keeps none. It
 * means something with NADIR_CHECK_FLIP and NADIR_CHECK_BOTH, before what the other view says. */
#define NADIR_LARGEST_SUPPORT 48

/* The largest disparities that are found, pixels. Beyond 61 the pair is matched again in pictures of half the width and
 * height, and beyond 122 in those of a quarter: what is near is large, and does not need the pixels that what is far
 * away needs. Pictures do not become narrower than 64 columns. */
#define NADIR_RANGE_61 61
#define NADIR_RANGE_122 122
#define NADIR_RANGE_244 244

/* The matcher's disparities wander by a fraction of a pixel about the surface that they belong to, and are drawn to
 * whole pixels ("pixel locking": M. Shimizu, M. Okutomi, "Sub-pixel estimation error cancellation on area-based
 * matching", IJCV 63(3), 2005). Refined by their surface, each is first compared with the pictures again: it goes to
 * where the 5 x 3 pixels around look most alike in both, by one step from the slopes of the measured view (B. Lucas, T.
 * Kanade, "An iterative image registration technique with an application to stereo vision", IJCAI 1981), and by no
 * more than a quarter of a pixel. One picture may be brighter than the other. Where there is little to see it hardly
 * moves, and where fewer than 4 of these pixels can be compared not at all.
 *
 * Then it becomes the mean over its 7 x 7 pixels, as far as they lie on its surface: of those in its own column the
 * ones that lie within three quarters of a pixel of it, and of the 7 around each of these in its row the ones that lie
 * within as much of that. So the mean follows a slope. Where they are fewer than 12, the disparity goes. Both move it
 * by whole sixteenths, halves to the even number of them. */
#define NADIR_REFINE_NONE 0
#define NADIR_REFINE_SURFACE 1

typedef struct NadirSettings {
  uint32_t size;
  uint32_t until;       /* NADIR_UNTIL_... */
  uint32_t grid;        /* NADIR_GRID_... */
  uint32_t uniqueness;  /* of the matcher's peak check, 1/128; any number, see uniquenessRatio in stereo.h */
  uint32_t postprocess; /* 1: the disparities are cleaned up (IP_SgmPostproc), 0: they stay as they are matched */
  uint32_t min_points;  /* cells with fewer points stay unseen; 1 to 1000000 */
  double percentile;    /* gives a cell its height: the lowest of its points that at least so many percent of them are
                           not higher than; above 0 to 100 */
  double fill_holes_m2; /* patches of unseen cells, which touch along a side or at a corner, up to this area are filled
                           as IP_PullPush fills the map; 0 to 1e6, and the camera needs a map of 2 to 4095 cells a side
                           where it is not 0 */
  double min_height_mm; /* regions are cells higher than this, rounded down; 0 to 65534 */
  double max_step_mm;   /* neighbours that differ by more, rounded down, are not joined; 0 to 65535 */
  double min_area_m2;   /* smaller regions are dropped; 0 to 1e6 */
  uint32_t check;       /* NADIR_CHECK_... */
  uint32_t refine;      /* NADIR_REFINE_... */
  uint32_t range;       /* NADIR_RANGE_... */
  uint32_t support;     /* 0 to NADIR_LARGEST_SUPPORT */
  double dip_mm; /* a region is parted where it sinks by this much at least, rounded up, between two of its tops; 0 to
                    65535, and 0 parts nothing. A top is the height that a quarter of min_area_m2 about it reaches.
                    Each cell goes to the part that its surface rises to: the watershed of the map from below (L.
                    Vincent, P. Soille, "Watersheds in digital spaces", IEEE PAMI 13(6), 1991), of tops with such a
                    dynamic (M. Grimaud, "New measure of contrast: the dynamics", SPIE 1769, 1992). What is parted is
                    then held to min_area_m2 */
} NadirSettings;

/* Fills in the defaults: the left grid to the end, uniqueness 48, the clean-up, percentile 90, 1 point, no holes
 * filled, nothing checked or refined, range 61. Heights and areas follow the camera's cell: higher than one and a half
 * of its sides, steps up to one side, no fewer than 30 cells.
 *
 * camera  its cell_mm is read; null where only NADIR_UNTIL_MATCH is meant: the last three are then 0. */
NADIR_API NadirStatus nadir_settings_fill(NadirSettings* settings, const NadirCamera* camera);

typedef struct NadirRoad NadirRoad;

/* The bytes of a road and of one of its results; 0 where nadir_road_create would refuse the camera or the settings.
 * areas are looked at for their number alone.
 *
 * With the default settings, a map of 64 x 64 cells and no areas, a road and a result take so many thousand bytes:
 *
 *                        320 x 240      640 x 480
 *   NADIR_UNTIL_MATCH    1545 + 155     6007 + 616
 *   NADIR_UNTIL_MAP      1675 + 179     6182 + 640
 *   NADIR_UNTIL_ALL      1978 + 198     6486 + 659
 */
NADIR_API size_t nadir_road_bytes(const NadirCamera* camera, const NadirSettings* settings, uint32_t area_count);
NADIR_API size_t nadir_result_bytes(const NadirCamera* camera, const NadirSettings* settings, uint32_t area_count);

/* Makes a road: checks everything, works out what is the same for every frame and places the areas on the map.
 *
 * areas  area_count of them; null where there are none. Only NADIR_UNTIL_ALL looks at them. They are copied.
 * road   receives the road, to be given back to nadir_road_destroy; null where the call fails.
 * fault  null, or receives where the fault lies.
 *
 * An area's pixels are projected onto the ground along the rays through their centres; a cell belongs to an area if its
 * centre lies inside or on the edge. Both are rounded to whole millimetres as IP_Utils_CreateElevMaskFromImgPoly does
 * it. */
NADIR_API NadirStatus nadir_road_create(const NadirCamera* camera, const NadirSettings* settings,
                                        const NadirArea* areas, uint32_t area_count, NadirRoad** road,
                                        NadirFault* fault);
NADIR_API void nadir_road_destroy(NadirRoad* road); /* null is accepted */

/* The least range that measures things of a height over all of the map that the camera sees: what stands under it is
 * nearer than the ground, and disparities grow with nearness. Where none reaches so far, the longest one; one that
 * pictures of this width do not lengthen is left out.
 *
 * settings    its range is looked at no more than for its being one.
 * tallest_mm  0 to 65534, else NADIR_BAD_SETTING.
 * range       receives NADIR_RANGE_...; untouched where the call fails.
 *
 * Settings that end at the match have no map (NADIR_NOTHING_FOUND). */
NADIR_API NadirStatus nadir_road_range(const NadirCamera* camera, const NadirSettings* settings, double tallest_mm,
                                       uint32_t* range);

/* libnadir's record of the camera, the view and the map, for calls of camera.h beside the road: lowerLeft is the map's
 * corner, offsets included. A road up to the match has none (NADIR_NOTHING_FOUND). */
NADIR_API NadirStatus nadir_road_context(const NadirRoad* road, StereoCtx* context);

/* A rectangle of numbers; row y begins y * stride bytes behind data. */
typedef struct NadirPlane {
  const void* data; /* null where there is none */
  size_t stride;
  uint32_t width, height;
} NadirPlane;

/* An area as it lies on the map. */
typedef struct NadirPlacedArea {
  uint32_t size;
  uint32_t cells;        /* of the map, whose centres lie in it */
  uint32_t whole_on_map; /* 1: no corner lies outside the map */
  uint32_t corner_count;
  const int32_t* ground_mm; /* its corners on the ground: world x, y, x, y, ... */
  NadirPlane mask;          /* bytes: 1 for each of its cells */
} NadirPlacedArea;

/* Reads one of the road's areas; the pointers hold as long as the road does. */
NADIR_API NadirStatus nadir_road_area(const NadirRoad* road, uint32_t index, NadirPlacedArea* area);

/* ---- a frame --------------------------------------------------------------------------------------------------- */

/* A rectified pair of the camera's size, or disparities of the measured view. */
typedef struct NadirFrame {
  uint32_t size;
  uint32_t bits; /* of a picture's pixel: 16, as this processor orders bytes, where 0 means no data; or 8, which count
                    16 times, and 0 is black */
  const void *left, *right;
  size_t left_stride, right_stride; /* bytes from row to row; 16-bit rows may begin at any address */
  const uint8_t* mask; /* null, or of the view: pixels that are not 0 there get no disparity; matching only */
  size_t mask_stride;
  const float* disparity;  /* null, or the view's disparities, pixels, not-a-number for none: nothing is matched then,
                              and the pictures may be null */
  size_t disparity_stride; /* a multiple of 4 */
  /* null, or called at the beginning of every stage with its name ("census", "matching", "points and map"; static
   * storage) and at the end of the last one with null: a caller's clock, which must not touch the road. */
  void (*on_stage)(void* user, const char* name);
  void* user;
} NadirFrame;

typedef struct NadirResult NadirResult;

/* Makes a result for a road and roads of the same camera size, map size, settings and number of areas; it may outlive
 * them. It holds nothing yet. */
NADIR_API NadirStatus nadir_result_create(const NadirRoad* road, NadirResult** result);
NADIR_API void nadir_result_destroy(NadirResult* result); /* null is accepted */

/* Works on a frame: all of the road in one call.
 *
 * Returns NADIR_OK with the findings in `result`, in place of those before. Any other status comes before the first
 * write: the result then holds what it held. */
NADIR_API NadirStatus nadir_road_process(NadirRoad* road, const NadirFrame* frame, NadirResult* result);

/* ---- findings -------------------------------------------------------------------------------------------------- */

/* What became of the picture's pixels. Each is counted in one of the first six members, or with given disparities in
 * `value` and `ambiguous` alone. */
typedef struct NadirPixelCounts {
  uint32_t size;
  uint32_t value;     /* has a disparity */
  uint32_t ambiguous; /* rejected by the matcher's peak check */
  uint32_t removed;   /* by the clean-up */
  uint32_t masked;    /* by the frame's mask */
  uint32_t border;    /* in the frame where the matcher cannot work */
  uint32_t filled;    /* of those with a value, got it from a neighbour in the clean-up */
  uint32_t reserved;  /* 0 */
} NadirPixelCounts;

/* What stands on the ground: neighbouring cells that are high enough and join without a large step. */
typedef struct NadirRegion {
  uint32_t size;
  uint32_t label; /* 1, 2, ... in the order of their first cells, row by row */
  uint32_t cells;
  uint32_t highest_mm, median_mm;    /* of its cells' heights; the median is the lower of the two middle ones */
  uint32_t left, top, right, bottom; /* box in cells, half-open */
  uint32_t at_map_edge;              /* 1 where the box touches the map's edge: what stands there may go on beyond it */
  double centre_x_mm, centre_y_mm;   /* world, the mean of its cells' centres */
  double area_m2;
  uint32_t at_picture_edge; /* 1 where a point of it lies within 8 pixels of an edge of either picture, 16 with range
                               122, 32 with 244: what stands there may go on where nothing is measured, and be higher
                               and larger than this */
  uint32_t reserved;        /* 0 */
} NadirRegion;

/* What stands in an area. */
typedef struct NadirOccupancy {
  uint32_t size;
  uint32_t cells;                 /* of the area */
  uint32_t seen_cells;            /* of them, those with a height */
  uint32_t covered_cells;         /* of them, those that belong to any region */
  uint32_t highest_mm, median_mm; /* of the covered cells, 0 without one */
  uint32_t first_share;           /* of the findings' shares: each region that it shares cells with, by label */
  uint32_t share_count;
  uint32_t piece_mm; /* highest of the cells that join as those of a region do, where so many of them lie in
                        the area that they make up half of min_area_m2, or half of the area if that is
                        less; 0 without one */
} NadirOccupancy;

/* A region's cells that lie in an area. */
typedef struct NadirShare {
  uint32_t size;
  uint32_t label;
  uint32_t cells;
  uint32_t highest_mm, median_mm;
  uint32_t reserved; /* 0 */
} NadirShare;

/* How far a frame's findings can be trusted, as numbers. Shares go from 0 to 1. Not-a-number stands for what could not
 * be measured: without pictures, without a mount, where too little of the ground is seen. The ground is judged on
 * blocks of 8 x 8 pixels, whose mean disparities are fewer and steadier than those of pixels. */
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

#define NADIR_WARNINGS 9 /* their ids go from 1 to this; a result has at most one of each */

/* Why a result may not be relied on. An id stays with its meaning for good. A cause hides its consequences: of pictures
 * that are swapped nothing else is said. */
typedef struct NadirWarning {
  uint32_t size;
  uint32_t id;       /* NADIR_WARNING_... */
  uint32_t count;    /* of the numbers */
  uint32_t reserved; /* 0 */
  double numbers[4]; /* 0 behind the last one */
} NadirWarning;

/* A warning's fixed name, "left-and-right-swapped"; null for an id that is none. Static storage, as all below. */
NADIR_API const char* nadir_warning_name(uint32_t id);

/* The fixed name of one of its numbers, counted from 0, with its unit: "height_mm". Null for one that it has not. */
NADIR_API const char* nadir_warning_number_name(uint32_t id, uint32_t number);

/* What it says, as a format of printf with a conversion for each of its numbers, all double, in their order. Shares are
 * given in percent there: nadir_warning_scale is 100 for them, and 1 for all other numbers. With n[i] = numbers[i] *
 * nadir_warning_scale(id, i) it is `printf(nadir_warning_sentence(id), n[0], n[1], n[2], n[3])`: printf passes over
 * numbers that have no conversion. The sentence may be put in other words by a later version. */
NADIR_API const char* nadir_warning_sentence(uint32_t id);
NADIR_API double nadir_warning_scale(uint32_t id, uint32_t number);

typedef struct NadirFindings {
  uint32_t size;
  uint32_t region_count, area_count, share_count, warning_count;
  uint32_t points;         /* pixels whose disparity lies in the world: not at infinity or beyond */
  uint32_t points_inside;  /* of them, those over a cell of the map */
  uint32_t seen_cells;     /* cells with a height that points gave */
  uint32_t filled_cells;   /* cells with a height from around them */
  uint32_t reserved;       /* 0 */
  NadirPlane disparity;    /* uint16_t, the view's, 1/16 pixel, 0 for none; without data where disparities were given */
  NadirPlane heights;      /* uint16_t, mm above the ground to the nearest, halves up, 0 for unseen: what is lower than
                              1 is stored as 1, what is higher than 65535 as 65535 */
  NadirPlane point_counts; /* uint32_t, the points over each cell */
  NadirPlane labels;       /* uint16_t, the region of each cell, 0 for none */
  const NadirPixelCounts* pixels;
  const NadirRegion* regions;
  const NadirOccupancy* areas; /* in the order of the road's */
  const NadirShare* shares;
  const NadirWarning* warnings; /* empty when all is well */
  const NadirTrust* trust;
} NadirFindings;

/* Reads what the result holds. Whatever the settings leave out is null or 0. The pointers hold until the result is
 * processed into again or destroyed. NADIR_NOTHING_FOUND before the first frame. */
NADIR_API NadirStatus nadir_result_read(const NadirResult* result, NadirFindings* findings);

/* A point in the world. Such records lie in arrays without a size of their own: they will not grow. */
typedef struct NadirPoint {
  float x_mm, y_mm, z_mm;
  float disparity_px; /* with the column shift: 0 at infinity */
  uint32_t column, row;
  uint32_t cell;     /* of the map that it lies over, row * map_width_cells + column; NADIR_NO_CELL beside the map */
  uint32_t reserved; /* 0 */
} NadirPoint;

#define NADIR_NO_CELL 0xFFFFFFFFu

/* Lists the points of a frame, row by row, as ip_stereo_disp2world places each of them.
 *
 * frame   the one that was processed into `result`; its disparities are read where it has some, else the result's.
 * points  room for `room` points; a picture has at most width_px * height_px. May be null where room is 0.
 * count   receives how many points there are, also where there is no room for all. */
NADIR_API NadirStatus nadir_road_points(NadirRoad* road, const NadirFrame* frame, const NadirResult* result,
                                        NadirPoint* points, size_t room, size_t* count);

/* The ground as a frame's points show it near the mount's. */
typedef struct NadirGroundPlane {
  uint32_t size;
  uint32_t points;  /* of the frame */
  uint32_t inliers; /* of them, those within half a pixel of the plane */
  uint32_t reserved;
  double height_mm, tilt_deg, pan_deg; /* what the camera would have to say for this plane to be the ground */
  double axis_below_horizon_deg;       /* the same plane in other words: how far the optical axis points down, and */
  double roll_deg;                     /* how far the picture's right side is turned down */
  double rms_mm, rms_px;               /* of the inliers' distances to the plane, and of their disparities */
} NadirGroundPlane;

/* Fits a plane to the points that lie on the largest one not unlike the mount's ground: its direction within 10 degrees
 * and its distance within a quarter of the camera's height. It takes the time of several frames; the frames themselves
 * are judged by NadirTrust.
 *
 * frame, result  as for nadir_road_points.
 *
 * NADIR_NOTHING_FOUND where a tenth of the points do not agree on one.
 *
 * Method: M. Fischler, R. Bolles, "Random sample consensus", Communications of the ACM 24(6), 1981; then least squares
 * of inverse depth. The random numbers are always the same. */
NADIR_API NadirStatus nadir_road_ground_plane(NadirRoad* road, const NadirFrame* frame, const NadirResult* result,
                                              NadirGroundPlane* plane);

/* ---- from frame to frame --------------------------------------------------------------------------------------- */

typedef struct NadirTracker NadirTracker;

typedef struct NadirTrackSettings {
  uint32_t size;
  uint32_t average_frames;       /* maps in the window that the average is taken over; 0 to 1000 */
  double noise_mm;               /* standard deviation of a measured height; more than 0, at most 1e6 */
  double acceleration_mm_per_s2; /* standard deviation of what changes the rate; 0 to 1e9 */
  double patience_s;             /* how long a track goes on without a measurement; 0 to 1e6 */
  double disparity_px;           /* standard deviation of a measured disparity; 0 to 1000 */
} NadirTrackSettings;

/* Fills in the defaults: no average, 10 mm, 1500 mm per square second (a walking head's), half a second, and nothing
 * said of disparities.
 *
 * Where disparity_px is not 0, heights are told to be as uncertain as the camera sees them: over an area's centre, at
 * the height that is measured or tracked, they are off by as many millimetres as make up that part of a pixel. 0.15 is
 * what the matcher reaches on small things. Most of that stays while the same disparity is met: it is in a track's
 * deviation, and counts for what is likely, but a filter does not even it out. Four tenths as much change from frame to
 * frame, and noise_mm is then the least of noise. */
NADIR_API NadirStatus nadir_track_settings_fill(NadirTrackSettings* settings);

/* The height of what stands in an area, followed by a Kalman filter of height and rate (IP_Kalman1d_*). A track begins
 * at the first measured height, as uncertain as that, with a rate of 0 that is uncertain by 300 mm per second.
 *
 * Too few cells are no measurement, and a track goes on with less than what begins one: it begins at piece_mm of the
 * NadirOccupancy, where there is highest_mm too; it goes on with piece_mm wherever that is likely, or else with the
 * lower one of both.
 *
 * A height is unlikely that lies more than five standard deviations from where the filter expects it, its own and the
 * measurement's together. It is doubted: the track goes on as if nothing were measured. The third doubted height of the
 * same thing is believed, and the track goes on from there: they come without a believed one in between, each likely to
 * a filter that began at the first of them. */
typedef struct NadirTrack {
  uint32_t size;
  uint32_t active; /* 0: nothing is followed, and the rest is 0 */
  double height_mm, rate_mm_per_s;
  double deviation_mm; /* how uncertain the height is, standard deviation */
} NadirTrack;

/* The bytes of a tracker; 0 where nadir_tracker_create would refuse the settings. */
NADIR_API size_t nadir_tracker_bytes(const NadirRoad* road, const NadirTrackSettings* settings);

/* Makes a tracker for the results of a road and of roads with the same camera size, map size, settings and number of
 * areas; it may outlive them. Nothing is followed yet.
 *
 * tracker  receives it, to be given back to nadir_tracker_destroy.
 * fault    null, or receives which of the settings is out of range. */
NADIR_API NadirStatus nadir_tracker_create(const NadirRoad* road, const NadirTrackSettings* settings,
                                           NadirTracker** tracker, NadirFault* fault);
NADIR_API void nadir_tracker_destroy(NadirTracker* tracker); /* null is accepted */

/* What a tracker takes of a frame; a result gives it, or a log of an earlier run. */
typedef struct NadirMeasurement {
  uint32_t size;
  uint32_t area_count;      /* the road's */
  int64_t time_ns;          /* of the frame, from any beginning; never before that of the last one */
  const double* highest_mm; /* in each area, 0 to 65535, not-a-number where nothing stands; null without areas */
  NadirPlane heights;       /* the map; without data it does not enter the average */
  const double* piece_mm;   /* each area's NadirOccupancy.piece_mm, as highest_mm; null: what is highest is enough */
} NadirMeasurement;

/* Takes a frame's findings, in the order of the frames. */
NADIR_API NadirStatus nadir_tracker_step(NadirTracker* tracker, const NadirResult* result, int64_t time_ns);

/* The same with a measurement that a log holds: stepping again through all of them leads to the same state. */
NADIR_API NadirStatus nadir_tracker_replay(NadirTracker* tracker, const NadirMeasurement* measurement);

/* What is tracked in an area after the last step. */
NADIR_API NadirStatus nadir_tracker_read(const NadirTracker* tracker, uint32_t area, NadirTrack* track);

/* The mean of the last maps: cell by cell of the heights there are, rounded down, where more than half of the window's
 * maps have one; elsewhere 0. The plane holds until the next step. NADIR_NOTHING_FOUND before the first map. */
NADIR_API NadirStatus nadir_tracker_average(NadirTracker* tracker, NadirPlane* heights);

/* Saves all that the tracker knows, little endian and with a version, so that another process or machine goes on.
 *
 * Returns the bytes that it takes; where `room` is less than that, or memory null, nothing is written. */
NADIR_API size_t nadir_tracker_save(const NadirTracker* tracker, void* memory, size_t room);

/* Takes up what was saved by a tracker of the same settings, number of areas and map size. NADIR_BAD_STATE leaves the
 * tracker as it was. */
NADIR_API NadirStatus nadir_tracker_load(NadirTracker* tracker, const void* memory, size_t bytes);

#ifdef __cplusplus
}
#endif

#endif
