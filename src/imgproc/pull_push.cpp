// Holes are filled from ever coarser images, which hold means of what is known around them.
#include <nadir/imgproc.h>

#include <algorithm>

#include "core/memory.hpp"
#include "core/pixels.hpp"
#include "imgproc/smooth_kernels.hpp"
#include "simd/cpu.hpp"

namespace nadir {
namespace {

constexpr size_t mostLevels = 12;  // they halve a side of 4095 down to 1

// Images that are each half as wide and high as the one before, down to one that is a single pixel wide or high. An odd
// last row or column has no pixel in the next. The first of them is the image to fill.
class Pyramid {
 public:
  explicit Pyramid(const Img& finest) : levels_{finest} {
    while (!isComplete() && count_ < mostLevels) {
      Img& next = levels_[count_] = coarsest();
      next.width /= 2;
      next.height /= 2;
      next.bytesPerPixel = sizeof(uint16_t);
      ++count_;
    }
  }

  bool isComplete() const { return coarsest().width == 1 || coarsest().height == 1; }
  size_t count() const { return count_; }
  const Img& operator[](size_t k) const { return levels_[k]; }

  // The pixels of all levels but the first.
  size_t coarsePixels() const {
    size_t sum = 0;
    for (size_t k = 1; k < count_; ++k) sum += pixelCount(levels_[k]);
    return sum;
  }

  void place(uint16_t* coarse) {
    for (size_t k = 1; k < count_; ++k) {
      levels_[k].data = coarse;
      coarse += pixelCount(levels_[k]);
    }
  }

 private:
  const Img& coarsest() const { return levels_[count_ - 1]; }

  Img levels_[mostLevels];
  size_t count_ = 1;
};

void pull(const Img& fine, const Img& coarse, const SmoothKernels& kernels) {
  for (size_t y = 0; y < coarse.height; ++y) {
    kernels.pull(row<uint16_t>(fine, 2 * y), row<uint16_t>(fine, 2 * y + 1), row<uint16_t>(coarse, y), coarse.width);
  }
}

// Copies an image and fills its holes; an odd last row or column takes what its neighbours take.
void push(const Img& coarse, const Img& src, const Img& dst, const SmoothKernels& kernels) {
  const size_t lastRow = coarse.height - 1u, lastColumn = src.width - 1u;
  for (size_t y = 0; y < src.height; ++y) {
    const uint16_t* from = row<uint16_t>(coarse, std::min(y / 2, lastRow));
    const uint16_t* in = row<uint16_t>(src, y);
    uint16_t* out = row<uint16_t>(dst, y);
    kernels.push(from, in, out, coarse.width);
    if (src.width % 2) out[lastColumn] = in[lastColumn] ? in[lastColumn] : from[coarse.width - 1u];
  }
}

void fillHoles(const Pyramid& levels, const Img& dst) {
  const SmoothKernels& kernels = smoothKernels(cpu());
  for (size_t k = 1; k < levels.count(); ++k) pull(levels[k - 1], levels[k], kernels);
  for (size_t k = levels.count() - 1; k > 1; --k) push(levels[k], levels[k - 1], levels[k - 1], kernels);
  push(levels[1], levels[0], dst, kernels);
}

}  // namespace
}  // namespace nadir

int32_t IP_PullPush(const Img* src, Img* dst) {
  if (!src || !dst || !nadir::matches(*src, *dst) || src->type != IMG_TYPE_U16) return 0;
  if (src->width < 2 || src->height < 2) return 0;
  nadir::Pyramid levels(*src);
  if (!levels.isComplete()) return 0;
  const nadir::Scratch<uint16_t> coarse(levels.coarsePixels());
  if (!coarse) return 1;
  levels.place(coarse.get());
  fillHoles(levels, *dst);
  return 1;
}
