#include "imgproc/filter3x3_kernels.hpp"

#include <limits>

#include "tests/kernels/harness.hpp"

namespace nadir::test {
namespace {

template <class T>
void check(Check& check, Filter3x3Row<T> scalar, Filter3x3Row<T> tested) {
  using Limits = std::numeric_limits<T>;
  for (size_t n = 0; n <= 4 * 64 / sizeof(T) + 1; ++n) {
    for (Fill fill : allFills) {
      for (Guard side : {Guard::behind, Guard::before}) {
        check.describe("width " + std::to_string(n) + ", fill " + std::to_string(static_cast<int>(fill)));
        const auto rowOfPixels = [&] { return filled<T>(check.random, fill, n + 2, Limits::min(), Limits::max()); };
        const Guarded<T> above(rowOfPixels(), side), at(rowOfPixels(), side), below(rowOfPixels(), side);
        Output<T> want(n, side, 0x5A), got(n, side, 0x5A);
        scalar(above.data(), at.data(), below.data(), want.data(), n);
        tested(above.data(), at.data(), below.data(), got.data(), n);
        check.equal("pixel", want, got);
      }
    }
  }
}

template <class T>
void bench(Filter3x3Row<T> filter) {
  constexpr size_t n = 638;
  static const std::vector<T> rows = Random(7).values<T>(3 * (n + 2), 65536);
  static std::vector<T> out(n);
  for (int i = 0; i < 480; ++i) filter(&rows[0], &rows[n + 2], &rows[2 * (n + 2)], out.data(), n);
}

}  // namespace

void addFilter3x3Cases(Registry& r) {
  add<Filter3x3Row<uint16_t>>(
      r, "median_u16", [](unsigned c) { return filter3x3Kernels(c).medianU16; }, check, bench);
  add<Filter3x3Row<int16_t>>(
      r, "median_s16", [](unsigned c) { return filter3x3Kernels(c).medianS16; }, check, bench);
  add<Filter3x3Row<uint16_t>>(
      r, "maximum", [](unsigned c) { return filter3x3Kernels(c).maximum; }, check, bench);
  add<Filter3x3Row<uint8_t>>(
      r, "erode_u8", [](unsigned c) { return filter3x3Kernels(c).morphU8.erode; }, check, bench);
  add<Filter3x3Row<uint8_t>>(
      r, "dilate_u8", [](unsigned c) { return filter3x3Kernels(c).morphU8.dilate; }, check, bench);
  add<Filter3x3Row<uint8_t>>(
      r, "clean_u8", [](unsigned c) { return filter3x3Kernels(c).morphU8.clean; }, check, bench);
  add<Filter3x3Row<uint16_t>>(
      r, "erode_u16", [](unsigned c) { return filter3x3Kernels(c).morphU16.erode; }, check, bench);
  add<Filter3x3Row<uint16_t>>(
      r, "dilate_u16", [](unsigned c) { return filter3x3Kernels(c).morphU16.dilate; }, check, bench);
  add<Filter3x3Row<uint16_t>>(
      r, "clean_u16", [](unsigned c) { return filter3x3Kernels(c).morphU16.clean; }, check, bench);
}

}  // namespace nadir::test
