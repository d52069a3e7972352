/* Goes from a rectified pair (binary PGM of 8 bits, or of 16 with 0 for no data) to what stands on the ground, by one
 * call of libnadirground: standing LEFT RIGHT
 *
 * Its status is 3 where the result is there, but may not be relied on. */
#include <nadir/ground.h>
#include <stdio.h>
#include <stdlib.h>

typedef struct {
  uint32_t width, height, bits;
  uint8_t* bytes;
} Picture;

static void refuse(const char* path) {
  fprintf(stderr, "%s is no binary PGM\n", path);
  exit(1);
}

/* Two bytes are one pixel of 16 bits, the high one first; the library wants them as this processor has them. */
static void turnPairs(uint8_t* bytes, size_t count) {
  for (size_t i = 0; i < count; i += 2) {
    const uint16_t value = (uint16_t)(bytes[i] << 8 | bytes[i + 1]);
    *(uint16_t*)(void*)(bytes + i) = value;
  }
}

static Picture picture(const char* path) {
  Picture p = {0, 0, 8, NULL};
  unsigned largest = 0;
  FILE* file = fopen(path, "rb");
  if (!file || fscanf(file, "P5 %u %u %u", &p.width, &p.height, &largest) != 3 || fgetc(file) == EOF) refuse(path);
  if (p.width > 4096 || p.height > 4096 || largest > 65535) refuse(path);
  if (largest > 255) p.bits = 16;
  const size_t count = (size_t)p.width * p.height * (p.bits / 8);
  p.bytes = malloc(count + 1);
  if (!p.bytes || fread(p.bytes, 1, count, file) != count) refuse(path);
  if (p.bits == 16) turnPairs(p.bytes, count);
  fclose(file);
  return p;
}

/* Ends the program unless the call has succeeded; a status says in words what was wrong. */
static void demand(NadirStatus status, const NadirFault* fault) {
  if (status == NADIR_OK) return;
  fprintf(stderr, "%s%s%s\n", nadir_status_text(status), fault && fault->field ? ": " : "",
          fault && fault->field ? fault->field : "");
  exit(1);
}

/* This camera hangs two metres above the ground and looks straight down. Its map has 64 x 64 cells of 25 mm. */
static NadirCamera cameraOf(const Picture* p) {
  NadirCamera camera = {0};
  camera.size = sizeof camera;
  camera.width_px = p->width;
  camera.height_px = p->height;
  camera.baseline_mm = 100;
  camera.focal_px = 300;
  camera.principal_x_px = 160;
  camera.principal_y_px = 120;
  camera.height_mm = 2000;
  camera.cell_mm = 25;
  camera.map_width_cells = camera.map_height_cells = 64;
  return camera;
}

static NadirFrame frameOf(const Picture* left, const Picture* right) {
  NadirFrame frame = {0};
  frame.size = sizeof frame;
  frame.bits = left->bits;
  frame.left = left->bytes;
  frame.right = right->bytes;
  frame.left_stride = frame.right_stride = (size_t)left->width * (left->bits / 8);
  return frame;
}

static void print(const NadirRegion* region, uint32_t cellMm) {
  printf("region %u: %u x %u mm around (%.0f, %.0f), %u mm high\n", region->label,
         (region->right - region->left) * cellMm, (region->bottom - region->top) * cellMm, region->centre_x_mm,
         region->centre_y_mm, region->median_mm);
}

/* A map without regions can mean that nobody is there, or that the lens is covered: a warning tells which. */
static void tell(const NadirWarning* warning) {
  double n[4];
  for (uint32_t i = 0; i < 4; ++i) n[i] = warning->numbers[i] * nadir_warning_scale(warning->id, i);
  fprintf(stderr, "%s: ", nadir_warning_name(warning->id));
  fprintf(stderr, nadir_warning_sentence(warning->id), n[0], n[1], n[2], n[3]);
  fputs("\n", stderr);
}

int main(int count, char** arguments) {
  if (count != 3) return fputs("standing LEFT.pgm RIGHT.pgm\n", stderr), 1;
  const Picture left = picture(arguments[1]), right = picture(arguments[2]);
  if (left.width != right.width || left.height != right.height || left.bits != right.bits)
    return fputs("the pictures differ in size or bits\n", stderr), 1;

  const NadirCamera camera = cameraOf(&left);
  const NadirFrame frame = frameOf(&left, &right);
  NadirFault fault = {0};
  NadirSettings settings;
  NadirRoad* road;
  NadirResult* result;
  fault.size = sizeof fault;
  demand(nadir_settings_fill(&settings, &camera), NULL);
  demand(nadir_road_create(&camera, &settings, NULL, 0, &road, &fault), &fault);
  demand(nadir_result_create(road, &result), NULL);

  /* A camera's next frames would be worked on by this call again, in the same memory. */
  demand(nadir_road_process(road, &frame, result), NULL);
  NadirFindings findings = {0};
  findings.size = sizeof findings;
  demand(nadir_result_read(result, &findings), NULL);
  for (uint32_t i = 0; i < findings.region_count; ++i) print(&findings.regions[i], camera.cell_mm);

  for (uint32_t i = 0; i < findings.warning_count; ++i) tell(&findings.warnings[i]);
  const int doubtful = findings.warning_count > 0;

  nadir_result_destroy(result);
  nadir_road_destroy(road);
  free(left.bytes);
  free(right.bytes);
  return doubtful ? 3 : 0;
}
