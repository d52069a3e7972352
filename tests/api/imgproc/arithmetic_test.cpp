// Arithmetic of two images.
#include <gtest/gtest.h>
#include <nadir/imgproc.h>
#include <signal.h>

#include <limits>
#include <string>
#include <vector>

#include "tests/models/image_ops.hpp"
#include "tests/support/images.hpp"

namespace nadir::test {
namespace {

const std::vector<uint32_t> ops{IMGOP_ADD, IMGOP_SUB, IMGOP_MUL, IMGOP_DIV, IMGOP_SHR, IMGOP_SHL};

template <class T>
T combined(T a, T b, uint32_t op) {
  const Image<T> first{a}, second{b};
  Image<T> out(1, 1);
  EXPECT_EQ(IP_ImgOpImg(first, second, out, op), 1u);
  return out.at(0, 0);
}

uint16_t u16(uint16_t a, uint16_t b, uint32_t op) { return combined(a, b, op); }
int16_t s16(int16_t a, int16_t b, uint32_t op) { return combined(a, b, op); }

}  // namespace

// ---- single values, U16 ----

TEST(ArithmeticU16, SumWraps) { EXPECT_EQ(u16(65535, 1, IMGOP_ADD), 0); }
TEST(ArithmeticU16, DifferenceWrapsBelowZero) { EXPECT_EQ(u16(0, 1, IMGOP_SUB), 65535); }
TEST(ArithmeticU16, ProductWraps) { EXPECT_EQ(u16(300, 300, IMGOP_MUL), 24464); }
TEST(ArithmeticU16, LargestProductWraps) { EXPECT_EQ(u16(65535, 65535, IMGOP_MUL), 1); }
TEST(ArithmeticU16, QuotientRoundsDown) { EXPECT_EQ(u16(7, 2, IMGOP_DIV), 3); }
TEST(ArithmeticU16, QuotientIsUnsigned) { EXPECT_EQ(u16(65535, 2, IMGOP_DIV), 32767); }
TEST(ArithmeticU16, DivisorIsUnsigned) { EXPECT_EQ(u16(65534, 65535, IMGOP_DIV), 0); }
TEST(ArithmeticU16, QuotientByItselfIsOne) { EXPECT_EQ(u16(65535, 65535, IMGOP_DIV), 1); }
TEST(ArithmeticU16, RightShiftIsLogical) { EXPECT_EQ(u16(0x8000, 15, IMGOP_SHR), 1); }
TEST(ArithmeticU16, RightShiftBy16OrMoreGivesZero) {
  for (int n = 16; n < 256; ++n) EXPECT_EQ(u16(0xFFFF, static_cast<uint16_t>(n), IMGOP_SHR), 0) << n;
}
TEST(ArithmeticU16, LeftShiftWraps) { EXPECT_EQ(u16(0xFFFF, 4, IMGOP_SHL), 0xFFF0); }
TEST(ArithmeticU16, LeftShiftBy16OrMoreGivesZero) {
  for (int n = 16; n < 256; ++n) EXPECT_EQ(u16(0xFFFF, static_cast<uint16_t>(n), IMGOP_SHL), 0) << n;
}
TEST(ArithmeticU16, ShiftCountIsTheLowByte) {
  EXPECT_EQ(u16(0x0F0F, 0x0104, IMGOP_SHR), 0x00F0);
  EXPECT_EQ(u16(0x0F0F, 0xFF04, IMGOP_SHL), 0xF0F0);
  EXPECT_EQ(u16(0x0F0F, 0x0100, IMGOP_SHL), 0x0F0F);
}

// ---- single values, S16 ----

TEST(ArithmeticS16, SumWraps) { EXPECT_EQ(s16(32767, 1, IMGOP_ADD), -32768); }
TEST(ArithmeticS16, DifferenceWraps) { EXPECT_EQ(s16(-32768, 1, IMGOP_SUB), 32767); }
TEST(ArithmeticS16, ProductWraps) { EXPECT_EQ(s16(300, 300, IMGOP_MUL), 24464); }
TEST(ArithmeticS16, ProductOfNegativesIsPositive) { EXPECT_EQ(s16(-7, -9, IMGOP_MUL), 63); }
TEST(ArithmeticS16, LargestProductWraps) { EXPECT_EQ(s16(-32768, -32768, IMGOP_MUL), 0); }
TEST(ArithmeticS16, QuotientRoundsTowardZero) { EXPECT_EQ(s16(-7, 2, IMGOP_DIV), -3); }
TEST(ArithmeticS16, QuotientByANegativeRoundsTowardZero) { EXPECT_EQ(s16(7, -2, IMGOP_DIV), -3); }
TEST(ArithmeticS16, QuotientOfTheSmallestByMinusOneWraps) { EXPECT_EQ(s16(-32768, -1, IMGOP_DIV), -32768); }
TEST(ArithmeticS16, RightShiftIsArithmetic) { EXPECT_EQ(s16(-8, 1, IMGOP_SHR), -4); }
TEST(ArithmeticS16, RightShiftRoundsDown) { EXPECT_EQ(s16(-7, 1, IMGOP_SHR), -4); }
TEST(ArithmeticS16, RightShiftBy40LeavesTheSign) { EXPECT_EQ(s16(-8, 40, IMGOP_SHR), -1); }
TEST(ArithmeticS16, RightShiftBy16OrMoreLeavesTheSign) {
  for (int n = 16; n < 256; ++n) {
    EXPECT_EQ(s16(-32768, static_cast<int16_t>(n), IMGOP_SHR), -1) << n;
    EXPECT_EQ(s16(32767, static_cast<int16_t>(n), IMGOP_SHR), 0) << n;
  }
}
TEST(ArithmeticS16, RightShiftByMinusOneLeavesTheSign) {
  EXPECT_EQ(s16(-8, -1, IMGOP_SHR), -1);
  EXPECT_EQ(s16(8, -1, IMGOP_SHR), 0);
}
TEST(ArithmeticS16, LeftShiftReachesTheSignBit) { EXPECT_EQ(s16(1, 15, IMGOP_SHL), -32768); }
TEST(ArithmeticS16, LeftShiftOfANegativeWraps) { EXPECT_EQ(s16(-3, 15, IMGOP_SHL), -32768); }
TEST(ArithmeticS16, LeftShiftBy16GivesZero) { EXPECT_EQ(s16(1, 16, IMGOP_SHL), 0); }
TEST(ArithmeticS16, LeftShiftBy16OrMoreGivesZero) {
  for (int n = 16; n < 256; ++n) EXPECT_EQ(s16(-1, static_cast<int16_t>(n), IMGOP_SHL), 0) << n;
}
TEST(ArithmeticS16, LeftShiftByMinusOneGivesZero) { EXPECT_EQ(s16(-1, -1, IMGOP_SHL), 0); }
TEST(ArithmeticS16, ShiftCountIsTheLowByte) {
  EXPECT_EQ(s16(-256, -252, IMGOP_SHR), -16);  // the low byte of -252 is 4
  EXPECT_EQ(s16(3, 0x0104, IMGOP_SHL), 48);
}

TEST(Arithmetic, NumbersItsOperationsAsDocumented) {
  const uint16_t wanted[] = {22, 18, 40, 10, 5, 80};
  for (uint32_t op = 0; op < 6; ++op) EXPECT_EQ(u16(20, 2, op), wanted[op]) << op;
}

// ---- every size, against the model ----

template <class T>
class ArithmeticOf : public ::testing::Test {};

using Types = ::testing::Types<uint16_t, int16_t>;
TYPED_TEST_SUITE(ArithmeticOf, Types, TypeName);

namespace {

// Second operands: anything for the sums, no zero for the quotient, half of them below 20 for the shifts.
template <class T>
std::vector<T> operands(lab::Random& random, size_t count, uint32_t op) {
  std::vector<T> out = anyPixels<T>(random, count);
  for (T& v : out) {
    if (op == IMGOP_DIV && (v == 0 || random.below(2))) v = static_cast<T>(random.between(1, 9));
    if (op >= IMGOP_SHR && random.below(2)) v = static_cast<T>(random.below(20));
  }
  return out;
}

template <class T>
std::vector<T> wantedOf(const std::vector<T>& a, const std::vector<T>& b, uint32_t op) {
  std::vector<T> out(a.size());
  for (size_t i = 0; i < a.size(); ++i) out[i] = model::arithmetic(a[i], b[i], op);
  return out;
}

// check(op, a, b, wanted) for every size and operation.
template <class T, class Check>
void forEachCase(uint32_t maxHeight, Check check) {
  forEachSize(smallSizes(maxHeight), [&](Size size, Guard side, lab::Random& random) {
    Image<T> a(size.width, size.height, side), b(size.width, size.height, side);
    for (uint32_t op : ops) {
      SCOPED_TRACE("operation " + std::to_string(op));
      const std::vector<T> first = anyPixels<T>(random, a.size()), second = operands<T>(random, b.size(), op);
      a.fill(first);
      b.fill(second);
      check(side, op, a, b, wantedOf(first, second, op));
    }
  });
}

}  // namespace

TYPED_TEST(ArithmeticOf, IsExactForEverySizeAndOperation) {
  using Pixels = std::vector<TypeParam>;
  forEachCase<TypeParam>(3, [](Guard side, uint32_t op, auto& a, auto& b, const Pixels& wanted) {
    const Pixels first = a.pixels(), second = b.pixels();
    Image<TypeParam> out(a.img.width, a.img.height, side);
    EXPECT_EQ(IP_ImgOpImg(a, b, out, op), 1u);
    EXPECT_TRUE(holds(out, wanted));
    EXPECT_TRUE(holds(a, first));
    EXPECT_TRUE(holds(b, second));
  });
}

TYPED_TEST(ArithmeticOf, MayReplaceTheFirstOperand) {
  using Pixels = std::vector<TypeParam>;
  forEachCase<TypeParam>(2, [](Guard, uint32_t op, auto& a, auto& b, const Pixels& wanted) {
    EXPECT_EQ(IP_ImgOpImg(a, b, a, op), 1u);
    EXPECT_TRUE(holds(a, wanted));
  });
}

TYPED_TEST(ArithmeticOf, InPlaceReplacesTheFirstOperandAndKeepsTheSecond) {
  using Pixels = std::vector<TypeParam>;
  forEachCase<TypeParam>(2, [](Guard, uint32_t op, auto& a, auto& b, const Pixels& wanted) {
    const Pixels second = b.pixels();
    EXPECT_EQ(IP_ImgOpImg_I(a, b, op), 1u);
    EXPECT_TRUE(holds(a, wanted));
    EXPECT_TRUE(holds(b, second));
  });
}

TYPED_TEST(ArithmeticOf, MayReplaceTheSecondOperand) {
  using Pixels = std::vector<TypeParam>;
  forEachCase<TypeParam>(2, [](Guard, uint32_t op, auto& a, auto& b, const Pixels& wanted) {
    const Pixels first = a.pixels();
    EXPECT_EQ(IP_ImgOpImg(a, b, b, op), 1u);
    EXPECT_TRUE(holds(b, wanted));
    EXPECT_TRUE(holds(a, first));
  });
}

TYPED_TEST(ArithmeticOf, MayCombineAnImageWithItselfInPlace) {
  using Pixels = std::vector<TypeParam>;
  forEachCase<TypeParam>(1, [](Guard, uint32_t op, auto&, auto& both, const Pixels&) {
    const Pixels pixels = both.pixels();
    EXPECT_EQ(IP_ImgOpImg(both, both, both, op), 1u);
    EXPECT_TRUE(holds(both, wantedOf(pixels, pixels, op)));
  });
}

// All divisors there are, each under a dividend that makes rounding visible.
TYPED_TEST(ArithmeticOf, QuotientIsExactForEveryDivisor) {
  std::vector<TypeParam> dividends, divisors;
  for (uint32_t d = 1; d < 65536; ++d) {
    dividends.push_back(static_cast<TypeParam>(d * 40503u));
    divisors.push_back(static_cast<TypeParam>(d));
  }
  const Image<TypeParam> a(65535, 1, dividends), b(65535, 1, divisors);
  Image<TypeParam> out(65535, 1);
  EXPECT_EQ(IP_ImgOpImg(a, b, out, IMGOP_DIV), 1u);
  EXPECT_TRUE(holds(out, wantedOf(dividends, divisors, IMGOP_DIV)));
}

// The quotients that come closest to the next whole number from below, and those that are whole.
TYPED_TEST(ArithmeticOf, QuotientJustBelowAWholeNumberIsCut) {
  constexpr int32_t largest = std::numeric_limits<TypeParam>::max();
  std::vector<TypeParam> dividends, divisors;
  for (int32_t divisor = 1; divisor <= largest; ++divisor) {
    for (int32_t multiple = divisor; multiple <= largest; multiple += divisor) {
      for (int32_t dividend : {multiple - 1, multiple}) {
        dividends.push_back(static_cast<TypeParam>(dividend));
        divisors.push_back(static_cast<TypeParam>(divisor));
      }
    }
  }
  const uint32_t width = 1000, height = static_cast<uint32_t>(dividends.size()) / width;
  dividends.resize(size_t{width} * height);
  divisors.resize(size_t{width} * height);
  Image<TypeParam> a(width, height, dividends), b(width, height, divisors), out(width, height);
  EXPECT_EQ(IP_ImgOpImg(a, b, out, IMGOP_DIV), 1u);
  EXPECT_TRUE(holds(out, wantedOf(dividends, divisors, IMGOP_DIV)));
}

TYPED_TEST(ArithmeticOf, LeavesTheDescriptorsAlone) {
  Image<TypeParam> a{1, 2, 3}, b{4, 5, 6}, out(3, 1);
  const Img aBefore = a.img, bBefore = b.img, outBefore = out.img;
  EXPECT_EQ(IP_ImgOpImg(a, b, out, IMGOP_ADD), 1u);
  EXPECT_TRUE(sameDescriptor(a.img, aBefore));
  EXPECT_TRUE(sameDescriptor(b.img, bBefore));
  EXPECT_TRUE(sameDescriptor(out.img, outBefore));
}

// One column; the rows of one image lie four bytes apart, those of the others two.
TYPED_TEST(ArithmeticOf, WalksEachImageWithItsOwnRowStride) {
  const std::vector<TypeParam> wanted[3] = {{110, 220, 330}, {110, 220, 330}, {110, 0, 220, 0, 330, 0}};
  for (size_t wide = 0; wide < 3; ++wide) {
    SCOPED_TRACE(wide);
    Image<TypeParam> images[3] = {{10, 20, 30, 0, 0, 0}, {100, 200, 300, 0, 0, 0}, {0, 0, 0, 0, 0, 0}};
    for (auto& image : images) {
      image.img.width = 1;
      image.img.height = 3;
    }
    images[wide].img.bytesPerPixel = 4;
    if (wide == 0) images[0].fill({10, 0, 20, 0, 30, 0});
    if (wide == 1) images[1].fill({100, 0, 200, 0, 300, 0});
    EXPECT_EQ(IP_ImgOpImg(images[0], images[1], images[2], IMGOP_ADD), 1u);
    std::vector<TypeParam> got = images[2].pixels();
    got.resize(wanted[wide].size());
    EXPECT_EQ(got, wanted[wide]);
  }
}

// ---- division by zero ----

namespace {

volatile sig_atomic_t signalsSeen = 0;

// While it lives, SIGFPE is counted and the interrupted call goes on.
class CountedDivisionsByZero {
 public:
  CountedDivisionsByZero() {
    signalsSeen = 0;
    struct sigaction action {};
    action.sa_handler = [](int) { signalsSeen = signalsSeen + 1; };
    sigemptyset(&action.sa_mask);
    sigaction(SIGFPE, &action, &before_);
  }
  ~CountedDivisionsByZero() { sigaction(SIGFPE, &before_, nullptr); }
  CountedDivisionsByZero(const CountedDivisionsByZero&) = delete;
  CountedDivisionsByZero& operator=(const CountedDivisionsByZero&) = delete;

