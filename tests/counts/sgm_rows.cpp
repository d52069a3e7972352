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
  const nadir::lab::TexturedPair pair = nadir::lab::texturedPair(640, 480);
  if (rows < 5 || rows > pair.height) {
    std::fprintf(stderr, "usage: nadir_sgm_rows ROWS, 5 to %u\n", pair.height);
    return 2;
  }
  const size_t pixels = size_t{pair.width} * pair.height, start = size_t{pair.width} * ((pair.height - rows) / 2);
  std::vector<uint32_t> first(pixels, CENSUS_INVALID), reference(pixels, CENSUS_INVALID);
  IP_Census_5x5(pair.first.data(), first.data(), pair.width, pair.height);
  IP_Census_5x5(pair.reference.data(), reference.data(), pair.width, pair.height);
  const SgmParams params = {64, 10};
  std::vector<uint16_t> disparity(size_t{pair.width} * rows);
  IP_SgmFull(&first[start], &reference[start], &pair.reference[start], pair.width, rows, &params, disparity.data(),
             nullptr);
  size_t matched = 0;
  for (const uint16_t value : disparity) matched += value != 0;
  std::printf("%zu of %zu pixels have a disparity\n", matched, disparity.size());
  return 0;
}
