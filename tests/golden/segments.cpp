// Results of the functions that find components and regions, and of vectors.
#include <nadir/nadir.h>

#include <initializer_list>
#include <memory>

#include "lab/image.hpp"
#include "lab/random.hpp"
#include "tests/golden/golden.hpp"
#include "tests/support/shapes.hpp"

namespace nadir::test::golden {
namespace {

constexpr uint64_t images = 60;

// The terrain's pixels, signed or not as the library is told.
lab::Picture<uint16_t> pictureOf(const Terrain& terrain, uint32_t type = IMG_TYPE_U16) {
  return lab::Picture<uint16_t>(terrain.width, terrain.height, terrain.pixels, type);
}

template <class Each>
Fingerprint overTerrains(uint32_t largest, Each each) {
  Fingerprint hash;
  for (uint64_t seed = 1; seed <= images; ++seed) {
    lab::Random random(seed);
    const Extent size = seed % 20 == 0 ? Extent{largest, largest} : anyExtent(random, largest);
    each(hash, random, anyTerrain(random, size.width, size.height));
  }
  return hash;
}

template <class Entry>
void addEntry(Fingerprint& hash, const Entry& entry) {
  hash.add(entry.label).add(entry.pixelCount).add(entry.xMin).add(entry.yMin).add(entry.xEnd).add(entry.yEnd);
  for (uint32_t i = 0; i < entry.pixelCount; ++i) {
    hash.add(entry.positions[i].x).add(entry.positions[i].y).add(entry.values[i]);
  }
}

Fingerprint labels(uint32_t type) {
  std::vector<uint16_t> mapMemory(128 * 128), sizeMemory(4097);
  Img map;
  Vector sizes;
  return overTerrains(128, [&](Fingerprint& hash, lab::Random& random, const Terrain& terrain) {
    auto src = pictureOf(terrain, type);
    const int32_t threshold = random.below(2) ? 0 : terrain.pixels[0] - 1;
    hash.done(IP_CompFind_CreateLabelMap(&map, mapMemory.data(), 32768));
    hash.done(IP_CompFind_CreateComponentSizes(&sizes, sizeMemory.data(), 2 * 4097));
    hash.done(IP_CompFind_Process(&src.image, &map, &sizes, &threshold)).add(mapMemory).add(sizes.count);
    for (uint32_t i = 0; i < sizes.count; ++i) hash.add(sizeMemory[i]);
  });
}

Fingerprint components() {
  const auto list = std::make_unique<ComponentList>();
  const std::unique_ptr<CompFinder, void (*)(CompFinder*)> finder(IP_CompFinder_Init(), IP_CompFinder_Close);
  const auto addList = [&](Fingerprint& hash) {
    hash.add(list->count);
    for (uint32_t l = 0; l < list->count; ++l) {
      const ComponentEntry& entry = list->entries[l];
      addEntry(hash, entry);
      hash.add(entry.contourCount);
      for (uint32_t i = 0; i < entry.contourCount; ++i) hash.add(entry.contour[i]);
    }
  };
  return overTerrains(256, [&](Fingerprint& hash, lab::Random& random, const Terrain& terrain) {
    auto src = pictureOf(terrain);
    const Rect_s32 aoi{random.between(-3, 9), random.between(-3, 9), random.between(5, 90), random.between(5, 90)};
    addList(hash.done(IP_CompFinder_Process(finder.get(), &src.image, list.get())));
    addList(hash.done(IP_CompFinder_ProcessAoi(finder.get(), &src.image, &aoi, list.get())));
  });
}

Fingerprint contourFilter(uint32_t type) {
  return overTerrains(128, [&](Fingerprint& hash, lab::Random& random, const Terrain& terrain) {
    auto src = pictureOf(terrain, type), dst = pictureOf(terrain, type), inPlace = pictureOf(terrain, type);
    const uint32_t minSize = random.below(60);
    hash.done(IP_ContourFilter(&src.image, &dst.image, minSize)).add(dst.grid.pixels);
    hash.done(IP_ContourFilter_I(&inPlace.image, minSize + 5)).add(inPlace.grid.pixels);
  });
}

Fingerprint regionGrowing() {
  return overTerrains(200, [](Fingerprint& hash, lab::Random& random, const Terrain& terrain) {
    auto src = pictureOf(terrain), labels = pictureOf(terrain);
    const int32_t params[] = {random.below(2) ? 0 : terrain.pixels[0] / 2, random.between(0, 4)};
    hash.done(IP_RGrow_Process(&src.image, params, &labels.image)).add(labels.grid.pixels);
  });
}

Fingerprint elevationRegions() {
  const auto list = std::make_unique<RegionList>();
  IP_RGE_Init();
  return overTerrains(128, [&](Fingerprint& hash, lab::Random& random, const Terrain& terrain) {
    auto elevation = pictureOf(terrain), labels = pictureOf(terrain);
    const ImgC map{elevation.image.width, elevation.image.height, 2, IMG_TYPE_U16, elevation.image.data};
    const RgeParams whole{0, 0, 0, 0, random.between(0, 4), 0};
    const RgeParams area{random.between(-3, 9), random.between(-3, 9), random.between(5, 90),
                         random.between(5, 90), random.between(0, 4),  terrain.pixels[0] - 2};
    for (const RgeParams& params : {whole, area}) {
      hash.done(IP_RGE_Process(&map, &params));
      hash.done(IP_RGE_CreateLabelMap(&labels.image)).add(labels.grid.pixels);
      hash.done(IP_RGE_CreateRegionList(list.get())).add(list->count);
      for (uint32_t l = 0; l < list->count; ++l) addEntry(hash, list->entries[l]);
    }
  });
}

template <class T>
void fillVector(Fingerprint& hash, uint32_t type, uint32_t value) {
  std::vector<T> memory(9, static_cast<T>(0x5A));
  Vector vector;
  hash.done(Vector_Init(&vector, type, memory.data(), static_cast<uint32_t>(8 * sizeof(T))));
  hash.done(Vector_Fill(&vector, value, 5)).add(memory).add(vector.count).add(vector.capacity);
}

Fingerprint vectors() {
  Fingerprint hash;
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
