#include "plot.hpp"

#include <cmath>

#include "canvas.hpp"
#include "text.hpp"

namespace nadir::tool {

namespace {

constexpr uint32_t panelWidth = 60;
constexpr uint32_t barLeft = 8;  // from the panel's left edge
constexpr uint32_t barWidth = 14;
constexpr uint32_t tickWidth = 4;
constexpr uint32_t textLeft = barLeft + barWidth + tickWidth + 3;
constexpr uint32_t barTop = 20;  // below the unit
constexpr uint32_t barBottomMargin = 8;
constexpr uint32_t smallestBar = 24;
constexpr double tickDistance = 24;  // at least, pixels

double share(double value, const ColourScale& scale) { return (value - scale.low) / (scale.high - scale.low); }

void drawTicks(Grid<Rgb>& picture, const Rect& bar, const ColourScale& scale) {
  for (const double value : tickValues(scale.low, scale.high, bar.height, tickDistance)) {
    const auto fromBottom = static_cast<uint32_t>(std::lround(share(value, scale) * (bar.height - 1)));
    const uint32_t y = bar.top + bar.height - 1 - fromBottom;
    fill(picture, {bar.left + bar.width, y, tickWidth, 1}, black);
    drawText(picture, bar.left - barLeft + textLeft, y - textHeight / 2 + 1, format("%g", value));
  }
}

void drawBar(Grid<Rgb>& picture, uint32_t left, const ColourScale& scale) {
  const Rect bar{left + barLeft, barTop, barWidth, picture.height - barTop - barBottomMargin};
  for (uint32_t i = 0; i < bar.height; ++i)
    fill(picture, {bar.left, bar.top + bar.height - 1 - i, bar.width, 1}, scale.map(i / (bar.height - 1.0)));
  drawText(picture, bar.left, 5, scale.unit);
  drawTicks(picture, bar, scale);
}

}  // namespace

std::pair<double, double> usualRange(const Grid<float>& values) {
  std::vector<float> sorted;
  for (const float v : values.pixels)
    if (!std::isnan(v)) sorted.push_back(v);
  if (sorted.empty()) return {0, 1};
  std::sort(sorted.begin(), sorted.end());
  const double low = std::floor(sorted[sorted.size() * 3 / 100]);
  const double high = std::ceil(sorted[sorted.size() - 1 - sorted.size() / 100]);
  return {low, std::max(high, low + 1)};
}

Grid<Rgb> plot(const Grid<float>& values, const ColourScale& scale) {
  const uint32_t height = std::max(values.height, barTop + smallestBar + barBottomMargin);
  Grid<Rgb> picture(values.width + panelWidth, height, white);
  for (uint32_t y = 0; y < values.height; ++y)
    for (uint32_t x = 0; x < values.width; ++x) {
      const float v = values.at(x, y);
      picture.at(x, y) = std::isnan(v) ? noValueGrey : scale.map(share(v, scale));
    }
  drawBar(picture, values.width, scale);
  return picture;
}

}  // namespace nadir::tool
