// Averages over time.
#include <gtest/gtest.h>
#include <nadir/imgproc.h>

#include <algorithm>
#include <array>
#include <vector>

#include "tests/support/images.hpp"
#include "tests/support/integers.hpp"

namespace nadir::test {
namespace {

using Pixels = std::vector<uint16_t>;
using Sums = std::vector<int32_t>;

// invalidValue, minValidPercent, frameCount
using State = std::array<uint32_t, 3>;
State stateOf(const ImgAvrgState& s) { return {s.invalidValue, s.minValidPercent, s.frameCount}; }

// A series of frames with its accumulators, which hold anything before it begins.
struct Series {
  explicit Series(uint32_t width, uint32_t height, Guard side = Guard::behind)
      : frame(width, height, side),
        sum(width, height, marks<int32_t>(size_t{width} * height), side),
        count(width, height, marks<uint16_t>(size_t{width} * height), side),
        out(width, height, side) {}

  int32_t init() { return IP_Utils_ImgAvrgInit(frame, sum, count, &state); }
  int32_t add(const Pixels& pixels) {
    frame.fill(pixels);
    return IP_Utils_ImgAvrgAdd(frame, sum, count, &state);
  }
  // Of an output that holds marks beforehand.
  Pixels average() {
    out.fill(marks<uint16_t>(out.size()));
    EXPECT_EQ(IP_Utils_ImgAvrgProcess(out, sum, count, &state), 1u);
    return out.pixels();
  }

