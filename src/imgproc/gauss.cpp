// This smooths an image with the weights 1 4 6 4 1 in both directions.
#include <nadir/imgproc.h>

#include <algorithm>
#include <utility>

#include "core/memory.hpp"
#include "core/pixels.hpp"
#include "imgproc/smooth_kernels.hpp"
#include "simd/cpu.hpp"

namespace nadir {
namespace {

GaussSums sumsFromColumn(const GaussSums& sums, size_t column) { return {sums.high + column, sums.low + column}; }

// Sums up along a row of 4 pixels or more; beyond its ends it goes on with its first and its last pixel. The two sums
// at the right end are stored crosswise, since programs rely on it.
void sumRow(const uint16_t* p, const GaussSums& sums, size_t width, const SmoothKernels& kernels) {
  const uint16_t* end = p + width;
  const uint16_t left[] = {p[0], p[0], p[0], p[1], p[2], p[3]};
  const uint16_t right[] = {end[-4], end[-3], end[-2], end[-1], end[-1], end[-1]};
  const GaussSums atRight = sumsFromColumn(sums, width - 2);
  kernels.gaussAcross(left, sums, 2);
  kernels.gaussAcross(p, sumsFromColumn(sums, 2), width - 4);
  kernels.gaussAcross(right, atRight, 2);
  std::swap(atRight.high[0], atRight.high[1]);
  std::swap(atRight.low[0], atRight.low[1]);
}

// The order in which rows are worked through. Two rows of the result are written as soon as the two source rows behind
// them are summed up; if the images share memory, going the right way keeps what is still to be read.
class RowOrder {
 public:
  RowOrder(const Img& src, const Img& dst) : last_(src.height - 1u), upwards_(address(dst) > address(src)) {}

  size_t row(size_t step) const { return upwards_ ? last_ - step : step; }

  // step - back, or the first or last step if that is none.
  size_t clamped(size_t step, size_t back) const { return step < back ? 0 : std::min(step - back, last_); }

 private:
  static uintptr_t address(const Img& img) { return reinterpret_cast<uintptr_t>(img.data); }

  size_t last_;
  bool upwards_;
};

// The sums of the rows that two rows of the result are made of.
class SumRows {
 public:
  explicit SumRows(size_t width) : width_(width), sums_(uint64_t{2 * gaussRowCount} * width) {}
  explicit operator bool() const { return static_cast<bool>(sums_); }
  GaussSums row(size_t step) const {
    uint16_t* high = sums_.get() + step % gaussRowCount * 2 * width_;
    return {high, high + width_};
  }

 private:
  size_t width_;
  Scratch<uint16_t> sums_;
};

// The last row of an odd number is made together with the one before, which is then made twice.
void smooth(const Img& src, const Img& dst, const SumRows& sums) {
  const SmoothKernels& kernels = smoothKernels(cpu());
  const RowOrder order(src, dst);
  const size_t height = src.height;
  for (size_t y = 0, summed = 0; y < height; y += 2) {
    const size_t step = std::min(y, height - 2);
    for (; summed < std::min(step + 4, height); ++summed) {
      sumRow(row<uint16_t>(src, order.row(summed)), sums.row(summed), src.width, kernels);
    }
    GaussRows around;
    for (size_t k = 0; k < gaussRowCount; ++k) around.row[k] = sums.row(order.clamped(step + k, 2));
    kernels.gaussDown(around, row<uint16_t>(dst, order.row(step)), row<uint16_t>(dst, order.row(step + 1)), src.width);
  }
}

}  // namespace
}  // namespace nadir

uint32_t IP_Gauss(const Img* src, Img* dst, uint32_t kernel) {
  if (!src || !dst || !nadir::matches(*src, *dst) || src->type != IMG_TYPE_U16 || kernel != 0) return 0;
  if (src->width < 4 || src->height < 3) return 0;
  const nadir::SumRows sums(src->width);
  if (!sums) return 0;
  smooth(*src, *dst, sums);
  return 1;
}
