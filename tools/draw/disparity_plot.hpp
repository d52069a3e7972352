// Disparity pictures in colours.
#pragma once

#include "tools/draw/plot.hpp"
#include "tools/files/files.hpp"

namespace nadir::tool {

// range  the disparities at the two ends of the colours, pixels.
Bytes encodeDisparityPlot(const Grid<float>& disparity, std::pair<double, double> range);

}  // namespace nadir::tool
