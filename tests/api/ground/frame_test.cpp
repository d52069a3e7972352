// Frames: what is matched, in which view, through which strides, and what becomes of the pixels.
#include <algorithm>

#include "lab/textured_pair.hpp"
#include "tests/api/ground/roads.hpp"
#include "tests/support/guarded.hpp"
#include "tests/support/rounds.hpp"
#include "tests/support/same.hpp"

namespace nadir::test {
namespace {

struct Pair {
  Picture left, right;
};

// Every row is shifted by itself; some pixels have no data.
Pair anyPair(lab::Random& random, uint32_t width = 96, uint32_t height = 60) {
  const lab::TexturedPair pair = lab::shiftedRows(
      width, height, 24, [](uint32_t y) { return 3 + y / 4; }, random);
  return {Picture(width, height, pair.first), Picture(width, height, pair.reference)};
}

Pair onePair() {
  lab::Random random(1);
  return anyPair(random);
}

Pair mirrored(Pair pair) {
  lab::mirror(pair.left);
  lab::mirror(pair.right);
  std::swap(pair.left, pair.right);
  return pair;
}

NadirFrame frameOfPair(const Pair& pair) { return frameOf(pair.left, pair.right); }

NadirSettings matching(uint32_t grid, uint32_t postprocess) {
  NadirSettings settings = settingsUntil(NADIR_UNTIL_MATCH);
  settings.grid = grid;
  settings.postprocess = postprocess;
  return settings;
}

Matched matched(const NadirFrame& frame, const NadirSettings& settings, const NadirCamera& camera = smallCamera()) {
  const Road road = makeRoad(camera, settings);
  const Result result = makeResult(road);
  const NadirFindings findings = processed(road, frame, result);
  return {gridOf<uint16_t>(findings.disparity), *findings.pixels};
}

// ---- the model, of libnadir's calls ----

Picture rightDisparities(const Pair& pair, uint32_t uniqueness) {
  const uint32_t width = pair.left.width, height = pair.left.height;
  Grid<uint32_t> left(width, height), right(width, height);
  IP_Census_5x5(pair.left.pixels.data(), left.pixels.data(), width, height);
  IP_Census_5x5(pair.right.pixels.data(), right.pixels.data(), width, height);
  const SgmParams params{64, uniqueness};
  Picture out(width, height);
  IP_SgmFull(left.pixels.data(), right.pixels.data(), pair.right.pixels.data(), width, height, &params,
             out.pixels.data(), nullptr);
  return out;
}

Picture modelOf(const Pair& pair, const NadirSettings& settings) {
  const bool left = settings.grid == NADIR_GRID_LEFT;
  Picture out = rightDisparities(left ? mirrored(pair) : pair, settings.uniqueness);
  const std::vector<uint8_t> mask(out.pixels.size(), 0);
  if (settings.postprocess) IP_SgmPostproc(out.pixels.data(), mask.data(), out.pixels.data(), out.width, out.height);
  if (left) lab::mirror(out);
  return out;
}

TEST(Matching, IsThatOfLibnadir) {
  inRounds(8, [](lab::Random& random) {
    const Pair pair = anyPair(random, 40 + random.below(60), 12 + random.below(30));
    for (const uint32_t grid : {uint32_t{NADIR_GRID_LEFT}, uint32_t{NADIR_GRID_RIGHT}}) {
      for (const uint32_t postprocess : {0u, 1u}) {
        NadirSettings settings = matching(grid, postprocess);
        settings.uniqueness = random.below(100);
        const Picture got = matched(frameOfPair(pair), settings, cameraOf(pair.left)).disparity;
        EXPECT_TRUE(same(modelOf(pair, settings).pixels, got.pixels)) << "grid " << grid << ", " << postprocess;
      }
    }
  });
}

TEST(Matching, SmallestPicturesHaveNoDisparity) {
  lab::Random random(3);
  const Pair pair{Picture(5, 5, random.values<uint16_t>(25, 4096)), Picture(5, 5, random.values<uint16_t>(25, 4096))};
  const Matched got = matched(frameOfPair(pair), matching(NADIR_GRID_LEFT, 1), cameraOf(pair.left));
  EXPECT_TRUE(same(std::vector<uint16_t>(25, 0), got.disparity.pixels));
}

TEST(Matching, TheLeftGridIsTheMirroredRightOneOfTheMirroredPair) {
  const Pair pair = onePair();
  for (const uint32_t postprocess : {0u, 1u}) {
    Picture right = matched(frameOfPair(mirrored(pair)), matching(NADIR_GRID_RIGHT, postprocess)).disparity;
    lab::mirror(right);
    const Picture left = matched(frameOfPair(pair), matching(NADIR_GRID_LEFT, postprocess)).disparity;
    EXPECT_TRUE(same(right.pixels, left.pixels));
  }
}

TEST(Matching, FindsThePairsShifts) {
  const Picture got = matched(frameOfPair(onePair()), matching(NADIR_GRID_RIGHT, 1)).disparity;
  size_t right = 0;
  for (uint32_t y = 8; y < 52; ++y) right += std::abs(got.at(40, y) - 16 * static_cast<int>(3 + y / 4)) <= 16;
  EXPECT_GT(right, 22u);
}

// ---- pixels of 8 bits ----

struct BytePair {
  Grid<uint8_t> left, right;
};

BytePair anyBytePair(lab::Random& random) {
  const Pair pair = anyPair(random);
  const auto byte = [](uint16_t v) { return v >> 4; };
  return {lab::converted<uint8_t>(pair.left, byte), lab::converted<uint8_t>(pair.right, byte)};
}

NadirFrame frameOfBytes(const BytePair& pair) {
  NadirFrame frame = emptyFrame();
  frame.bits = 8;
  frame.left = pair.left.pixels.data();
  frame.right = pair.right.pixels.data();
  frame.left_stride = frame.right_stride = pair.left.width;
  return frame;
}

Picture widened(const Grid<uint8_t>& bytes) {
  return lab::converted<uint16_t>(bytes, [](uint8_t v) { return v == 0 ? 1 : v * 16; });
}

TEST(Bytes, CountSixteenTimesAndZeroIsBlack) {
  inRounds(4, [](lab::Random& random) {
    const BytePair bytes = anyBytePair(random);
    ASSERT_GT(std::count(bytes.left.pixels.begin(), bytes.left.pixels.end(), 0), 0);
    const Pair words{widened(bytes.left), widened(bytes.right)};
    for (const uint32_t grid : {uint32_t{NADIR_GRID_LEFT}, uint32_t{NADIR_GRID_RIGHT}}) {
      EXPECT_TRUE(same(matched(frameOfPair(words), matching(grid, 1)).disparity.pixels,
                       matched(frameOfBytes(bytes), matching(grid, 1)).disparity.pixels));
    }
  });
}

// ---- strides and edges of memory ----

// A picture's rows, `stride` bytes apart, beside a page that must not be touched; garbage lies between them.
class Rows {
 public:
  template <class T>
  Rows(const Grid<T>& grid, size_t stride, Guard side)
      : memory_((grid.height - 1) * stride + grid.width * sizeof(T), side) {
    std::memset(memory_.data(), 0xA7, memory_.size());
    for (uint32_t y = 0; y < grid.height; ++y)
      std::memcpy(memory_.data() + y * stride, grid.row(y), grid.width * sizeof(T));
  }
  unsigned char* data() const { return memory_.data(); }

