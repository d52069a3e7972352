#include "imgproc/filter3x3_rows.hpp"

namespace nadir {

const Filter3x3Kernels filter3x3Sse41 = Filter3x3Rows<struct Sse41Rows>::table();

}  // namespace nadir
