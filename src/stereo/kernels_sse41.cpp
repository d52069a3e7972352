#include "simd/sse41.hpp"
#include "stereo/kernels_simd.hpp"

namespace nadir {

const StereoKernels stereoSse41 = stereoKernelsOf<sse41::Simd>();

}  // namespace nadir
