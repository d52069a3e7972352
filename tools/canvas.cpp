#include "canvas.hpp"

#include <stb_easy_font.h>

#include <array>
#include <cmath>

namespace nadir::tool {

namespace {

// 1, 2 or 5 times a power of ten.
double tickStep(double wanted) {
  double step = 1e-6;
  for (int i = 0; step < wanted; ++i) step *= i % 3 == 1 ? 2.5 : 2;
  return step;
}

}  // namespace

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

uint32_t textWidth(std::string text) { return static_cast<uint32_t>(stb_easy_font_width(text.data())); }

std::vector<double> tickValues(double low, double high, uint32_t pixels, double distance) {
  const double step = tickStep((high - low) * distance / pixels);
  const auto first = static_cast<int>(std::ceil(low / step - 1e-9));
  const auto last = static_cast<int>(std::floor(high / step + 1e-9));
  std::vector<double> values;
  for (int i = first; i <= last; ++i) values.push_back(i * step);
  return values;
}

}  // namespace nadir::tool
