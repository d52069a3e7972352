// Whole pairs matched, and what the matcher records on its way.
#include <gtest/gtest.h>
#include <nadir/nadir.h>

#include <cstring>

#include "lab/random.hpp"
#include "lab/textured_pair.hpp"
#include "tests/models/stereo.hpp"
#include "tests/support/guarded.hpp"
#include "tests/support/same.hpp"

namespace nadir::test {
namespace {

using model::Bytes;
using model::Codes;
using model::Words;

constexpr uint32_t searched = 64;
constexpr uint8_t oldByte = 0xA7;
constexpr uint16_t oldWord = 0xA7A7;

struct Pair {
  uint32_t width, height;
  Codes first, ref;
  Words image;

  size_t pixels() const { return size_t{width} * height; }
};

// A ground seen twice, the shift growing with y. Each picture lacks the data of some pixels that the other one has.
Pair groundPair(uint32_t width, uint32_t height, uint64_t seed) {
  lab::Random random(seed);
  const uint32_t topShift = 2 + static_cast<uint32_t>(seed % 17);
  lab::TexturedPair seen = lab::shiftedRows(
      width, height, 80, [=](uint32_t y) { return topShift + y / 3; }, random);
  for (Words* picture : {&seen.first, &seen.reference})
    for (uint16_t& value : *picture) value = random.below(40) == 0 ? uint16_t{0} : value;
  Pair pair{width, height, {}, {}, seen.reference};
  pair.first = model::census(seen.first, width, height, Codes(pair.pixels(), CENSUS_INVALID));
  pair.ref = model::census(seen.reference, width, height, Codes(pair.pixels(), CENSUS_INVALID));
  return pair;
}

// Any codes and intensities at all. Few different codes make many costs equal.
Pair randomPair(uint32_t width, uint32_t height, uint64_t seed) {
  lab::Random random(seed);
  Pair pair{width, height, {}, {}, {}};
  const uint32_t mask = random.below(2) ? 0xFFFFFFFF : 0x00000103;
  for (Codes* codes : {&pair.first, &pair.ref}) {
    codes->resize(pair.pixels());
    for (uint32_t& code : *codes) code = random.below(9) ? random.next() & mask : CENSUS_INVALID;
  }
  pair.image = random.values<uint16_t>(pair.pixels(), random.below(2) ? 65536 : 600);
  return pair;
}

Words full(const Pair& pair, uint32_t ratio, SgmDebugData* debug = nullptr, Guard side = Guard::behind,
           uint32_t numDisparities = searched) {
  const Guarded<uint32_t> first(pair.first, side), ref(pair.ref, side);
  const Guarded<uint16_t> image(pair.image, side), out(Words(pair.pixels(), oldWord), side);
  const SgmParams params{numDisparities, ratio};
  IP_SgmFull(first.data(), ref.data(), image.data(), pair.width, pair.height, &params, out.data(), debug);
  return out.values();
}

Bytes distinct(const Pair& pair, SgmDebugData* debug = nullptr, Guard side = Guard::behind) {
  const Guarded<uint32_t> first(pair.first, side), ref(pair.ref, side);
  const Guarded<uint16_t> image(pair.image, side);
  const Guarded<uint8_t> out(Bytes(pair.pixels(), oldByte), side);
  IP_Sgm(first.data(), ref.data(), image.data(), pair.width, pair.height, out.data(), debug);
  return out.values();
}

// ---- debug records ----

struct Contents {
  Bytes costs, sums, peaks;
  std::array<Bytes, 4> p2;
};

void expectSame(const Contents& want, const Contents& got) {
  EXPECT_TRUE(same(want.costs, got.costs)) << "matching costs";
  EXPECT_TRUE(same(want.sums, got.sums)) << "sums";
  EXPECT_TRUE(same(want.peaks, got.peaks)) << "peaks";
  for (size_t dir = 0; dir < 4; ++dir) EXPECT_TRUE(same(want.p2[dir], got.p2[dir])) << "P2 of direction " << dir;
}

// A debug record full of garbage.
class Debug {
 public:
  Debug(uint32_t width, uint32_t height) {
    EXPECT_EQ(IP_SgmMakeDebugData(width, height, searched, &record), 1);
    fill(record.costVolume, record.costVolumeSize);
    fill(record.aggregatedVolume, record.aggregatedVolumeSize);
    fill(record.peakMap, record.peakMapSize);
    for (uint8_t* map : maps()) fill(map, record.p2Size);
  }
  ~Debug() { IP_SgmFreeDebugData(&record); }
  Debug(const Debug&) = delete;
  Debug& operator=(const Debug&) = delete;

