// Segmentation once more, as slowly and plainly as it can be said: pixels that spread from neighbour to neighbour
// through a queue, each region started by its first pixel. Nothing here knows of runs or of equivalent labels.
#pragma once

#include <nadir/geometry.h>
#include <nadir/segment.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <vector>

#include "tests/models/image_ops.hpp"

namespace nadir::test::model {

using Words = std::vector<uint16_t>;
using Members = std::vector<bool>;  // for every pixel: does it belong to a region at all?

// Columns x0 .. x1 - 1 and rows y0 .. y1 - 1 of a picture.
struct Area {
  uint32_t x0, y0, x1, y1;

  bool holds(uint32_t x, uint32_t y) const { return x >= x0 && x < x1 && y >= y0 && y < y1; }
};

inline uint32_t clamp(int32_t value, uint32_t size) {
  return static_cast<uint32_t>(std::clamp<int64_t>(value, 0, int64_t{size}));
}

inline Area insideOf(uint32_t width, uint32_t height, int32_t x0, int32_t y0, int32_t x1, int32_t y1) {
  return {clamp(x0, width), clamp(y0, height), clamp(x1, width), clamp(y1, height)};
}

// ---- spreading ----

enum class Touching { sides, corners };

template <class Visit>
void forEachNeighbour(uint32_t width, uint32_t height, size_t at, Touching touching, Visit visit) {
  const int64_t x = static_cast<int64_t>(at % width), y = static_cast<int64_t>(at / width);
  for (int64_t dy = -1; dy <= 1; ++dy) {
    for (int64_t dx = -1; dx <= 1; ++dx) {
      const bool corner = dx != 0 && dy != 0, itself = dx == 0 && dy == 0;
      if (itself || (corner && touching == Touching::sides)) continue;
      if (x + dx < 0 || x + dx >= width || y + dy < 0 || y + dy >= height) continue;
      visit(static_cast<size_t>((y + dy) * width + x + dx));
    }
  }
}

// Labels 1, 2, ... in the raster order of the first pixels; linked(from, to) says whether neighbours hold together.
template <class Linked>
std::vector<uint32_t> spread(uint32_t width, uint32_t height, const Members& members, Touching touching,
                             Linked linked) {
  std::vector<uint32_t> labels(members.size(), 0);
  std::vector<size_t> queue;
  uint32_t count = 0;
  for (size_t seed = 0; seed < members.size(); ++seed) {
    if (!members[seed] || labels[seed] != 0) continue;
    labels[seed] = ++count;
    queue.assign(1, seed);
    for (size_t head = 0; head < queue.size(); ++head) {
      const size_t at = queue[head];
      forEachNeighbour(width, height, at, touching, [&](size_t next) {
        if (!members[next] || labels[next] != 0 || !linked(at, next)) return;
        labels[next] = count;
        queue.push_back(next);
      });
    }
  }
  return labels;
}

inline bool always(size_t, size_t) { return true; }

inline Words low16(const std::vector<uint32_t>& labels) {
  Words out;
  for (const uint32_t label : labels) out.push_back(static_cast<uint16_t>(label));
  return out;
}

// Neighbours hold together where their values differ by no more than the step.
struct Steps {
  const Picture<uint16_t>& picture;
  int32_t largest;

  bool operator()(size_t a, size_t b) const { return std::abs(picture.pixels[a] - picture.pixels[b]) <= largest; }
};

inline Members above(const Picture<uint16_t>& picture, int32_t bound, const Area& area) {
  Members members;
  for (uint32_t y = 0; y < picture.height; ++y) {
    for (uint32_t x = 0; x < picture.width; ++x) members.push_back(area.holds(x, y) && picture.at(x, y) > bound);
  }
  return members;
}

// ---- labelling of small images ----

struct Labelling {
  Words labels;
  std::vector<uint32_t> sizes;  // [0] is the background's
};

// Pixels above the threshold, but for those from which only such pixels lead to the right border.
template <class T>
Members labelled(const Picture<T>& picture, int16_t threshold) {
  Members members;
  for (const T value : picture.pixels) members.push_back(int32_t{value} > threshold);
  for (uint32_t y = 0; y < picture.height; ++y) {
    for (uint32_t x = picture.width; x > 0 && int32_t{picture.at(x - 1, y)} > threshold; --x) {
      members[size_t{y} * picture.width + x - 1] = false;
    }
  }
  return members;
}

template <class T>
Labelling components(const Picture<T>& picture, int16_t threshold) {
  const Members members = labelled(picture, threshold);
  const auto labels = spread(picture.width, picture.height, members, Touching::corners, always);
  Labelling out{low16(labels), std::vector<uint32_t>(*std::max_element(labels.begin(), labels.end()) + 1, 0)};
  for (const uint32_t label : labels) ++out.sizes[label];
  return out;
}

// ---- small blobs ----

template <class T>
std::vector<T> withoutSmall(const Picture<T>& picture, uint32_t minSize) {
  const Labelling found = components(picture, 0);
  std::vector<T> out = picture.pixels;
  for (size_t i = 0; i < out.size(); ++i) {
    if (found.sizes[found.labels[i]] < minSize) out[i] = 0;
  }
  return out;
}

// ---- regions with their pixels ----

// A place as one number, in raster order.
inline uint32_t place(uint32_t x, uint32_t y) { return y << 16 | x; }

struct Region {
  std::vector<uint32_t> places;
  Words values, contour;
  int32_t xMin = std::numeric_limits<int32_t>::max(), yMin = xMin, xEnd = 0, yEnd = 0;

