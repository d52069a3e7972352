// This clears the components that are too small.
#include <nadir/segment.h>

#include "core/memory.hpp"
#include "core/pixels.hpp"
#include "segment/limits.hpp"

namespace nadir {
namespace {

constexpr uint32_t mapPixels = largestMapSide * largestMapSide;
constexpr uint32_t sizeCount = 1 + mostLabelsOf(largestMapSide);  // the background and every component

void keepLarge(const Img& src, const Img& dst, const uint16_t* labels, const uint16_t* sizes, uint32_t minSize) {
  const uint16_t* in = static_cast<const uint16_t*>(src.data);
  uint16_t* out = static_cast<uint16_t*>(dst.data);
  forEachPixel(pixelCount(src), [=](size_t i) { out[i] = sizes[labels[i]] < minSize ? uint16_t{0} : in[i]; });
}

}  // namespace
}  // namespace nadir

int32_t IP_ContourFilter(const Img* src, Img* dst, uint32_t minSize) {
  if (!src || !dst || !nadir::matches(*src, *dst) || !nadir::isType(src->type, IMG_TYPE_U16 | IMG_TYPE_S16)) return 0;
  const nadir::Scratch<uint16_t> memory(nadir::mapPixels + nadir::sizeCount);
  if (!memory) return 0;
  uint16_t *labels = memory.get(), *sizes = labels + nadir::mapPixels;
  Img labelMap;
  Vector sizeVector;
  const int32_t threshold = 0;
  IP_CompFind_CreateLabelMap(&labelMap, labels, nadir::mapPixels * 2);
  IP_CompFind_CreateComponentSizes(&sizeVector, sizes, nadir::sizeCount * 2);
  if (!IP_CompFind_Process(src, &labelMap, &sizeVector, &threshold)) return 0;
  nadir::keepLarge(*src, *dst, labels, sizes, minSize);
  return 1;
}

int32_t IP_ContourFilter_I(Img* img, uint32_t minSize) { return IP_ContourFilter(img, img, minSize); }
