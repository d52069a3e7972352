// Pixels along the edges of both pictures are looked up in the map of regions.
#include "ground/stations/picture_edge.hpp"

namespace nadir::ground {

namespace {

// The matcher leaves out up to four pixels along an edge, and checks some more; in halved pictures these are larger.
constexpr uint32_t nearEdge = 8;

bool isAtEdge(float place, const PictureEdge& edge, uint32_t side) {
  return place < edge.pixels || place >= static_cast<float>(side) - edge.pixels;
}

}  // namespace

PictureEdge pictureEdge(const NadirSettings& settings, uint32_t halvings, float columnShift) {
  return {static_cast<float>(nearEdge << halvings), settings.grid == NADIR_GRID_LEFT ? -1.0f : 1.0f, columnShift};
}

void markAtPictureEdge(const DisparityRows& rows, const PictureEdge& edge, const Shape& shape, const SortMemory& m,
                       const uint16_t* labels, NadirRegion* regions) {
  for (uint32_t y = 0; y < shape.height; ++y) {
    const uint32_t* cells = m.cells + size_t{y} * shape.width;
    const bool row = isAtEdge(static_cast<float>(y), edge, shape.height);
    rows.read(y, m.disparity);
    for (uint32_t x = 0; x < shape.width; ++x) {
      const uint16_t label = cells[x] < shape.cells() ? labels[cells[x]] : uint16_t{0};
      if (label == 0) continue;
      const auto column = static_cast<float>(x);
      const float other = column + edge.towards * (m.disparity[x] - edge.shift);
      if (row || isAtEdge(column, edge, shape.width) || isAtEdge(other, edge, shape.width))
        regions[label - 1].at_picture_edge = 1;
    }
  }
}

}  // namespace nadir::ground
