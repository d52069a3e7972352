// Calls of segment.h and vector.h.
#include <nadir/segment.h>
#include <nadir/vector.h>

#include <memory>
#include <vector>

#include "lab/image.hpp"
#include "lab/random.hpp"
#include "tests/counts/calls.hpp"
#include "tests/support/shapes.hpp"

namespace nadir::test::counts {
namespace {

constexpr uint16_t side = 128;

lab::Picture<uint16_t> terrain() {
  lab::Random random(1);
  return lab::Picture<uint16_t>(side, side, anyTerrain(random, side, side).pixels);
}

void callLabels() {
  auto src = terrain();
  std::vector<uint16_t> mapMemory(side * side), sizeMemory(4097);
  Img map;
  Vector sizes;
  const int32_t threshold = 0;
  done(IP_CompFind_CreateLabelMap(&map, mapMemory.data(), 2 * side * side));
  done(IP_CompFind_CreateComponentSizes(&sizes, sizeMemory.data(), 2 * 4097));
  done(IP_CompFind_Process(&src.image, &map, &sizes, &threshold));
}

void callComponents() {
  auto src = terrain();
  const auto list = std::make_unique<ComponentList>();
  CompFinder* finder = IP_CompFinder_Init();
  const Rect_s32 aoi{5, 9, 100, 90};
  done(IP_CompFinder_Process(finder, &src.image, list.get()));
  done(IP_CompFinder_ProcessAoi(finder, &src.image, &aoi, list.get()));
  IP_CompFinder_Close(finder);
}

void callContours() {
  auto src = terrain(), dst = terrain();
  done(IP_ContourFilter(&src.image, &dst.image, 20));
  done(IP_ContourFilter_I(&src.image, 20));
}

void callGrowing() {
  auto elevation = terrain(), labels = terrain();
  const int32_t params[] = {0, 3};
  done(IP_RGrow_Process(&elevation.image, params, &labels.image));
  const auto list = std::make_unique<RegionList>();
  const ImgC map{side, side, 2, IMG_TYPE_U16, elevation.grid.pixels.data()};
  const RgeParams whole{0, 0, 0, 0, 3, 0};
  done(IP_RGE_Init());
  done(IP_RGE_Process(&map, &whole));
  done(IP_RGE_CreateLabelMap(&labels.image));
  done(IP_RGE_CreateRegionList(list.get()));
  std::vector<uint8_t> memory(nadir_region_growing_bytes(side, side));
  done(nadir_region_growing(&elevation.image, params, &labels.image, memory.data(), memory.size()));
  memory.resize(nadir_elevation_regions_bytes());
  NadirElevationRegions* state = nadir_elevation_regions_init(memory.data(), memory.size());
  done(nadir_elevation_regions_process(state, &map, &whole));
  done(nadir_elevation_regions_label_map(state, &labels.image));
  done(nadir_elevation_regions_list(state, list.get()));
}

void callVectors() {
  std::vector<uint16_t> memory(1001);
  Vector vector;
  done(Vector_Init(&vector, VECTOR_TYPE_U16, memory.data(), 2000));
  done(Vector_Fill(&vector, 7, 999));
  done(Vector_Clear(&vector));
}

}  // namespace

void callSegments() {
  callLabels();
  callComponents();
  callContours();
  callGrowing();
  callVectors();
}

}  // namespace nadir::test::counts