  ImgAvrgState state{0x41414141, 0x42424242, 0x43434343};
  Image<uint16_t> frame;
  Image<int32_t> sum;
  Image<uint16_t> count;
  Image<uint16_t> out;
};

Series begun(uint32_t width, uint32_t height = 1) {
  Series s(width, height);
  EXPECT_EQ(s.init(), 1);
  return s;
}

}  // namespace

// ---- init ----

TEST(ImgAvrgInit, SetsTheStateAndClearsTheAccumulators) {
  forEachSize(smallSizes(3), [](Size size, Guard side, lab::Random& random) {
    Series s(size.width, size.height, side);
    const Pixels pixels = anyPixels<uint16_t>(random, s.frame.size());
    s.frame.fill(pixels);
    EXPECT_EQ(s.init(), 1);
    EXPECT_EQ(stateOf(s.state), (State{0, 50, 0}));
    EXPECT_TRUE(holds(s.sum, Sums(s.sum.size(), 0)));
    EXPECT_TRUE(holds(s.count, Pixels(s.count.size(), 0)));
    EXPECT_TRUE(holds(s.frame, pixels));
  });
}

TEST(ImgAvrgInit, BeginsANewSeries) {
  Series s = begun(2);
  s.add({5, 6});
  s.state = {9, 10, 11};
  EXPECT_EQ(s.init(), 1);
  EXPECT_EQ(stateOf(s.state), (State{0, 50, 0}));
  EXPECT_EQ(s.sum.pixels(), (Sums{0, 0}));
  EXPECT_EQ(s.count.pixels(), (Pixels{0, 0}));
}

// The size of the counts is not compared: each accumulator is cleared as its own descriptor says.
TEST(ImgAvrgInit, ClearsCountsOfAnySize) {
  for (const Size size : {Size{3, 1}, Size{2, 3}, Size{50, 4}, Size{1, 1}, Size{0, 0}}) {
    SCOPED_TRACE(testing::Message() << size.width << " x " << size.height);
    for (const Guard side : {Guard::behind, Guard::before}) {
      Series s(3, 2, side);
      Image<uint16_t> count(size.width, size.height, marks<uint16_t>(size.width * size.height), side);
      EXPECT_EQ(IP_Utils_ImgAvrgInit(s.frame, s.sum, count, &s.state), 1);
      EXPECT_TRUE(holds(count, Pixels(count.size(), 0)));
      EXPECT_TRUE(holds(s.sum, Sums(6, 0)));
    }
  }
}

TEST(ImgAvrgInit, ClearsEveryByteThatTheDescriptorsName) {
  Series s(3, 2);
  Image<uint16_t> counts(3, 4, marks<uint16_t>(12));
  counts.img.height = 2;
  counts.img.bytesPerPixel = 4;
  EXPECT_EQ(IP_Utils_ImgAvrgInit(s.frame, s.sum, counts, &s.state), 1);
  EXPECT_EQ(counts.pixels(), Pixels(12, 0));
}

// ---- add ----

TEST(ImgAvrgAdd, SumsAndCountsValidPixels) {
  Series s = begun(3);
  EXPECT_EQ(s.add({100, 0, 65535}), 1);
  EXPECT_EQ(s.add({0, 0, 65535}), 1);
  EXPECT_EQ(s.add({200, 7, 65535}), 1);
  EXPECT_EQ(s.sum.pixels(), (Sums{300, 7, 3 * 65535}));
  EXPECT_EQ(s.count.pixels(), (Pixels{2, 1, 3}));
  EXPECT_EQ(stateOf(s.state), (State{0, 50, 3}));
}

TEST(ImgAvrgAdd, LeavesOutTheInvalidValueOfTheState) {
  for (uint32_t invalid : {1u, 7u, 0x7FFFu, 0x8000u, 0xFFFFu}) {
    SCOPED_TRACE(invalid);
    Series s = begun(3);
    s.state.invalidValue = invalid;
    s.add({static_cast<uint16_t>(invalid), 0, static_cast<uint16_t>(invalid - 1)});
    EXPECT_EQ(s.count.pixels(), (Pixels{0, 1, 1}));
    EXPECT_EQ(s.sum.pixels(), (Sums{0, 0, static_cast<int32_t>(invalid) - 1}));
  }
}

// The invalid value has 32 bits, a pixel 16: above 65535 it equals none.
TEST(ImgAvrgAdd, CountsEveryPixelWhereTheInvalidValueIsNoPixelsValue) {
  for (uint32_t invalid : {0x10000u, 0x10007u, 0xFFFF0000u, 0xFFFFFFFFu}) {
    SCOPED_TRACE(invalid);
    Series s = begun(3);
    s.state.invalidValue = invalid;
    s.add({0, 7, 65535});
    EXPECT_EQ(s.count.pixels(), (Pixels{1, 1, 1}));
    EXPECT_EQ(s.sum.pixels(), (Sums{0, 7, 65535}));
  }
}

TEST(ImgAvrgAdd, WrapsTheCountOf16Bits) {
  Series s = begun(2);
  s.count.fill({65535, 65535});
  s.add({5, 0});
  EXPECT_EQ(s.count.pixels(), (Pixels{0, 65535}));
}

TEST(ImgAvrgAdd, WrapsTheSumOf32Bits) {
  Series s = begun(3);
  s.sum.fill({INT32_MAX, INT32_MAX - 65534, -1});
  s.add({1, 65535, 1});
  EXPECT_EQ(s.sum.pixels(), (Sums{INT32_MIN, INT32_MIN, 0}));
}

TEST(ImgAvrgAdd, WrapsTheNumberOfFrames) {
  Series s = begun(1);
  s.state.frameCount = 0xFFFFFFFFu;
  s.add({5});
  EXPECT_EQ(s.state.frameCount, 0u);
}

TEST(ImgAvrgAdd, CountsFramesWithoutPixels) {
  for (const Size size : {Size{5, 0}, Size{0, 5}, Size{0, 0}}) {
    Series s(size.width, size.height);
    EXPECT_EQ(s.init(), 1);
    EXPECT_EQ(s.add({}), 1);
    EXPECT_EQ(s.add({}), 1);
    EXPECT_EQ(stateOf(s.state), (State{0, 50, 2}));
  }
}

TEST(ImgAvrgAdd, IsExactForEverySize) {
  forEachSize(smallSizes(3), [](Size size, Guard side, lab::Random& random) {
    Series s(size.width, size.height, side);
    s.state = {random.below(2) ? 0u : 0xFFFFu, 33, 5};
    Sums sums = anyPixels<int32_t>(random, s.sum.size());
    Pixels counts = anyPixels<uint16_t>(random, s.count.size());
    const Pixels frame = anyPixels<uint16_t>(random, s.frame.size());
    s.sum.fill(sums);
    s.count.fill(counts);
    EXPECT_EQ(s.add(frame), 1);
    for (size_t i = 0; i < frame.size(); ++i) {
      if (frame[i] == s.state.invalidValue) continue;
      sums[i] = (Wrap(sums[i]) + frame[i]).value();
      counts[i] = static_cast<uint16_t>(counts[i] + 1);
    }
    EXPECT_TRUE(holds(s.sum, sums));
    EXPECT_TRUE(holds(s.count, counts));
    EXPECT_TRUE(holds(s.frame, frame));
    EXPECT_EQ(stateOf(s.state), (State{s.state.invalidValue, 33, 6}));
  });
}

// The size of the counts is not compared with the frame's: a larger image serves as well.
TEST(ImgAvrg, KeepsCountsInTheCornerOfALargerImage) {
  Series s = begun(3, 2);
  Image<uint16_t> counts(4, 3);
  EXPECT_EQ(IP_Utils_ImgAvrgInit(s.frame, s.sum, counts, &s.state), 1);
  s.state.minValidPercent = 0;
  s.frame.fill({1, 0, 3, 4, 5, 0});
  EXPECT_EQ(IP_Utils_ImgAvrgAdd(s.frame, s.sum, counts, &s.state), 1);
  EXPECT_EQ(counts.pixels(), (Pixels{1, 0, 1, 0, 1, 1, 0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(IP_Utils_ImgAvrgProcess(s.out, s.sum, counts, &s.state), 1u);
  EXPECT_EQ(s.out.pixels(), (Pixels{1, 0, 3, 4, 5, 0}));
}

TEST(ImgAvrg, AcceptsCountsWhoseDescriptorNamesAnotherHeight) {
  Series s = begun(3, 2);
  s.state.minValidPercent = 0;
  s.count.img.height = 77;
  EXPECT_EQ(s.add({1, 0, 3, 4, 5, 0}), 1);
  EXPECT_EQ(s.count.pixels(), (Pixels{1, 0, 1, 1, 1, 0}));
  EXPECT_EQ(s.average(), (Pixels{1, 0, 3, 4, 5, 0}));
}

// ---- process ----

TEST(ImgAvrgProcess, AveragesWhatWasValidInMoreThanTheStatedShareOfFrames) {
  Series s = begun(1);
  for (const Pixels& frame : {Pixels{100}, Pixels{0}, Pixels{200}, Pixels{0}}) s.add(frame);
  EXPECT_EQ(s.average(), (Pixels{0}));  // 2 of 4 frames: not more than half
  s.add({300});
  EXPECT_EQ(s.average(), (Pixels{200}));
}

TEST(ImgAvrgProcess, AveragesEveryPixelThatWasEverValidAt0Percent) {
  Series s = begun(3);
  s.state.minValidPercent = 0;
  for (int i = 0; i < 9; ++i) s.add({0, 4, 0});
  s.add({0, 4, 1000});
  EXPECT_EQ(s.average(), (Pixels{0, 4, 1000}));
}

// More than all frames: nothing is valid often enough.
TEST(ImgAvrgProcess, AveragesNothingAt100Percent) {
  Series s = begun(2);
  s.state.minValidPercent = 100;
  for (int i = 0; i < 3; ++i) s.add({5, 6});
  EXPECT_EQ(s.average(), (Pixels{0, 0}));
}

TEST(ImgAvrgProcess, RoundsTheLimitDown) {
  Series s = begun(2);
  s.state = {0, 33, 9};  // 2.97 frames
  s.sum.fill({30, 20});
  s.count.fill({3, 2});
  EXPECT_EQ(s.average(), (Pixels{10, 0}));
}

TEST(ImgAvrgProcess, GivesNoAverageBeforeTheFirstFrame) {
  Series s = begun(3);
  EXPECT_EQ(s.average(), (Pixels{0, 0, 0}));
}

TEST(ImgAvrgProcess, RoundsTheMeanTowardZero) {
  Series s = begun(6);
  s.state = {0, 0, 1};
  s.sum.fill({7, 8, -7, -8, -1, 1});
  s.count.fill({4, 4, 4, 4, 2, 2});
  EXPECT_EQ(s.average(), (Pixels{1, 2, 0xFFFF, 0xFFFE, 0, 0}));
}

TEST(ImgAvrgProcess, StoresTheLow16BitsOfTheMean) {
  Series s = begun(5);
  s.state = {0, 0, 1};
  s.sum.fill({100000, INT32_MIN, INT32_MAX, INT32_MIN, INT32_MAX});
  s.count.fill({1, 1, 1, 65535, 65535});
  EXPECT_EQ(s.average(), (Pixels{34464, 0, 0xFFFF, 0x8000, 0x8000}));
}

TEST(ImgAvrgProcess, ReadsCountsWithoutASign) {
  Series s = begun(2);
  s.state = {0, 50, 65535};  // 32767 frames
  s.sum.fill({0x8000 * 9, 32767 * 9});
  s.count.fill({0x8000, 32767});
  EXPECT_EQ(s.average(), (Pixels{9, 0}));
}

// The product of percentage and frames is a signed number of 32 bits, the quotient rounds toward zero.
TEST(ImgAvrgProcess, WrapsTheLimit) {
  struct Case {
    uint32_t percent, frames;
    int32_t limit;
  };
  for (const Case c : {Case{100, 42949673, 0}, Case{50, 0x80000000u, 0}, Case{0xFFFFFFFFu, 99, 0},
                       Case{1, 0x7FFFFFFF, 21474836}, Case{2, 0x80000082u, 2}, Case{0x10001, 0x10001, 1310}}) {
    SCOPED_TRACE(testing::Message() << c.percent << " % of " << c.frames);
    Series s = begun(3);
    s.state = {0, c.percent, c.frames};
    const int32_t limit = std::min(c.limit, 65534);
    s.sum.fill({9 * limit, 9 * (limit + 1), 65535 * 9});
    s.count.fill({static_cast<uint16_t>(limit), static_cast<uint16_t>(limit + 1), 65535});
    const bool reachable = c.limit < 65535;
    EXPECT_EQ(s.average(), reachable ? (Pixels{0, 9, 9}) : (Pixels{0, 0, 0}));
  }
}

// A limit below zero lets every count pass; without a count there is no mean.
TEST(ImgAvrgProcess, AveragesEveryCountAboveANegativeLimit) {
  for (const ImgAvrgState state :
       {ImgAvrgState{0, 0xFFFFFFFFu, 100}, ImgAvrgState{0, 1, 0x80000000u}, ImgAvrgState{0, 0x80000000u, 1}}) {
    SCOPED_TRACE(testing::Message() << state.minValidPercent << " % of " << state.frameCount);
    Series s = begun(4);
    s.state = state;
    s.sum.fill({9, 18, 65535 * 9, 5});
    s.count.fill({1, 2, 65535, 0});
    EXPECT_EQ(s.average(), (Pixels{9, 9, 9, 0}));
  }
}

TEST(ImgAvrgProcess, LeavesTheAccumulatorsAndTheState) {
  Series s = begun(3, 2);
  s.add({1, 2, 3, 0, 5, 6});
  s.add({1, 2, 3, 0, 0, 6});
  const Sums sums = s.sum.pixels();
  const Pixels counts = s.count.pixels();
  const Pixels first = s.average();
  EXPECT_EQ(s.sum.pixels(), sums);
  EXPECT_EQ(s.count.pixels(), counts);
  EXPECT_EQ(stateOf(s.state), (State{0, 50, 2}));
  EXPECT_EQ(s.average(), first);
  s.add({4, 2, 3, 0, 5, 6});
  EXPECT_EQ(s.average(), (Pixels{2, 2, 3, 0, 5, 6}));
}

TEST(ImgAvrgProcess, IsExactForEverySize) {
  forEachSize(smallSizes(3), [](Size size, Guard side, lab::Random& random) {
    Series s(size.width, size.height, side);
    s.state = {random.next(), random.below(101), random.below(2) ? random.below(100) : random.below(65536)};
    const int32_t limit = static_cast<int32_t>(s.state.minValidPercent * s.state.frameCount) / 100;
    const Sums sums = anyPixels<int32_t>(random, s.sum.size());
    Pixels counts = anyPixels<uint16_t>(random, s.count.size()), wanted(counts.size());
    for (uint16_t& c : counts)
      if (random.below(3) == 0) c = static_cast<uint16_t>(limit + random.between(-1, 1));
    s.sum.fill(sums);
    s.count.fill(counts);
    for (size_t i = 0; i < wanted.size(); ++i)
      wanted[i] = counts[i] > limit ? static_cast<uint16_t>(sums[i] / counts[i]) : uint16_t{0};
    EXPECT_TRUE(samePixels(wanted, s.average(), size.width));
    EXPECT_TRUE(holds(s.sum, sums));
    EXPECT_TRUE(holds(s.count, counts));
  });
}

TEST(ImgAvrgProcess, AcceptsImagesWithoutPixels) {
  for (const Size size : {Size{5, 0}, Size{0, 5}, Size{0, 0}}) {
    Series s(size.width, size.height);
    EXPECT_EQ(s.init(), 1);
    EXPECT_EQ(s.average(), Pixels{});
  }
}

// ---- all three ----

// One column, its rows further apart than its pixels are wide, in one image after the other.
TEST(ImgAvrg, WalksEachImageWithItsOwnRowStride) {
  for (size_t apart = 0; apart < 4; ++apart) {
    SCOPED_TRACE(apart);
    Image<uint16_t> frame(1, 6), count(1, 6), out(1, 6);
    Image<int32_t> sum(1, 6);
    ImgAvrgState state;
    Img* images[] = {frame, sum, out, count};
    for (Img* image : images) image->height = 3;
    images[apart]->bytesPerPixel = static_cast<uint16_t>(2 * images[apart]->bytesPerPixel);
    const auto at = [apart](size_t image, size_t y) { return image == apart ? 2 * y : y; };
    for (size_t y = 0; y < 3; ++y) frame.data()[at(0, y)] = static_cast<uint16_t>(y + 5);
    EXPECT_EQ(IP_Utils_ImgAvrgInit(frame, sum, count, &state), 1);
    EXPECT_EQ(IP_Utils_ImgAvrgAdd(frame, sum, count, &state), 1);
    EXPECT_EQ(IP_Utils_ImgAvrgProcess(out, sum, count, &state), 1u);
    for (size_t y = 0; y < 3; ++y) {
      EXPECT_EQ(count.data()[at(3, y)], 1) << y;
      EXPECT_EQ(sum.data()[at(1, y)], static_cast<int32_t>(y + 5)) << y;
      EXPECT_EQ(out.data()[at(2, y)], y + 5) << y;
    }
  }
}

TEST(ImgAvrg, LeavesTheDescriptorsAlone) {
  Series s = begun(3, 2);
  const Img before[] = {s.frame.img, s.sum.img, s.count.img, s.out.img};
  s.add({1, 2, 3, 4, 5, 6});
  s.average();
  EXPECT_TRUE(sameDescriptor(before[0], s.frame.img));
  EXPECT_TRUE(sameDescriptor(before[1], s.sum.img));
  EXPECT_TRUE(sameDescriptor(before[2], s.count.img));
  EXPECT_TRUE(sameDescriptor(before[3], s.out.img));
}

// ---- refused ----

namespace {

using Accumulate = int32_t (*)(const Img*, Img*, Img*, ImgAvrgState*);
constexpr Accumulate accumulating[] = {IP_Utils_ImgAvrgInit, IP_Utils_ImgAvrgAdd};

// Four images, each large enough for any type, that stand for a series.
struct AnyTypes {
  explicit AnyTypes(uint32_t width = 3, uint32_t height = 2)
      : frame(width, height, marks<uint32_t>(size_t{width} * height)),
        sum(width, height, marks<uint32_t>(size_t{width} * height)),
        count(width, height, marks<uint32_t>(size_t{width} * height)),
        out(width, height, marks<uint32_t>(size_t{width} * height)) {
    frame.retype(IMG_TYPE_U16);
    sum.retype(IMG_TYPE_S32);
    count.retype(IMG_TYPE_U16);
    out.retype(IMG_TYPE_U16);
  }

  // Neither Init nor Add touches anything, with these images or null in their place.
  void expectRefused(const Img* frameOrNull, Img* sumOrNull, Img* countOrNull) {
    for (Accumulate call : accumulating) {
      const ImgAvrgState before{7, 8, 9};
      ImgAvrgState state = before;
      const auto answer = [&] { return static_cast<uint32_t>(call(frameOrNull, sumOrNull, countOrNull, &state)); };
      EXPECT_TRUE(refuses(sum, [&] { return refuses(count, answer) ? 0u : 1u; }));
      EXPECT_EQ(stateOf(state), stateOf(before));
      EXPECT_EQ(call(frameOrNull, sumOrNull, countOrNull, nullptr), 0) << "the state is not checked first";
    }
  }
  void expectProcessRefused(const Img* sumOrNull, const Img* countOrNull) {
    const ImgAvrgState state{0, 0, 1};
    EXPECT_TRUE(refuses(out, [&] { return IP_Utils_ImgAvrgProcess(out, sumOrNull, countOrNull, &state); }));
  }
  void expectRefused() { expectRefused(frame, sum, count); }
  void expectProcessRefused() { expectProcessRefused(sum, count); }

  Image<uint32_t> frame, sum, count, out;
};

}  // namespace

TEST(ImgAvrg, RefusesNullImages) {
  AnyTypes images;
  images.expectRefused(nullptr, images.sum, images.count);
  images.expectRefused(images.frame, nullptr, images.count);
  images.expectRefused(images.frame, images.sum, nullptr);
}

TEST(ImgAvrgProcess, RefusesNullImages) {
  AnyTypes images;
  const ImgAvrgState state{0, 0, 1};
  EXPECT_EQ(IP_Utils_ImgAvrgProcess(nullptr, images.sum, images.count, &state), 0u);
  images.expectProcessRefused(nullptr, images.count);
  images.expectProcessRefused(images.sum, nullptr);
}

TEST(ImgAvrg, RefusesFramesThatAreNotU16) {
  for (uint32_t type : typesOtherThan({IMG_TYPE_U16})) {
    SCOPED_TRACE(type);
    AnyTypes images;
    images.frame.retype(type);
    images.expectRefused();
  }
}

TEST(ImgAvrg, RefusesSumsThatAreNotS32) {
  for (uint32_t type : typesOtherThan({IMG_TYPE_S32})) {
    SCOPED_TRACE(type);
    AnyTypes images;
    images.sum.retype(type);
    images.expectRefused();
    images.expectProcessRefused();
  }
}

TEST(ImgAvrg, RefusesCountsThatAreNotU16) {
  for (uint32_t type : typesOtherThan({IMG_TYPE_U16})) {
    SCOPED_TRACE(type);
    AnyTypes images;
    images.count.retype(type);
    images.expectRefused();
    images.expectProcessRefused();
  }
}

TEST(ImgAvrgProcess, RefusesOutputsThatAreNotU16) {
  for (uint32_t type : typesOtherThan({IMG_TYPE_U16})) {
    SCOPED_TRACE(type);
    AnyTypes images;
    images.out.retype(type);
    images.expectProcessRefused();
  }
}

TEST(ImgAvrg, RefusesSumsOfAnotherSize) {
  for (const Size size : {Size{4, 2}, Size{2, 2}, Size{3, 3}, Size{3, 1}, Size{2, 3}, Size{6, 1}, Size{3, 0}}) {
    SCOPED_TRACE(testing::Message() << size.width << " x " << size.height);
    AnyTypes images(6, 6);
    for (Image<uint32_t>* image : {&images.frame, &images.count, &images.out}) {
      image->img.width = 3;
      image->img.height = 2;
    }
    images.sum.img.width = static_cast<uint16_t>(size.width);
    images.sum.img.height = static_cast<uint16_t>(size.height);
    images.expectRefused();
    images.expectProcessRefused();
  }
}

}  // namespace nadir::test
