// Outlines, colours and names on the map and on the picture.
#include "tools/report/region_plot.hpp"

#include <algorithm>
#include <cmath>

#include "tools/base/known_values.hpp"
#include "tools/base/text.hpp"
#include "tools/draw/plot.hpp"
#include "tools/draw/signs.hpp"
#include "tools/pictures/chunks.hpp"
#include "tools/report/map_plot.hpp"
#include "tools/report/map_texts.hpp"

namespace nadir::tool {

namespace {

constexpr uint32_t mapSide = 640;      // pixels
constexpr double farOutside = 100000;  // of every picture, pixels
constexpr Rgb areaColour{255, 0, 200};
constexpr Rgb areaSign{255, 190, 240};

// ---- areas ----

constexpr uint32_t pen = 2;  // pixels

// Where the middle of the pen may go.
Rect forThePen(const Rect& room) { return {room.left + 1, room.top + 1, room.width - pen, room.height - pen}; }

// The part of an outline that lies in `room`, pieces that cannot be drawn left out.
std::vector<Line> visibleLines(const std::vector<std::optional<Spot>>& outline, const Rect& room) {
  std::vector<Line> lines;
  for (size_t i = 0; i < outline.size(); ++i) {
    const std::optional<Spot>&from = outline[i], &to = outline[(i + 1) % outline.size()];
    if (!from || !to) continue;
    if (const std::optional<Line> line = clipped({*from, *to}, forThePen(room))) lines.push_back(*line);
  }
  return lines;
}

struct NamedOutline {
  std::string name;
  std::vector<Line> lines;
};

void drawLines(Grid<Rgb>& picture, const std::vector<NamedOutline>& areas) {
  for (const NamedOutline& area : areas)
    for (const Line& line : area.lines) drawLine(picture, line.from, line.to, pen, areaColour);
}

// A name stands at the topmost spot of what is seen of its outline.
void drawNames(Signs& signs, const std::vector<NamedOutline>& areas) {
  for (const NamedOutline& area : areas) {
    std::optional<Spot> highest;
    for (const Line& line : area.lines)
      for (const Spot& end : {line.from, line.to})
        if (!highest || end.y < highest->y) highest = end;
    if (highest) signs.drawNear(*highest, area.name, 1, areaSign);
  }
}

// ---- numbers ----

constexpr Rgb cutOff{255, 200, 90};

// What goes on beyond the picture's edge is told apart from what is whole.
void drawNumber(Signs& signs, const Spot& place, const NadirRegion& region, uint32_t scale) {
  const bool cut = region.at_picture_edge != 0;
  signs.drawAt(place, format("%u%s", region.label, cut ? " cut off" : ""), scale, cut ? cutOff : white);
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

Spot spotOf(const MapPlot& map, const StereoCtx& context, double xMm, double yMm) {
  const double cell = context.mapParams.cellSizeX;
  return map.spot((xMm - context.lowerLeft.x) / cell, (yMm - context.lowerLeft.y) / cell);
}

// ---- on the picture ----

// Easy to tell apart: Set1 without its grey and three of Dark2 (C. Brewer, colorbrewer2.org).
constexpr Rgb regionColours[] = {{228, 26, 28},  {55, 126, 184},  {77, 175, 74}, {152, 78, 163},
                                 {255, 127, 0},  {255, 255, 51},  {166, 86, 40}, {247, 129, 191},
                                 {27, 158, 119}, {117, 112, 179}, {230, 171, 2}};

Rgb colourOf(uint16_t label) { return regionColours[(label - 1) % std::size(regionColours)]; }

// The picture in grey, its brightest hundredth white.
Grid<Rgb> greyPicture(const Grid<uint16_t>& picture) {
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
Grid<uint16_t> labelsOfPixels(const Road& road, const PairResult& r) {
  const Grid<uint16_t> cells = gridOf<uint16_t>(r.findings.labels);
  Grid<uint16_t> labels(r.picture.width, r.picture.height);
  for (const NadirPoint& p : r.points)
    if (p.cell != NADIR_NO_CELL && road.camera.heightMm - p.z_mm > road.settings.min_height_mm)
      labels.at(p.column, p.row) = cells.pixels[p.cell];
  return labels;
}

// The mean place of each label's pixels, nothing for a label that no pixel has. No label is above `count`.
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

void colourCells(Grid<Rgb>& cells, const Grid<uint16_t>& labels) {
  for (size_t i = 0; i < labels.pixels.size(); ++i)
    if (const uint16_t label = labels.pixels[i]) cells.pixels[i] = colourOf(label);
}

void colourRegions(Grid<Rgb>& picture, const Grid<uint16_t>& labels) {
  for (size_t i = 0; i < labels.pixels.size(); ++i)
    if (const uint16_t label = labels.pixels[i]) picture.pixels[i] = blended(picture.pixels[i], colourOf(label), 0.5);
}

void numberRegions(Signs& signs, const Grid<uint16_t>& labels, const NadirFindings& findings) {
  const uint32_t scale = labels.width < 400 ? 1 : 2;
  const std::vector<std::optional<Spot>> places = middles(labels, findings.region_count);
  for (uint32_t i = 0; i < findings.region_count; ++i)
    if (places[i + 1]) drawNumber(signs, *places[i + 1], findings.regions[i], scale);
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

std::vector<NamedOutline> areasOnMap(const MapPlot& map, const Road& road) {
  std::vector<NamedOutline> areas;
  for (const WatchedArea& area : road.areas) {
    std::vector<std::optional<Spot>> outline;
    for (const Point_s32& corner : area.ground) outline.emplace_back(spotOf(map, road.context, corner.x, corner.y));
    areas.push_back({area.area.name, visibleLines(outline, map.place)});
  }
  return areas;
}

std::vector<NamedOutline> areasInPicture(const Road& road, const Rect& whole) {
  std::vector<NamedOutline> areas;
  for (const WatchedArea& area : road.areas)
    areas.push_back({area.area.name, visibleLines(outlineInPicture(area.ground, road.context), whole)});
  return areas;
}

// The numbers stand in the middle of what they count.
void numberLabels(MapPlot& map, const Grid<uint16_t>& labels) {
  const uint16_t last = *std::max_element(labels.pixels.begin(), labels.pixels.end());
  const std::vector<std::optional<Spot>> places = middles(labels, last);
  Signs signs(map.picture, map.place);
  for (uint32_t label = 1; label <= last; ++label)
    if (const std::optional<Spot>& place = places[label])
      signs.drawAt(map.spot(place->x, place->y), std::to_string(label), 2, white);
}

}  // namespace

Bytes encodeRegionMap(const Road& road, const PairResult& result) {
  const NadirFindings& findings = result.findings;
  const Grid<float> heights = unpacked(gridOf<uint16_t>(findings.heights), 1);
  MapPlot map = drawMap(heights, placeOf(road.context), usualRange(heights), mapSide);
  const std::vector<NamedOutline> areas = areasOnMap(map, road);
  outlineCells(map, gridOf<uint16_t>(findings.labels));
  drawLines(map.picture, areas);
  Signs signs(map.picture, map.place);
  for (uint32_t i = 0; i < findings.region_count; ++i) {
    const NadirRegion& region = findings.regions[i];
    drawNumber(signs, spotOf(map, road.context, region.centre_x_mm, region.centre_y_mm), region, 2);
  }
  drawNames(signs, areas);
  return encodePng(map.picture,
                   pictureTexts("Heights above the ground in mm, coloured, seen from above; grey: unseen. "
                                "Regions are outlined in white and numbered (yellow: cut off by the picture's "
                                "edge), areas of interest in pink."));
}

Bytes encodeRegionPicture(const Road& road, const PairResult& result) {
  Grid<Rgb> picture = greyPicture(result.picture);
  const Grid<uint16_t> labels = labelsOfPixels(road, result);
  const Rect whole{0, 0, picture.width, picture.height};
  const std::vector<NamedOutline> areas = areasInPicture(road, whole);
  colourRegions(picture, labels);
  drawLines(picture, areas);
  Signs signs(picture, whole);
  numberRegions(signs, labels, result.findings);
  drawNames(signs, areas);
  return encodePng(picture,
                   pictureTexts("The measured picture: regions coloured and numbered (yellow: cut off by its edge "
                                "or the other picture's), areas of interest on the ground outlined in pink."));
}

Bytes encodeLabelMap(const LabelPicture& map) {
  Grid<Rgb> cells(map.labels.width, map.labels.height, noValueGrey);
  colourCells(cells, map.labels);
  MapPlot drawn = drawColouredMap(cells, map.place, mapSide);
  numberLabels(drawn, map.labels);
  return encodePng(drawn.picture, pictureTexts("Regions in colours, numbered, seen from above; grey: none."));
}

}  // namespace nadir::tool
