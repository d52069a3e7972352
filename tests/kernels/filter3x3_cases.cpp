// The cases of the 3x3 filters.
#include "imgproc/filter3x3_kernels.hpp"

#include <limits>

#include "tests/kernels/harness.hpp"

namespace nadir::test {
namespace {

// A stride for rows of so many pixels: some of the pixels between them belong to nobody.
size_t strideFor(size_t pixels) { return pixels + 3; }

// Everything around the pixels that are read is noise, and what lies between the rows that are written stays as it is.
template <class T>
void checkSize(Check& check, Filter3x3<T> scalar, Filter3x3<T> tested, Fill fill, size_t rows, size_t columns,
               Guard side) {
  using Limits = std::numeric_limits<T>;
  const size_t srcStride = strideFor(columns + 2), dstStride = strideFor(columns);
  const size_t srcSize = (rows + 1) * srcStride + columns + 2, dstSize = rows ? (rows - 1) * dstStride + columns : 0;
  const Guarded<T> src(filled<T>(check.random, fill, srcSize, Limits::min(), Limits::max()), side);
  Output<T> want(dstSize, side), got(dstSize, side);
  scalar(src.data(), srcStride, want.data(), dstStride, rows, columns);
  tested(src.data(), srcStride, got.data(), dstStride, rows, columns);
  check.equal("pixel", want, got);
}

template <class T>
void check(Check& check, Filter3x3<T> scalar, Filter3x3<T> tested) {
  forEachInput(check, 0, 4 * 64 / sizeof(T) + 1, [&](size_t columns, Fill fill, Guard side) {
    checkSize(check, scalar, tested, fill, columns % 5, columns, side);
  });
}

template <class T>
void bench(Filter3x3<T> filter) {
  constexpr size_t width = 640, height = 480;
  static const std::vector<T> src = lab::Random(7).values<T>(width * height, 65536);
  static std::vector<T> dst(width * height);
  filter(src.data(), width, dst.data() + width + 1, width, height - 2, width - 2);
}

}  // namespace

void addFilter3x3Cases(Registry& r) {
  add<Filter3x3<uint16_t>>(
      r, "median_u16", [](unsigned c) { return filter3x3Kernels(c).medianU16; }, check, bench);
  add<Filter3x3<int16_t>>(
      r, "median_s16", [](unsigned c) { return filter3x3Kernels(c).medianS16; }, check, bench);
  add<Filter3x3<uint16_t>>(
      r, "maximum", [](unsigned c) { return filter3x3Kernels(c).maximum; }, check, bench);
  add<Filter3x3<uint8_t>>(
      r, "erode_u8", [](unsigned c) { return filter3x3Kernels(c).morphU8.erode; }, check, bench);
  add<Filter3x3<uint8_t>>(
      r, "dilate_u8", [](unsigned c) { return filter3x3Kernels(c).morphU8.dilate; }, check, bench);
  add<Filter3x3<uint8_t>>(
      r, "clean_u8", [](unsigned c) { return filter3x3Kernels(c).morphU8.clean; }, check, bench);
  add<Filter3x3<uint16_t>>(
      r, "erode_u16", [](unsigned c) { return filter3x3Kernels(c).morphU16.erode; }, check, bench);
  add<Filter3x3<uint16_t>>(
      r, "dilate_u16", [](unsigned c) { return filter3x3Kernels(c).morphU16.dilate; }, check, bench);
  add<Filter3x3<uint16_t>>(
      r, "clean_u16", [](unsigned c) { return filter3x3Kernels(c).morphU16.clean; }, check, bench);
}

}  // namespace nadir::test
