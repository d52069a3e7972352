// These are the exported functions that choose a pixel's disparity.
#include <nadir/stereo.h>

#include "simd/cpu.hpp"
#include "stereo/kernels.hpp"

uint32_t SGM_FindMinIdx(const uint8_t* costs, uint32_t count, uint8_t* minValue, uint32_t* minIndex) {
  uint8_t smallest = 255;
  uint32_t index = 255;
  for (uint32_t i = 0; i < count; ++i) {
    if (costs[i] >= smallest) continue;
    smallest = costs[i];
    index = i;
  }
  *minValue = smallest;
  *minIndex = index;
  return index;
}

uint32_t SGM_FindMinIdx_neon(const uint8_t* costs, uint32_t count, uint8_t* minValue, uint32_t* minIndex) {
  if (count == 0) return SGM_FindMinIdx(costs, count, minValue, minIndex);
  const nadir::FindMin findMin = count > 256 ? nadir::stereoScalar.findMin : nadir::stereoKernels(nadir::cpu()).findMin;
  findMin(costs, count, minValue, minIndex);
  return *minIndex;
}

int32_t SGM_PeakCheckExtended(const uint8_t* costs, uint32_t maxIndex, uint32_t uniquenessRatio) {
  return static_cast<int32_t>(nadir::stereoScalar.peakCheck(costs, maxIndex, uniquenessRatio));
}

int32_t SGM_PeakCheckExtended_neon(const uint8_t* costs, uint32_t maxIndex, uint32_t uniquenessRatio) {
  const nadir::PeakCheck check =
      maxIndex > 255 ? nadir::stereoScalar.peakCheck : nadir::stereoKernels(nadir::cpu()).peakCheck;
  return static_cast<int32_t>(check(costs, maxIndex, uniquenessRatio));
}
