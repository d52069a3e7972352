// Walking over a row in blocks as wide as a vector.
#pragma once

#include <cstddef>

namespace nadir {

// Calls step(i) for blocks of `lanes` that cover [0, n), the last one ending at n and so overlapping the one before it:
// not for outputs that are inputs. False, and no call, where n is less than a block.
template <size_t lanes, class Step>
inline bool forBlocks(size_t n, Step step) {
  if (n < lanes) return false;
  for (size_t i = 0; i + lanes < n; i += lanes) step(i);
  step(n - lanes);
  return true;
}

}  // namespace nadir
