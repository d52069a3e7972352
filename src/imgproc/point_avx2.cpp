// These are the kernels of thresholds, arithmetic and masks for AVX2.
#include "imgproc/point_rows.hpp"

namespace nadir {

const PointKernels pointAvx2 = PointRows<struct Avx2Rows>::table();

}  // namespace nadir
