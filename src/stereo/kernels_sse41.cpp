// These are the stereo kernels for SSE4.1.
#include "simd/sse41.hpp"
#include "stereo/lanes/table.hpp"

namespace nadir {

const StereoKernels stereoSse41 = stereoKernelsOf<sse41::Simd>();

}  // namespace nadir
