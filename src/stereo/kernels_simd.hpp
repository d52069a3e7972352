// The table of one instruction set's stereo kernels.
#pragma once

#include "stereo/rows_simd.hpp"
#include "stereo/select_simd.hpp"
#include "stereo/walk_simd.hpp"

namespace nadir {

template <class Simd>
constexpr StereoKernels stereoKernelsOf() {
  return {
      RowKernels<Simd>::census, RowKernels<Simd>::penalties,  CostKernels<Simd>::costs,       PathKernels<Simd>::path,
      Simd::U8::lanes,          SelectKernels<Simd>::findMin, SelectKernels<Simd>::peakCheck, SgmWalk<Simd>::refine,
      SgmWalk<Simd>::disparity, SgmWalk<Simd>::distinctness};
}

}  // namespace nadir
