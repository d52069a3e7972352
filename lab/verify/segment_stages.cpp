// The stages that find components and regions.
#include <memory>
#include <new>

#include "lab/verify/stages.hpp"

namespace nadir::verify {

namespace {

constexpr uint16_t high = 300;  // mm above the ground: people, not the floor

// The map without what is low.
Grid<uint16_t> figures(const Material& m) {
  return converted<uint16_t>(m.elevation, [](uint16_t mm) { return mm > high ? mm : uint16_t{0}; });
}

Fingerprint labelling(const Material& m) {
  std::vector<uint16_t> labels(128 * 128), room(4096);
  Img map;
  Vector sizes;
  Picture<uint16_t> source(m.elevation);
  const int32_t threshold = high;
  Fingerprint print;
  print.done(IP_CompFind_CreateLabelMap(&map, labels.data(), 32768));
  print.done(IP_CompFind_CreateComponentSizes(&sizes, room.data(), 8192));
  print.done(IP_CompFind_Process(&source.image, &map, &sizes, &threshold));
  return print.add(labels.data(), source.grid.pixels.size()).add(room.data(), sizes.count);
}

void add(Fingerprint& print, const ComponentEntry& e) {
  print.add(e.label).add(e.pixelCount).add(e.xMin).add(e.yMin).add(e.xEnd).add(e.yEnd);
  for (uint32_t i = 0; i < e.pixelCount; ++i) print.add(e.positions[i].x).add(e.positions[i].y).add(e.values[i]);
  print.add(e.contour, e.contourCount);
}

Fingerprint components(const Material& m) {
  const std::unique_ptr<CompFinder, decltype(&IP_CompFinder_Close)> finder(IP_CompFinder_Init(), IP_CompFinder_Close);
  if (!finder) throw std::bad_alloc();
  const auto list = std::make_unique<ComponentList>();
  Picture<uint16_t> source(figures(m));
  const Rect_s32 area{20, 10, 80, 90};
  Fingerprint print;
  for (const Rect_s32* aoi : {static_cast<const Rect_s32*>(nullptr), &area}) {
    print.done(aoi ? IP_CompFinder_ProcessAoi(finder.get(), &source.image, aoi, list.get())
                   : IP_CompFinder_Process(finder.get(), &source.image, list.get()));
    print.add(list->count);
    for (uint32_t i = 0; i < list->count; ++i) add(print, list->entries[i]);
  }
  return print;
}

Fingerprint contourFilter(const Material& m) {
  Picture<uint16_t> source(figures(m)), result(m.map.width, m.map.height);
  Fingerprint print;
  print.done(IP_ContourFilter(&source.image, &result.image, 60)).add(result.grid);
  return print.done(IP_ContourFilter_I(&source.image, 100)).add(source.grid);
}

Fingerprint growing(const Material& m) {
  Picture<uint16_t> source(m.elevation), labels(m.map.width, m.map.height);
  const int32_t params[] = {high, 90};
  Fingerprint print;
  return print.done(IP_RGrow_Process(&source.image, params, &labels.image)).add(labels.grid);
}

void add(Fingerprint& print, const RegionEntry& e) {
  print.add(e.label).add(e.pixelCount).add(e.xMin).add(e.yMin).add(e.xEnd).add(e.yEnd);
  for (uint32_t i = 0; i < e.pixelCount; ++i) print.add(e.positions[i].x).add(e.positions[i].y).add(e.values[i]);
}

Fingerprint elevationRegions(const Material& m) {
  ImgC map;
  ImgC_Init(&map, m.elevation.width, m.elevation.height, IMG_TYPE_U16, m.elevation.pixels.data());
  const RgeParams params{5, 5, 95, 90, 100, high};
  Picture<uint16_t> labels(m.map.width, m.map.height);
  const auto list = std::make_unique<RegionList>();
  Fingerprint print;
  print.done(IP_RGE_Init()).done(IP_RGE_Process(&map, &params));
  print.done(IP_RGE_CreateLabelMap(&labels.image)).add(labels.grid);
  print.done(IP_RGE_CreateRegionList(list.get())).add(list->count);
  for (uint32_t i = 0; i < list->count; ++i) add(print, list->entries[i]);
  return print;
}

}  // namespace

Stages segmentStages() {
  return {{"labelling", labelling},
          {"components", components},
          {"contour filter", contourFilter},
          {"region growing", growing},
          {"elevation regions", elevationRegions}};
}

}  // namespace nadir::verify
