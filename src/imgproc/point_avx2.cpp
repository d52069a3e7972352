#include "imgproc/point_rows.hpp"

namespace nadir {

const PointKernels pointAvx2 = PointRows<struct Avx2Rows>::table();

}  // namespace nadir
