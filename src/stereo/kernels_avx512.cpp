#include "simd/avx512.hpp"
#include "stereo/kernels_simd.hpp"

namespace nadir {

const StereoKernels stereoAvx512 = stereoKernelsOf<avx512::Simd>();

}  // namespace nadir
