// These are the kernels of smoothing, hole filling, halving and averaging for the plain processor.
#include "imgproc/smooth_rows.hpp"

namespace nadir {

const SmoothKernels smoothScalar = SmoothRows<struct ScalarRows>::table();

}  // namespace nadir
