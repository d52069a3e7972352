// These are the road's kernels for AVX2.
#include "ground/kernels/rows.hpp"

namespace nadir::ground {

const RoadKernels roadAvx2 = RoadRows<struct Avx2Rows>::table();

}  // namespace nadir::ground
