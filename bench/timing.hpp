// Comparing the speed of several ways of doing one thing on a machine that others use too.
#pragma once

#include <functional>
#include <vector>

namespace nadir::bench {

// What this process has had of a processor so far: other processes on the machine do not count.
double processorSeconds();

double secondsOf(const std::function<void()>& call, size_t times = 1);

// Seconds of one call of each: of processor time, so that waiting for other programs does not count. They run in turn,
// so that what else disturbs them disturbs all alike, and the fastest of many runs counts.
std::vector<double> fastest(const std::vector<std::function<void()>>& ways);

}  // namespace nadir::bench
