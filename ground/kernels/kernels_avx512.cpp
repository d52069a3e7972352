// These are the road's kernels for AVX-512.
#include "ground/kernels/rows.hpp"

namespace nadir::ground {

const RoadKernels roadAvx512 = RoadRows<struct Avx512Rows>::table();

}  // namespace nadir::ground
