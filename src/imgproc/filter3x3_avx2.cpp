// These are the 3x3 filters for AVX2.
#include "imgproc/filter3x3_simd.hpp"

namespace nadir {

const Filter3x3Kernels filter3x3Avx2 = filter3x3Strips<struct Avx2Strips, 32>();

}  // namespace nadir
