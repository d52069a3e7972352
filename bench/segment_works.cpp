// The functions of segment.h, on the upper left corner of the pair where its size is beyond theirs.
#include <algorithm>

#include "bench/segment_calls.hpp"
#include "bench/work.hpp"

namespace nadir::bench {
namespace {

// The darker half of the pair becomes background.
Picture16 corner(const lab::TexturedPair& pair, uint32_t maxSide) {
  const uint32_t width = std::min(pair.width, maxSide), height = std::min(pair.height, maxSide);
  std::vector<uint16_t> pixels;
  for (uint32_t y = 0; y < height; ++y) {
    for (uint32_t x = 0; x < width; ++x) {
      const uint16_t value = pair.reference[y * pair.width + x];
      pixels.push_back(value > 1800 ? value : uint16_t{0});
    }
  }
  return makePicture(width, height, std::move(pixels));
}

}  // namespace

void addSegmentWorks(Works& works, const lab::TexturedPair& pair) {
  constexpr int32_t maxStep = 40;
  const Picture16 small = corner(pair, 128), middle = corner(pair, 256), large = corner(pair, 65535);
  const auto add = [&](const char* name, const Picture16& src, uint64_t bytesPerPixel, const Call& call) {
    works.push_back({name, src->grid.pixels.size(), bytesPerPixel * src->grid.pixels.size(), call});
  };
  add("IP_CompFind_Process", small, 4, labelling(small));
  add("IP_ContourFilter", small, 4, smallBlobsRemoved(small));
  add("IP_CompFinder_Process", middle, 10, componentsFound(middle));
  add("IP_RGE_* label map", small, 4, regionsMapped(small, maxStep));
  add("IP_RGE_* region list", small, 8, regionsListed(small, maxStep));
  add("IP_RGrow_Process", large, 4, regionsGrown(large, maxStep));
}

}  // namespace nadir::bench
