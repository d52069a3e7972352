// Curves with axes, as SVG: a small file of text that stays sharp at every size.
#pragma once

#include <string>
#include <vector>

#include "tools/files/files.hpp"

namespace nadir::tool {

struct PlotPoint {
  double x, y;  // a y that is not a number interrupts the curve
};

struct Curve {
  std::string name;    // for the legend
  const char* colour;  // of SVG: "#1f77b4"
  bool line = true;    // join the points
  double dot = 0;      // radius of a point's dot, pixels
  std::vector<PlotPoint> points;
};

struct LinePlot {
  std::string title, xLabel, yLabel;
  std::vector<Curve> curves;  // later ones on top
};

Bytes encodeLinePlot(const LinePlot& plot);

}  // namespace nadir::tool
