#include "simd/neon.hpp"
#include "stereo/kernels_simd.hpp"

namespace nadir {

const StereoKernels stereoNeon = stereoKernelsOf<neon::Simd>();

}  // namespace nadir
