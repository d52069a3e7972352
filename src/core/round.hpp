// This turns floats into 32-bit integers, the same way on every processor.
#pragma once

#include <cfloat>
#include <cstdint>

// The x87 processor keeps more digits than a float or a double has and rounds them when it likes: no result would be
// the same everywhere.
static_assert(FLT_EVAL_METHOD == 0, "floats must be computed as floats: on 32-bit x86 give -msse2 -mfpmath=sse");

namespace nadir {

// The fraction is cut off. Out of range the result is the nearest integer, and 0 for what is no number: what ARM's
// instruction does, while other processors' differ and the language leaves it undefined.
inline int32_t truncated(double v) {
  if (v >= INT32_MAX) return INT32_MAX;
  if (v <= INT32_MIN) return INT32_MIN;
  return v == v ? static_cast<int32_t>(v) : 0;
}

}  // namespace nadir