  std::array<uint8_t*, 4> maps() const { return {record.p2Left, record.p2UpLeft, record.p2Up, record.p2UpRight}; }

  // The blocks as an image of `pixels` pixels left them in the record.
  Contents contents(size_t pixels) const {
    Contents all{take(record.costVolume, pixels * searched),
                 take(record.aggregatedVolume, pixels * searched),
                 take(record.peakMap, pixels),
                 {}};
    for (size_t dir = 0; dir < 4; ++dir) all.p2[dir] = take(maps()[dir], pixels);
    return all;
  }

  SgmDebugData record;

 private:
  static void fill(uint8_t* block, size_t bytes) { std::memset(block, oldByte, bytes); }
  static Bytes take(const uint8_t* block, size_t bytes) { return Bytes(block, block + bytes); }
};

TEST(SgmDebug, MakeAllocatesBlocksOfTheStatedSizes) {
  SgmDebugData debug;
  std::memset(&debug, 0xA5, sizeof debug);
  ASSERT_EQ(IP_SgmMakeDebugData(9, 5, 48, &debug), 1);
  EXPECT_EQ(debug.costVolumeSize, 9u * 5 * 48);
  EXPECT_EQ(debug.aggregatedVolumeSize, 9u * 5 * 48);
  EXPECT_EQ(debug.p2Size, 9u * 5);
  EXPECT_EQ(debug.peakMapSize, 9u * 5);
  for (const uint8_t* block : {debug.costVolume, debug.p2Left, debug.p2UpLeft, debug.p2Up, debug.p2UpRight,
                               debug.aggregatedVolume, debug.peakMap}) {
    EXPECT_NE(block, nullptr);
  }
  IP_SgmFreeDebugData(&debug);
}

TEST(SgmDebug, VolumesWhoseSizeNeeds33BitsAreRefused) {
  SgmDebugData debug;
  EXPECT_EQ(IP_SgmMakeDebugData(8192, 8192, 64, &debug), 0);
  for (const uint8_t* block : {debug.costVolume, debug.p2Left, debug.p2UpLeft, debug.p2Up, debug.p2UpRight,
                               debug.aggregatedVolume, debug.peakMap}) {
    EXPECT_EQ(block, nullptr);
  }
}

TEST(SgmDebug, FreeSetsPointersToNullKeepsSizesAndMayBeCalledTwice) {
  SgmDebugData debug;
  ASSERT_EQ(IP_SgmMakeDebugData(9, 5, 64, &debug), 1);
  for (int call = 0; call < 2; ++call) {
    IP_SgmFreeDebugData(&debug);
    for (const uint8_t* block : {debug.costVolume, debug.p2Left, debug.p2UpLeft, debug.p2Up, debug.p2UpRight,
                                 debug.aggregatedVolume, debug.peakMap}) {
      EXPECT_EQ(block, nullptr);
    }
    EXPECT_EQ(debug.costVolumeSize, 9u * 5 * 64);
    EXPECT_EQ(debug.aggregatedVolumeSize, 9u * 5 * 64);
    EXPECT_EQ(debug.p2Size, 9u * 5);
    EXPECT_EQ(debug.peakMapSize, 9u * 5);
  }
}

TEST(SgmDebug, FreeOfAnAllZeroRecordIsHarmless) {
  SgmDebugData debug{};
  IP_SgmFreeDebugData(&debug);
  EXPECT_EQ(debug.costVolume, nullptr);
}

// ---- the drivers against the model ----

constexpr uint32_t ratios[] = {0, 10, 128, 512, 40000, 0xFFFFFFFF};

struct Expected {
  Contents contents;
  Words disparity;
  Bytes distinctiveness;
};

Expected modelOf(const Pair& pair, uint32_t ratio) {
  const model::Matching all = model::match(pair.first, pair.ref, pair.image, pair.width, pair.height);
  const Bytes peaks = model::peaks(all.sums, pair.width, pair.height, ratio);
  return {{all.costs, all.sums, peaks, all.p2},
          model::disparities(all.sums, peaks),
          model::distinctivenessMap(all.sums, pair.width, pair.height)};
}

void expectModel(const Pair& pair, uint32_t ratio, Guard side) {
  SCOPED_TRACE(testing::Message() << pair.width << "x" << pair.height << ", ratio " << ratio);
  Expected want = modelOf(pair, ratio);
  EXPECT_TRUE(same(want.disparity, full(pair, ratio, nullptr, side)));
  EXPECT_TRUE(same(want.distinctiveness, distinct(pair, nullptr, side)));

  const Debug ofFull(pair.width, pair.height);
  SgmDebugData record = ofFull.record;
  EXPECT_TRUE(same(want.disparity, full(pair, ratio, &record, side)));
  expectSame(want.contents, ofFull.contents(pair.pixels()));

  const Debug ofDistinct(pair.width, pair.height);
  record = ofDistinct.record;
  EXPECT_TRUE(same(want.distinctiveness, distinct(pair, &record, side)));
  want.contents.peaks.assign(pair.pixels(), oldByte);
  expectSame(want.contents, ofDistinct.contents(pair.pixels()));
}

Guard sideOf(uint32_t n) { return n % 2 ? Guard::behind : Guard::before; }

TEST(SgmModel, GroundOfEveryWidth) {
  for (uint32_t width = 5; width <= 140; width += width < 75 ? 1 : 4) {
    expectModel(groundPair(width, 1 + width % 8, width), ratios[width % 3], sideOf(width));
  }
}

TEST(SgmModel, GroundOfEveryHeight) {
  for (uint32_t height = 1; height <= 12; ++height) expectModel(groundPair(40, height, height), 10, sideOf(height));
}

TEST(SgmModel, AnyCodesOfEveryWidth) {
  for (uint32_t width = 5; width <= 140; width += width < 75 ? 1 : 4) {
    expectModel(randomPair(width, 1 + width % 7, width), ratios[width % 6], sideOf(width / 2));
  }
}

TEST(SgmModel, AnyRatio) {
  lab::Random random(11);
  const Pair pair = groundPair(60, 6, 3);
  const Bytes sums = modelOf(pair, 0).contents.sums;
  for (int i = 0; i < 40; ++i) {
    const uint32_t ratio = random.next() >> random.below(32);
    const Bytes peaks = model::peaks(sums, pair.width, pair.height, ratio);
    EXPECT_TRUE(same(model::disparities(sums, peaks), full(pair, ratio))) << ratio;
  }
}

// ---- the drivers against the exported functions of one row ----

struct Composed {
  Contents contents;
  Words disparity;
};

Composed compose(const Pair& pair, uint32_t ratio) {
  Contents all{Bytes(pair.pixels() * searched), Bytes(pair.pixels() * searched, 0), Bytes(pair.pixels(), 0), {}};
  for (Bytes& map : all.p2) map.resize(pair.pixels());
  SGM_CalcP2(pair.image.data(), pair.width, pair.height, all.p2[0].data(), all.p2[1].data(), all.p2[2].data(),
             all.p2[3].data());
  std::array<PcBuffer, 4> paths;
  for (uint32_t dir = 0; dir < 4; ++dir) {
    EXPECT_EQ(PC_Init(&paths[dir], dir, pair.width, searched, 7), 1);
    PC_NextFrame(&paths[dir]);
  }
  for (uint32_t y = 0; y < pair.height; ++y) {
    const size_t at = size_t{y} * pair.width;
    SGM_CalcDsiRow_neon(&pair.first[at], &pair.ref[at], pair.width, pair.height, searched, y,
                        &all.costs[at * searched]);
    for (size_t dir = 0; dir < 4; ++dir) {
      PC_NextRow_neon(&paths[dir], &all.costs[at * searched], &all.p2[dir][at], &all.sums[at * searched]);
    }
    for (uint32_t x = 0; x + 4 < pair.width; ++x) {
      const uint32_t maxIndex = std::min(searched - 1, pair.width - 1 - x);
      all.peaks[at + x] = model::low8(SGM_PeakCheckExtended_neon(&all.sums[(at + x) * searched], maxIndex, ratio));
    }
  }
  for (PcBuffer& path : paths) PC_Destroy(&path);
  return {all, model::disparities(all.sums, all.peaks)};
}

void expectComposition(const Pair& pair, uint32_t ratio) {
  SCOPED_TRACE(testing::Message() << pair.width << "x" << pair.height << ", ratio " << ratio);
  const Composed want = compose(pair, ratio);
  Debug debug(pair.width, pair.height);
  EXPECT_TRUE(same(want.disparity, full(pair, ratio)));
  EXPECT_TRUE(same(want.disparity, full(pair, ratio, &debug.record)));
  expectSame(want.contents, debug.contents(pair.pixels()));
  const Bytes distinctiveness = model::distinctivenessMap(want.contents.sums, pair.width, pair.height);
  EXPECT_TRUE(same(distinctiveness, distinct(pair)));
  EXPECT_TRUE(same(distinctiveness, distinct(pair, &debug.record)));
}

TEST(SgmComposition, OfGround) {
  for (const uint32_t width : {5u, 33u, 68u, 90u, 131u}) expectComposition(groundPair(width, 9, width), 10);
}

TEST(SgmComposition, OfAnyCodesAndRatios) {
  lab::Random random(12);
  for (int i = 0; i < 12; ++i) {
    const uint32_t width = 5 + random.below(130), height = 1 + random.below(9), ratio = random.next();
    expectComposition(randomPair(width, height, random.next()), ratio);
  }
}

// ---- what the results hold ----

TEST(SgmFull, FindsTheShiftOfAShiftedPicture) {
  constexpr uint32_t width = 80, height = 8, shift = 11;
  lab::Random random(13);
  Pair pair{width, height, random.values<uint32_t>(width * height, 1u << 24), {}, Words(width * height, 500)};
  pair.ref = pair.first;
  for (uint32_t i = 0; i + shift < width * height; ++i) pair.ref[i] = pair.first[i + shift];
  const Words disparity = full(pair, 10);
  for (uint32_t y = 2; y + 2 < height; ++y) {
    for (uint32_t x = 2; x + shift + 6 < width; ++x) {
      EXPECT_NEAR(disparity[y * width + x], shift * SGM_DISP_SCALE, 8) << x << ", " << y;
    }
  }
}

TEST(SgmFull, ScaleOfADisparityIs16) {
  EXPECT_EQ(SGM_DISP_SCALE, 16);
  EXPECT_EQ(1 << SGM_SUBPIX_SHIFT, SGM_DISP_SCALE);
}

TEST(SgmFull, FourRightmostColumnsAreZero) {
  for (const uint32_t width : {5u, 8u, 70u}) {
    const Pair pair = randomPair(width, 9, width);
    const Words disparity = full(pair, 0);
    for (uint32_t y = 0; y < 9; ++y) {
      for (uint32_t x = width - 4; x < width; ++x) EXPECT_EQ(disparity[y * width + x], 0);
    }
  }
}

TEST(SgmFull, ValuesAreZeroOr24To984) {
  uint32_t found = 0;
  for (uint64_t seed = 0; seed < 6; ++seed) {
    for (const uint16_t value : full(groundPair(120, 9, seed), 0)) {
      if (value == 0) continue;
      ++found;
      EXPECT_GE(value, 24);
      EXPECT_LE(value, 984);
    }
  }
  EXPECT_GT(found, 1000u);
}

TEST(SgmFull, CensusWithoutAnyStructureHasNoDisparity) {
  Pair pair = groundPair(90, 9, 1);
  std::fill(pair.first.begin(), pair.first.end(), 0);
  std::fill(pair.ref.begin(), pair.ref.end(), 0);
  std::fill(pair.image.begin(), pair.image.end(), uint16_t{77});
  EXPECT_TRUE(same(Words(pair.pixels(), 0), full(pair, 0)));
}

TEST(SgmFull, InvalidCensusHasNoDisparity) {
  Pair pair = groundPair(90, 9, 1);
  std::fill(pair.ref.begin(), pair.ref.end(), CENSUS_INVALID);
  EXPECT_TRUE(same(Words(pair.pixels(), 0), full(pair, 0)));
}

TEST(SgmFull, RejectedPixelIsZeroInImageAndPeakMap) {
  const Pair pair = groundPair(90, 9, 2);
  Debug debug(pair.width, pair.height);
  const Words disparity = full(pair, 60, &debug.record);
  uint32_t rejected = 0;
  for (size_t i = 0; i < pair.pixels(); ++i) {
    EXPECT_EQ(disparity[i] == 0, debug.record.peakMap[i] == 0) << i;
    rejected += disparity[i] == 0;
  }
  EXPECT_GT(rejected, 0u);
  EXPECT_LT(rejected, pair.pixels());
}

TEST(SgmFull, SubPixelOffsetLeansTowardsTheCheaperNeighbour) {
  const Pair pair = groundPair(130, 10, 4);
  Debug debug(pair.width, pair.height);
  const Words disparity = full(pair, 0, &debug.record);
  uint32_t below = 0, above = 0;
  for (size_t i = 0; i < pair.pixels(); ++i) {
    const uint32_t k = debug.record.peakMap[i];
    if (k == 0) continue;
    const uint8_t* sums = debug.record.aggregatedVolume + i * searched;
    const bool isBelow = disparity[i]<k * 16, isAbove = disparity[i]> k * 16;
    EXPECT_TRUE(!isBelow || sums[k - 1] < sums[k + 1]) << i;
    EXPECT_TRUE(!isAbove || sums[k - 1] > sums[k + 1]) << i;
    below += isBelow;
    above += isAbove;
  }
  EXPECT_GT(below, 50u);
  EXPECT_GT(above, 50u);
}

TEST(SgmFull, EqualNeighboursGiveTheWholeDisparity) {
  uint32_t equal = 0;
  for (uint64_t seed = 0; seed < 4; ++seed) {
    const Pair pair = groundPair(130, 10, seed);
    Debug debug(pair.width, pair.height);
    const Words disparity = full(pair, 0, &debug.record);
    for (size_t i = 0; i < pair.pixels(); ++i) {
      const uint32_t k = debug.record.peakMap[i];
      const uint8_t* sums = debug.record.aggregatedVolume + i * searched;
      if (k == 0 || sums[k - 1] != sums[k + 1]) continue;
      ++equal;
      EXPECT_EQ(disparity[i], k * 16);
    }
  }
  EXPECT_GT(equal, 20u);
}

TEST(Sgm, FourRightmostColumnsAre255) {
  for (const uint32_t width : {5u, 8u, 70u}) {
    const Bytes map = distinct(randomPair(width, 9, width));
    for (uint32_t y = 0; y < 9; ++y) {
      for (uint32_t x = width - 4; x < width; ++x) EXPECT_EQ(map[y * width + x], 255);
    }
  }
}

TEST(Sgm, PeakMapIsNotTouched) {
  const Pair pair = groundPair(50, 6, 1);
  Debug debug(pair.width, pair.height);
  distinct(pair, &debug.record);
  EXPECT_TRUE(same(Bytes(pair.pixels(), oldByte), debug.contents(pair.pixels()).peaks));
}

// ---- what does not count ----

Pair withFrame(Pair pair, uint64_t seed) {
  lab::Random random(seed);
  for (uint32_t y = 0; y < pair.height; ++y) {
    for (uint32_t x = 0; x < pair.width; ++x) {
      const bool inside = x >= 2 && x + 2 < pair.width && y >= 2 && y + 2 < pair.height;
      if (inside) continue;
      pair.first[y * pair.width + x] = random.next();
      pair.ref[y * pair.width + x] = random.next();
    }
  }
  return pair;
}

TEST(SgmFrame, GarbageInTheCensusFrameChangesNothing) {
  for (const uint32_t width : {6u, 30u, 66u, 67u, 68u, 83u, 100u}) {
    const Pair clean = groundPair(width, 9, width), framed = withFrame(clean, width);
    Debug ofClean(width, 9), ofFramed(width, 9);
    EXPECT_TRUE(same(full(clean, 10, &ofClean.record), full(framed, 10, &ofFramed.record))) << width;
    EXPECT_TRUE(same(full(clean, 10), full(framed, 10))) << width;
    EXPECT_TRUE(same(distinct(clean), distinct(framed))) << width;
    expectSame(ofClean.contents(clean.pixels()), ofFramed.contents(clean.pixels()));
  }
}

TEST(SgmFrame, PicturesThatAreAllFrameHaveNoDisparity) {
  for (uint32_t height = 0; height < 5; ++height) {
    const Pair pair = randomPair(80, height, height);
    EXPECT_TRUE(same(Words(pair.pixels(), 0), full(pair, 10))) << height;
  }
}

TEST(SgmState, NothingPersistsBetweenCalls) {
  const Pair one = groundPair(70, 9, 1), other = randomPair(90, 5, 2);
  const Words disparity = full(one, 10);
  const Bytes map = distinct(one);
  full(other, 10);
  distinct(other);
  EXPECT_TRUE(same(disparity, full(one, 10)));
  EXPECT_TRUE(same(map, distinct(one)));
}

TEST(SgmState, DebugRecordServesManyCalls) {
  const Pair one = groundPair(70, 9, 1), other = randomPair(70, 9, 2);
  Debug reused(70, 9), fresh(70, 9);
  full(other, 10, &reused.record);
  full(one, 10, &reused.record);
  full(one, 10, &fresh.record);
  expectSame(fresh.contents(one.pixels()), reused.contents(one.pixels()));
}

TEST(SgmState, InputsAreOnlyRead) {
  const Pair pair = randomPair(70, 9, 3), before = pair;
  const SgmParams params{searched, 10};
  Words disparity(pair.pixels());
  Bytes map(pair.pixels());
  IP_SgmFull(pair.first.data(), pair.ref.data(), pair.image.data(), 70, 9, &params, disparity.data(), nullptr);
  IP_Sgm(pair.first.data(), pair.ref.data(), pair.image.data(), 70, 9, map.data(), nullptr);
  EXPECT_TRUE(same(before.first, pair.first));
  EXPECT_TRUE(same(before.ref, pair.ref));
  EXPECT_TRUE(same(before.image, pair.image));
  EXPECT_EQ(params.numDisparities, searched);
  EXPECT_EQ(params.uniquenessRatio, 10u);
}

// ---- debug records of other sizes ----

TEST(SgmDebug, P2MapsTooSmallForTheImageAreNotFilled) {
  const Pair pair = groundPair(40, 6, 1);
  const Words want = full(pair, 10);
  Debug ofFull(40, 6), ofDistinct(40, 6);
  ofFull.record.p2Size = ofDistinct.record.p2Size = static_cast<uint32_t>(pair.pixels() - 1);
  EXPECT_TRUE(same(want, full(pair, 10, &ofFull.record)));
  distinct(pair, &ofDistinct.record);
  for (size_t dir = 0; dir < 4; ++dir) {
    EXPECT_TRUE(same(Bytes(pair.pixels(), oldByte), ofFull.contents(pair.pixels()).p2[dir])) << dir;
    EXPECT_TRUE(same(Bytes(pair.pixels(), oldByte), ofDistinct.contents(pair.pixels()).p2[dir])) << dir;
  }
}

TEST(SgmDebug, P2MapsTooSmallForTheImageDoNotKeepTheVolumesFromBeingFilled) {
  const Pair pair = groundPair(40, 6, 1);
  Debug exact(40, 6), small(40, 6);
  small.record.p2Size = 0;
  full(pair, 10, &exact.record);
  full(pair, 10, &small.record);
  Contents want = exact.contents(pair.pixels());
  for (Bytes& map : want.p2) map.assign(pair.pixels(), oldByte);
  expectSame(want, small.contents(pair.pixels()));
}

TEST(SgmDebug, LargerRecordIsFilledFromItsStartAndNotBehindTheImage) {
  const Pair pair = groundPair(40, 6, 1);
  Debug exact(40, 6), large(40, 9);
  full(pair, 10, &exact.record);
  full(pair, 10, &large.record);
  Contents want = exact.contents(pair.pixels());
  want.costs.resize(40 * 9 * searched, oldByte);
  want.sums.resize(40 * 9 * searched, oldByte);
  want.peaks.resize(40 * 9, oldByte);
  for (Bytes& map : want.p2) map.resize(40 * 9, oldByte);
  expectSame(want, large.contents(40 * 9));
}

TEST(SgmDebug, RecordItselfIsNotChanged) {
  const Pair pair = groundPair(40, 6, 1);
  Debug debug(40, 6);
  const SgmDebugData before = debug.record;
  full(pair, 10, &debug.record);
  distinct(pair, &debug.record);
  EXPECT_EQ(debug.record.costVolume, before.costVolume);
  EXPECT_EQ(debug.record.aggregatedVolume, before.aggregatedVolume);
  EXPECT_EQ(debug.record.peakMap, before.peakMap);
  EXPECT_EQ(debug.record.p2Left, before.p2Left);
  EXPECT_EQ(debug.record.p2Size, before.p2Size);
  EXPECT_EQ(debug.record.costVolumeSize, before.costVolumeSize);
}

// ---- pictures and parameters that cannot be matched ----

TEST(SgmRefused, HeightZeroWritesNothing) {
  const Pair pair = groundPair(40, 6, 1);
  const SgmParams params{searched, 10};
  Words disparity(40, oldWord);
  Bytes map(40, oldByte);
  Debug debug(40, 6);
  for (SgmDebugData* record : {static_cast<SgmDebugData*>(nullptr), &debug.record}) {
    IP_SgmFull(pair.first.data(), pair.ref.data(), pair.image.data(), 40, 0, &params, disparity.data(), record);
    IP_Sgm(pair.first.data(), pair.ref.data(), pair.image.data(), 40, 0, map.data(), record);
  }
  EXPECT_TRUE(same(Words(40, oldWord), disparity));
  EXPECT_TRUE(same(Bytes(40, oldByte), map));
  const Bytes volume(pair.pixels() * searched, oldByte), plane(pair.pixels(), oldByte);
  expectSame({volume, volume, plane, {plane, plane, plane, plane}}, debug.contents(pair.pixels()));
}

TEST(SgmRefused, WidthBelowFiveHasNoDisparity) {
  for (uint32_t width = 0; width < 5; ++width) {
    for (const uint32_t height : {1u, 4u, 9u}) {
      const Pair pair = randomPair(width, height, width);
      for (const Guard side : {Guard::behind, Guard::before}) {
        EXPECT_TRUE(same(Words(pair.pixels(), 0), full(pair, 10, nullptr, side))) << width << "x" << height;
      }
    }
  }
}

TEST(SgmRefused, WidthBelowFiveHasDistinctiveness255) {
  for (uint32_t width = 0; width < 5; ++width) {
    for (const uint32_t height : {1u, 4u, 9u}) {
      const Pair pair = randomPair(width, height, width);
      for (const Guard side : {Guard::behind, Guard::before}) {
        EXPECT_TRUE(same(Bytes(pair.pixels(), 255), distinct(pair, nullptr, side))) << width << "x" << height;
      }
    }
  }
}

TEST(SgmRefused, NumbersOfDisparitiesOtherThan64GiveNone) {
  const Pair pair = groundPair(70, 9, 1);
  for (const uint32_t numDisparities : {0u, 1u, 16u, 32u, 63u, 65u, 80u, 128u, 320u, 0xFFFFFFFFu}) {
    for (const Guard side : {Guard::behind, Guard::before}) {
      EXPECT_TRUE(same(Words(pair.pixels(), 0), full(pair, 10, nullptr, side, numDisparities))) << numDisparities;
    }
  }
}

// ---- in memory of the caller's ----

struct Given {
  int32_t status;
  Words disparity;
};

// The memory ends, or begins, at a guard page, full of what a frame before might have left.
Given fullInMemory(const Pair& pair, size_t bytes, Guard side = Guard::behind, uint32_t numDisparities = searched) {
  const Guarded<uint8_t> memory(Bytes(bytes, oldByte), side);
  Words out(pair.pixels(), oldWord);
  const SgmParams params{numDisparities, 10};
  const int32_t status = nadir_sgm_full(pair.first.data(), pair.ref.data(), pair.image.data(), pair.width, pair.height,
                                        &params, out.data(), nullptr, memory.data(), bytes);
  return {status, out};
}

TEST(SgmFullInMemory, FindsWhatTheAllocatingCallFinds) {
  for (const uint32_t width : {5u, 6u, 31u, 64u, 97u}) {
    const Pair pair = groundPair(width, 12, width);
    for (const Guard side : {Guard::behind, Guard::before}) {
      const Given got = fullInMemory(pair, nadir_sgm_bytes(width), side);
      EXPECT_EQ(got.status, 1);
      EXPECT_TRUE(same(full(pair, 10), got.disparity)) << width;
    }
  }
}

TEST(SgmFullInMemory, AddressesOfAnyKindServe) {
  const Pair pair = groundPair(40, 9, 3);
  const SgmParams params{searched, 10};
  for (size_t offset = 0; offset < 64; ++offset) {
    const Guarded<uint8_t> memory(Bytes(nadir_sgm_bytes(40) + offset, oldByte));
    Words out(pair.pixels(), oldWord);
    nadir_sgm_full(pair.first.data(), pair.ref.data(), pair.image.data(), 40, 9, &params, out.data(), nullptr,
                   memory.data() + offset, nadir_sgm_bytes(40));
    EXPECT_TRUE(same(full(pair, 10), out)) << offset;
  }
}

TEST(SgmFullInMemory, TooLittleMemoryIsRefusedWithNothingWritten) {
  const Pair pair = groundPair(40, 9, 3);
  for (const size_t bytes : {size_t{0}, size_t{1}, nadir_sgm_bytes(40) - 1}) {
    const Given got = fullInMemory(pair, bytes);
    EXPECT_EQ(got.status, 0) << bytes;
    EXPECT_EQ(got.disparity, Words(pair.pixels(), oldWord)) << bytes;
  }
}

TEST(SgmFullInMemory, NoMemoryIsRefusedWithNothingWritten) {
  const Pair pair = groundPair(40, 9, 3);
  Words out(pair.pixels(), oldWord);
  const SgmParams params{searched, 10};
  EXPECT_EQ(nadir_sgm_full(pair.first.data(), pair.ref.data(), pair.image.data(), 40, 9, &params, out.data(), nullptr,
                           nullptr, nadir_sgm_bytes(40)),
            0);
  EXPECT_EQ(out, Words(pair.pixels(), oldWord));
}

TEST(SgmFullInMemory, OtherNumbersOfDisparitiesAndNarrowPicturesAreRefused) {
  const Pair pair = groundPair(40, 9, 3), narrow = groundPair(4, 9, 3);
  for (const uint32_t number : {0u, 63u, 65u, 128u}) {
    const Given got = fullInMemory(pair, nadir_sgm_bytes(40), Guard::behind, number);
    EXPECT_EQ(got.status, 0) << number;
    EXPECT_EQ(got.disparity, Words(pair.pixels(), oldWord)) << number;
  }
  EXPECT_EQ(fullInMemory(narrow, nadir_sgm_bytes(40)).status, 0);
}

}  // namespace
}  // namespace nadir::test
