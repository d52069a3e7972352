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
  StereoKernels kernels = {};
  kernels.census = CensusKernel<Simd>::row;
  kernels.penalties = PenaltyKernel<Simd>::row;
  kernels.costs = CostKernel<Simd>::row;
  kernels.path = PathKernel<Simd>::row;
  kernels.pathLanes = Simd::U8::lanes;
  kernels.findMin = SelectionKernels<Simd>::findMin;
  kernels.peakCheck = SelectionKernels<Simd>::peakCheck;
  kernels.refine = Decision<Simd>::refine;
  kernels.walkDisparity = SgmWalk<Simd>::disparity;
  kernels.walkDistinctness = SgmWalk<Simd>::distinctness;
  return kernels;
}

}  // namespace nadir
