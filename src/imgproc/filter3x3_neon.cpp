// These are the 3x3 filters for NEON.
#include "imgproc/filter3x3_simd.hpp"

namespace nadir {

const Filter3x3Kernels filter3x3Neon = filter3x3Strips<struct NeonStrips, 16>();

}  // namespace nadir
