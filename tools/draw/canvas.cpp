// Rectangles, text and lines, drawn pixel by pixel and cut at the picture's borders.
#include "tools/draw/canvas.hpp"

#include <stb_easy_font.h>

#include <algorithm>
#include <cmath>

namespace nadir::tool {

namespace {

// The next 1, 2 or 5 times a power of ten.
double tickStep(double wanted) {
  double step = 1e-6;
  for (int i = 0; step < wanted; ++i) step *= i % 3 == 1 ? 2.5 : 2;
  return step;
}

std::string inAscii(std::string text) {
  for (char& c : text)
    if (c < ' ' || c > '~') c = '?';
  return text;
}

}  // namespace

void fill(Grid<Rgb>& picture, const Rect& rect, Rgb colour) {
  for (uint32_t y = rect.top; y < std::min(rect.top + rect.height, picture.height); ++y)
    for (uint32_t x = rect.left; x < std::min(rect.left + rect.width, picture.width); ++x) picture.at(x, y) = colour;
}

// stb_easy_font gives a text as axis-parallel rectangles of four corners each. It knows ASCII alone.
void drawText(Grid<Rgb>& picture, uint32_t left, uint32_t top, std::string text, uint32_t scale) {
  struct Corner {
    float x, y, z;
    uint8_t colour[4];
  };
  text = inAscii(text);
  std::vector<Corner> corners(4 * 70 * (text.size() + 1));
  const int quads = stb_easy_font_print(0, 0, text.data(), nullptr, corners.data(),
                                        static_cast<int>(corners.size() * sizeof(Corner)));
  for (size_t q = 0; q < static_cast<size_t>(quads); ++q) {
    const Corner &a = corners[4 * q], &b = corners[4 * q + 2];
    const auto x = static_cast<uint32_t>(a.x), y = static_cast<uint32_t>(a.y);
    const Rect stroke{left + scale * x, top + scale * y, scale * (static_cast<uint32_t>(b.x) - x),
                      scale * (static_cast<uint32_t>(b.y) - y)};
    fill(picture, stroke, black);
  }
}

uint32_t textWidth(std::string text) {
  text = inAscii(text);
  return static_cast<uint32_t>(stb_easy_font_width(text.data()));
}

void drawLine(Grid<Rgb>& picture, const Spot& from, const Spot& to, uint32_t width, Rgb colour) {
  const double dx = to.x - from.x, dy = to.y - from.y;
  const int steps = std::max(1, static_cast<int>(std::ceil(std::max(std::abs(dx), std::abs(dy)))));
  for (int i = 0; i <= steps; ++i) {
    const double x = std::floor(from.x + dx * i / steps - width / 2.0 + 0.5);
    const double y = std::floor(from.y + dy * i / steps - width / 2.0 + 0.5);
    if (x >= 0 && y >= 0 && x < picture.width && y < picture.height)
      fill(picture, {static_cast<uint32_t>(x), static_cast<uint32_t>(y), width, width}, colour);
  }
}

// Liang and Barsky, "A new concept and method for line clipping", ACM Transactions on Graphics 3(1), 1984: each side
// narrows the range of t in from + t * (to - from).
std::optional<Line> clipped(const Line& line, const Rect& rect) {
  double first = 0, last = 1;
  const auto narrow = [&](double from, double step, double low, double size) {
    if (step == 0) return from >= low && from <= low + size;
    const auto [near, far] = std::minmax({(low - from) / step, (low + size - from) / step});
    first = std::max(first, near);
    last = std::min(last, far);
    return first <= last;
  };
  const double dx = line.to.x - line.from.x, dy = line.to.y - line.from.y;
  if (!narrow(line.from.x, dx, rect.left, rect.width) || !narrow(line.from.y, dy, rect.top, rect.height)) return {};
  const auto spotAt = [&](double t) { return Spot{line.from.x + t * dx, line.from.y + t * dy}; };
  return Line{spotAt(first), spotAt(last)};
}

Rgb blended(Rgb under, Rgb over, double share) {
  const auto mix = [share](uint8_t a, uint8_t b) { return static_cast<uint8_t>(std::lround(a + (b - a) * share)); };
  return {mix(under.r, over.r), mix(under.g, over.g), mix(under.b, over.b)};
}

std::vector<double> tickValues(double low, double high, uint32_t pixels, double distance) {
  const double step = tickStep((high - low) * distance / pixels);
  const double first = std::ceil(low / step - 1e-9), last = std::floor(high / step + 1e-9);
  std::vector<double> values;
  for (double i = first; i <= last; ++i) values.push_back(i * step);
  return values;
}

}  // namespace nadir::tool
