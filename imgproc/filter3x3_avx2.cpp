#include "imgproc/filter3x3_rows.hpp"

namespace nadir {

const Filter3x3Kernels filter3x3Avx2 = Filter3x3Rows<struct Avx2Rows>::table();

}  // namespace nadir
