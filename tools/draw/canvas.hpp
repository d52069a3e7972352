// Drawing on a colour picture: filled rectangles, small text, the places of an axis' ticks.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "lab/grid.hpp"
#include "tools/pictures/png.hpp"

namespace nadir::tool {

using lab::Grid;

constexpr Rgb white{255, 255, 255};
constexpr Rgb black{0, 0, 0};

constexpr uint32_t textHeight = 8;

struct Rect {
  uint32_t left, top, width, height;
};

// The part that lies outside of the picture is left out.
void fill(Grid<Rgb>& picture, const Rect& rect, Rgb colour);
void drawText(Grid<Rgb>& picture, uint32_t left, uint32_t top, std::string text, uint32_t scale = 1);
uint32_t textWidth(std::string text);

// A place between the pixels of a picture; (0, 0) is the outer corner of the first.
struct Spot {
  double x, y;
};

// A square pen of `width` pixels is drawn along the line.
void drawLine(Grid<Rgb>& picture, const Spot& from, const Spot& to, uint32_t width, Rgb colour);

struct Line {
  Spot from, to;
};

// The part of a line that lies in the rectangle, nothing where none does.
std::optional<Line> clipped(const Line& line, const Rect& rect);

// Half way between two colours for 0.5, the second for 1.
Rgb blended(Rgb under, Rgb over, double share);

// Round numbers from low to high, at least `distance` pixels apart on an axis of `pixels`.
std::vector<double> tickValues(double low, double high, uint32_t pixels, double distance);

}  // namespace nadir::tool
