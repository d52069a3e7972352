// Draws values in colours, with a bar, its ticks, and arrows where values lie beyond it.
#include "tools/draw/plot.hpp"

#include <cmath>

#include "tools/base/statistics.hpp"
#include "tools/base/text.hpp"
#include "tools/draw/canvas.hpp"

namespace nadir::tool {

namespace {

constexpr uint32_t panelWidth = 60;
constexpr uint32_t barLeft = 8;  // from the panel's left edge
constexpr uint32_t barWidth = 14;
constexpr uint32_t tickWidth = 4;
constexpr uint32_t textLeft = barLeft + barWidth + tickWidth + 3;
constexpr uint32_t arrowHeight = barWidth / 2;
constexpr uint32_t barTop = 16 + arrowHeight;  // below the unit
constexpr uint32_t legendHeight = 10;
constexpr uint32_t barBottomMargin = arrowHeight + 4 + legendHeight;
constexpr uint32_t smallestBar = 24;
constexpr double tickDistance = 24;  // at least, pixels

double placeOnScale(double value, const ColourScale& scale) { return (value - scale.low) / (scale.high - scale.low); }

void drawTicks(Grid<Rgb>& picture, const Rect& bar, const ColourScale& scale) {
  for (const double value : tickValues(scale.low, scale.high, bar.height, tickDistance)) {
    const auto fromBottom = static_cast<uint32_t>(std::lround(placeOnScale(value, scale) * (bar.height - 1)));
    const uint32_t y = bar.top + bar.height - 1 - fromBottom;
    fill(picture, {bar.left + bar.width, y, tickWidth, 1}, black);
    drawText(picture, bar.left - barLeft + textLeft, y - textHeight / 2 + 1, format("%g", value));
  }
}

// An arrow on an end of the bar says that there are values beyond it, drawn in its colour. Row 0 lies at the bar.
template <class RowAt>
void drawArrow(Grid<Rgb>& picture, uint32_t barX, Rgb colour, RowAt rowAt) {
  for (uint32_t i = 0; i < arrowHeight; ++i) fill(picture, {barX + i, rowAt(i), barWidth - 2 * i, 1}, colour);
}

void drawArrows(Grid<Rgb>& picture, const Rect& bar, const ColourScale& scale, const Grid<float>& values) {
  const auto any = [&values](auto beyond) { return std::any_of(values.pixels.begin(), values.pixels.end(), beyond); };
  if (any([&](float v) { return v > scale.high; }))
    drawArrow(picture, bar.left, scale.map(1), [&](uint32_t i) { return bar.top - 1 - i; });
  if (any([&](float v) { return v < scale.low; }))
    drawArrow(picture, bar.left, scale.map(0), [&](uint32_t i) { return bar.top + bar.height + i; });
}

void drawLegend(Grid<Rgb>& picture, uint32_t left) {
  const uint32_t top = picture.height - legendHeight;
  fill(picture, {left, top, barWidth, textHeight}, noValueGrey);
  drawText(picture, left - barLeft + textLeft, top + 1, "none");
}

void drawBar(Grid<Rgb>& picture, uint32_t left, const ColourScale& scale, const Grid<float>& values) {
  const Rect bar{left + barLeft, barTop, barWidth, picture.height - barTop - barBottomMargin};
  for (uint32_t i = 0; i < bar.height; ++i)
    fill(picture, {bar.left, bar.top + bar.height - 1 - i, bar.width, 1}, scale.map(i / (bar.height - 1.0)));
  drawText(picture, bar.left, 5, scale.unit);
  drawTicks(picture, bar, scale);
  drawArrows(picture, bar, scale, values);
  drawLegend(picture, bar.left);
}

}  // namespace

std::pair<double, double> usualRange(const Grid<float>& values) {
  std::vector<float> sorted;
  for (const float v : values.pixels)
    if (!std::isnan(v)) sorted.push_back(v);
  if (sorted.empty()) return {0, 1};
  std::sort(sorted.begin(), sorted.end());
  const size_t last = sorted.size() - 1;
  const double low = std::floor(sorted[last - percentileRank(sorted.size(), 97)]);
  const double high = std::ceil(sorted[percentileRank(sorted.size(), 99)]);
  return {low, std::max(high, low + 1)};
}

Grid<Rgb> plot(const Grid<float>& values, const ColourScale& scale) {
  const uint32_t height = std::max(values.height, barTop + smallestBar + barBottomMargin);
  Grid<Rgb> picture(values.width + panelWidth, height, white);
  for (uint32_t y = 0; y < values.height; ++y)
    for (uint32_t x = 0; x < values.width; ++x) {
      const float v = values.at(x, y);
      picture.at(x, y) = std::isnan(v) ? noValueGrey : scale.map(placeOnScale(v, scale));
    }
  drawBar(picture, values.width, scale, values);
  return picture;
}

}  // namespace nadir::tool
