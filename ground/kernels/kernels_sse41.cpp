// These are the road's kernels for SSE4.1.
#include "ground/kernels/rows.hpp"

namespace nadir::ground {

const RoadKernels roadSse41 = RoadRows<struct Sse41Rows>::table();

}  // namespace nadir::ground
