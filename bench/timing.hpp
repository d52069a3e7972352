// Comparing the speed of several ways of doing one thing on a machine that others use too.
#pragma once

#include <functional>
#include <vector>

namespace nadir::bench {

// Seconds of one call of each: of processor time, so that waiting for other programs does not count. They run in turn,
// so that what else disturbs them disturbs all alike, and the fastest of many runs counts.
std::vector<double> fastest(const std::vector<std::function<void()>>& ways);

}  // namespace nadir::bench
