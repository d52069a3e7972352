// These are the kernels of thresholds, arithmetic and masks for the plain processor.
#include "imgproc/point_rows.hpp"

namespace nadir {

const PointKernels pointScalar = PointRows<struct ScalarRows>::table();

}  // namespace nadir
