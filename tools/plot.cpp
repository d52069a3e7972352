#include "plot.hpp"

#include <stb_easy_font.h>

#include <array>
#include <cmath>
#include <string>

#include "text.hpp"

namespace nadir::tool {

namespace {

constexpr Rgb white{255, 255, 255};
constexpr Rgb black{0, 0, 0};

constexpr uint32_t panelWidth = 60;
constexpr uint32_t barLeft = 8;  // from the panel's left edge
constexpr uint32_t barWidth = 14;
constexpr uint32_t tickWidth = 4;
constexpr uint32_t textLeft = barLeft + barWidth + tickWidth + 3;
constexpr uint32_t textHeight = 8;
constexpr uint32_t barTop = 20;  // below the unit
constexpr uint32_t barBottomMargin = 8;
constexpr uint32_t smallestBar = 24;
constexpr double tickDistance = 24;  // at least, pixels

struct Rect {
  uint32_t left, top, width, height;
};

void fill(Grid<Rgb>& picture, const Rect& rect, Rgb colour) {
  for (uint32_t y = rect.top; y < std::min(rect.top + rect.height, picture.height); ++y)
    for (uint32_t x = rect.left; x < std::min(rect.left + rect.width, picture.width); ++x) picture.at(x, y) = colour;
}

// stb_easy_font gives a text as axis-parallel rectangles of four corners each.
void drawText(Grid<Rgb>& picture, uint32_t left, uint32_t top, std::string text) {
  struct Corner {
    float x, y, z;
    uint8_t colour[4];
  };
  std::array<Corner, 2000> corners;
  const int quads = stb_easy_font_print(static_cast<float>(left), static_cast<float>(top), text.data(), nullptr,
                                        corners.data(), sizeof corners);
  for (size_t q = 0; q < static_cast<size_t>(quads); ++q) {
    const Corner &a = corners[4 * q], &b = corners[4 * q + 2];
    const auto x = static_cast<uint32_t>(a.x), y = static_cast<uint32_t>(a.y);
    fill(picture, {x, y, static_cast<uint32_t>(b.x) - x, static_cast<uint32_t>(b.y) - y}, black);
  }
}

// 1, 2 or 5 times a power of ten.
double tickStep(double range, uint32_t pixels) {
  const double wanted = range * tickDistance / pixels;
  double step = 1e-6;
  for (int i = 0; step < wanted; ++i) step *= i % 3 == 1 ? 2.5 : 2;
  return step;
}

double share(double value, const ColourScale& scale) { return (value - scale.low) / (scale.high - scale.low); }

void drawTicks(Grid<Rgb>& picture, const Rect& bar, const ColourScale& scale) {
  const double step = tickStep(scale.high - scale.low, bar.height);
  const auto first = static_cast<int>(std::ceil(scale.low / step - 1e-9));
  const auto last = static_cast<int>(std::floor(scale.high / step + 1e-9));
  for (int i = first; i <= last; ++i) {
    const auto fromBottom = static_cast<uint32_t>(std::lround(share(i * step, scale) * (bar.height - 1)));
    const uint32_t y = bar.top + bar.height - 1 - fromBottom;
    fill(picture, {bar.left + bar.width, y, tickWidth, 1}, black);
    drawText(picture, bar.left - barLeft + textLeft, y - textHeight / 2 + 1, format("%g", i * step));
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
