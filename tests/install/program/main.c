#include <nadir/nadir.h>
#include <stdio.h>

/* The median of 1 to 9 is 5: the program has the library, and not only its header. */
int main(void) {
  uint16_t pixels[3][4] = {{9, 1, 8, 0}, {2, 7, 3, 0}, {6, 4, 5, 0}}, result[3][4] = {{0}};
  Img src, dst;
  Img_Init(&src, 4, 3, IMG_TYPE_U16, pixels);
  Img_Init(&dst, 4, 3, IMG_TYPE_U16, result);
  if (!IP_Median3x3(&src, &dst)) return 1;
  printf("nadir %s: the median is %d\n", nadir_version(), result[1][1]);
  return result[1][1] == 5 ? 0 : 1;
}
