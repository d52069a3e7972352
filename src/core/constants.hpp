// Numbers that several subsystems need.
#pragma once

#include <limits>

namespace nadir {

// 2^-23, the step from 1 to the next float: what is not above it counts as nothing where a division by it would follow.
constexpr float floatEpsilon = std::numeric_limits<float>::epsilon();

}  // namespace nadir
