#include "imgproc/filter3x3_rows.hpp"

namespace nadir {

const Filter3x3Kernels filter3x3Scalar = Filter3x3Rows<struct ScalarRows>::table();

}  // namespace nadir
