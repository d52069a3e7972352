#include "simd/avx2.hpp"
#include "stereo/kernels_simd.hpp"

namespace nadir {

const StereoKernels stereoAvx2 = stereoKernelsOf<avx2::Simd>();

}  // namespace nadir
