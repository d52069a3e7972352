// Segmentation works on devices whose threads have small stacks: whatever an image shows, no call takes more than 64
// KiB.
#include <gtest/gtest.h>
#include <nadir/segment.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "tests/support/pictures.hpp"
#include "tests/support/stack.hpp"

namespace nadir::test {
namespace {

using HeightPicture = model::Picture<uint16_t>;

constexpr size_t limit = 64 * 1024;

HeightPicture filled(const Shape& shape) {
  HeightPicture picture{shape.width, shape.height, {}};
  for (const uint8_t inside : shape.pixels) picture.pixels.push_back(inside ? uint16_t{100} : uint16_t{0});
  return picture;
}

// One region; one long path; as much to merge as there can be; all the small pieces there can be.
std::vector<HeightPicture> hardPictures(uint32_t width, uint32_t height) {
  lab::Random random(1);
  return {constant<uint16_t>(width, height, 100),
          filled(spiral(width, height)),
          filled(zip(width, height)),
          filled(bowls(width, height)),
          filled(comb(width, height, 2)),
          filled(noise(random, width, height, 40)),
          filled(checkerboard(width, height, 1)),
          filled(maze(random, width, height, 0))};
}

// The most that any of the pictures takes.
template <class Call>
size_t mostStackOf(uint32_t width, uint32_t height, Call call) {
  size_t most = 0;
  for (const HeightPicture& picture : hardPictures(width, height)) {
    auto src = imageOf(picture, Guard::behind);
    int32_t status = 0;
    most = std::max(most, stackOf([&] { status = call(src.img); }));
    EXPECT_EQ(status, 1);
  }
  return most;
}

class SegmentStack : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!stackIsPlain) GTEST_SKIP() << "the sanitizer's own use of the stack would be measured";
  }
};

// Much more than the limit, with all of it really used.
void takeManyBytes() {
  volatile uint8_t bytes[2 * limit];
  for (size_t i = 0; i < sizeof bytes; ++i) bytes[i] = 1;
}

}  // namespace

TEST_F(SegmentStack, IsMeasured) {
  EXPECT_LT(stackOf([] {}), 1024u);
  EXPECT_GT(stackOf(takeManyBytes), limit);
}

TEST_F(SegmentStack, OfRegionGrowing) {
  std::vector<uint16_t> memory(640 * 480);
  Img labels;
  Img_Init(&labels, 640, 480, IMG_TYPE_U16, memory.data());
  EXPECT_LE(mostStackOf(640, 480,
                        [&](const Img& src) {
                          const int32_t params[] = {0, 1};
                          return IP_RGrow_Process(&src, params, &labels);
                        }),
            limit);
}

TEST_F(SegmentStack, OfLabelling) {
  std::vector<uint16_t> mapMemory(128 * 128), sizeMemory(4096);
  Img map;
  Vector sizes;
  ASSERT_EQ(IP_CompFind_CreateLabelMap(&map, mapMemory.data(), 32768), 1);
  ASSERT_EQ(IP_CompFind_CreateComponentSizes(&sizes, sizeMemory.data(), 8192), 1);
  EXPECT_LE(mostStackOf(128, 128,
                        [&](const Img& src) {
                          const int32_t threshold = 0;
                          return IP_CompFind_Process(&src, &map, &sizes, &threshold);
                        }),
            limit);
}

TEST_F(SegmentStack, OfTheComponentFinder) {
  const auto list = std::make_unique<ComponentList>();
  const std::unique_ptr<CompFinder, void (*)(CompFinder*)> finder(IP_CompFinder_Init(), IP_CompFinder_Close);
  EXPECT_LE(
      mostStackOf(256, 256, [&](const Img& src) { return IP_CompFinder_Process(finder.get(), &src, list.get()); }),
      limit);
}

TEST_F(SegmentStack, OfMakingAComponentFinder) {
  EXPECT_LE(stackOf([] { IP_CompFinder_Close(IP_CompFinder_Init()); }), limit);
}

TEST_F(SegmentStack, OfTheContourFilter) {
  std::vector<uint16_t> memory(128 * 128);
  Img dst;
  Img_Init(&dst, 128, 128, IMG_TYPE_U16, memory.data());
  EXPECT_LE(mostStackOf(128, 128, [&](const Img& src) { return IP_ContourFilter(&src, &dst, 5); }), limit);
}

TEST_F(SegmentStack, OfElevationRegions) {
  std::vector<uint16_t> memory(128 * 128);
  const auto list = std::make_unique<RegionList>();
  Img map;
  Img_Init(&map, 128, 128, IMG_TYPE_U16, memory.data());
  EXPECT_LE(mostStackOf(128, 128,
                        [&](const Img& src) {
                          const ImgC elevation{src.width, src.height, src.bytesPerPixel, src.type, src.data};
                          const RgeParams params{0, 0, 0, 0, 1, 0};
                          return IP_RGE_Init() & IP_RGE_Process(&elevation, &params) & IP_RGE_CreateLabelMap(&map) &
                                 IP_RGE_CreateRegionList(list.get());
                        }),
            limit);
}

}  // namespace nadir::test