 private:
  Guarded<unsigned char> memory_;
};

TEST(Strides, WordsMayBeginAtAnyAddress) {
  const Pair pair = onePair();
  const Picture wanted = matched(frameOfPair(pair), matching(NADIR_GRID_LEFT, 1)).disparity;
  for (const Guard side : {Guard::behind, Guard::before}) {
    for (const size_t padding : {0u, 1u, 66u}) {
      NadirFrame frame = emptyFrame();
      frame.left_stride = 96 * 2 + padding;
      frame.right_stride = 96 * 2 + 3 * padding;
      const Rows left(pair.left, frame.left_stride, side), right(pair.right, frame.right_stride, side);
      frame.left = left.data();
      frame.right = right.data();
      EXPECT_TRUE(same(wanted.pixels, matched(frame, matching(NADIR_GRID_LEFT, 1)).disparity.pixels)) << padding;
    }
  }
}

TEST(Strides, APictureMayBeginAtAnOddAddress) {
  const Pair pair = onePair();
  const Picture wanted = matched(frameOfPair(pair), matching(NADIR_GRID_LEFT, 1)).disparity;
  std::vector<unsigned char> left(1 + 96 * 60 * 2), right(left.size());
  std::memcpy(left.data() + 1, pair.left.pixels.data(), left.size() - 1);
  std::memcpy(right.data() + 1, pair.right.pixels.data(), right.size() - 1);
  NadirFrame frame = frameOfPair(pair);
  frame.left = left.data() + 1;
  frame.right = right.data() + 1;
  EXPECT_TRUE(same(wanted.pixels, matched(frame, matching(NADIR_GRID_LEFT, 1)).disparity.pixels));
}

TEST(Strides, BytesMayHavePaddingToo) {
  lab::Random random(5);
  const BytePair pair = anyBytePair(random);
  const Picture wanted = matched(frameOfBytes(pair), matching(NADIR_GRID_RIGHT, 1)).disparity;
  for (const Guard side : {Guard::behind, Guard::before}) {
    const Rows left(pair.left, 96, side), right(pair.right, 101, side);
    NadirFrame frame = frameOfBytes(pair);
    frame.left = left.data();
    frame.right = right.data();
    frame.right_stride = 101;
    EXPECT_TRUE(same(wanted.pixels, matched(frame, matching(NADIR_GRID_RIGHT, 1)).disparity.pixels));
  }
}

TEST(Strides, PicturesAreOnlyRead) {
  const Pair pair = onePair(), before = pair;
  matched(frameOfPair(pair), matching(NADIR_GRID_LEFT, 1));
  EXPECT_TRUE(same(before.left.pixels, pair.left.pixels));
  EXPECT_TRUE(same(before.right.pixels, pair.right.pixels));
}

// ---- the mask ----

Grid<uint8_t> anyMask(lab::Random& random, uint32_t width = 96, uint32_t height = 60) {
  Grid<uint8_t> mask(width, height);
  const uint32_t x0 = random.below(width), y0 = random.below(height);
  for (uint32_t y = y0; y < height; ++y)
    for (uint32_t x = x0; x < width; ++x) mask.at(x, y) = static_cast<uint8_t>(1 + random.below(255));
  return mask;
}

NadirFrame withMask(NadirFrame frame, const Grid<uint8_t>& mask) {
  frame.mask = mask.pixels.data();
  frame.mask_stride = mask.width;
  return frame;
}

TEST(FrameMask, CoveredPixelsGetNoDisparity) {
  inRounds(6, [](lab::Random& random) {
    const Pair pair = anyPair(random);
    const Grid<uint8_t> mask = anyMask(random);
    for (const uint32_t grid : {uint32_t{NADIR_GRID_LEFT}, uint32_t{NADIR_GRID_RIGHT}}) {
      for (const uint32_t postprocess : {0u, 1u}) {
        const Picture got = matched(withMask(frameOfPair(pair), mask), matching(grid, postprocess)).disparity;
        for (size_t i = 0; i < mask.pixels.size(); ++i)
          ASSERT_TRUE(mask.pixels[i] == 0 || got.pixels[i] == 0) << i << ", grid " << grid << ", " << postprocess;
      }
    }
  });
}

TEST(FrameMask, WithoutTheCleanUpAllOtherPixelsStay) {
  inRounds(6, [](lab::Random& random) {
    const Pair pair = anyPair(random);
    const Grid<uint8_t> mask = anyMask(random);
    for (const uint32_t grid : {uint32_t{NADIR_GRID_LEFT}, uint32_t{NADIR_GRID_RIGHT}}) {
      Picture wanted = matched(frameOfPair(pair), matching(grid, 0)).disparity;
      for (size_t i = 0; i < mask.pixels.size(); ++i) wanted.pixels[i] = mask.pixels[i] ? 0 : wanted.pixels[i];
      const Picture got = matched(withMask(frameOfPair(pair), mask), matching(grid, 0)).disparity;
      EXPECT_TRUE(same(wanted.pixels, got.pixels)) << grid;
    }
  });
}

TEST(FrameMask, TheCleanUpSeesIt) {
  inRounds(6, [](lab::Random& random) {
    const Pair pair = anyPair(random);
    const Grid<uint8_t> mask = anyMask(random);
    const NadirSettings settings = matching(NADIR_GRID_RIGHT, 1);
    Picture wanted = rightDisparities(pair, settings.uniqueness);
    IP_SgmPostproc(wanted.pixels.data(), mask.pixels.data(), wanted.pixels.data(), 96, 60);
    for (size_t i = 0; i < mask.pixels.size(); ++i) wanted.pixels[i] = mask.pixels[i] ? 0 : wanted.pixels[i];
    EXPECT_TRUE(same(wanted.pixels, matched(withMask(frameOfPair(pair), mask), settings).disparity.pixels));
  });
}

TEST(FrameMask, OfZerosIsNone) {
  const Pair pair = onePair();
  const Grid<uint8_t> mask(96, 60);
  for (const uint32_t postprocess : {0u, 1u}) {
    const NadirSettings settings = matching(NADIR_GRID_LEFT, postprocess);
    EXPECT_TRUE(same(matched(frameOfPair(pair), settings).disparity.pixels,
                     matched(withMask(frameOfPair(pair), mask), settings).disparity.pixels));
  }
}

TEST(FrameMask, HasAStrideOfItsOwn) {
  lab::Random random(9);
  const Pair pair = anyPair(random);
  const Grid<uint8_t> mask = anyMask(random);
  const NadirSettings settings = matching(NADIR_GRID_LEFT, 1);
  const Picture wanted = matched(withMask(frameOfPair(pair), mask), settings).disparity;
  for (const Guard side : {Guard::behind, Guard::before}) {
    const Rows rows(mask, 113, side);
    NadirFrame frame = withMask(frameOfPair(pair), mask);
    frame.mask = rows.data();
    frame.mask_stride = 113;
    EXPECT_TRUE(same(wanted.pixels, matched(frame, settings).disparity.pixels));
  }
}

// ---- what becomes of the pixels ----

TEST(PixelCounts, EachIsCountedOnce) {
  inRounds(6, [](lab::Random& random) {
    const Grid<uint8_t> mask = anyMask(random);
    const Pair pair = anyPair(random);
    for (const uint32_t postprocess : {0u, 1u}) {
      const NadirPixelCounts n = matched(withMask(frameOfPair(pair), mask), matching(0, postprocess)).pixels;
      EXPECT_EQ(n.value + n.ambiguous + n.removed + n.masked + n.border, 96u * 60u);
    }
  });
}

TEST(PixelCounts, ValuesAreTheDisparities) {
  for (const uint32_t postprocess : {0u, 1u}) {
    const Matched got = matched(frameOfPair(onePair()), matching(0, postprocess));
    const auto none = std::count(got.disparity.pixels.begin(), got.disparity.pixels.end(), 0);
    EXPECT_EQ(got.pixels.value, got.disparity.pixels.size() - static_cast<size_t>(none));
  }
}

TEST(PixelCounts, MaskedInsideAreThoseOfTheMask) {
  Grid<uint8_t> mask(96, 60);
  for (uint32_t y = 20; y < 30; ++y)
    for (uint32_t x = 30; x < 47; ++x) mask.at(x, y) = 3;
  const Pair pair = onePair();
  EXPECT_EQ(matched(withMask(frameOfPair(pair), mask), matching(0, 1)).pixels.masked, 170u);
}

TEST(PixelCounts, WithoutAMaskNoneIsMasked) {
  EXPECT_EQ(matched(frameOfPair(onePair()), matching(0, 1)).pixels.masked, 0u);
}

TEST(PixelCounts, WithoutTheCleanUpNothingIsRemovedOrFilled) {
  const NadirPixelCounts n = matched(frameOfPair(onePair()), matching(0, 0)).pixels;
  EXPECT_EQ(n.removed, 0u);
  EXPECT_EQ(n.filled, 0u);
}

TEST(PixelCounts, TheCleanUpRemovesWhatWasMatched) {
  const Picture before = matched(frameOfPair(onePair()), matching(0, 0)).disparity;
  const Matched after = matched(frameOfPair(onePair()), matching(0, 1));
  uint32_t lost = 0;
  for (size_t i = 0; i < before.pixels.size(); ++i) lost += before.pixels[i] != 0 && after.disparity.pixels[i] == 0;
  EXPECT_GT(lost, 0u);
  EXPECT_EQ(after.pixels.removed, lost);
}

TEST(PixelCounts, TheCleanUpFillsWhatWasNot) {
  const Picture before = matched(frameOfPair(onePair()), matching(0, 0)).disparity;
  const Matched after = matched(frameOfPair(onePair()), matching(0, 1));
  uint32_t won = 0;
  for (size_t i = 0; i < before.pixels.size(); ++i) won += before.pixels[i] == 0 && after.disparity.pixels[i] != 0;
  EXPECT_GT(won, 0u);
  EXPECT_EQ(after.pixels.filled, won);
}

TEST(PixelCounts, CarryTheirSize) {
  EXPECT_EQ(matched(frameOfPair(onePair()), matching(0, 1)).pixels.size, sizeof(NadirPixelCounts));
}

// ---- given disparities ----

Grid<float> anyDisparities(lab::Random& random, uint32_t width = 96, uint32_t height = 60) {
  Grid<float> grid(width, height);
  for (float& d : grid.pixels) d = random.below(4) ? static_cast<float>(random.between(80, 200)) / 16.0f : noDisparity;
  return grid;
}

TEST(GivenDisparities, NeedNoPictures) {
  lab::Random random(1);
  const Grid<float> disparity = anyDisparities(random);
  const Road road = makeRoad(smallCamera(), defaultSettings(smallCamera()));
  const Result result = makeResult(road);
  EXPECT_GT(processed(road, frameOf(disparity), result).seen_cells, 0u);
}

TEST(GivenDisparities, WinOverPictures) {
  lab::Random random(1);
  const Grid<float> disparity = anyDisparities(random);
  const Pair pair = onePair();
  NadirFrame both = frameOfPair(pair);
  both.disparity = disparity.pixels.data();
  both.disparity_stride = 96 * sizeof(float);
  const Road road = makeRoad(smallCamera(), defaultSettings(smallCamera()));
  const Result result = makeResult(road);
  const std::string wanted = everythingIn(processed(road, frameOf(disparity), result));
  EXPECT_EQ(everythingIn(processed(road, both, result)), wanted);
}

TEST(GivenDisparities, AreNotCopied) {
  lab::Random random(1);
  const Grid<float> disparity = anyDisparities(random);
  const Road road = makeRoad(smallCamera(), defaultSettings(smallCamera()));
  const Result result = makeResult(road);
  EXPECT_EQ(processed(road, frameOf(disparity), result).disparity.data, nullptr);
}

TEST(GivenDisparities, AreValuesOrAmbiguous) {
  lab::Random random(1);
  const Grid<float> disparity = anyDisparities(random);
  uint32_t values = 0;
  for (const float d : disparity.pixels) values += d == d;
  const NadirPixelCounts n = matched(frameOf(disparity), settingsUntil(NADIR_UNTIL_MAP)).pixels;
  EXPECT_EQ(n.value, values);
  EXPECT_EQ(n.ambiguous, 96 * 60 - values);
}

TEST(GivenDisparities, NoOtherCountApplies) {
  lab::Random random(1);
  const Grid<float> disparity = anyDisparities(random);
  const NadirPixelCounts n = matched(frameOf(disparity), settingsUntil(NADIR_UNTIL_MAP)).pixels;
  EXPECT_EQ(n.removed + n.masked + n.border + n.filled + n.reserved, 0u);
}

TEST(GivenDisparities, MayHavePadding) {
  lab::Random random(2);
  const Grid<float> disparity = anyDisparities(random);
  const Road road = makeRoad(crookedCamera(), defaultSettings(crookedCamera()));
  const Result result = makeResult(road);
  const std::string wanted = everythingIn(processed(road, frameOf(disparity), result));
  for (const Guard side : {Guard::behind, Guard::before}) {
    const size_t stride = 96 * sizeof(float) + 12;
    const Rows rows(disparity, stride, side);
    NadirFrame frame = emptyFrame();
    frame.disparity = static_cast<const float*>(static_cast<const void*>(rows.data()));
    frame.disparity_stride = stride;
    EXPECT_EQ(everythingIn(processed(road, frame, result)), wanted);
  }
}

// What was matched, given again, is the same frame but for what the matcher alone knows.
TEST(GivenDisparities, GiveTheMapThatMatchedOnesGive) {
  const Pair pair = onePair();
  const Road road = makeRoad(crookedCamera(), defaultSettings(crookedCamera()));
  const Result result = makeResult(road), again = makeResult(road);
  const NadirFindings first = processed(road, frameOfPair(pair), result);
  const Grid<float> disparity = lab::converted<float>(
      gridOf<uint16_t>(first.disparity), [](uint16_t v) { return v ? static_cast<float>(v) / 16.0f : noDisparity; });
  const NadirFindings second = processed(road, frameOf(disparity), again);
  EXPECT_EQ(first.points, second.points);
  EXPECT_TRUE(same(gridOf<uint16_t>(first.heights).pixels, gridOf<uint16_t>(second.heights).pixels));
  EXPECT_TRUE(same(gridOf<uint16_t>(first.labels).pixels, gridOf<uint16_t>(second.labels).pixels));
}

// ---- how far the road goes ----

TEST(Until, TheMatchGivesDisparitiesAlone) {
  const Road road = makeRoad(smallCamera(), settingsUntil(NADIR_UNTIL_MATCH));
  const Result result = makeResult(road);
  const Pair pair = onePair();
  const NadirFindings f = processed(road, frameOfPair(pair), result);
  EXPECT_NE(f.disparity.data, nullptr);
  EXPECT_EQ(f.heights.data, nullptr);
  EXPECT_EQ(f.point_counts.data, nullptr);
  EXPECT_EQ(f.labels.data, nullptr);
  EXPECT_EQ(f.points + f.points_inside + f.seen_cells + f.filled_cells, 0u);
  EXPECT_EQ(f.region_count + f.area_count + f.share_count, 0u);
}

TEST(Until, TheMapHasNoRegions) {
  const Road road = makeRoad(smallCamera(), settingsUntil(NADIR_UNTIL_MAP));
  const Result result = makeResult(road);
  const Pair pair = onePair();
  const NadirFindings f = processed(road, frameOfPair(pair), result);
  EXPECT_NE(f.heights.data, nullptr);
  EXPECT_EQ(f.labels.data, nullptr);
  EXPECT_EQ(f.region_count + f.area_count + f.share_count, 0u);
}

TEST(Until, EachGivesTheSameDisparities) {
  const Pair pair = onePair();
  const Picture wanted = matched(frameOfPair(pair), settingsUntil(NADIR_UNTIL_MATCH)).disparity;
  for (const uint32_t until : {uint32_t{NADIR_UNTIL_MAP}, uint32_t{NADIR_UNTIL_ALL}})
    EXPECT_TRUE(same(wanted.pixels, matched(frameOfPair(pair), settingsUntil(until)).disparity.pixels)) << until;
}

// ---- the caller's clock ----

struct Stages {
  std::vector<std::string> names;
  uint32_t ends = 0;
};

void note(void* user, const char* name) {
  Stages& stages = *static_cast<Stages*>(user);
  if (!name) {
    ++stages.ends;
  } else {
    stages.names.push_back(name);
  }
}

TEST(OnStage, IsCalledAsEachStageBeginsAndAtTheEnd) {
  const Pair pair = onePair();
  Stages stages;
  NadirFrame frame = frameOfPair(pair);
  frame.on_stage = note;
  frame.user = &stages;
  const Road road = makeRoad(smallCamera(), defaultSettings(smallCamera()));
  processed(road, frame, makeResult(road));
  EXPECT_EQ(stages.ends, 1u);
  const std::vector<std::string> expected = {"mirroring", "census", "matching",       "checking",
                                             "mirroring", "trust",  "points and map", "regions"};
  EXPECT_EQ(stages.names, expected);
}

TEST(OnStage, IsNotCalledForARefusedFrame) {
  Stages stages;
  NadirFrame frame = emptyFrame();
  frame.on_stage = note;
  frame.user = &stages;
  const Road road = makeRoad(smallCamera(), defaultSettings(smallCamera()));
  EXPECT_NE(nadir_road_process(road.get(), &frame, makeResult(road).get()), NADIR_OK);
  EXPECT_EQ(stages.names.size() + stages.ends, 0u);
}

TEST(OnStage, GivenDisparitiesAreNotMatched) {
  lab::Random random(1);
  const Grid<float> disparity = anyDisparities(random);
  Stages stages;
  NadirFrame frame = frameOf(disparity);
  frame.on_stage = note;
  frame.user = &stages;
  const Road road = makeRoad(smallCamera(), defaultSettings(smallCamera()));
  processed(road, frame, makeResult(road));
  EXPECT_EQ(std::count(stages.names.begin(), stages.names.end(), "matching"), 0);
}

// ---- what is refused ----

// A road with a frame in its result, which a refused frame must not change.
class RefusedFrames : public ::testing::Test {
 protected:
  RefusedFrames()
      : road_(makeRoad(smallCamera(), defaultSettings(smallCamera()))),
        result_(makeResult(road_)),
        before_(everythingIn(processed(road_, frameOfPair(pair_), result_))) {}

