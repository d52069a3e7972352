// The cases of smoothing, hole filling, halving and averaging.
#include "imgproc/smooth_kernels.hpp"

#include <algorithm>
#include <limits>

#include "tests/kernels/harness.hpp"

namespace nadir::test {
namespace {

using Across = decltype(SmoothKernels::gaussAcross);
using Down = decltype(SmoothKernels::gaussDown);
using Pull = decltype(SmoothKernels::pull);
using Push = decltype(SmoothKernels::push);
using Halve = decltype(SmoothKernels::halve);
using Mean = decltype(SmoothKernels::mean);

constexpr uint16_t largestSum = 16 * 255;  // of 8 bits each, with weights that add up to 16
constexpr size_t benchWidth = 640;

// Runs both kernels, each by run(kernel, its output), and compares.
template <class T, class Kernel, class Run>
void compare(Check& check, size_t n, Guard side, Kernel scalar, Kernel tested, Run run) {
  Output<T> want(n, side), got(n, side);
  run(scalar, want.data());
  run(tested, got.data());
  check.equal("element", want, got);
}

std::vector<uint16_t> pixels(Check& check, Fill fill, size_t n) {
  return filled<uint16_t>(check.random, fill, n, 0, 65535);
}

void checkAcross(Check& check, Across scalar, Across tested) {
  forEachInput(check, 0, widest, [&](size_t n, Fill fill, Guard side) {
    const Guarded<uint16_t> row(pixels(check, fill, n + 4), side);
    Output<uint16_t> wantHigh(n, side), wantLow(n, side), high(n, side), low(n, side);
    scalar(row.data(), {wantHigh.data(), wantLow.data()}, n);
    tested(row.data(), {high.data(), low.data()}, n);
    check.equal("high", wantHigh, high);
    check.equal("low", wantLow, low);
  });
}

void checkDown(Check& check, Down scalar, Down tested) {
  forEachInput(check, 0, widest, [&](size_t n, Fill fill, Guard side) {
    std::vector<std::unique_ptr<Guarded<uint16_t>>> sums;
    const auto newSums = [&] {
      sums.push_back(std::make_unique<Guarded<uint16_t>>(filled<uint16_t>(check.random, fill, n, 0, largestSum), side));
      return sums.back()->data();
    };
    GaussRows rows;
    for (GaussSums& row : rows.row) row = {newSums(), newSums()};
    Output<uint16_t> wantFirst(n, side), wantSecond(n, side), first(n, side), second(n, side);
    scalar(rows, wantFirst.data(), wantSecond.data(), n);
    tested(rows, first.data(), second.data(), n);
    check.equal("first", wantFirst, first);
    check.equal("second", wantSecond, second);
  });
}

void checkPull(Check& check, Pull scalar, Pull tested) {
  forEachInput(check, 0, widest, [&](size_t n, Fill fill, Guard side) {
    const Guarded<uint16_t> above(pixels(check, fill, 2 * n), side), below(pixels(check, fill, 2 * n), side);
    compare<uint16_t>(check, n, side, scalar, tested,
                      [&](Pull f, uint16_t* out) { f(above.data(), below.data(), out, n); });
  });
}

void checkPush(Check& check, Push scalar, Push tested) {
  forEachInput(check, 0, widest, [&](size_t n, Fill fill, Guard side) {
    const Guarded<uint16_t> coarse(pixels(check, Fill::random, n), side), src(pixels(check, fill, 2 * n), side);
    compare<uint16_t>(check, 2 * n, side, scalar, tested,
                      [&](Push f, uint16_t* out) { f(coarse.data(), src.data(), out, n); });
    compare<uint16_t>(check, 2 * n, side, scalar, tested, [&](Push f, uint16_t* inPlace) {
      std::copy_n(src.data(), 2 * n, inPlace);
      f(coarse.data(), inPlace, inPlace, n);
    });
  });
}

void checkHalve(Check& check, Halve scalar, Halve tested) {
  for (const Guard side : {Guard::behind, Guard::before}) {
    for (const size_t gap : {size_t{0}, size_t{3}}) {
      const size_t srcStep = 2 * halvedWidth + gap, step = halvedWidth + gap;
      const Guarded<uint16_t> src(pixels(check, Fill::random, (2 * halvedHeight - 1) * srcStep + 2 * halvedWidth),
                                  side);
      compare<uint16_t>(check, (halvedHeight - 1) * step + halvedWidth, side, scalar, tested,
                        [&](Halve f, uint16_t* out) { f(src.data(), srcStep * sizeof *out, out, step * sizeof *out); });
    }
  }
}

void checkMean(Check& check, Mean scalar, Mean tested) {
  using Limits = std::numeric_limits<int32_t>;
  forEachInput(check, 0, widest, [&](size_t n, Fill fill, Guard side) {
    const Guarded<int32_t> sums(filled<int32_t>(check.random, fill, n, Limits::min(), Limits::max()), side);
    for (uint16_t most : {uint16_t{3}, uint16_t{65535}}) {
      const Guarded<uint16_t> counts(filled<uint16_t>(check.random, Fill::random, n, 0, most), side);
      for (int32_t limit : {0, 1, 40000, Limits::max()}) {
        compare<uint16_t>(check, n, side, scalar, tested,
                          [&](Mean f, uint16_t* out) { f(sums.data(), counts.data(), limit, out, n); });
      }
    }
  });
}

// ---- what is timed: 480 rows ----

template <class F>
void forRows(F f) {
  for (int i = 0; i < 480; ++i) f();
}

const uint16_t* benchPixels() {
  static const std::vector<uint16_t> row = lab::Random(7).values<uint16_t>(2 * benchWidth, 65536);
  return row.data();
}

uint16_t* benchOutput() {
  static std::vector<uint16_t> row(benchWidth);
  return row.data();
}

void benchAcross(Across across) {
  static std::vector<uint16_t> low(benchWidth);
  forRows([=] { across(benchPixels(), {benchOutput(), low.data()}, benchWidth); });
}

void benchDown(Down down) {
  static std::vector<uint16_t> sums = lab::Random(8).values<uint16_t>(2 * gaussRowCount * benchWidth, largestSum + 1);
  static std::vector<uint16_t> second(benchWidth);
  GaussRows rows;
  for (size_t k = 0; k < gaussRowCount; ++k) rows.row[k] = {&sums[2 * k * benchWidth], &sums[(2 * k + 1) * benchWidth]};
  forRows([=] { down(rows, benchOutput(), second.data(), benchWidth); });
}

void benchPull(Pull pull) {
  forRows([=] { pull(benchPixels(), benchPixels() + benchWidth, benchOutput(), benchWidth / 2); });
}

void benchPush(Push push) {
  forRows([=] { push(benchPixels(), benchPixels() + benchWidth, benchOutput(), benchWidth / 2); });
}

void benchHalve(Halve halve) {
  static const std::vector<uint16_t> src = lab::Random(11).values<uint16_t>(4 * halvedWidth * halvedHeight, 65536);
  static std::vector<uint16_t> coarse(halvedWidth * halvedHeight);
  halve(src.data(), 4 * halvedWidth, coarse.data(), 2 * halvedWidth);
}

void benchMean(Mean mean) {
  static const std::vector<int32_t> sums = lab::Random(9).values<int32_t>(benchWidth, 1u << 20);
  static const std::vector<uint16_t> counts = lab::Random(10).values<uint16_t>(benchWidth, 17);
  forRows([=] { mean(sums.data(), counts.data(), 8, benchOutput(), benchWidth); });
}

}  // namespace

void addSmoothCases(Registry& r) {
  add<Across>(
      r, "gauss_across", [](unsigned c) { return smoothKernels(c).gaussAcross; }, checkAcross, benchAcross);
  add<Down>(
      r, "gauss_down", [](unsigned c) { return smoothKernels(c).gaussDown; }, checkDown, benchDown);
  add<Pull>(
      r, "pull", [](unsigned c) { return smoothKernels(c).pull; }, checkPull, benchPull);
  add<Push>(
      r, "push", [](unsigned c) { return smoothKernels(c).push; }, checkPush, benchPush);
  add<Halve>(
      r, "halve", [](unsigned c) { return smoothKernels(c).halve; }, checkHalve, benchHalve);
  add<Mean>(
      r, "mean", [](unsigned c) { return smoothKernels(c).mean; }, checkMean, benchMean);
}

}  // namespace nadir::test
