// Walking round a polygon.
#pragma once

#include <nadir/geometry.h>

namespace nadir {

// (k + 1) % count for k < count.
inline uint32_t nextVertex(uint32_t k, uint32_t count) { return k + 1 == count ? 0 : k + 1; }

}  // namespace nadir