  void add(uint32_t x, uint32_t y, uint16_t value) {
    places.push_back(place(x, y));
    values.push_back(value);
    xMin = std::min(xMin, static_cast<int32_t>(x));
    yMin = std::min(yMin, static_cast<int32_t>(y));
    xEnd = std::max(xEnd, static_cast<int32_t>(x) + 1);
    yEnd = std::max(yEnd, static_cast<int32_t>(y) + 1);
  }
};

inline std::vector<Region> listed(const Picture<uint16_t>& picture, const std::vector<uint32_t>& labels) {
  std::vector<Region> regions;
  for (size_t i = 0; i < labels.size(); ++i) {
    if (labels[i] == 0) continue;
    if (labels[i] > regions.size()) regions.resize(labels[i]);
    regions[labels[i] - 1].add(static_cast<uint32_t>(i % picture.width), static_cast<uint32_t>(i / picture.width),
                               picture.pixels[i]);
  }
  return regions;
}

// ---- components with their pixels ----

inline Area searched(const Picture<uint16_t>& picture, const Rect_s32& aoi) {
  if (aoi.x1 <= aoi.x0 || aoi.y1 <= aoi.y0) return {0, 0, picture.width, picture.height};
  return insideOf(picture.width, picture.height, aoi.x0, aoi.y0, aoi.x1, aoi.y1);
}

// Is a neighbour (0 or the picture's value, for one outside the area 0) set?
inline bool isSet(const Picture<uint16_t>& picture, const Area& area, int64_t x, int64_t y) {
  if (x < 0 || y < 0 || !area.holds(static_cast<uint32_t>(x), static_cast<uint32_t>(y))) return false;
  return picture.at(static_cast<uint32_t>(x), static_cast<uint32_t>(y)) != 0;
}

// Set pixels of the area, but for those of its last column with nothing to their left.
inline Members found(const Picture<uint16_t>& picture, const Area& area) {
  Members members = above(picture, 0, area);
  for (uint32_t y = area.y0; y < area.y1 && area.x0 < area.x1; ++y) {
    if (!isSet(picture, area, int64_t{area.x1} - 2, y)) members[size_t{y} * picture.width + area.x1 - 1] = false;
  }
  return members;
}

inline bool isContour(const Picture<uint16_t>& picture, const Area& area, int64_t x, int64_t y) {
  return !isSet(picture, area, x - 1, y) || !isSet(picture, area, x + 1, y) || !isSet(picture, area, x, y - 1) ||
         !isSet(picture, area, x, y + 1);
}

inline std::vector<Region> componentList(const Picture<uint16_t>& picture, const Rect_s32& aoi) {
  const Area area = searched(picture, aoi);
  const Members members = found(picture, area);
  auto regions = listed(picture, spread(picture.width, picture.height, members, Touching::corners, always));
  for (Region& region : regions) {
    for (size_t i = 0; i < region.places.size(); ++i) {
      const bool contour = isContour(picture, area, region.places[i] & 0xFFFF, region.places[i] >> 16);
      if (contour) region.contour.push_back(static_cast<uint16_t>(i));
    }
  }
  return regions;
}

// ---- region growing ----

inline Words grown(const Picture<uint16_t>& picture, int32_t threshold, int32_t maxStep) {
  if (maxStep < 0) return Words(picture.pixels.size(), 0);
  const Members members = above(picture, threshold, {0, 0, picture.width, picture.height});
  return low16(spread(picture.width, picture.height, members, Touching::corners, Steps{picture, maxStep}));
}

// ---- regions of elevation maps ----

inline std::vector<uint32_t> elevationLabels(const Picture<uint16_t>& picture, const RgeParams& p) {
  const bool whole = p.x0 == 0 && p.y0 == 0 && p.x1 == 0 && p.y1 == 0;
  const Area area = whole ? Area{0, 0, picture.width, picture.height}
                          : insideOf(picture.width, picture.height, p.x0, p.y0, p.x1, p.y1);
  return spread(picture.width, picture.height, above(picture, p.minValue, area), Touching::sides,
                Steps{picture, p.maxStep});
}

inline std::vector<Region> elevationRegions(const Picture<uint16_t>& picture, const RgeParams& params) {
  return listed(picture, elevationLabels(picture, params));
}

}  // namespace nadir::test::model
