// These are the stereo kernels for AVX2.
#include "simd/avx2.hpp"
#include "stereo/lanes/table.hpp"

namespace nadir {

const StereoKernels stereoAvx2 = stereoKernelsOf<avx2::Simd>();

}  // namespace nadir
