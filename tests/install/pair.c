/* Writes left.pgm and right.pgm: a camera 2 m above a textured ground sees a box of 400 x 350 x 500 mm. */
#include <stdint.h>
#include <stdio.h>

/* With a baseline of 100 mm and a focal length of 300 pixels the ground lies 15 pixels apart and the box's top, at
 * 1500 mm, 20. On the right picture the top covers the columns 100 to 179 and the rows 80 to 149. */
enum { width = 320, height = 240, groundPx = 15, topPx = 20 };

static int onTop(int x, int y) { return x >= 100 && x < 180 && y >= 80 && y < 150; }

static unsigned texture(unsigned x, unsigned y, unsigned surface) {
  unsigned mixed = (x * 73856093u) ^ (y * 19349663u) ^ (surface * 83492791u);
  mixed ^= mixed >> 13;
  mixed *= 0x5bd1e995u;
  return 1 + ((mixed ^ (mixed >> 15)) & 0xFFF);
}

/* What a picture shows whose points lie `apart` * disparity to the right of the right picture's. */
static unsigned pixel(int x, int y, int apart) {
  if (onTop(x - apart * topPx, y)) return texture((unsigned)(x - apart * topPx), (unsigned)y, 1);
  return texture((unsigned)(x - apart * groundPx + 1000), (unsigned)y, 0);
}

static int written(const char* path, int apart) {
  FILE* file = fopen(path, "wb");
  if (!file) return 0;
  fprintf(file, "P5 %d %d 4096\n", width, height);
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x) {
      const unsigned value = pixel(x, y, apart);
      fputc((int)(value >> 8), file);
      fputc((int)(value & 0xFF), file);
    }
  return !fclose(file);
}

int main(void) { return written("left.pgm", 1) && written("right.pgm", 0) ? 0 : 1; }
