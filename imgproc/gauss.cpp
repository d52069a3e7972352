#include <nadir/imgproc.h>

#include "core/cpu.hpp"
#include "core/memory.hpp"
#include "core/pixels.hpp"
#include "imgproc/smooth_kernels.hpp"

namespace nadir {
namespace {

constexpr size_t kTaps = 5;

uint32_t weighted(uint32_t a, uint32_t b, uint32_t c, uint32_t d, uint32_t e) { return a + 4 * b + 6 * c + 4 * d + e; }

// Sums along a row of 4 pixels or more; beyond its ends it goes on with its first and its last pixel. The two sums at
// the right end are stored crosswise, as the interface wants them.
void sumRow(const uint16_t* p, uint32_t* sums, size_t width, const SmoothKernels& kernels) {
  const uint16_t* end = p + width;
  sums[0] = weighted(p[0], p[0], p[0], p[1], p[2]);
  sums[1] = weighted(p[0], p[0], p[1], p[2], p[3]);
  kernels.gaussAcross(p, sums + 2, width - 4);
  sums[width - 2] = weighted(end[-3], end[-2], end[-1], end[-1], end[-1]);
  sums[width - 1] = weighted(end[-4], end[-3], end[-2], end[-1], end[-1]);
}

// The order in which rows are worked through. A row of the result is written as soon as the two source rows that follow
// are summed up; if the images share memory, going the right way keeps what is still to be read.
class RowOrder {
 public:
  RowOrder(const Img& src, const Img& dst) : last_(src.height - 1u), upwards_(address(dst) > address(src)) {}

  size_t row(size_t step) const { return upwards_ ? last_ - step : step; }

  // step - back, or the first or last step if that is none.
  size_t clamped(size_t step, size_t back) const {
    if (step < back) return 0;
    return step - back < last_ ? step - back : last_;
  }

 private:
  static uintptr_t address(const Img& img) { return reinterpret_cast<uintptr_t>(img.data); }

  size_t last_;
  bool upwards_;
};

// The sums of the last five rows.
class SumRows {
 public:
  explicit SumRows(size_t width) : width_(width), sums_(uint64_t{kTaps} * width) {}
  explicit operator bool() const { return static_cast<bool>(sums_); }
  uint32_t* row(size_t y) const { return sums_.get() + y % kTaps * width_; }

 private:
  size_t width_;
  Scratch<uint32_t> sums_;
};

void smooth(const Img& src, const Img& dst, const SumRows& sums) {
  const SmoothKernels& kernels = smoothKernels(cpu());
  const RowOrder order(src, dst);
  for (size_t y = 0; y < src.height + 2u; ++y) {
    if (y < src.height) sumRow(row<uint16_t>(src, order.row(y)), sums.row(y), src.width, kernels);
    if (y < 2) continue;
    GaussRows around;
    for (size_t k = 0; k < kTaps; ++k) around.row[k] = sums.row(order.clamped(y + k, 4));
    kernels.gaussDown(around, row<uint16_t>(dst, order.row(y - 2)), src.width);
  }
}

}  // namespace
}  // namespace nadir

using namespace nadir;

uint32_t IP_Gauss(const Img* src, Img* dst, uint32_t kernel) {
  if (!src || !dst || !matches(*src, *dst) || src->type != IMG_TYPE_U16 || kernel != 0) return 0;
  if (src->width < 4 || src->height < 3) return 0;
  const SumRows sums(src->width);
  if (!sums) return 0;
  smooth(*src, *dst, sums);
  return 1;
}
