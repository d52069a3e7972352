/* Goes from a rectified pair (16-bit binary PGM, 0 for no data) to what stands on the ground: regions LEFT RIGHT */
#include <nadir/nadir.h>
#include <stdio.h>
#include <stdlib.h>

/* The camera's numbers: baseline and focal length in 1/256 mm and 1/256 pixel, the principal point in 1/16 pixel; the
 * mounting's height in mm and its angles in degrees: this one looks straight down. */
static const IntCalibParams lens = {100 * 256, 300 * 256, 160 * 16, 120 * 16};
static const Orientation mounting = {2000, 0, 0};

/* The map on the ground has 64 x 64 cells of 25 mm. A region is higher than 40 mm, has no step above 25 mm between
 * neighbours, and at least 30 cells: what is smaller are errors of the matcher along edges. */
enum { cells = 64, cellMm = 25, lowestMm = 40, stepMm = 25, fewestCells = 30 };

typedef struct {
  uint32_t width, height;
  uint16_t* pixels;
} Picture;

static void* memory(size_t count, size_t size) {
  void* block = calloc(count, size);
  if (!block) exit(2);
  return block;
}

static void refuse(const char* path) {
  fprintf(stderr, "%s is no 16-bit binary PGM\n", path);
  exit(1);
}

static Picture picture(const char* path) {
  Picture p = {0, 0, 0};
  unsigned largest = 0;
  FILE* file = fopen(path, "rb");
  if (!file || fscanf(file, "P5 %u %u %u", &p.width, &p.height, &largest) != 3 || fgetc(file) == EOF) refuse(path);
  if (p.width > 4096 || p.height > 4096 || largest < 256 || largest > 65535) refuse(path);
  p.pixels = memory((size_t)p.width * p.height, sizeof *p.pixels);
  for (size_t i = 0; i < (size_t)p.width * p.height; ++i) {
    const unsigned high = (unsigned)fgetc(file) & 0xFF;
    p.pixels[i] = (uint16_t)(high << 8 | ((unsigned)fgetc(file) & 0xFF));
  }
  if (feof(file)) refuse(path);
  fclose(file);
  return p;
}

/* Disparities on the right picture's grid, in 1/16 pixel, 0 for none. */
static uint16_t* disparities(const Picture* left, const Picture* right) {
  const size_t pixels = (size_t)right->width * right->height;
  const SgmParams params = {64, 48};
  uint32_t* censusLeft = memory(pixels, sizeof *censusLeft);
  uint32_t* censusRight = memory(pixels, sizeof *censusRight);
  uint8_t* mask = memory(pixels, sizeof *mask);
  uint16_t* found = memory(pixels, sizeof *found);
  IP_Census_5x5(left->pixels, censusLeft, left->width, left->height);
  IP_Census_5x5(right->pixels, censusRight, right->width, right->height);
  IP_SgmFull(censusLeft, censusRight, right->pixels, right->width, right->height, &params, found, 0);
  IP_SgmPostproc(found, mask, found, right->width, right->height);
  free(censusLeft);
  free(censusRight);
  free(mask);
  return found;
}

/* Makes a cell at least as high as a point over it. World z points down from the camera. */
static void raise(uint16_t* map, const StereoCtx* camera, const Point3_f32* world) {
  const float heightMm = camera->orientation.height - world->z;
  Point_f32 place;
  ip_stereo_world2elev(camera, world, &place);
  if (!(place.x >= 0 && place.y >= 0 && place.x < cells && place.y < cells) || !(heightMm < 65535)) return;
  uint16_t* cell = &map[(size_t)place.y * cells + (size_t)place.x];
  if (heightMm > *cell) *cell = (uint16_t)(heightMm + 0.5f);
}

static void raiseAll(uint16_t* map, const StereoCtx* camera, const uint16_t* disparity, const Picture* right) {
  for (uint32_t y = 0; y < right->height; ++y)
    for (uint32_t x = 0; x < right->width; ++x) {
      const Point_f32 pixel = {(float)x, (float)y};
      const float pixels = (float)disparity[(size_t)y * right->width + x] / SGM_DISP_SCALE;
      Point3_f32 world;
      if (ip_stereo_disp2world(camera, &pixel, &world, pixels)) raise(map, camera, &world);
    }
}

static void print(const RegionEntry* region, const StereoCtx* camera) {
  const Point_f32 middle = {(float)(region->xMin + region->xEnd) / 2, (float)(region->yMin + region->yEnd) / 2};
  Point3_f32 world;
  uint16_t heightMm;
  ip_stereo_elev2world(camera, &middle, &world, camera->orientation.height);
  IP_Utl_Median_u16(region->values, region->pixelCount, &heightMm);
  printf("region %u: %d x %d mm around (%.0f, %.0f), %u mm high\n", region->label,
         (region->xEnd - region->xMin) * cellMm, (region->yEnd - region->yMin) * cellMm, world.x, world.y, heightMm);
}

int main(int count, char** arguments) {
  static uint16_t map[cells * cells];
  static RegionList regions;
  const ElevMapParams grid = {cells, cells, cellMm, cellMm};
  const RgeParams rule = {0, 0, 0, 0, stepMm, lowestMm};
  StereoCtx camera;
  ImgC image;
  if (count != 3) return fputs("regions LEFT.pgm RIGHT.pgm\n", stderr), 1;

  const Picture left = picture(arguments[1]), right = picture(arguments[2]);
  if (left.width != right.width || left.height != right.height) return fputs("the sizes differ\n", stderr), 1;
  uint16_t* disparity = disparities(&left, &right);
  ip_stereo_init(&camera, &lens, &mounting, &grid);
  raiseAll(map, &camera, disparity, &right);

  ImgC_Init(&image, cells, cells, IMG_TYPE_U16, map);
  if (!IP_RGE_Init() || !IP_RGE_Process(&image, &rule) || !IP_RGE_CreateRegionList(&regions)) return 2;
  for (uint32_t i = 0; i < regions.count; ++i)
    if (regions.entries[i].pixelCount >= fewestCells) print(&regions.entries[i], &camera);
  free(disparity);
  free(left.pixels);
  free(right.pixels);
  return 0;
}
