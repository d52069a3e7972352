// The table of one instruction set's stereo kernels.
#pragma once

#include "stereo/lanes/census.hpp"
#include "stereo/lanes/path.hpp"
#include "stereo/lanes/penalties.hpp"
#include "stereo/lanes/row_costs.hpp"
#include "stereo/lanes/selection.hpp"
#include "stereo/lanes/walk.hpp"

namespace nadir {

template <class Simd>
constexpr StereoKernels stereoKernelsOf() {
  return {CensusKernel<Simd>::row,
          PenaltyKernel<Simd>::row,
          CostKernel<Simd>::row,
          PathKernel<Simd>::row,
          Simd::U8::lanes,
          SelectionKernels<Simd>::findMin,
          SelectionKernels<Simd>::peakCheck,
          Decision<Simd>::refine,
          SgmWalk<Simd>::disparity,
          SgmWalk<Simd>::distinctness};
}

}  // namespace nadir
