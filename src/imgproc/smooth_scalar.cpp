#include "imgproc/smooth_rows.hpp"

namespace nadir {

const SmoothKernels smoothScalar = SmoothRows<struct ScalarRows>::table();

}  // namespace nadir
