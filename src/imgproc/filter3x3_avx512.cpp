// These are the 3x3 filters for AVX-512.
#include "imgproc/filter3x3_simd.hpp"

namespace nadir {

const Filter3x3Kernels filter3x3Avx512 = filter3x3Strips<struct Avx512Strips, 64>();

}  // namespace nadir
