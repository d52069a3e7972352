#include <nadir/segment.h>
#include <nadir/vector.h>

#include <memory>
#include <vector>

#include "lab/random.hpp"
#include "tests/counts/calls.hpp"
#include "tests/support/shapes.hpp"

namespace nadir::test::counts {
namespace {

constexpr uint16_t kSide = 128;

struct Picture {
  explicit Picture(std::vector<uint16_t> values)
      : pixels(std::move(values)), img{kSide, kSide, 2, IMG_TYPE_U16, pixels.data()} {}
  Picture(const Picture&) = delete;
  Picture& operator=(const Picture&) = delete;

  std::vector<uint16_t> pixels;
  Img img;
};

std::vector<uint16_t> terrain() {
  Random random(1);
  return anyTerrain(random, kSide, kSide).pixels;
}

void callLabels() {
  Picture src(terrain());
  std::vector<uint16_t> mapMemory(kSide * kSide), sizeMemory(4097);
  Img map;
  Vector sizes;
  const int32_t threshold = 0;
  done(IP_CompFind_CreateLabelMap(&map, mapMemory.data(), 2 * kSide * kSide));
  done(IP_CompFind_CreateComponentSizes(&sizes, sizeMemory.data(), 2 * 4097));
  done(IP_CompFind_Process(&src.img, &map, &sizes, &threshold));
}

void callComponents() {
  Picture src(terrain());
  const auto list = std::make_unique<ComponentList>();
  CompFinder* finder = IP_CompFinder_Init();
  const Rect_s32 aoi{5, 9, 100, 90};
  done(IP_CompFinder_Process(finder, &src.img, list.get()));
  done(IP_CompFinder_ProcessAoi(finder, &src.img, &aoi, list.get()));
  IP_CompFinder_Close(finder);
}

void callContours() {
  Picture src(terrain()), dst(terrain());
  done(IP_ContourFilter(&src.img, &dst.img, 20));
  done(IP_ContourFilter_I(&src.img, 20));
}

void callGrowing() {
  Picture elevation(terrain()), labels(terrain());
  const int32_t params[] = {0, 3};
  done(IP_RGrow_Process(&elevation.img, params, &labels.img));
  const auto list = std::make_unique<RegionList>();
  const ImgC map{kSide, kSide, 2, IMG_TYPE_U16, elevation.pixels.data()};
  const RgeParams whole{0, 0, 0, 0, 3, 0};
  done(IP_RGE_Init());
  done(IP_RGE_Process(&map, &whole));
  done(IP_RGE_CreateLabelMap(&labels.img));
  done(IP_RGE_CreateRegionList(list.get()));
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
