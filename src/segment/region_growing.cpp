// Whether two neighbours are linked depends on the two alone, so a region is a connected component of links, and a
// forest of disjoint sets over all pixels finds it in one pass in raster order, without recursion. Its roots are the
// regions' first pixels.
#include <nadir/segment.h>

#include <cstdlib>

#include "core/given_memory.hpp"
#include "core/memory.hpp"
#include "core/pixels.hpp"
#include "segment/disjoint_sets.hpp"

namespace nadir {
namespace {

constexpr uint32_t noRegion = UINT32_MAX;

struct Growth {
  int32_t threshold, maxStep;

  // A pixel on its own is linked to itself by a step of 0, which a negative limit forbids.
  bool admits(int32_t value) const { return value > threshold && maxStep >= 0; }
  bool links(int32_t a, int32_t b) const { return std::abs(a - b) <= maxStep; }
};

class Regions {
 public:
  Regions(const Img& src, const Growth& growth, uint32_t* parents)
      : pixels_(static_cast<const uint16_t*>(src.data)), width_(src.width), growth_(growth), parents_(parents) {}

  // Links a pixel to those of its neighbours that come before it.
  void add(uint32_t x, uint32_t y) {
    const uint32_t i = y * width_ + x;
    parents_[i] = growth_.admits(pixels_[i]) ? i : noRegion;
    if (parents_[i] == noRegion) return;
    const bool hasLeft = x > 0, hasRight = x + 1 < width_;
    if (hasLeft) link(i, i - 1);
    if (y == 0) return;
    if (hasLeft) link(i, i - width_ - 1);
    link(i, i - width_);
    if (hasRight) link(i, i - width_ + 1);
  }

 private:
  void link(uint32_t i, uint32_t neighbour) {
    if (parents_[neighbour] == noRegion || parents_[neighbour] == parents_[i]) return;
    if (growth_.links(pixels_[i], pixels_[neighbour])) unite(parents_, i, neighbour);
  }

  const uint16_t* pixels_;
  uint32_t width_;
  Growth growth_;
  uint32_t* parents_;
};

// A parent comes before its children, so its label is there when they ask for it.
void writeLabels(const uint32_t* parents, size_t count, uint16_t* labels) {
  uint16_t next = 1;
  for (size_t i = 0; i < count; ++i) {
    if (parents[i] == noRegion) {
      labels[i] = 0;
    } else {
      labels[i] = parents[i] == i ? next++ : labels[parents[i]];
    }
  }
}

bool canGrow(const Img* src, const int32_t* params, const Img* labels) {
  return src && params && labels && src->type == IMG_TYPE_U16 && matches(*src, *labels);
}

}  // namespace
}  // namespace nadir

size_t nadir_region_growing_bytes(uint32_t width, uint32_t height) {
  return nadir::bytesFor<uint32_t>(uint64_t{width} * height);
}

int32_t nadir_region_growing(const Img* src, const int32_t* params, Img* labels, void* memory, size_t bytes) {
  if (!nadir::canGrow(src, params, labels)) return 0;
  if (nadir::pixelCount(*src) == 0) return 1;
  uint32_t* const parents = nadir::asArray<uint32_t>(memory, bytes, nadir::pixelCount(*src));
  if (!parents) return 0;
  nadir::Regions regions(*src, {params[0], params[1]}, parents);
  for (uint32_t y = 0; y < src->height; ++y) {
    for (uint32_t x = 0; x < src->width; ++x) regions.add(x, y);
  }
  nadir::writeLabels(parents, nadir::pixelCount(*src), static_cast<uint16_t*>(labels->data));
  return 1;
}

int32_t IP_RGrow_Process(const Img* src, const int32_t* params, Img* labels) {
  if (!nadir::canGrow(src, params, labels)) return 0;
  const size_t bytes = nadir_region_growing_bytes(src->width, src->height);
  const nadir::Scratch<uint8_t> memory(bytes);
  return nadir_region_growing(src, params, labels, memory.get(), bytes);
}
