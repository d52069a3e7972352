#include "region_plot.hpp"

#include <algorithm>
#include <cmath>

#include "chunks.hpp"
#include "map_plot.hpp"

namespace nadir::tool {

namespace {

constexpr uint32_t mapSide = 640;      // pixels
constexpr double farOutside = 100000;  // of every picture, pixels
constexpr Rgb areaColour{255, 0, 200};
constexpr Rgb areaSign{255, 190, 240};

TextChunks texts(const char* description) { return {{"Description", description}, {"Software", software()}}; }

// ---- areas ----

// The outline, pieces that cannot be drawn left out, and the name at its topmost corner.
void drawOutline(Grid<Rgb>& picture, const std::vector<std::optional<Spot>>& outline, const std::string& name) {
  std::optional<Spot> highest;
  for (size_t i = 0; i < outline.size(); ++i) {
    const std::optional<Spot>&from = outline[i], &to = outline[(i + 1) % outline.size()];
    if (from && to) drawLine(picture, *from, *to, 2, areaColour);
    if (from && (!highest || from->y < highest->y)) highest = from;
  }
  if (highest) drawSign(picture, *highest, name, 1, areaSign);
}

// ---- on the map ----

bool differs(const Grid<uint16_t>& labels, uint16_t label, int64_t x, int64_t y) {
  if (x < 0 || y < 0 || x >= labels.width || y >= labels.height) return true;
  return labels.at(static_cast<uint32_t>(x), static_cast<uint32_t>(y)) != label;
}

void outlineCells(MapPlot& map, const Grid<uint16_t>& labels) {
  const auto line = [&map](double x0, double y0, double x1, double y1) {
    drawLine(map.picture, map.spot(x0, y0), map.spot(x1, y1), 2, white);
  };
  for (uint32_t y = 0; y < labels.height; ++y)
    for (uint32_t x = 0; x < labels.width; ++x) {
      const uint16_t label = labels.at(x, y);
      if (label == 0) continue;
      if (differs(labels, label, x, int64_t{y} - 1)) line(x, y, x + 1, y);
      if (differs(labels, label, x, int64_t{y} + 1)) line(x, y + 1, x + 1, y + 1);
      if (differs(labels, label, int64_t{x} - 1, y)) line(x, y, x, y + 1);
      if (differs(labels, label, int64_t{x} + 1, y)) line(x + 1, y, x + 1, y + 1);
    }
}

Spot spotOf(const MapPlot& map, const MapFrame& frame, double xMm, double yMm) {
  const double cell = frame.cells.cellSizeX;
  return map.spot((xMm - frame.corner.x) / cell, (yMm - frame.corner.y) / cell);
}

// ---- on the picture ----

// Easy to tell apart: Set1 without its grey and three of Dark2 (C. Brewer, colorbrewer2.org).
constexpr Rgb regionColours[] = {{228, 26, 28},  {55, 126, 184},  {77, 175, 74}, {152, 78, 163},
                                 {255, 127, 0},  {255, 255, 51},  {166, 86, 40}, {247, 129, 191},
                                 {27, 158, 119}, {117, 112, 179}, {230, 171, 2}};

Rgb colourOf(uint16_t label) { return regionColours[(label - 1) % std::size(regionColours)]; }

// Grey, the brightest hundredth white.
Grid<Rgb> shown(const Grid<uint16_t>& picture) {
  std::vector<uint16_t> sorted = picture.pixels;
  const auto bright = sorted.begin() + static_cast<std::ptrdiff_t>(sorted.size() * 99 / 100);
  std::nth_element(sorted.begin(), bright, sorted.end());
  const double scale = 255.0 / std::max<uint16_t>(1, *bright);
  Grid<Rgb> grey(picture.width, picture.height);
  for (size_t i = 0; i < grey.pixels.size(); ++i) {
    const auto level = static_cast<uint8_t>(std::min(255.0, picture.pixels[i] * scale));
    grey.pixels[i] = {level, level, level};
  }
  return grey;
}

// The label of what each pixel shows: its point lies over a cell of the region, above the ground.
Grid<uint16_t> labelsOfPixels(const GroundResult& r, const Findings& f) {
  Grid<uint16_t> labels(r.picture.width, r.picture.height);
  for (const WorldPoint& p : r.points) {
    const std::optional<size_t> cell = cellUnder(p.world, r.frame);
    if (!cell || r.camera.heightMm - p.world.z <= f.rule.minHeightMm) continue;
    labels.at(static_cast<uint32_t>(p.image.x), static_cast<uint32_t>(p.image.y)) = f.regions.labels.pixels[*cell];
  }
  return labels;
}

// The mean place of each label's pixels, nothing for a label that no pixel has.
std::vector<std::optional<Spot>> middles(const Grid<uint16_t>& labels, size_t count) {
  std::vector<Spot> sums(count + 1, Spot{0, 0});
  std::vector<size_t> pixels(count + 1);
  for (uint32_t y = 0; y < labels.height; ++y)
    for (uint32_t x = 0; x < labels.width; ++x) {
      const uint16_t label = labels.at(x, y);
      sums[label] = {sums[label].x + x + 0.5, sums[label].y + y + 0.5};
      ++pixels[label];
    }
  std::vector<std::optional<Spot>> middles(count + 1);
  for (size_t i = 1; i <= count; ++i) {
    const auto n = static_cast<double>(pixels[i]);
    if (pixels[i]) middles[i] = Spot{sums[i].x / n, sums[i].y / n};
  }
  return middles;
}

void drawRegions(Grid<Rgb>& picture, const Grid<uint16_t>& labels, size_t count) {
  for (size_t i = 0; i < labels.pixels.size(); ++i)
    if (const uint16_t label = labels.pixels[i]) picture.pixels[i] = blended(picture.pixels[i], colourOf(label), 0.5);
  const uint32_t scale = picture.width < 400 ? 1 : 2;
  const std::vector<std::optional<Spot>> places = middles(labels, count);
  for (size_t i = 1; i <= count; ++i)
    if (places[i]) drawSign(picture, *places[i], format("%zu", i), scale, white);
}

// Long edges on the ground are followed piece by piece, because a part of them can lie behind the camera.
std::vector<std::optional<Spot>> outlineInPicture(const std::vector<Point_s32>& corners, const StereoCtx& context) {
  constexpr int pieces = 64;
  std::vector<std::optional<Spot>> outline;
  for (size_t i = 0; i < corners.size(); ++i) {
    const Point_s32 &a = corners[i], &b = corners[(i + 1) % corners.size()];
    for (int k = 0; k < pieces; ++k) {
      const double t = static_cast<double>(k) / pieces;
      const Point3_f32 world = {static_cast<float>(a.x + (b.x - a.x) * t), static_cast<float>(a.y + (b.y - a.y) * t),
                                context.orientation.height};
      Point_f32 p;
      outline.emplace_back();
      if (ip_stereo_world2img(&context, &world, &p) && std::abs(p.x) + std::abs(p.y) < farOutside)
        outline.back() = Spot{p.x + 0.5, p.y + 0.5};
    }
  }
  return outline;
}

}  // namespace

Bytes encodeRegionMap(const GroundResult& result, const Findings& findings) {
  MapPlot map = drawMap(result.map.heights, result.frame, mapSide);
  outlineCells(map, findings.regions.labels);
  for (const Occupancy& area : findings.areas) {
    std::vector<std::optional<Spot>> outline;
    for (const Point_s32& corner : area.place.ground)
      outline.emplace_back(spotOf(map, result.frame, corner.x, corner.y));
    drawOutline(map.picture, outline, area.area.name);
  }
  for (const Region& region : findings.regions.list)
    drawSign(map.picture, spotOf(map, result.frame, region.centreXMm, region.centreYMm), format("%u", region.label), 2,
             white);
  return encodePng(map.picture, texts("Heights above the ground in mm, coloured, seen from above; grey: unseen. "
                                      "Regions are outlined in white and numbered, areas of interest in pink."));
}

Bytes encodeRegionPicture(const GroundResult& result, const Findings& findings) {
  Grid<Rgb> picture = shown(result.picture);
  drawRegions(picture, labelsOfPixels(result, findings), findings.regions.list.size());
  for (const Occupancy& area : findings.areas)
    drawOutline(picture, outlineInPicture(area.place.ground, result.context), area.area.name);
  return encodePng(picture, texts("The measured picture: regions coloured and numbered, areas of interest on the "
                                  "ground outlined in pink."));
}

}  // namespace nadir::tool
