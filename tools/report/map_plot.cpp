// Cells become squares of colour, with axes beside them.
#include "tools/report/map_plot.hpp"

#include <cmath>

#include "tools/base/text.hpp"
#include "tools/draw/canvas.hpp"
#include "tools/draw/plot.hpp"
#include "tools/pictures/chunks.hpp"

namespace nadir::tool {

namespace {

constexpr uint32_t usualSide = 360;  // pixels
constexpr uint32_t leftMargin = 52;
constexpr uint32_t topMargin = 16;
constexpr uint32_t bottomMargin = 28;
constexpr uint32_t tickLength = 5;
constexpr double columnTickDistance = 52;
constexpr double rowTickDistance = 28;

template <class T>
Grid<T> enlarged(const Grid<T>& cells, uint32_t factor) {
  Grid<T> pixels(cells.width * factor, cells.height * factor);
  for (uint32_t y = 0; y < pixels.height; ++y)
    for (uint32_t x = 0; x < pixels.width; ++x) pixels.at(x, y) = cells.at(x / factor, y / factor);
  return pixels;
}

template <class T>
uint32_t pixelsOfACell(const Grid<T>& cells, uint32_t leastSide) {
  return std::max(1u, leastSide / std::max(cells.width, cells.height));
}

Grid<Rgb> withMargins(const Grid<Rgb>& inner) {
  Grid<Rgb> picture(inner.width + leftMargin, inner.height + topMargin + bottomMargin, white);
  for (uint32_t y = 0; y < inner.height; ++y)
    std::copy(inner.row(y), inner.row(y) + inner.width, picture.row(y + topMargin) + leftMargin);
  return picture;
}

uint32_t pixelOf(double mm, double origin, double mmPerPixel) {
  return static_cast<uint32_t>(std::max(0.0, std::floor((mm - origin) / mmPerPixel)));
}

void drawColumnAxis(Grid<Rgb>& picture, uint32_t top, uint32_t pixels, double origin, double mmPerPixel) {
  fill(picture, {leftMargin, top, pixels, 1}, black);
  for (const double mm : tickValues(origin, origin + pixels * mmPerPixel, pixels, columnTickDistance)) {
    const uint32_t x = leftMargin + std::min(pixelOf(mm, origin, mmPerPixel), pixels - 1);
    const std::string label = format("%g", mm);
    fill(picture, {x, top, 1, tickLength}, black);
    drawText(picture, x - std::min(x, textWidth(label) / 2), top + tickLength + 2, label);
  }
  drawText(picture, leftMargin, top + tickLength + textHeight + 4, "x, mm (to the right)");
}

void drawRowAxis(Grid<Rgb>& picture, uint32_t pixels, double origin, double mmPerPixel) {
  fill(picture, {leftMargin - 1, topMargin, 1, pixels}, black);
  for (const double mm : tickValues(origin, origin + pixels * mmPerPixel, pixels, rowTickDistance)) {
    const uint32_t y = topMargin + std::min(pixelOf(mm, origin, mmPerPixel), pixels - 1);
    const std::string label = format("%g", mm);
    const uint32_t labelEnd = leftMargin - tickLength - 3;
    fill(picture, {leftMargin - tickLength - 1, y, tickLength, 1}, black);
    drawText(picture, labelEnd - std::min(labelEnd, textWidth(label)), y - textHeight / 2 + 1, label);
  }
  drawText(picture, 4, 4, "y, mm (downwards)");
}

// inner  the map itself, whatever stands at its right belongs to it.
// size   of the map's cells, pixels.
MapPlot withAxes(const Grid<Rgb>& inner, Rect size, const MapPlace& place, uint32_t factor) {
  MapPlot map{withMargins(inner), leftMargin, topMargin, factor, {leftMargin, topMargin, size.width, size.height}};
  if (!(place.cellMm > 0 && std::isfinite(place.leftMm) && std::isfinite(place.topMm))) return map;
  const double mmPerPixel = place.cellMm / factor;
  drawColumnAxis(map.picture, topMargin + size.height, size.width, place.leftMm, mmPerPixel);
  drawRowAxis(map.picture, size.height, place.topMm, mmPerPixel);
  return map;
}

}  // namespace

MapPlot drawMap(const Grid<float>& heights, const MapPlace& place, std::pair<double, double> range,
                uint32_t leastSide) {
  const uint32_t factor = pixelsOfACell(heights, leastSide);
  const Grid<float> pixels = enlarged(heights, factor);
  const Rect size{0, 0, pixels.width, pixels.height};
  return withAxes(plot(pixels, {range.first, range.second, turbo, "mm"}), size, place, factor);
}

MapPlot drawColouredMap(const Grid<Rgb>& cells, const MapPlace& place, uint32_t leastSide) {
  const uint32_t factor = pixelsOfACell(cells, leastSide);
  const Grid<Rgb> pixels = enlarged(cells, factor);
  return withAxes(pixels, {0, 0, pixels.width, pixels.height}, place, factor);
}

Bytes encodeMapPlot(const Grid<float>& heights, const MapPlace& place, std::pair<double, double> range) {
  return encodePng(drawMap(heights, place, range, usualSide).picture,
                   pictureTexts("Heights above the ground in mm, coloured, seen from above; grey: unseen."));
}

}  // namespace nadir::tool
