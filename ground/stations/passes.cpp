// The census compares a pixel with all its neighbours alike: codes of a picture that is turned or mirrored are the
// turned or mirrored codes with their bits in another order, and costs are the same. So codes are moved, not made anew.
#include "ground/stations/passes.hpp"

#include <nadir/imgproc.h>
#include <nadir/stereo.h>

#include <algorithm>
#include <cstring>
#include <utility>

#include "ground/kernels/kernels.hpp"

namespace nadir::ground {

namespace {

template <class Pixel>
void turnUpsideDown(Pixel* pixels, const Shape& shape) {
  const size_t width = shape.width;
  for (size_t top = 0, bottom = shape.height - 1; top < bottom; ++top, --bottom)
    std::swap_ranges(pixels + top * width, pixels + (top + 1) * width, pixels + bottom * width);
}

void turnUpsideDown(const PassMemory& m, const Shape& shape) {
  turnUpsideDown(m.firstCodes, shape);
  turnUpsideDown(m.referenceCodes, shape);
  turnUpsideDown(m.reference, shape);
  turnUpsideDown(m.mask, shape);
}

// The matcher's walk is free between passes, and has room for more than a row of codes.
void mirror(const PassMemory& m, const Shape& shape) {
  const RoadKernels& kernels = roadKernels();
  mirrorRows(m.firstCodes, kernels.mirrorCodes, shape, m.walk);
  mirrorRows(m.referenceCodes, kernels.mirrorCodes, shape, m.walk);
  mirrorRows(m.first, kernels.mirror16, shape, m.walk);
}

}  // namespace

void pass(const PassMemory& m, const NadirSettings& settings, const Shape& shape, uint16_t* disparity) {
  const SgmParams params{64, settings.uniqueness};
  nadir_sgm_full(m.firstCodes, m.referenceCodes, m.reference, shape.width, shape.height, &params, m.raw, nullptr,
                 m.walk, m.walkBytes);
  if (settings.postprocess)
    nadir_sgm_postproc(m.raw, m.mask, disparity, static_cast<uint16_t>(shape.width),
                       static_cast<uint16_t>(shape.height), m.cleanUp, m.cleanUpBytes);
  else
    std::memcpy(disparity, m.raw, shape.pixels() * sizeof *disparity);
}

void passUpsideDown(const PassMemory& m, const NadirSettings& settings, const Shape& shape, uint16_t* disparity) {
  turnUpsideDown(m, shape);
  pass(m, settings, shape, disparity);
  turnUpsideDown(m, shape);
  turnUpsideDown(disparity, shape);
}

void passFromOtherSide(const PassMemory& m, const NadirSettings& settings, const Shape& shape, uint16_t* disparity) {
  mirror(m, shape);
  PassMemory other = m;
  std::swap(other.first, other.reference);
  std::swap(other.firstCodes, other.referenceCodes);
  pass(other, settings, shape, disparity);
  mirror(m, shape);
}

}  // namespace nadir::ground
