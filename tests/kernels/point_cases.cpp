// The cases of thresholds, arithmetic and masks.
#include "imgproc/point_kernels.hpp"

#include <algorithm>
#include <limits>

#include "tests/kernels/harness.hpp"

namespace nadir::test {
namespace {

constexpr size_t benchPixelCount = 640 * 480;

// Runs both kernels, each by run(kernel, input, output), into another row and in place.
template <class T, class Kernel, class Run>
void compare(Check& check, const std::vector<T>& in, Guard side, Kernel scalar, Kernel tested, Run run) {
  const Guarded<T> src(in, side);
  Output<T> want(in.size(), side), got(in.size(), side), inPlace(in.size(), side);
  inPlace.set(in);
  run(scalar, src.data(), want.data());
  run(tested, src.data(), got.data());
  run(tested, inPlace.data(), inPlace.data());
  check.equal("pixel", want, got);
  check.equal("pixel in place", want, inPlace);
}

void checkRange(Check& check, RangeRow scalar, RangeRow tested) {
  forEachInput(check, 0, widest, [&](size_t n, Fill fill, Guard side) {
    const PixelRange range = {anyIn<uint16_t>(check.random, 0, 65535), anyIn<uint16_t>(check.random, 0, 65535)};
    std::vector<uint16_t> in = filled<uint16_t>(check.random, fill, n, 0, 65535);
    const uint16_t ends[] = {range.lo, static_cast<uint16_t>(range.lo + range.span)};
    for (size_t i = 0; i < n; i += 5) in[i] = static_cast<uint16_t>(ends[i % 2] + check.random.below(3) - 1);
    compare(check, in, side, scalar, tested,
            [&](RangeRow kernel, const uint16_t* src, uint16_t* dst) { kernel(src, dst, n, range); });
  });
}

// Small second operands too: those count as shifts.
template <uint16_t minOperand>
void checkCombine(Check& check, CombineRow scalar, CombineRow tested) {
  forEachInput(check, 0, widest, [&](size_t n, Fill fill, Guard side) {
    std::vector<uint16_t> other = filled<uint16_t>(check.random, fill, n, minOperand, 65535);
    for (size_t i = 0; i < n; i += 2) other[i] = anyIn<uint16_t>(check.random, minOperand, 20);
    const Guarded<uint16_t> b(other, side);
    compare(check, filled<uint16_t>(check.random, fill, n, 0, 65535), side, scalar, tested,
            [&](CombineRow kernel, const uint16_t* a, uint16_t* out) { kernel(a, b.data(), out, n); });
  });
}

template <class T>
void checkMask(Check& check, MaskRow<T> scalar, MaskRow<T> tested) {
  forEachInput(check, 0, widest, [&](size_t n, Fill fill, Guard side) {
    const Guarded<uint8_t> set(filled<uint8_t>(check.random, fill, n, 0, 255), side);
    compare(check, filled<T>(check.random, Fill::random, n, 0, std::numeric_limits<T>::max()), side, scalar, tested,
            [&](MaskRow<T> kernel, const T* src, T* dst) { kernel(src, set.data(), dst, n); });
  });
}

template <class T>
const std::vector<T>& benchPixels() {
  static const std::vector<T> pixels = [] {
    std::vector<T> any = lab::Random(7).values<T>(benchPixelCount, 65536);
    std::replace(any.begin(), any.end(), T{0}, T{1});
    return any;
  }();
  return pixels;
}

template <class T>
std::vector<T>& benchOutput() {
  static std::vector<T> out(benchPixelCount);
  return out;
}

void benchRange(RangeRow kernel) {
  kernel(benchPixels<uint16_t>().data(), benchOutput<uint16_t>().data(), benchPixelCount, {1000, 20000});
}

void benchCombine(CombineRow kernel) {
  const uint16_t* pixels = benchPixels<uint16_t>().data();
  kernel(pixels, pixels + 1, benchOutput<uint16_t>().data(), benchPixelCount - 1);
}

template <class T>
void benchMask(MaskRow<T> kernel) {
  kernel(benchPixels<T>().data(), benchPixels<uint8_t>().data(), benchOutput<T>().data(), benchPixelCount);
}

void addCombine(Registry& r, const char* name, CombineRow (*pick)(unsigned)) {
  add<CombineRow>(r, name, pick, checkCombine<0>, benchCombine);
}

}  // namespace

void addPointCases(Registry& r) {
  add<RangeRow>(
      r, "zero_inside", [](unsigned c) { return pointKernels(c).zeroInside; }, checkRange, benchRange);
  add<RangeRow>(
      r, "zero_outside", [](unsigned c) { return pointKernels(c).zeroOutside; }, checkRange, benchRange);
  addCombine(r, "add", [](unsigned c) { return pointKernels(c).add; });
  addCombine(r, "subtract", [](unsigned c) { return pointKernels(c).subtract; });
  addCombine(r, "multiply", [](unsigned c) { return pointKernels(c).multiply; });
  addCombine(r, "shift_left", [](unsigned c) { return pointKernels(c).shiftLeft; });
  addCombine(r, "shift_right_u16", [](unsigned c) { return pointKernels(c).shiftRightU16; });
  addCombine(r, "shift_right_s16", [](unsigned c) { return pointKernels(c).shiftRightS16; });
  add<CombineRow>(
      r, "divide_u16", [](unsigned c) { return pointKernels(c).divideU16; }, checkCombine<1>, benchCombine);
  add<CombineRow>(
      r, "divide_s16", [](unsigned c) { return pointKernels(c).divideS16; }, checkCombine<1>, benchCombine);
  add<MaskRow<uint8_t>>(
      r, "keep_set_u8", [](unsigned c) { return pointKernels(c).maskU8.keepSet; }, checkMask, benchMask);
  add<MaskRow<uint8_t>>(
      r, "clear_set_u8", [](unsigned c) { return pointKernels(c).maskU8.clearSet; }, checkMask, benchMask);
  add<MaskRow<uint16_t>>(
      r, "keep_set_u16", [](unsigned c) { return pointKernels(c).maskU16.keepSet; }, checkMask, benchMask);
  add<MaskRow<uint16_t>>(
      r, "clear_set_u16", [](unsigned c) { return pointKernels(c).maskU16.clearSet; }, checkMask, benchMask);
}

}  // namespace nadir::test
