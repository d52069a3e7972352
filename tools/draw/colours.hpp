// Colour maps: t from 0 to 1 along the map.
#pragma once

#include "tools/pictures/png.hpp"

namespace nadir::tool {

constexpr Rgb noValueGrey{150, 150, 150};

// For quantities: dark blue, green, yellow, dark red, with steps that look even. The polynomial form of Turbo
// (A. Mikhailov, "Turbo, an improved rainbow colormap for visualization", Google AI blog, 2019; fit by R. Du).
Rgb turbo(double t);

// For signed errors: blue, white at 0.5, red. The 11 classes of RdBu (C. Brewer, colorbrewer2.org), joined linearly.
Rgb blueRed(double t);

}  // namespace nadir::tool
