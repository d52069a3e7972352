#include "imgproc/smooth_rows.hpp"

namespace nadir {

const SmoothKernels smoothAvx512 = SmoothRows<struct Avx512Rows>::table();

}  // namespace nadir
