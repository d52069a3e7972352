// Holes are filled from ever coarser images, which hold means of what is known around them.
#include <nadir/imgproc.h>

#include <algorithm>

#include "core/given_memory.hpp"
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

  // Whether it ends in an image that is a single pixel wide or high, and does not begin with one or with none.
  bool canFill() const { return levels_[0].width > 1 && levels_[0].height > 1 && isComplete(); }
  bool isComplete() const { return coarsest().width == 1 || coarsest().height == 1; }
  size_t count() const { return count_; }
  const Img& operator[](size_t k) const { return levels_[k]; }

  // The pixels of all levels but the first.
  uint64_t coarsePixels() const {
    uint64_t sum = 0;
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

bool canFill(const Img* src, const Img* dst) {
  return src && dst && matches(*src, *dst) && src->type == IMG_TYPE_U16 && Pyramid(*src).canFill();
}

}  // namespace
}  // namespace nadir

size_t nadir_pull_push_bytes(uint16_t width, uint16_t height) {
  Img finest = {};
  finest.width = width;
  finest.height = height;
  const nadir::Pyramid levels(finest);
  return levels.canFill() ? nadir::bytesFor<uint16_t>(levels.coarsePixels()) : 0;
}

int32_t nadir_pull_push(const Img* src, Img* dst, void* memory, size_t bytes) {
  if (!nadir::canFill(src, dst)) return 0;
  nadir::Pyramid levels(*src);
  uint16_t* const coarse = nadir::asArray<uint16_t>(memory, bytes, levels.coarsePixels());
  if (!coarse) return 0;
  levels.place(coarse);
  fillHoles(levels, *dst);
  return 1;
}

int32_t IP_PullPush(const Img* src, Img* dst) {
  if (!nadir::canFill(src, dst)) return 0;
  const size_t bytes = nadir_pull_push_bytes(src->width, src->height);
  const nadir::Scratch<uint8_t> memory(bytes);
  if (memory) nadir_pull_push(src, dst, memory.get(), bytes);
  return 1;
}
