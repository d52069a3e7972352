#include "imgproc/point_rows.hpp"

namespace nadir {

const PointKernels pointScalar = PointRows<struct ScalarRows>::table();

}  // namespace nadir