  int count() const { return signalsSeen; }

 private:
  struct sigaction before_ {};
};

template <class T>
void divideByZeroAndDie() {
  signal(SIGFPE, SIG_DFL);  // a sanitizer's handler would end the process in its own way
  const Image<T> a{5}, b{0};
  Image<T> out(1, 1);
  IP_ImgOpImg(a, b, out, IMGOP_DIV);
}

}  // namespace

TYPED_TEST(ArithmeticOf, DivisionByZeroEndsTheProcessWithSigfpe) {
  EXPECT_EXIT(divideByZeroAndDie<TypeParam>(), testing::KilledBySignal(SIGFPE), "");
}

TYPED_TEST(ArithmeticOf, DivisionByZeroGivesZeroWhereTheHandlerReturns) {
  const CountedDivisionsByZero signals;
  EXPECT_EQ(combined<TypeParam>(5, 0, IMGOP_DIV), 0);
  EXPECT_EQ(signals.count(), 1);
}

TYPED_TEST(ArithmeticOf, ZeroDividedByZeroSignalsToo) {
  const CountedDivisionsByZero signals;
  EXPECT_EQ(combined<TypeParam>(0, 0, IMGOP_DIV), 0);
  EXPECT_EQ(signals.count(), 1);
}

TYPED_TEST(ArithmeticOf, DivisionByZeroInPlaceGivesZeroInEitherOperand) {
  const CountedDivisionsByZero signals;
  Image<TypeParam> a{6, 5, 8}, b{2, 0, 4};
  EXPECT_EQ(IP_ImgOpImg(a, b, b, IMGOP_DIV), 1u);
  EXPECT_TRUE(holds(b, {3, 0, 2}));
  EXPECT_EQ(IP_ImgOpImg_I(a, b, IMGOP_DIV), 1u);
  EXPECT_TRUE(holds(a, {2, 0, 4}));
  EXPECT_EQ(signals.count(), 2);
}

TYPED_TEST(ArithmeticOf, EveryZeroDivisorSignalsOnceAndTheOtherPixelsAreRight) {
  const CountedDivisionsByZero signals;
  int zeros = 0;
  forEachSize(
      {{1, 1}, {7, 3}, {8, 2}, {31, 2}, {32, 1}, {33, 1}, {70, 2}}, [&](Size size, Guard side, lab::Random& random) {
        const auto dividends = anyPixels<TypeParam>(random, size.width * size.height);
        auto divisors = operands<TypeParam>(random, dividends.size(), IMGOP_DIV);
        for (TypeParam& v : divisors)
          if (random.below(3) == 0) v = 0;
        zeros += static_cast<int>(std::count(divisors.begin(), divisors.end(), TypeParam{0}));
        const Image<TypeParam> a(size.width, size.height, dividends, side), b(size.width, size.height, divisors, side);
        Image<TypeParam> out(size.width, size.height, side);
        EXPECT_EQ(IP_ImgOpImg(a, b, out, IMGOP_DIV), 1u);
        EXPECT_TRUE(holds(out, wantedOf(dividends, divisors, IMGOP_DIV)));
        EXPECT_EQ(signals.count(), zeros);
      });
}

// A zero alone in its row, so that no other makes up for one that is overlooked.
TYPED_TEST(ArithmeticOf, AZeroDivisorSignalsWhereverItStandsInALongRow) {
  lab::Random random(5);
  const auto dividends = anyPixels<TypeParam>(random, 3000);
  const Image<TypeParam> a(3000, 1, dividends);
  for (const size_t at : {0, 1023, 1024, 2047, 2999}) {
    std::vector<TypeParam> divisors(3000, TypeParam{7});
    divisors[at] = 0;
    const auto wanted = wantedOf(dividends, divisors, IMGOP_DIV);
    const CountedDivisionsByZero signals;
    Image<TypeParam> b(3000, 1, divisors), out(3000, 1);
    EXPECT_EQ(IP_ImgOpImg(a, b, out, IMGOP_DIV), 1u);
    EXPECT_EQ(signals.count(), 1) << at;
    EXPECT_TRUE(holds(out, wanted));
    EXPECT_EQ(IP_ImgOpImg(a, b, b, IMGOP_DIV), 1u);
    EXPECT_EQ(signals.count(), 2) << at;
    EXPECT_TRUE(holds(b, wanted));
  }
}

TYPED_TEST(ArithmeticOf, OnlyDivisionSignals) {
  const CountedDivisionsByZero signals;
  for (uint32_t op : ops)
    if (op != IMGOP_DIV) combined<TypeParam>(5, 0, op);
  combined<TypeParam>(0, 5, IMGOP_DIV);
  EXPECT_EQ(signals.count(), 0);
}

// ---- images without pixels ----

TEST(Arithmetic, AcceptsAnImageWithoutRowsForEveryOperation) {
  Image<uint16_t> a(5, 0), b(5, 0), out(5, 0);
  for (uint32_t op : ops) EXPECT_EQ(IP_ImgOpImg(a, b, out, op), 1u) << op;
}

TEST(Arithmetic, AcceptsAnImageWithoutColumns) {
  Image<uint16_t> a(0, 5), b(0, 5), out(0, 5);
  for (uint32_t op : ops) EXPECT_EQ(IP_ImgOpImg(a, b, out, op), 1u) << op;
}

TEST(Arithmetic, ChecksTypeAndOperationAlsoWithoutRows) {
  Image<uint16_t> words(5, 0);
  Image<uint8_t> bytes(5, 0);
  EXPECT_EQ(IP_ImgOpImg(words, words, words, 6), 0u);
  EXPECT_EQ(IP_ImgOpImg(bytes, bytes, bytes, IMGOP_ADD), 0u);
}

// ---- refused ----

namespace {

Image<uint16_t> ones(uint32_t width, uint32_t height) {
  return Image<uint16_t>(width, height, std::vector<uint16_t>(size_t{width} * height, 1));
}

template <class A, class B, class Out>
void expectRefused(const Image<A>& a, const Image<B>& b, Image<Out>& out, uint32_t op = IMGOP_ADD) {
  EXPECT_TRUE(refuses(out, [&] { return IP_ImgOpImg(a, b, out, op); }));
}

}  // namespace

TEST(Arithmetic, RefusesEveryOtherOperation) {
  for (uint32_t op : {6u, 7u, 255u, 256u, 0x10000u, 0x80000000u, 0xFFFFFFFFu}) {
    SCOPED_TRACE(op);
    Image<uint16_t> a = ones(3, 2), b = ones(3, 2), out(3, 2, marks<uint16_t>(6));
    expectRefused(a, b, out, op);
    EXPECT_TRUE(refuses(a, [&] { return IP_ImgOpImg_I(a, b, op); }));
  }
}

TEST(Arithmetic, RefusesEveryOtherType) {
  for (uint32_t type : typesOtherThan({IMG_TYPE_U16, IMG_TYPE_S16})) {
    SCOPED_TRACE(type);
    Image<uint32_t> a(3, 2, marks<uint32_t>(6)), b(3, 2, marks<uint32_t>(6)), out(3, 2, marks<uint32_t>(6));
    for (Image<uint32_t>* image : {&a, &b, &out}) image->retype(type);
    expectRefused(a, b, out);
    EXPECT_TRUE(refuses(a, [&] { return IP_ImgOpImg_I(a, b, IMGOP_ADD); }));
  }
}

TEST(Arithmetic, RefusesAFirstOperandOfAnotherType) {
  const Image<int16_t> a(3, 2);
  Image<uint16_t> b = ones(3, 2), out(3, 2, marks<uint16_t>(6));
  expectRefused(a, b, out);
}

TEST(Arithmetic, RefusesASecondOperandOfAnotherType) {
  const Image<int16_t> b(3, 2);
  Image<uint16_t> a = ones(3, 2), out(3, 2, marks<uint16_t>(6));
  expectRefused(a, b, out);
}

TEST(Arithmetic, RefusesAResultOfAnotherType) {
  const Image<uint16_t> a = ones(3, 2), b = ones(3, 2);
  Image<int16_t> out(3, 2, marks<int16_t>(6));
  expectRefused(a, b, out);
}

TEST(Arithmetic, RefusesAnyImageOfAnotherWidth) {
  for (size_t odd = 0; odd < 3; ++odd) {
    SCOPED_TRACE(odd);
    Image<uint16_t> images[3] = {ones(3, 2), ones(3, 2), ones(3, 2)};
    images[odd].img.width = 2;
    expectRefused(images[0], images[1], images[2]);
  }
}

TEST(Arithmetic, RefusesAnyImageOfAnotherHeight) {
  for (size_t odd = 0; odd < 3; ++odd) {
    SCOPED_TRACE(odd);
    Image<uint16_t> images[3] = {ones(3, 2), ones(3, 2), ones(3, 2)};
    images[odd].img.height = 1;
    expectRefused(images[0], images[1], images[2]);
  }
}

TEST(Arithmetic, RefusesAnyImageWithWidthAndHeightExchanged) {
  for (size_t odd = 0; odd < 3; ++odd) {
    SCOPED_TRACE(odd);
    Image<uint16_t> images[3] = {ones(3, 2), ones(3, 2), ones(3, 2)};
    std::swap(images[odd].img.width, images[odd].img.height);
    expectRefused(images[0], images[1], images[2]);
  }
}

TEST(Arithmetic, InPlaceRefusesASecondOperandThatDoesNotMatch) {
  const Image<uint16_t> wider = ones(4, 2), higher = ones(3, 3);
  const Image<int16_t> otherType(3, 2);
  Image<uint16_t> a = ones(3, 2);
  EXPECT_TRUE(refuses(a, [&] { return IP_ImgOpImg_I(a, wider, IMGOP_ADD); }));
  EXPECT_TRUE(refuses(a, [&] { return IP_ImgOpImg_I(a, higher, IMGOP_ADD); }));
  EXPECT_TRUE(refuses(a, [&] { return IP_ImgOpImg_I(a, otherType, IMGOP_ADD); }));
}

TEST(Arithmetic, RefusesANullFirstOperand) {
  Image<uint16_t> b = ones(3, 2), out(3, 2, marks<uint16_t>(6));
  EXPECT_TRUE(refuses(out, [&] { return IP_ImgOpImg(nullptr, b, out, IMGOP_ADD); }));
}

TEST(Arithmetic, RefusesANullSecondOperand) {
  Image<uint16_t> a = ones(3, 2), out(3, 2, marks<uint16_t>(6));
  EXPECT_TRUE(refuses(out, [&] { return IP_ImgOpImg(a, nullptr, out, IMGOP_ADD); }));
}

TEST(Arithmetic, RefusesANullResult) {
  const Image<uint16_t> a = ones(3, 2), b = ones(3, 2);
  EXPECT_EQ(IP_ImgOpImg(a, b, nullptr, IMGOP_ADD), 0u);
}

TEST(Arithmetic, InPlaceRefusesANullFirstOperand) {
  const Image<uint16_t> b = ones(3, 2);
  EXPECT_EQ(IP_ImgOpImg_I(nullptr, b, IMGOP_ADD), 0u);
}

TEST(Arithmetic, InPlaceRefusesANullSecondOperand) {
  Image<uint16_t> a = ones(3, 2);
  EXPECT_TRUE(refuses(a, [&] { return IP_ImgOpImg_I(a, nullptr, IMGOP_ADD); }));
}

TEST(Arithmetic, ARefusedDivisionDoesNotSignal) {
  const CountedDivisionsByZero signals;
  const Image<uint16_t> a = ones(3, 2), zeros(4, 2);
  Image<uint16_t> out(3, 2, marks<uint16_t>(6));
  expectRefused(a, zeros, out, IMGOP_DIV);
  EXPECT_EQ(signals.count(), 0);
}

}  // namespace nadir::test
