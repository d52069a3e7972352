// These are the 3x3 filters for SSE4.1.
#include "imgproc/filter3x3_simd.hpp"

namespace nadir {

const Filter3x3Kernels filter3x3Sse41 = filter3x3Strips<struct Sse41Strips, 16>();

}  // namespace nadir
