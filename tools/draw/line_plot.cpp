// Writes axes, curves and a legend as SVG.
#include "tools/draw/line_plot.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

#include "tools/base/text.hpp"
#include "tools/draw/canvas.hpp"

namespace nadir::tool {

namespace {

constexpr double width = 720, height = 360;  // of the whole, pixels
constexpr double left = 70, right = 16, top = 34, bottom = 50;
constexpr double tickDistance = 60;
constexpr double legendRow = 16;

// An axis: where its values lie on the picture.
struct Axis {
  double low, high;  // values
  double from, to;   // pixels
  double placeOf(double value) const { return from + (to - from) * (value - low) / (high - low); }
};

std::string escaped(const std::string& text) {
  std::string out;
  for (const char c : text) out += c == '&' ? "&amp;" : c == '<' ? "&lt;" : std::string(1, c);
  return out;
}

// A little wider than the values, and never empty.
Axis axisOf(const LinePlot& plot, double PlotPoint::*coordinate, double from, double to) {
  double low = std::numeric_limits<double>::infinity(), high = -low;
  for (const Curve& curve : plot.curves)
    for (const PlotPoint& p : curve.points) {
      if (std::isnan(p.y)) continue;
      low = std::min(low, p.*coordinate);
      high = std::max(high, p.*coordinate);
    }
  if (low > high) low = high = 0;
  const double margin = high > low ? (high - low) * 0.04 : 1;
  return {low - margin, high + margin, from, to};
}

std::string textAt(double x, double y, const char* anchor, const std::string& text, const char* more = "") {
  return format("<text x=\"%.1f\" y=\"%.1f\" text-anchor=\"%s\"%s>%s</text>\n", x, y, anchor, more,
                escaped(text).c_str());
}

std::string stroke(double x1, double y1, double x2, double y2, const char* colour) {
  return format("<path d=\"M%.1f %.1fL%.1f %.1f\" stroke=\"%s\"/>\n", x1, y1, x2, y2, colour);
}

std::string grid(const Axis& x, const Axis& y) {
  std::string text;
  for (const double v : tickValues(x.low, x.high, static_cast<uint32_t>(x.to - x.from), tickDistance))
    text += stroke(x.placeOf(v), y.from, x.placeOf(v), y.to, "#ddd") +
            textAt(x.placeOf(v), y.from + 16, "middle", format("%g", v));
  for (const double v : tickValues(y.low, y.high, static_cast<uint32_t>(y.from - y.to), tickDistance / 2))
    text += stroke(x.from, y.placeOf(v), x.to, y.placeOf(v), "#ddd") +
            textAt(x.from - 6, y.placeOf(v) + 4, "end", format("%g", v));
  return text + stroke(x.from, y.from, x.to, y.from, "#000") + stroke(x.from, y.from, x.from, y.to, "#000");
}

std::string lineThrough(const Curve& curve, const Axis& x, const Axis& y) {
  std::string path;
  bool pen = false;
  for (const PlotPoint& p : curve.points) {
    if (!std::isnan(p.y)) path += format("%c%.1f %.1f", pen ? 'L' : 'M', x.placeOf(p.x), y.placeOf(p.y));
    pen = !std::isnan(p.y);
  }
  return format("<path d=\"%s\" fill=\"none\" stroke=\"%s\" stroke-width=\"1.5\"/>\n", path.c_str(), curve.colour);
}

std::string dotsOf(const Curve& curve, const Axis& x, const Axis& y) {
  std::string text;
  for (const PlotPoint& p : curve.points)
    if (!std::isnan(p.y))
      text += format("<circle cx=\"%.1f\" cy=\"%.1f\" r=\"%.1f\" fill=\"%s\"/>\n", x.placeOf(p.x), y.placeOf(p.y),
                     curve.dot, curve.colour);
  return text;
}

std::string legend(const LinePlot& plot) {
  std::string text;
  double y = top + legendRow;
  for (const Curve& curve : plot.curves) {
    if (curve.name.empty()) continue;
    text += format("<rect x=\"%.1f\" y=\"%.1f\" width=\"12\" height=\"4\" fill=\"%s\"/>\n", width - right - 18, y - 6,
                   curve.colour) +
            textAt(width - right - 24, y, "end", curve.name);
    y += legendRow;
  }
  return text;
}

}  // namespace

Bytes encodeLinePlot(const LinePlot& plot) {
  const Axis x = axisOf(plot, &PlotPoint::x, left, width - right);
  const Axis y = axisOf(plot, &PlotPoint::y, height - bottom, top);
  std::string text = format(
      "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 %g %g\" font-family=\"sans-serif\" font-size=\"12\">\n"
      "<rect width=\"100%%\" height=\"100%%\" fill=\"#fff\"/>\n",
      width, height);
  text += textAt(left, 20, "start", plot.title, " font-weight=\"bold\"") + grid(x, y);
  text += textAt((left + width - right) / 2, height - 14, "middle", plot.xLabel);
  text += textAt(16, (top + height - bottom) / 2, "middle", plot.yLabel,
                 format(" transform=\"rotate(-90 16 %g)\"", (top + height - bottom) / 2).c_str());
  for (const Curve& curve : plot.curves) {
    if (curve.line) text += lineThrough(curve, x, y);
    if (curve.dot > 0) text += dotsOf(curve, x, y);
  }
  text += legend(plot) + "</svg>\n";
  return bytesOf(text);
}

}  // namespace nadir::tool
