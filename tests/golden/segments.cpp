#include <nadir/nadir.h>

#include <initializer_list>
#include <memory>

#include "lab/random.hpp"
#include "tests/golden/golden.hpp"
#include "tests/support/shapes.hpp"

namespace nadir::test::golden {
namespace {

constexpr uint64_t kImages = 60;

// Pixels with their descriptor.
struct Picture {
  Picture(const Terrain& terrain, uint32_t type) : pixels(terrain.pixels) {
    Img_Init(&img, terrain.width, terrain.height, type, pixels.data());
  }
  Picture(const Picture&) = delete;
  Picture& operator=(const Picture&) = delete;

  std::vector<uint16_t> pixels;
  Img img;
};

template <class Each>
Hash overTerrains(uint32_t largest, Each each) {
  Hash hash;
  for (uint64_t seed = 1; seed <= kImages; ++seed) {
    Random random(seed);
    const Extent size = seed % 20 == 0 ? Extent{largest, largest} : anyExtent(random, largest);
    each(hash, random, anyTerrain(random, size.width, size.height));
  }
  return hash;
}

template <class Entry>
void addEntry(Hash& hash, const Entry& entry) {
  hash.add(entry.label).add(entry.pixelCount).add(entry.xMin).add(entry.yMin).add(entry.xEnd).add(entry.yEnd);
  for (uint32_t i = 0; i < entry.pixelCount; ++i) {
    hash.add(entry.positions[i].x).add(entry.positions[i].y).add(entry.values[i]);
  }
}

Hash labels(uint32_t type) {
  std::vector<uint16_t> mapMemory(128 * 128), sizeMemory(4097);
  Img map;
  Vector sizes;
  return overTerrains(128, [&](Hash& hash, Random& random, const Terrain& terrain) {
    Picture src(terrain, type);
    const int32_t threshold = random.below(2) ? 0 : terrain.pixels[0] - 1;
    hash.done(IP_CompFind_CreateLabelMap(&map, mapMemory.data(), 32768));
    hash.done(IP_CompFind_CreateComponentSizes(&sizes, sizeMemory.data(), 2 * 4097));
    hash.done(IP_CompFind_Process(&src.img, &map, &sizes, &threshold)).add(mapMemory).add(sizes.count);
    for (uint32_t i = 0; i < sizes.count; ++i) hash.add(sizeMemory[i]);
  });
}

Hash components() {
  const auto list = std::make_unique<ComponentList>();
  const std::unique_ptr<CompFinder, void (*)(CompFinder*)> finder(IP_CompFinder_Init(), IP_CompFinder_Close);
  const auto addList = [&](Hash& hash) {
    hash.add(list->count);
    for (uint32_t l = 0; l < list->count; ++l) {
      const ComponentEntry& entry = list->entries[l];
      addEntry(hash, entry);
      hash.add(entry.contourCount);
      for (uint32_t i = 0; i < entry.contourCount; ++i) hash.add(entry.contour[i]);
    }
  };
  return overTerrains(256, [&](Hash& hash, Random& random, const Terrain& terrain) {
    Picture src(terrain, IMG_TYPE_U16);
    const Rect_s32 aoi{random.between(-3, 9), random.between(-3, 9), random.between(5, 90), random.between(5, 90)};
    addList(hash.done(IP_CompFinder_Process(finder.get(), &src.img, list.get())));
    addList(hash.done(IP_CompFinder_ProcessAoi(finder.get(), &src.img, &aoi, list.get())));
  });
}

Hash contourFilter(uint32_t type) {
  return overTerrains(128, [&](Hash& hash, Random& random, const Terrain& terrain) {
    Picture src(terrain, type), dst(terrain, type), inPlace(terrain, type);
    const uint32_t minSize = random.below(60);
    hash.done(IP_ContourFilter(&src.img, &dst.img, minSize)).add(dst.pixels);
    hash.done(IP_ContourFilter_I(&inPlace.img, minSize + 5)).add(inPlace.pixels);
  });
}

Hash regionGrowing() {
  return overTerrains(200, [](Hash& hash, Random& random, const Terrain& terrain) {
    Picture src(terrain, IMG_TYPE_U16), labels(terrain, IMG_TYPE_U16);
    const int32_t params[] = {random.below(2) ? 0 : terrain.pixels[0] / 2, random.between(0, 4)};
    hash.done(IP_RGrow_Process(&src.img, params, &labels.img)).add(labels.pixels);
  });
}

Hash elevationRegions() {
  const auto list = std::make_unique<RegionList>();
  IP_RGE_Init();
  return overTerrains(128, [&](Hash& hash, Random& random, const Terrain& terrain) {
    Picture elevation(terrain, IMG_TYPE_U16), labels(terrain, IMG_TYPE_U16);
    const ImgC map{elevation.img.width, elevation.img.height, 2, IMG_TYPE_U16, elevation.img.data};
    const RgeParams whole{0, 0, 0, 0, random.between(0, 4), 0};
    const RgeParams area{random.between(-3, 9), random.between(-3, 9), random.between(5, 90),
                         random.between(5, 90), random.between(0, 4),  terrain.pixels[0] - 2};
    for (const RgeParams& params : {whole, area}) {
      hash.done(IP_RGE_Process(&map, &params));
      hash.done(IP_RGE_CreateLabelMap(&labels.img)).add(labels.pixels);
      hash.done(IP_RGE_CreateRegionList(list.get())).add(list->count);
      for (uint32_t l = 0; l < list->count; ++l) addEntry(hash, list->entries[l]);
    }
  });
}

template <class T>
void fillVector(Hash& hash, uint32_t type, uint32_t value) {
  std::vector<T> memory(9, static_cast<T>(0x5A));
  Vector vector;
  hash.done(Vector_Init(&vector, type, memory.data(), static_cast<uint32_t>(8 * sizeof(T))));
  hash.done(Vector_Fill(&vector, value, 5)).add(memory).add(vector.count).add(vector.capacity);
}

Hash vectors() {
  Hash hash;
  for (const uint32_t value : {0u, 0x12345678u, 0xFFFFFFFFu}) {
    fillVector<uint8_t>(hash, VECTOR_TYPE_U8, value);
    fillVector<int16_t>(hash, VECTOR_TYPE_S16, value);
    fillVector<uint32_t>(hash, VECTOR_TYPE_U32, value);
  }
  return hash;
}

}  // namespace

std::vector<Case> segmentCases() {
  return {{"Vectors", vectors},
          {"LabelsU16", [] { return labels(IMG_TYPE_U16); }},
          {"LabelsS16", [] { return labels(IMG_TYPE_S16); }},
          {"Components", components},
          {"ContourFilterU16", [] { return contourFilter(IMG_TYPE_U16); }},
          {"ContourFilterS16", [] { return contourFilter(IMG_TYPE_S16); }},
          {"RegionGrowing", regionGrowing},
          {"ElevationRegions", elevationRegions}};
}

}  // namespace nadir::test::golden
