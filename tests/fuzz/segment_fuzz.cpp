// Any bytes as the images that segmentation takes: the results are those of the model, and nothing is touched outside
// the buffers.
#include <nadir/segment.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "tests/fuzz/input.hpp"
#include "tests/models/segments.hpp"

namespace nadir::test {
namespace {

using model::Region;
using model::Words;
using Picture = model::Picture<uint16_t>;

// Few values, so that neighbours are often alike, or any. Mostly small: many of them say more than a few large ones.
Picture anyPicture(Input& in, uint32_t largest) {
  const uint32_t most = in.below(16) ? 20 : largest;
  Picture picture{1 + in.below(most), 1 + in.below(most), {}};
  const uint32_t kind = in.below(4);
  picture.pixels = in.values<uint16_t>(size_t{picture.width} * picture.height);
  for (uint16_t& value : picture.pixels) {
    if (kind == 0) value = value & 1;
    if (kind == 1) value = value & 3;
    if (kind == 2) value = static_cast<uint16_t>(value & 256 ? 0 : 20 + (value & 3));
  }
  return picture;
}

int32_t anyNumber(Input& in) { return static_cast<int32_t>(in.values<uint32_t>(1)[0]); }

// Near the picture, or anywhere.
Rect_s32 anyArea(Input& in, const Picture& picture) {
  if (in.below(8) == 0) return {anyNumber(in), anyNumber(in), anyNumber(in), anyNumber(in)};
  const auto near = [&](uint32_t size) { return static_cast<int32_t>(in.below(size + 5)) - 2; };
  return {near(picture.width), near(picture.height), near(picture.width), near(picture.height)};
}

// The memory lies on the heap, so that the sanitizer sees its ends.
struct Pixels {
  explicit Pixels(const Picture& picture, uint32_t type = IMG_TYPE_U16) : values(picture.pixels) {
    Img_Init(&img, picture.width, picture.height, type, values.data());
  }

  Words values;
  Img img;
};

template <class Entry>
void expectEntry(const Region& want, const Entry& got) {
  expect("pixels", static_cast<uint32_t>(want.places.size()), got.pixelCount);
  for (uint32_t i = 0; i < got.pixelCount; ++i) {
    expect("position", want.places[i], model::place(got.positions[i].x, got.positions[i].y));
    expect("value", want.values[i], got.values[i]);
  }
  expect("left", want.xMin, got.xMin);
  expect("top", want.yMin, got.yMin);
  expect("right", want.xEnd, got.xEnd);
  expect("bottom", want.yEnd, got.yEnd);
}

template <class T>
void expectLabelling(Input& in, const Picture& picture, uint32_t type) {
  const int32_t threshold = in.below(2) ? static_cast<int32_t>(in.below(3)) : anyNumber(in);
  const Pixels src(picture, type);
  Words labels(picture.pixels.size()), sizeMemory(4097);
  Img map;
  Vector sizes;
  Img_Init(&map, 128, 128, IMG_TYPE_U16, labels.data());
  IP_CompFind_CreateComponentSizes(&sizes, sizeMemory.data(), 2 * 4097);
  expect("labelled", 1, IP_CompFind_Process(&src.img, &map, &sizes, &threshold));
  const model::Picture<T> typed{picture.width, picture.height, {picture.pixels.begin(), picture.pixels.end()}};
  const model::Labelling want = model::components(typed, static_cast<int16_t>(threshold));
  expect("labels", want.labels, labels);
  expect("sizes", want.sizes, std::vector<uint32_t>(sizeMemory.begin(), sizeMemory.begin() + sizes.count));
}

void fuzzLabelling(Input& in) {
  const Picture picture = anyPicture(in, 128);
  if (in.below(2)) {
    expectLabelling<uint16_t>(in, picture, IMG_TYPE_U16);
  } else {
    expectLabelling<int16_t>(in, picture, IMG_TYPE_S16);
  }
}

void fuzzComponentFinder(Input& in) {
  // One for all runs: what it did before must play no part.
  static CompFinder* const finder = IP_CompFinder_Init();
  static const auto list = std::make_unique<ComponentList>();
  const Picture picture = anyPicture(in, 256);
  const Rect_s32 aoi = anyArea(in, picture);
  const Pixels src(picture);
  expect("found", 1, IP_CompFinder_ProcessAoi(finder, &src.img, &aoi, list.get()));
  const std::vector<Region> want = model::componentList(picture, aoi);
  expect("components", static_cast<uint32_t>(want.size()), list->count);
  for (size_t i = 0; i < want.size(); ++i) {
    const ComponentEntry& entry = list->entries[i];
    expectEntry(want[i], entry);
    expect("contour", want[i].contour, Words(entry.contour, entry.contour + entry.contourCount));
  }
}

void fuzzContourFilter(Input& in) {
  const Picture picture = anyPicture(in, 128);
  const uint32_t minSize = in.below(300);
  const Pixels src(picture);
  Pixels dst(picture);
  expect("filtered", 1, IP_ContourFilter(&src.img, &dst.img, minSize));
  expect("image without small components", model::withoutSmall(picture, minSize), dst.values);
}

void fuzzRegionGrowing(Input& in) {
  const Picture picture = anyPicture(in, 200);
  const int32_t params[] = {static_cast<int32_t>(in.below(30)) - 1, static_cast<int32_t>(in.below(4)) - 1};
  const Pixels src(picture);
  Pixels labels(picture);
  expect("grown", 1, IP_RGrow_Process(&src.img, params, &labels.img));
  expect("grown regions", model::grown(picture, params[0], params[1]), labels.values);
}

void fuzzElevationRegions(Input& in) {
  static const int32_t ready = IP_RGE_Init();
  static const auto list = std::make_unique<RegionList>();
  expect("ready", 1, ready);
  const Picture picture = anyPicture(in, 128);
  const Rect_s32 area = in.below(2) ? Rect_s32{0, 0, 0, 0} : anyArea(in, picture);
  const RgeParams params{area.x0,
                         area.y0,
                         area.x1,
                         area.y1,
                         static_cast<int32_t>(in.below(5)) - 1,
                         in.below(4) ? static_cast<int32_t>(in.below(22)) : anyNumber(in)};
  const Pixels src(picture);
  Pixels labels(picture);
  const ImgC elevation{src.img.width, src.img.height, src.img.bytesPerPixel, src.img.type, src.img.data};
  expect("processed", 1, IP_RGE_Process(&elevation, &params));
  expect("label map", 1, IP_RGE_CreateLabelMap(&labels.img));
  expect("elevation labels", model::low16(model::elevationLabels(picture, params)), labels.values);
  expect("region list", 1, IP_RGE_CreateRegionList(list.get()));
  const std::vector<Region> want = model::elevationRegions(picture, params);
  expect("regions", static_cast<uint32_t>(want.size()), list->count);
  for (size_t i = 0; i < want.size(); ++i) expectEntry(want[i], list->entries[i]);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  constexpr void (*targets[])(Input&) = {fuzzLabelling, fuzzComponentFinder, fuzzContourFilter, fuzzRegionGrowing,
                                         fuzzElevationRegions};
  Input in(data, size);
  targets[in.below(5)](in);
  return 0;
}

}  // namespace nadir::test
