// The inner product that all 3x3 algebra is made of.
#pragma once

#include <cstddef>

namespace nadir {

// m[0] * x + m[stride] * y + m[2 * stride] * z: a matrix row (stride 1) or column (stride 3) times a vector. The middle
// term comes first: results are promised to the last bit, so there is one order for all.
inline float dot(const float* m, size_t stride, float x, float y, float z) {
  return (m[stride] * y + m[0] * x) + m[2 * stride] * z;
}

}  // namespace nadir
