// These are the road's kernels for the plain processor.
#include "ground/kernels/rows.hpp"

namespace nadir::ground {

const RoadKernels roadScalar = RoadRows<struct ScalarRows>::table();

}  // namespace nadir::ground
