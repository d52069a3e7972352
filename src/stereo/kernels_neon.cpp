// These are the stereo kernels for NEON.
#include "simd/neon.hpp"
#include "stereo/lanes/table.hpp"

namespace nadir {

const StereoKernels stereoNeon = stereoKernelsOf<neon::Simd>();

}  // namespace nadir
