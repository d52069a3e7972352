// Colour maps: t from 0 to 1 along the map.
#pragma once

#include "tools/pictures/png.hpp"

namespace nadir::tool {

constexpr Rgb noValueGrey{150, 150, 150};

// Dark blue, green, yellow and dark red, for quantities: equal steps look equal. It is the polynomial form of Turbo
// (A. Mikhailov, "Turbo, an improved rainbow colormap for visualization", Google AI blog, 2019; fit by R. Du).
Rgb turbo(double t);

// Blue, white at 0.5 and red, for signed errors: the 11 classes of RdBu (C. Brewer, colorbrewer2.org) joined linearly.
Rgb blueRed(double t);

}  // namespace nadir::tool