  void expectRefused(const NadirFrame& frame, NadirStatus wanted) {
    EXPECT_EQ(nadir_road_process(road_.get(), &frame, result_.get()), wanted);
    EXPECT_EQ(everythingIn(read(result_)), before_) << "the result changed";
  }

  Pair pair_ = onePair();
  Grid<uint8_t> mask_ = Grid<uint8_t>(96, 60);
  Grid<float> disparity_ = Grid<float>(96, 60, 9.0f);
  Road road_;
  Result result_;
  std::string before_;
};

TEST_F(RefusedFrames, NullPointers) {
  const NadirFrame frame = frameOfPair(pair_);
  EXPECT_EQ(nadir_road_process(nullptr, &frame, result_.get()), NADIR_NULL_POINTER);
  EXPECT_EQ(nadir_road_process(road_.get(), nullptr, result_.get()), NADIR_NULL_POINTER);
  EXPECT_EQ(nadir_road_process(road_.get(), &frame, nullptr), NADIR_NULL_POINTER);
  EXPECT_EQ(everythingIn(read(result_)), before_);
}

TEST_F(RefusedFrames, OtherSizes) {
  for (const uint32_t size : badSizes(sizeof(NadirFrame))) {
    NadirFrame frame = frameOfPair(pair_);
    frame.size = size;
    expectRefused(frame, NADIR_BAD_RECORD);
  }
}

TEST_F(RefusedFrames, OtherBits) {
  for (const uint32_t bits : {0u, 1u, 7u, 9u, 12u, 15u, 17u, 32u, 0xFFFFFFFFu}) {
    NadirFrame frame = frameOfPair(pair_);
    frame.bits = bits;
    expectRefused(frame, NADIR_BAD_FRAME);
  }
}

TEST_F(RefusedFrames, NoPictures) { expectRefused(emptyFrame(), NADIR_BAD_FRAME); }

TEST_F(RefusedFrames, NoLeftPicture) {
  NadirFrame frame = frameOfPair(pair_);
  frame.left = nullptr;
  expectRefused(frame, NADIR_BAD_FRAME);
}

TEST_F(RefusedFrames, NoRightPicture) {
  NadirFrame frame = frameOfPair(pair_);
  frame.right = nullptr;
  expectRefused(frame, NADIR_BAD_FRAME);
}

TEST_F(RefusedFrames, RowsThatOverlapOnTheLeft) {
  for (const size_t stride : {size_t{0}, size_t{96}, size_t{191}}) {
    NadirFrame frame = frameOfPair(pair_);
    frame.left_stride = stride;
    expectRefused(frame, NADIR_BAD_FRAME);
  }
}

TEST_F(RefusedFrames, RowsThatOverlapOnTheRight) {
  NadirFrame frame = frameOfPair(pair_);
  frame.right_stride = 191;
  expectRefused(frame, NADIR_BAD_FRAME);
}

TEST_F(RefusedFrames, RowsOfBytesThatOverlap) {
  NadirFrame frame = frameOfPair(pair_);
  frame.bits = 8;
  frame.left_stride = 95;
  expectRefused(frame, NADIR_BAD_FRAME);
}

TEST_F(RefusedFrames, RowsOfTheMaskThatOverlap) {
  NadirFrame frame = withMask(frameOfPair(pair_), mask_);
  frame.mask_stride = 95;
  expectRefused(frame, NADIR_BAD_FRAME);
}

TEST_F(RefusedFrames, RowsOfDisparitiesThatOverlap) {
  NadirFrame frame = frameOf(disparity_);
  frame.disparity_stride = 96 * 4 - 4;
  expectRefused(frame, NADIR_BAD_FRAME);
}

TEST_F(RefusedFrames, DisparitiesAtOddStrides) {
  for (const size_t more : {1u, 2u, 3u}) {
    NadirFrame frame = frameOf(disparity_);
    frame.disparity_stride = 96 * 4 + more;
    expectRefused(frame, NADIR_BAD_FRAME);
  }
}

// A caller who counts rows upwards has a stride that wraps: no memory holds such a picture.
TEST_F(RefusedFrames, StridesThatNoMemoryHolds) {
  const size_t wrapping = size_t{0} - 192;
  for (size_t NadirFrame::*stride : {&NadirFrame::left_stride, &NadirFrame::right_stride, &NadirFrame::mask_stride}) {
    NadirFrame frame = withMask(frameOfPair(pair_), mask_);
    frame.*stride = wrapping;
    expectRefused(frame, NADIR_BAD_FRAME);
  }
  NadirFrame frame = frameOf(disparity_);
  frame.disparity_stride = wrapping;
  expectRefused(frame, NADIR_BAD_FRAME);
}

TEST_F(RefusedFrames, ResultsOfAnotherPictureSize) {
  NadirCamera camera = smallCamera();
  camera.height_px = 59;
  const Result other = makeResult(makeRoad(camera, defaultSettings(camera)));
  const NadirFrame frame = frameOfPair(pair_);
  EXPECT_EQ(nadir_road_process(road_.get(), &frame, other.get()), NADIR_FOREIGN_RESULT);
}

TEST_F(RefusedFrames, ResultsOfAnotherMapSize) {
  NadirCamera camera = smallCamera();
  camera.map_width_cells = 15;
  const Result other = makeResult(makeRoad(camera, defaultSettings(camera)));
  const NadirFrame frame = frameOfPair(pair_);
  EXPECT_EQ(nadir_road_process(road_.get(), &frame, other.get()), NADIR_FOREIGN_RESULT);
}

TEST_F(RefusedFrames, ResultsOfOtherSettings) {
  NadirSettings settings = defaultSettings(smallCamera());
  settings.until = NADIR_UNTIL_MAP;
  const Result other = makeResult(makeRoad(smallCamera(), settings));
  const NadirFrame frame = frameOfPair(pair_);
  EXPECT_EQ(nadir_road_process(road_.get(), &frame, other.get()), NADIR_FOREIGN_RESULT);
}

// What was matched with other settings is of no use to this road.
TEST_F(RefusedFrames, ResultsOfOtherSettingsOfMatching) {
  NadirSettings settings = defaultSettings(smallCamera());
  settings.uniqueness += 1;
  const Result other = makeResult(makeRoad(smallCamera(), settings));
  const NadirFrame frame = frameOfPair(pair_);
  EXPECT_EQ(nadir_road_process(road_.get(), &frame, other.get()), NADIR_FOREIGN_RESULT);
  settings.uniqueness -= 1;
  settings.percentile = 50;
  EXPECT_EQ(nadir_road_process(makeRoad(smallCamera(), settings).get(), &frame, other.get()), NADIR_FOREIGN_RESULT);
}

TEST_F(RefusedFrames, ResultsOfAnotherNumberOfAreas) {
  const std::vector<int32_t> corners = {-100, -100, 100, -100, 0, 100};
  const Result other = makeResult(makeRoad(smallCamera(), defaultSettings(smallCamera()), {areaOf(corners)}));
  const NadirFrame frame = frameOfPair(pair_);
  EXPECT_EQ(nadir_road_process(road_.get(), &frame, other.get()), NADIR_FOREIGN_RESULT);
}

TEST_F(RefusedFrames, AForeignResultStaysEmpty) {
  NadirCamera camera = smallCamera();
  camera.height_px = 59;
  const Result other = makeResult(makeRoad(camera, defaultSettings(camera)));
  const NadirFrame frame = frameOfPair(pair_);
  nadir_road_process(road_.get(), &frame, other.get());
  NadirFindings findings = marked<NadirFindings>();
  EXPECT_EQ(nadir_result_read(other.get(), &findings), NADIR_NOTHING_FOUND);
}

TEST(ResultOfATwin, ServesEveryRoadOfTheSameSizes) {
  const Pair pair = onePair();
  NadirCamera moved = smallCamera();
  moved.tilt_deg = -3;
  moved.map_offset_x_mm = 20;
  const Road road = makeRoad(smallCamera(), defaultSettings(smallCamera()));
  const Result twins = makeResult(makeRoad(moved, defaultSettings(moved))), own = makeResult(road);
  const std::string wanted = everythingIn(processed(road, frameOfPair(pair), own));
  EXPECT_EQ(everythingIn(processed(road, frameOfPair(pair), twins)), wanted);
}

// ---- reading results ----

TEST(ResultRead, BeforeTheFirstFrameThereIsNothing) {
  const Result result = makeResult(makeRoad(smallCamera(), defaultSettings(smallCamera())));
  const NadirFindings before = marked<NadirFindings>();
  NadirFindings findings = before;
  EXPECT_EQ(nadir_result_read(result.get(), &findings), NADIR_NOTHING_FOUND);
  EXPECT_TRUE(sameBytes(before, findings));
}

TEST_F(RefusedFrames, ReadingNeedsPointers) {
  NadirFindings findings = marked<NadirFindings>();
  EXPECT_EQ(nadir_result_read(nullptr, &findings), NADIR_NULL_POINTER);
  EXPECT_EQ(nadir_result_read(result_.get(), nullptr), NADIR_NULL_POINTER);
}

TEST_F(RefusedFrames, ReadingRefusesOtherSizesUntouched) {
  for (const uint32_t size : badSizes(sizeof(NadirFindings))) {
    NadirFindings findings = marked<NadirFindings>();
    findings.size = size;
    const NadirFindings before = findings;
    EXPECT_EQ(nadir_result_read(result_.get(), &findings), NADIR_BAD_RECORD) << size;
    EXPECT_TRUE(sameBytes(before, findings)) << size;
  }
}

TEST(ResultRead, OutlivesItsRoad) {
  const Pair pair = onePair();
  Road road = makeRoad(smallCamera(), defaultSettings(smallCamera()));
  const Result result = makeResult(road);
  const std::string wanted = everythingIn(processed(road, frameOfPair(pair), result));
  road.reset();
  EXPECT_EQ(everythingIn(read(result)), wanted);
}

}  // namespace
}  // namespace nadir::test
