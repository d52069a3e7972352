#include <nadir/stereo.h>

#include <cstring>
#include <initializer_list>

#include "core/cpu.hpp"
#include "core/memory.hpp"
#include "stereo/code_row.hpp"
#include "stereo/penalties.hpp"

namespace nadir {
namespace {

struct Pair {
  const uint32_t *first, *reference;
  const uint16_t* image;
  uint32_t width, height;
};

constexpr size_t pathBytesPerPixel = disparities + 1;  // the costs and their minimum

constexpr uint64_t scratchBytes(uint64_t width) {
  return planeBytes(0) + 4 * width + 4 * width + 3 * pathBytesPerPixel * (width + 1);
}

// The matcher's working memory, one block cut into pieces, as a row job points at them.
class Matcher {
 public:
  Matcher(const Pair& pair, SgmDebugData* debug, uint8_t* memory)
      : pair_(pair), debug_(debug), kernels_(stereoKernels(cpu())), planes_(memory) {
    const size_t width = pair.width;
    uint8_t* free = memory + planeBytes(width);
    for (uint8_t*& row : p2_) {
      row = free;
      free += width;
    }
    for (PathState* state : {&job_.upLeft, &job_.up, &job_.upRight}) {
      *state = {free, free + (width + 1) * disparities};
      std::memset(state->costs, 255 - penaltyOne, (width + 1) * disparities);
      std::memset(state->minima, 0, width + 1);
      free += (width + 1) * pathBytesPerPixel;
    }
    job_.width = width;
    for (size_t dir = 0; dir < 4; ++dir) job_.p2[dir] = p2_[dir];
  }

  const StereoKernels& kernels() const { return kernels_; }

  // Everything of row y that does not depend on the driver.
  SgmRowJob& prepareRow(uint32_t y) {
    const size_t at = size_t{y} * pair_.width;
    job_.first = pair_.first + at;
    job_.reference = pair_.reference + at;
    prepareCodes(y);
    penaltiesOfRow(kernels_.penalties, pair_.image + at, y ? pair_.image + at - pair_.width : nullptr, pair_.width,
                   p2_);
    if (debug_) prepareDebug(at);
    return job_;
  }

 private:
  // The frame of two columns holds whatever the caller left there; it is not looked at.
  void prepareCodes(uint32_t y) {
    const size_t inner = pair_.width - 4;
    job_.hasCosts = !isBorderRow(y, pair_.height);
    if (!job_.hasCosts) return;
    job_.exact = !areCensusCodes(job_.first + 2, inner) || !areCensusCodes(job_.reference + 2, inner);
    job_.planes = splitCodes(job_.first + 2, inner, planes_);
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

  const Pair pair_;
  SgmDebugData* const debug_;
  const StereoKernels& kernels_;
  uint8_t* const planes_;
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
    job.uniquenessRatio = params->uniquenessRatio;
    job.peaks = debug ? debug->peakMap + at : nullptr;
    job.disparity = disparity + at;
    matcher.kernels().walkDisparity(job);
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
  }
}
