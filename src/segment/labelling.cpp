// This labels the connected components of an image and counts their pixels.
#include <nadir/segment.h>

#include <algorithm>
#include <cstring>

#include "core/pixels.hpp"
#include "segment/columns.hpp"
#include "segment/disjoint_sets.hpp"
#include "segment/limits.hpp"
#include "segment/runs.hpp"

namespace nadir {
namespace {

constexpr size_t mostRuns = mostRunsOf(largestMapSide);

// Labels an image in two passes. In between, a run's first pixel holds its provisional label, so that the runs need no
// storage but a bit for every pixel.
class Labelling {
 public:
  Labelling(const Img& src, const Img& map) : src_(src), map_(map) { labels_.clear(); }

  // Labels the runs and returns the number of components.
  uint32_t labelRuns(int32_t threshold) {
    std::memset(map_.data, 0, rowBytes(map_) * map_.height);
    Run rows[2][mostRuns];
    size_t aboveCount = 0;
    uint16_t* labels = row<uint16_t>(map_, 0);
    for (uint32_t y = 0; y < src_.height; ++y, labels += src_.width) {
      inside_[y] = pixelsAbove(threshold, y);
      Run* runs = rows[y % 2];
      const size_t count = findInnerRuns(y, runs);
      linkRow(rows[(y + 1) % 2], aboveCount, runs, count, Reach::corner, labels_);
      for (size_t i = 0; i < count; ++i) labels[runs[i].start] = runs[i].label;
      aboveCount = count;
    }
    return labels_.numberSets();
  }

  // Writes the components' numbers over all pixels of their runs and counts them; sizes[0 .. count - 1] must be 0.
  void fillRuns(uint16_t* sizes, uint32_t count) const {
    uint32_t background = static_cast<uint32_t>(pixelCount(src_));
    uint16_t* labels = row<uint16_t>(map_, 0);
    for (uint32_t y = 0; y < src_.height; ++y, labels += src_.width) {
      Run runs[mostRuns];
      const size_t found = findInnerRuns(y, runs);
      for (size_t i = 0; i < found; ++i) {
        const uint16_t number = labels_.number(labels[runs[i].start]);
        const uint16_t length = static_cast<uint16_t>(runs[i].end - runs[i].start);
        std::fill(labels + runs[i].start, labels + runs[i].end, number);
        background -= length;
        if (number < count) sizes[number] = static_cast<uint16_t>(sizes[number] + length);
      }
    }
    if (count > 0) sizes[0] = static_cast<uint16_t>(background);
  }

 private:
  Columns pixelsAbove(int32_t threshold, uint32_t y) const {
    return src_.type == IMG_TYPE_U16 ? greaterThan(threshold, row<const uint16_t>(src_, y), 0, src_.width)
                                     : greaterThan(threshold, row<const int16_t>(src_, y), 0, src_.width);
  }

  // The runs of a row but for one that reaches the last column, which is not labelled.
  size_t findInnerRuns(uint32_t y, Run* runs) const {
    const size_t count = findRuns(inside_[y], y, src_.width, runs);
    return count > 0 && runs[count - 1].end == src_.width ? count - 1 : count;
  }

  const Img& src_;
  const Img& map_;
  Columns inside_[largestMapSide];
  LabelSets<mostLabelsOf(largestMapSide)> labels_;
};

bool isSupported(const Img& src) {
  return isType(src.type, IMG_TYPE_U16 | IMG_TYPE_S16) && src.width >= 1 && src.width <= largestMapSide &&
         src.height >= 1 && src.height <= largestMapSide;
}

}  // namespace
}  // namespace nadir

int32_t IP_CompFind_CreateLabelMap(Img* map, void* buffer, uint32_t bufferBytes) {
  constexpr uint32_t mapBytes = nadir::largestMapSide * nadir::largestMapSide * 2;
  if (bufferBytes < mapBytes) return 0;
  return static_cast<int32_t>(Img_Init(map, nadir::largestMapSide, nadir::largestMapSide, IMG_TYPE_U16, buffer));
}

int32_t IP_CompFind_CreateComponentSizes(Vector* sizes, void* buffer, uint32_t bufferBytes) {
  constexpr uint32_t initialSizes = 4096;
  if (bufferBytes < initialSizes * 2) return 0;
  Vector_Init(sizes, VECTOR_TYPE_U16, buffer, bufferBytes);
  return static_cast<int32_t>(Vector_Fill(sizes, 0, initialSizes));
}

int32_t IP_CompFind_Process(const Img* src, Img* labelMap, Vector* sizes, const int32_t* threshold) {
  if (!nadir::isSupported(*src)) return 0;
  labelMap->width = src->width;
  labelMap->height = src->height;
  nadir::Labelling labelling(*src, *labelMap);
  const uint32_t components = labelling.labelRuns(static_cast<int16_t>(*threshold));
  Vector_Fill(sizes, 0, static_cast<int32_t>(std::min(components + 1, sizes->capacity)));
  labelling.fillRuns(static_cast<uint16_t*>(sizes->data), sizes->count);
  return 1;
}
