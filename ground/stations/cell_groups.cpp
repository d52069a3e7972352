// The middle and the end of a group's heights.
#include "ground/stations/cell_groups.hpp"

#include "ground/kernels/kernels.hpp"

namespace nadir::ground {

CellSet cellSet(const uint16_t* heights, uint32_t cells) {
  if (cells == 0) return {};
  const auto ranked = roadKernels().ranked;
  return {cells, ranked(heights, cells, cells - 1), ranked(heights, cells, (cells - 1) / 2)};
}

}  // namespace nadir::ground
