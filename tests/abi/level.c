/* Succeeds where the library runs at the level given: a test run that means to show the vector kernels of a processor,
 * or a processor without any, asks this first. */
#include <nadir/nadir.h>
#include <stdio.h>
#include <string.h>

int main(int argc, char** argv) {
  printf("nadir %s runs at level %s\n", nadir_version(), nadir_simd_level());
  return argc == 2 && strcmp(argv[1], nadir_simd_level()) == 0 ? 0 : 1;
}
