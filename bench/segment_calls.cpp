// The calls of segment.h, each with its buffers.
#include "bench/segment_calls.hpp"

#include <nadir/segment.h>

#include <vector>

namespace nadir::bench {
namespace {

Picture16 likeThat(const Picture16& src) { return makePicture(src->image.width, src->image.height, src->grid.pixels); }

void process(const Picture16& elev, int32_t maxStep) {
  const Img& img = elev->image;
  const ImgC map = {img.width, img.height, img.bytesPerPixel, img.type, img.data};
  const RgeParams params = {0, 0, 0, 0, maxStep, 0};
  IP_RGE_Process(&map, &params);
}

}  // namespace

Call labelling(const Picture16& src) {
  const auto map = likeThat(src);
  const auto memory = std::make_shared<std::vector<uint16_t>>(4096);
  return [=] {
    const int32_t threshold = 0;
    Vector sizes;
    IP_CompFind_CreateComponentSizes(&sizes, memory->data(), 4096 * 2);
    IP_CompFind_Process(&src->image, &map->image, &sizes, &threshold);
  };
}

Call smallBlobsRemoved(const Picture16& src) {
  const auto dst = likeThat(src);
  return [=] { IP_ContourFilter(&src->image, &dst->image, 20); };
}

Call componentsFound(const Picture16& src) {
  const std::shared_ptr<CompFinder> finder(IP_CompFinder_Init(), IP_CompFinder_Close);
  const auto list = std::make_shared<ComponentList>();
  return [=] { IP_CompFinder_Process(finder.get(), &src->image, list.get()); };
}

Call regionsMapped(const Picture16& elev, int32_t maxStep) {
  IP_RGE_Init();
  const auto map = likeThat(elev);
  return [=] {
    process(elev, maxStep);
    IP_RGE_CreateLabelMap(&map->image);
  };
}

Call regionsListed(const Picture16& elev, int32_t maxStep) {
  IP_RGE_Init();
  const auto list = std::make_shared<RegionList>();
  return [=] {
    process(elev, maxStep);
    IP_RGE_CreateRegionList(list.get());
  };
}

Call regionsGrown(const Picture16& src, int32_t maxStep) {
  const auto labels = likeThat(src);
  return [=] {
    const int32_t params[] = {0, maxStep};
    IP_RGrow_Process(&src->image, params, &labels->image);
  };
}

}  // namespace nadir::bench
