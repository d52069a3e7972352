// One pass of the matcher over a pair, and passes over the same pair seen otherwise.
#pragma once

#include <nadir/ground.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "ground/records/shape.hpp"

namespace nadir::ground {

// What a pass reads and writes, on the matcher's grid.
struct PassMemory {
  uint16_t *first, *reference;            // the pictures as the matcher takes them
  uint32_t *firstCodes, *referenceCodes;  // their census codes
  uint8_t* mask;                          // all 0 while nothing is masked
  uint16_t* raw;                          // receives the disparities as they are matched
  void *walk, *cleanUp;                   // of nadir_sgm_full and nadir_sgm_postproc
  size_t walkBytes, cleanUpBytes;
};

// Each row's last pixel comes first. `row` is room for one row.
template <class Pixel, class Mirror>
void mirrorRows(Pixel* pixels, Mirror mirror, const Shape& shape, void* row) {
  auto* copy = static_cast<Pixel*>(row);
  for (uint32_t y = 0; y < shape.height; ++y, pixels += shape.width) {
    std::memcpy(copy, pixels, shape.width * sizeof(Pixel));
    mirror(copy, pixels, shape.width);
  }
}

// Matches, and cleans up where the settings say so.
void pass(const PassMemory& memory, const NadirSettings& settings, const Shape& shape, uint16_t* disparity);

// The same of both pictures upside down, the disparities upright again. Costs travel along paths from above; on slanted
// surfaces they lag behind, and now they come from below, where the lag has the other sign.
void passUpsideDown(const PassMemory& memory, const NadirSettings& settings, const Shape& shape, uint16_t* disparity);

// The same with the other picture as the reference: disparities of the first picture, its last column first. The mask
// must be all 0, since it is the reference's.
void passFromOtherSide(const PassMemory& memory, const NadirSettings& settings, const Shape& shape,
                       uint16_t* disparity);

}  // namespace nadir::ground
