// Disparities cleaned up.
#include <gtest/gtest.h>
#include <nadir/nadir.h>

#include "lab/random.hpp"
#include "tests/models/stereo.hpp"
#include "tests/support/guarded.hpp"
#include "tests/support/same.hpp"

namespace nadir::test {
namespace {

using model::Bytes;
using model::Words;

constexpr uint16_t oldDisparity = 0xA7A7;

struct Cleaned {
  uint32_t status;
  Words result;
};

Cleaned postproc(const Words& disparity, const Bytes& mask, uint32_t width, uint32_t height,
                 Guard side = Guard::behind) {
  const Guarded<uint16_t> in(disparity, side), out(Words(disparity.size(), oldDisparity), side);
  const Guarded<uint8_t> masked(mask, side);
  const uint32_t status = IP_SgmPostproc(in.data(), masked.data(), out.data(), width, height);
  return {status, out.values()};
}

// A disparity image with holes, and a mask over a part of it.
struct Input {
  Words disparity;
  Bytes mask;
};

Input randomInput(uint32_t width, uint32_t height) {
  lab::Random random(width * 100 + height);
  Input in{random.values<uint16_t>(size_t{width} * height, 985), random.values<uint8_t>(size_t{width} * height, 6)};
  const uint32_t holes = 1 + random.below(5);
  for (uint16_t& value : in.disparity) value = random.below(6) < holes ? uint16_t{0} : value;
  for (uint8_t& set : in.mask) set = set == 5 ? uint8_t{255} : uint8_t{0};
  return in;
}

TEST(SgmPostproc, NullPointersFail) {
  Words disparity(25, 100), result(25, oldDisparity);
  Bytes mask(25, 0);
  EXPECT_EQ(IP_SgmPostproc(nullptr, mask.data(), result.data(), 5, 5), 0u);
  EXPECT_EQ(IP_SgmPostproc(disparity.data(), nullptr, result.data(), 5, 5), 0u);
  EXPECT_EQ(IP_SgmPostproc(disparity.data(), mask.data(), nullptr, 5, 5), 0u);
  EXPECT_TRUE(same(Words(25, oldDisparity), result));
}

TEST(SgmPostproc, NullPointersFailForImagesWithoutPixelsToo) {
  uint16_t pixel = oldDisparity;
  uint8_t mask = 0;
  EXPECT_EQ(IP_SgmPostproc(nullptr, &mask, &pixel, 0, 0), 0u);
  EXPECT_EQ(IP_SgmPostproc(&pixel, nullptr, &pixel, 0, 0), 0u);
  EXPECT_EQ(IP_SgmPostproc(&pixel, &mask, nullptr, 0, 0), 0u);
}

TEST(SgmPostproc, ConstantImageKeepsItsInside) {
  const Cleaned got = postproc(Words(8 * 6, 320), Bytes(8 * 6, 0), 8, 6);
  EXPECT_EQ(got.status, 1u);
  for (uint32_t y = 1; y < 5; ++y) {
    for (uint32_t x = 1; x < 7; ++x) {
      const bool corner = (x == 1 || x == 6) && (y == 1 || y == 4);
      EXPECT_EQ(got.result[y * 8 + x], corner ? 0 : 320) << x << ", " << y;
    }
  }
}

TEST(SgmPostproc, OutermostPixelsHaveNoDisparity) {
  const Cleaned got = postproc(Words(9 * 6, 320), Bytes(9 * 6, 0), 9, 6);
  for (uint32_t y = 0; y < 6; ++y) {
    for (uint32_t x = 0; x < 9; ++x) {
      const bool outermost = x == 0 || x == 8 || y == 0 || y == 5;
      EXPECT_TRUE(!outermost || got.result[y * 9 + x] == 0) << x << ", " << y;
    }
  }
}

TEST(SgmPostproc, ColumnThatTheMedianLeavesOutIsFilledFromItsNeighbours) {
  const Cleaned got = postproc(Words(9 * 6, 320), Bytes(9 * 6, 0), 9, 6);
  for (uint32_t y = 1; y < 5; ++y) EXPECT_EQ(got.result[y * 9 + 7], 320) << y;
}

TEST(SgmPostproc, SingleDisparityIsRemoved) {
  Words disparity(9 * 9, 0);
  disparity[4 * 9 + 4] = 320;
  EXPECT_TRUE(same(Words(9 * 9, 0), postproc(disparity, Bytes(9 * 9, 0), 9, 9).result));
}

TEST(SgmPostproc, FullMaskLeavesNothing) {
  const Input in = randomInput(12, 9);
  for (const uint8_t set : Bytes{1, 2, 128, 255}) {
    const Cleaned got = postproc(in.disparity, Bytes(12 * 9, set), 12, 9);
    EXPECT_EQ(got.status, 1u);
    EXPECT_TRUE(same(Words(12 * 9, 0), got.result)) << +set;
  }
}

TEST(SgmPostproc, AnyMaskByteThatIsNotZeroDiscards) {
  Input in = randomInput(12, 9);
  const Words want = postproc(in.disparity, in.mask, 12, 9).result;
  for (uint8_t& set : in.mask) set = set ? uint8_t{2} : uint8_t{0};
  EXPECT_TRUE(same(want, postproc(in.disparity, in.mask, 12, 9).result));
}

TEST(SgmPostproc, EmptyMaskLeavesMedianAndCleanUp) {
  const Input in = randomInput(14, 9);
  Words disparity = in.disparity, median(14 * 9, 0), want(14 * 9);
  Img src, mid, dst;
  Img_Init(&src, 14, 9, IMG_TYPE_U16, disparity.data());
  Img_Init(&mid, 14, 9, IMG_TYPE_U16, median.data());
  Img_Init(&dst, 14, 9, IMG_TYPE_U16, want.data());
  ASSERT_EQ(IP_Median3x3(&src, &mid), 1u);
  ASSERT_EQ(IP_Morph3x3(&mid, &dst, MORPH_CLEAN), 1u);
  EXPECT_TRUE(same(want, postproc(in.disparity, Bytes(14 * 9, 0), 14, 9).result));
}

TEST(SgmPostproc, WorksInPlace) {
  for (const uint32_t width : {4u, 9u, 40u}) {
    const Input in = randomInput(width, 8);
    const Guarded<uint16_t> image(in.disparity);
    EXPECT_EQ(IP_SgmPostproc(image.data(), in.mask.data(), image.data(), width, 8), 1u);
    EXPECT_TRUE(same(postproc(in.disparity, in.mask, width, 8).result, image.values())) << width;
  }
}

TEST(SgmPostproc, InputsAreOnlyRead) {
  const Input in = randomInput(12, 9), before = in;
  Words result(12 * 9);
  IP_SgmPostproc(in.disparity.data(), in.mask.data(), result.data(), 12, 9);
  EXPECT_TRUE(same(before.disparity, in.disparity));
  EXPECT_TRUE(same(before.mask, in.mask));
}

TEST(SgmPostproc, OnlyTheLow16BitsOfTheSizesCount) {
  const Input in = randomInput(12, 9);
  const Cleaned got = postproc(in.disparity, in.mask, 12 + 65536, 9 + 3 * 65536);
  EXPECT_EQ(got.status, 1u);
  EXPECT_TRUE(same(model::postproc(in.disparity, in.mask, 12, 9), got.result));
}

TEST(SgmPostproc, FewerThanFourColumnsFailWithTheMaskedImage) {
  for (const uint32_t width : {1u, 2u, 3u}) {
    const Input in = randomInput(width, 9);
    const Cleaned got = postproc(in.disparity, in.mask, width, 9);
    EXPECT_EQ(got.status, 0u) << width;
    EXPECT_TRUE(same(model::maskOut(in.disparity, in.mask), got.result)) << width;
  }
}

TEST(SgmPostproc, SingleRowFailsWithTheMaskedImage) {
  const Input in = randomInput(20, 1);
  const Cleaned got = postproc(in.disparity, in.mask, 20, 1);
  EXPECT_EQ(got.status, 0u);
  EXPECT_TRUE(same(model::maskOut(in.disparity, in.mask), got.result));
}

TEST(SgmPostproc, TwoRowsAreAllBorder) {
  const Cleaned got = postproc(Words(20 * 2, 320), Bytes(20 * 2, 0), 20, 2);
  EXPECT_EQ(got.status, 1u);
  EXPECT_TRUE(same(Words(20 * 2, 0), got.result));
}

TEST(SgmPostproc, NoRowsAreASuccess) { EXPECT_EQ(postproc({}, {}, 20, 0).status, 1u); }

void expectModel(uint32_t width, uint32_t height) {
  const Input in = randomInput(width, height);
  for (const Guard side : {Guard::behind, Guard::before}) {
    const Cleaned got = postproc(in.disparity, in.mask, width, height, side);
    EXPECT_EQ(got.status, 1u);
    EXPECT_TRUE(same(model::postproc(in.disparity, in.mask, width, height), got.result)) << width << "x" << height;
  }
}

TEST(SgmPostproc, EqualsTheModelForEveryWidth) {
  for (uint32_t width = 4; width <= 140; ++width) expectModel(width, 2 + width % 9);
}

TEST(SgmPostproc, EqualsTheModelForEveryHeight) {
  for (uint32_t height = 2; height <= 12; ++height) expectModel(23, height);
}

// ---- in memory of the caller's ----

Cleaned postprocInMemory(const Input& in, uint16_t width, uint16_t height, void* memory, size_t bytes) {
  Words result(in.disparity.size(), oldDisparity);
  const uint32_t status =
      nadir_sgm_postproc(in.disparity.data(), in.mask.data(), result.data(), width, height, memory, bytes);
  return {status, result};
}

TEST(SgmPostprocInMemory, CleansAsTheAllocatingCallDoes) {
  for (const uint16_t width : {uint16_t{4}, uint16_t{17}, uint16_t{33}}) {
    const Input in = randomInput(width, 11);
    const size_t bytes = nadir_sgm_postproc_bytes(width, 11);
    for (const Guard side : {Guard::behind, Guard::before}) {
      const Guarded<uint16_t> memory(Words(bytes / 2, oldDisparity), side);
      const Cleaned got = postprocInMemory(in, width, 11, memory.data(), bytes);
      EXPECT_EQ(got.status, 1u);
      EXPECT_TRUE(same(postproc(in.disparity, in.mask, width, 11).result, got.result)) << width;
    }
  }
}

TEST(SgmPostprocInMemory, NullPointersFailWithNothingWritten) {
  const Input in = randomInput(5, 5);
  const size_t bytes = nadir_sgm_postproc_bytes(5, 5);
  Words result(25, oldDisparity), memory(bytes / 2);
  EXPECT_EQ(nadir_sgm_postproc(nullptr, in.mask.data(), result.data(), 5, 5, memory.data(), bytes), 0u);
  EXPECT_EQ(nadir_sgm_postproc(in.disparity.data(), nullptr, result.data(), 5, 5, memory.data(), bytes), 0u);
  EXPECT_EQ(nadir_sgm_postproc(in.disparity.data(), in.mask.data(), nullptr, 5, 5, memory.data(), bytes), 0u);
  EXPECT_TRUE(same(Words(25, oldDisparity), result));
}

TEST(SgmPostprocInMemory, MemoryThatDoesNotServeIsRefusedWithNothingWritten) {
  const Input in = randomInput(20, 9);
  const size_t bytes = nadir_sgm_postproc_bytes(20, 9);
  Words memory(bytes / 2 + 1);
  uint8_t* const odd = reinterpret_cast<uint8_t*>(memory.data()) + 1;
  for (const Cleaned& got : {postprocInMemory(in, 20, 9, memory.data(), bytes - 1),
                             postprocInMemory(in, 20, 9, odd, bytes), postprocInMemory(in, 20, 9, nullptr, bytes)}) {
    EXPECT_EQ(got.status, 0u);
    EXPECT_EQ(got.result, Words(in.disparity.size(), oldDisparity));
  }
}

}  // namespace
}  // namespace nadir::test
