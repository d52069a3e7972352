// These are the kernels of smoothing, hole filling, halving and averaging for AVX2.
#include "imgproc/smooth_rows.hpp"

namespace nadir {

const SmoothKernels smoothAvx2 = SmoothRows<struct Avx2Rows>::table();

}  // namespace nadir
