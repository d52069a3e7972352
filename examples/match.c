/* Matches a pair of random dots, one picture being the other moved by 20 pixels, and counts how often it finds that. */
#include <nadir/nadir.h>

/* left, right: rectified pictures of width x height 16-bit pixels, 0 = no data; mask: 0 = keep. The other buffers are
 * the caller's too. `disparity` comes out on the right picture's grid, in 1/16 pixel, 0 = none. */
void match(const uint16_t* left, const uint16_t* right, const uint8_t* mask, uint32_t width, uint32_t height,
           uint32_t* censusLeft, uint32_t* censusRight, uint16_t* disparity) {
  const SgmParams params = {64, 48};
  IP_Census_5x5(left, censusLeft, width, height);
  IP_Census_5x5(right, censusRight, width, height);
  IP_SgmFull(censusLeft, censusRight, right, width, height, &params, disparity, 0);
  IP_SgmPostproc(disparity, mask, disparity, width, height);
}

#include <stdio.h>
#include <stdlib.h>

enum { width = 160, height = 120, shift = 20 };

static uint16_t left[height][width], right[height][width], disparity[height][width];
static uint32_t censusLeft[height][width], censusRight[height][width];
static uint8_t mask[height][width];

int main(void) {
  unsigned dots = 1, matched = 0, all = height * (width - shift);
  for (unsigned y = 0; y < height; ++y)
    for (unsigned x = 0; x < width; ++x) left[y][x] = (uint16_t)(1 + ((dots = dots * 1103515245 + 12345) >> 20));
  for (unsigned y = 0; y < height; ++y)
    for (unsigned x = 0; x < width - shift; ++x) right[y][x] = left[y][x + shift];
  match(left[0], right[0], mask[0], width, height, censusLeft[0], censusRight[0], disparity[0]);
  for (unsigned y = 0; y < height; ++y)
    for (unsigned x = 0; x < width - shift; ++x) matched += abs(disparity[y][x] - shift * SGM_DISP_SCALE) <= 1;
  printf("%u %% of the pixels are found 20 pixels away\n", 100 * matched / all);
  return 0;
}
