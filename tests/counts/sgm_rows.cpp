// Matches so many rows from the middle of a 640x480 pair, once: what the model of the processors' cycles looks at.
//
//   nadir_sgm_rows ROWS
#include <nadir/stereo.h>

#include <cstdio>
#include <cstdlib>
#include <vector>

#include "lab/textured_pair.hpp"

int main(int argc, char** argv) {
  const uint32_t rows = argc == 2 ? static_cast<uint32_t>(std::atoi(argv[1])) : 0;
  const nadir::bench::Scene scene = nadir::bench::makeScene(640, 480);
  if (rows < 5 || rows > scene.height) {
    std::fprintf(stderr, "usage: nadir_sgm_rows ROWS, 5 to %u\n", scene.height);
    return 2;
  }
  const size_t pixels = size_t{scene.width} * scene.height, start = size_t{scene.width} * ((scene.height - rows) / 2);
  std::vector<uint32_t> first(pixels, CENSUS_INVALID), reference(pixels, CENSUS_INVALID);
  IP_Census_5x5(scene.first.data(), first.data(), scene.width, scene.height);
  IP_Census_5x5(scene.reference.data(), reference.data(), scene.width, scene.height);
  const SgmParams params = {64, 10};
  std::vector<uint16_t> disparity(size_t{scene.width} * rows);
  IP_SgmFull(&first[start], &reference[start], &scene.reference[start], scene.width, rows, &params, disparity.data(),
             nullptr);
  size_t matched = 0;
  for (const uint16_t value : disparity) matched += value != 0;
  std::printf("%zu of %zu pixels have a disparity\n", matched, disparity.size());
  return 0;
}
