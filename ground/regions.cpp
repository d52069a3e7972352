// The library grows the regions; here they are measured, and the small ones dropped.
#include "ground/regions.hpp"

#include <algorithm>
#include <cmath>
#include <memory>
#include <mutex>
#include <new>

#include "lab/image.hpp"

namespace nadir::ground {

namespace {

// IP_RGE_* have one state for the whole process.
std::mutex growing;

// Height and step count in sides of a cell, the area in cells. A cell that is half on an object and half beside it has
// a height in between, so a larger step would join things that touch; on the ground nearly all noise stays below the
// height, and what exceeds it are single cells and small islands at the edges of objects.
constexpr double usualHeight = 1.5, usualStep = 1, usualArea = 30;

std::unique_ptr<RegionList> grown(const Grid<uint16_t>& heights, const RegionRule& rule) {
  const ImgC image = imageOf(heights);
  const RgeParams params = {
      0, 0, 0, 0, static_cast<int32_t>(std::floor(rule.maxStepMm)), static_cast<int32_t>(std::floor(rule.minHeightMm))};
  auto regions = std::make_unique<RegionList>();
  const std::lock_guard<std::mutex> alone(growing);
  if (!IP_RGE_Init() || !IP_RGE_Process(&image, &params) || !IP_RGE_CreateRegionList(regions.get()))
    throw std::bad_alloc();
  return regions;
}

Point_f32 centreOf(const RegionEntry& entry, const MapFrame& frame) {
  double x = 0, y = 0;
  for (uint32_t i = 0; i < entry.pixelCount; ++i) {
    x += entry.positions[i].x + 0.5;
    y += entry.positions[i].y + 0.5;
  }
  const Point_f32 cell = {static_cast<float>(x / entry.pixelCount), static_cast<float>(y / entry.pixelCount)};
  Point_f32 world;
  ip_elev2world(&cell, &world, &frame.cells, &frame.corner);
  return world;
}

Region regionOf(const RegionEntry& entry, const MapFrame& frame, uint16_t label) {
  const Point_f32 centre = centreOf(entry, frame);
  return {label,
          cellSet({entry.values, entry.values + entry.pixelCount}),
          {entry.xMin, entry.yMin, entry.xEnd, entry.yEnd},
          centre.x,
          centre.y};
}

}  // namespace

RegionRule usualRule(double cellMm) {
  return {usualHeight * cellMm, usualStep * cellMm, usualArea * cellMm * cellMm / 1e6};
}

CellSet cellSet(std::vector<uint16_t> heights) {
  CellSet set;
  set.cells = heights.size();
  if (heights.empty()) return set;
  set.highestMm = *std::max_element(heights.begin(), heights.end());
  IP_Utl_Median_u16(heights.data(), static_cast<uint32_t>(heights.size()), &set.medianMm);
  return set;
}

double squareMetres(size_t cells, const ElevMapParams& map) {
  return static_cast<double>(cells) * map.cellSizeX * map.cellSizeY / 1e6;
}

Regions findRegions(const Grid<uint16_t>& heights, const MapFrame& frame, const RegionRule& rule) {
  const std::unique_ptr<RegionList> found = grown(heights, rule);
  Regions regions{{heights.width, heights.height}, {}};
  for (uint32_t i = 0; i < found->count; ++i) {
    const RegionEntry& entry = found->entries[i];
    if (squareMetres(entry.pixelCount, frame.cells) < rule.minAreaM2) continue;
    const auto label = static_cast<uint16_t>(regions.list.size() + 1);
    regions.list.push_back(regionOf(entry, frame, label));
    for (uint32_t k = 0; k < entry.pixelCount; ++k)
      regions.labels.at(entry.positions[k].x, entry.positions[k].y) = label;
  }
  return regions;
}

}  // namespace nadir::ground
