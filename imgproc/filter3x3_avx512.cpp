#include "imgproc/filter3x3_rows.hpp"

namespace nadir {

const Filter3x3Kernels filter3x3Avx512 = Filter3x3Rows<struct Avx512Rows>::table();

}  // namespace nadir
