// The record for the matcher's intermediate results is allocated and freed here.
#include <nadir/stereo.h>

#include <initializer_list>
#include <limits>
#include <utility>

#include "core/memory.hpp"

namespace nadir {
namespace {

// Stores the size, as 32 bits hold it, and allocates that much; null where the true size does not fit.
uint8_t* allocateBlock(uint64_t bytes, uint32_t* size) {
  *size = static_cast<uint32_t>(bytes);
  if (bytes > std::numeric_limits<uint32_t>::max()) return nullptr;
  return static_cast<uint8_t*>(allocate(bytes));
}

// Allocates the blocks in this order, up to the first that fails.
bool allocateAll(SgmDebugData* debug, uint64_t pixels, uint32_t numDisparities) {
  const uint64_t tooMany = std::numeric_limits<uint32_t>::max();  // what fails anyway must not wrap to what fits
  const uint64_t volume = pixels > tooMany ? pixels : pixels * numDisparities;
  if (!(debug->aggregatedVolume = allocateBlock(volume, &debug->aggregatedVolumeSize))) return false;
  if (!(debug->costVolume = allocateBlock(volume, &debug->costVolumeSize))) return false;
  for (uint8_t** map : {&debug->p2Left, &debug->p2UpLeft, &debug->p2Up, &debug->p2UpRight}) {
    if (!(*map = allocateBlock(pixels, &debug->p2Size))) return false;
  }
  return (debug->peakMap = allocateBlock(pixels, &debug->peakMapSize)) != nullptr;
}

}  // namespace
}  // namespace nadir

int32_t IP_SgmMakeDebugData(uint32_t width, uint32_t height, uint32_t numDisparities, SgmDebugData* debug) {
  *debug = {};
  if (nadir::allocateAll(debug, uint64_t{width} * height, numDisparities)) return 1;
  IP_SgmFreeDebugData(debug);
  return 0;
}

void IP_SgmFreeDebugData(SgmDebugData* debug) {
  for (uint8_t** b : {&debug->aggregatedVolume, &debug->costVolume, &debug->p2Left, &debug->p2UpLeft, &debug->p2Up,
                      &debug->p2UpRight, &debug->peakMap}) {
    std::free(std::exchange(*b, nullptr));
  }
}
