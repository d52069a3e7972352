// These are the stereo kernels for AVX-512.
#include "simd/avx512.hpp"
#include "stereo/lanes/table.hpp"

namespace nadir {

const StereoKernels stereoAvx512 = stereoKernelsOf<avx512::Simd>();

}  // namespace nadir
