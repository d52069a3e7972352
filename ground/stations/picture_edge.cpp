// Pixels along the edges of both pictures are looked up in the map of regions.
#include "ground/stations/picture_edge.hpp"

namespace nadir::ground {

namespace {

// The matcher leaves out up to four pixels along an edge, and checks some more; in halved pictures these are larger.
constexpr uint32_t nearEdge = 8;

// One row's pixels, whose disparities are read when the first one shows a region.
class EdgeRow {
 public:
  EdgeRow(const DisparityRows& rows, const PictureEdge& edge, const Shape& shape, const SortMemory& m, uint32_t y)
      : rows_(rows), edge_(edge), shape_(shape), m_(m), y_(y), cells_(m.cells + size_t{y} * shape.width) {}

  void mark(uint32_t from, uint32_t to, const uint16_t* labels, NadirRegion* regions) {
    for (uint32_t x = from; x < to; ++x) {
      const uint16_t label = cells_[x] < shape_.cells() ? labels[cells_[x]] : uint16_t{0};
      if (label != 0 && isAtEdge(x)) regions[label - 1].at_picture_edge = 1;
    }
  }

 private:
  bool isAtEdge(uint32_t x) {
    if (!isRead_) rows_.read(y_, m_.disparity);
    isRead_ = true;
    const auto column = static_cast<float>(x);
    const float other = column + edge_.towards * (m_.disparity[x] - edge_.shift);
    return isNear(static_cast<float>(y_), shape_.height) || isNear(column, shape_.width) || isNear(other, shape_.width);
  }

  bool isNear(float place, uint32_t side) const {
    const auto pixels = static_cast<float>(edge_.pixels);
    return place < pixels || place >= static_cast<float>(side) - pixels;
  }

  const DisparityRows& rows_;
  const PictureEdge& edge_;
  const Shape& shape_;
  const SortMemory& m_;
  uint32_t y_;
  const uint32_t* cells_;
  bool isRead_ = false;
};

}  // namespace

PictureEdge pictureEdge(const NadirSettings& settings, const Shape& shape, uint32_t halvings, float columnShift,
                        double largestDisparity) {
  const bool isLeft = settings.grid == NADIR_GRID_LEFT;
  const uint32_t pixels = nearEdge << halvings;
  const double reach = largestDisparity + pixels + 1;
  const uint32_t band = reach < shape.width ? static_cast<uint32_t>(reach) : shape.width;
  return {pixels, isLeft ? -1.0f : 1.0f, columnShift, isLeft ? band : pixels, isLeft ? pixels : band};
}

void markAtPictureEdge(const DisparityRows& rows, const PictureEdge& edge, const Shape& shape, const SortMemory& m,
                       const uint16_t* labels, NadirRegion* regions) {
  const bool isNarrow = edge.left + edge.right >= shape.width;
  for (uint32_t y = 0; y < shape.height; ++y) {
    EdgeRow row(rows, edge, shape, m, y);
    const bool isWhole = isNarrow || y < edge.pixels || y + edge.pixels >= shape.height;
    row.mark(0, isWhole ? shape.width : edge.left, labels, regions);
    if (!isWhole) row.mark(shape.width - edge.right, shape.width, labels, regions);
  }
}

}  // namespace nadir::ground
