#include <nadir/stereo.h>

#include <cstring>
#include <utility>

#include "core/memory.hpp"
#include "simd/cpu.hpp"
#include "stereo/penalties.hpp"

namespace nadir {
namespace {

struct Pair {
  const uint32_t *first, *reference;
  const uint16_t* image;
  uint32_t width, height;
};

// What a matcher keeps: the path costs of one row, with a slot more for each slanted direction, where "no predecessor"
// stands. The direction from the upper left would overwrite what its next pixel needs and so has two rows.
constexpr uint64_t pathBytes(uint64_t width) { return disparities * (2 * (width + 1) + width + (width + 1)); }
constexpr size_t lineBytes = 64;  // a slot is one line of a processor's cache

constexpr uint64_t scratchBytes(uint64_t width) { return lineBytes - 1 + pathBytes(width) + 8 * width; }

// The matcher's working memory, one block cut into pieces, as a row job points at them.
class Matcher {
 public:
  Matcher(const Pair& pair, SgmDebugData* debug, uint8_t* memory)
      : pair_(pair), debug_(debug), kernels_(stereoKernels(cpu())), free_(memory) {
    const size_t width = pair.width, slots = (width + 1) * disparities;
    free_ += (lineBytes - reinterpret_cast<uintptr_t>(memory) % lineBytes) % lineBytes;
    std::memset(free_, noPredecessor, static_cast<size_t>(pathBytes(width)));
    job_.upLeftBefore = taken(slots);
    job_.upLeft = taken(slots) + disparities;
    job_.up = taken(width * disparities);
    job_.upRight = taken(slots);
    for (size_t dir = 0; dir < 4; ++dir) job_.p2[dir] = p2_[dir] = taken(width);
    job_.p2Memory = taken(4 * width);
    job_.width = width;
  }

  const StereoKernels& kernels() const { return kernels_; }

  // Everything of row y that does not depend on the driver.
  SgmRowJob& prepareRow(uint32_t y) {
    const size_t at = size_t{y} * pair_.width;
    job_.first = pair_.first + at;
    job_.reference = pair_.reference + at;
    job_.hasCosts = !isBorderRow(y, pair_.height);
    preparePenalties(at, y);
    if (debug_) prepareDebug(at);
    return job_;
  }

  // What was written is what the next row reads.
  void finishRow() {
    uint8_t* const written = job_.upLeft - disparities;
    job_.upLeft = const_cast<uint8_t*>(job_.upLeftBefore) + disparities;
    job_.upLeftBefore = written;
  }

 private:
  void preparePenalties(size_t at, uint32_t y) {
    const uint16_t* const pixels = pair_.image + at;
    penaltiesOfRow(kernels_.penalties, pixels, y ? pixels - pair_.width : nullptr, pair_.width, p2_);
  }

  void prepareDebug(size_t at) {
    const size_t width = pair_.width;
    job_.costs = debug_->costVolume + at * disparities;
    job_.sums = debug_->aggregatedVolume + at * disparities;
    if (debug_->p2Size < uint64_t{width} * pair_.height) return;
    std::memcpy(debug_->p2Left + at, p2_[PC_DIR_LEFT], width);
    std::memcpy(debug_->p2UpLeft + at, p2_[PC_DIR_UPLEFT], width);
    std::memcpy(debug_->p2Up + at, p2_[PC_DIR_UP], width);
    std::memcpy(debug_->p2UpRight + at, p2_[PC_DIR_UPRIGHT], width);
  }

  uint8_t* taken(size_t bytes) { return std::exchange(free_, free_ + bytes); }

  const Pair pair_;
  SgmDebugData* const debug_;
  const StereoKernels& kernels_;
  uint8_t* free_;
  uint8_t* p2_[4] = {};
  SgmRowJob job_ = {};
};

}  // namespace
}  // namespace nadir

using namespace nadir;

void IP_SgmFull(const uint32_t* censusFirst, const uint32_t* censusRef, const uint16_t* image, uint32_t width,
                uint32_t height, const SgmParams* params, uint16_t* disparity, SgmDebugData* debug) {
  const size_t pixels = size_t{width} * height;
  if (pixels == 0) return;
  std::memset(disparity, 0, pixels * sizeof(uint16_t));
  if (width < 5 || params->numDisparities != disparities) return;
  const Scratch<uint8_t> memory(scratchBytes(width));
  if (!memory) return;
  Matcher matcher({censusFirst, censusRef, image, width, height}, debug, memory.get());
  for (uint32_t y = 0; y < height; ++y) {
    const size_t at = size_t{y} * width;
    SgmRowJob& job = matcher.prepareRow(y);
    job.peaks = debug ? debug->peakMap + at : nullptr;
    job.disparity = disparity + at;
    job.uniquenessRatio = params->uniquenessRatio;
    matcher.kernels().walkDisparity(job);
    matcher.finishRow();
  }
}

void IP_Sgm(const uint32_t* censusFirst, const uint32_t* censusRef, const uint16_t* image, uint32_t width,
            uint32_t height, uint8_t* distinctiveness, SgmDebugData* debug) {
  const size_t pixels = size_t{width} * height;
  if (pixels == 0) return;
  if (width < 5) {
    std::memset(distinctiveness, 255, pixels);
    return;
  }
  const Scratch<uint8_t> memory(scratchBytes(width));
  if (!memory) return;
  std::memset(distinctiveness, 255, pixels);
  Matcher matcher({censusFirst, censusRef, image, width, height}, debug, memory.get());
  for (uint32_t y = 0; y < height; ++y) {
    SgmRowJob& job = matcher.prepareRow(y);
    job.distinctness = distinctiveness + size_t{y} * width;
    matcher.kernels().walkDistinctness(job);
    matcher.finishRow();
  }
}
