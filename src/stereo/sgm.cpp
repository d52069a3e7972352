// The two drivers of the matcher: they give each row its working memory and walk down the picture.
#include <nadir/stereo.h>

#include <cstring>
#include <utility>

#include "core/given_memory.hpp"
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

constexpr size_t lineBytes = 64;  // of a processor's cache; a pixel's path costs fill one

// Where the pieces of a matcher's working memory begin, counted in bytes from a line's beginning.
struct Layout {
  // The path costs of one row, with a slot more for each slanted direction, where "no predecessor" stands. The
  // direction from the upper left would overwrite what its next pixel needs and so has two rows.
  uint64_t upLeft[2], up, upRight;
  uint64_t pathBytes;
  uint64_t p2[4], p2Memory;  // the penalties of one row by PathDir, and what the kernel makes of them
  uint64_t end = 0;

  explicit Layout(uint64_t width) {
    for (uint64_t& row : upLeft) row = append((width + 1) * disparities);
    up = append(width * disparities);
    upRight = append((width + 1) * disparities);
    pathBytes = end;
    for (uint64_t& penalties : p2) penalties = append(width);
    p2Memory = append(4 * width);
  }

  // Enough for all pieces wherever the memory begins.
  uint64_t scratchBytes() const { return lineBytes - 1 + end; }

 private:
  uint64_t append(uint64_t bytes) { return std::exchange(end, end + bytes); }
};

uint8_t* nextLine(uint8_t* memory) {
  return memory + (lineBytes - reinterpret_cast<uintptr_t>(memory) % lineBytes) % lineBytes;
}

// Prepares the rows of a pair from the first to the last.
class Matcher {
 public:
  Matcher(const Pair& pair, SgmDebugData* debug, const Layout& layout, uint8_t* memory)
      : pair_(pair), debug_(debug), layout_(layout), memory_(nextLine(memory)) {
    std::memset(memory_, noPredecessor, static_cast<size_t>(layout.pathBytes));
    for (size_t dir = 0; dir < 4; ++dir) p2_[dir] = piece(layout.p2[dir]);
  }

  // The job of row y but for where its results go. What the row before wrote is what this one reads.
  SgmRowJob prepareRow(uint32_t y) {
    const size_t at = size_t{y} * pair_.width;
    const uint16_t* const pixels = pair_.image + at;
    penaltiesOfRow(penalties_, pixels, y ? pixels - pair_.width : nullptr, pair_.width, p2_);
    SgmRowJob job = {};
    job.width = pair_.width;
    job.first = pair_.first + at;
    job.reference = pair_.reference + at;
    job.hasCosts = !isBorderRow(y, pair_.height);
    for (size_t dir = 0; dir < 4; ++dir) job.p2[dir] = p2_[dir];
    job.p2Memory = piece(layout_.p2Memory);
    job.upLeftBefore = piece(layout_.upLeft[y % 2]);
    job.upLeft = piece(layout_.upLeft[(y + 1) % 2]) + disparities;
    job.up = piece(layout_.up);
    job.upRight = piece(layout_.upRight);
    if (debug_) addDebug(job, at);
    return job;
  }

 private:
  uint8_t* piece(uint64_t begin) const { return memory_ + begin; }

  void addDebug(SgmRowJob& job, size_t at) const {
    job.costs = debug_->costVolume + at * disparities;
    job.sums = debug_->aggregatedVolume + at * disparities;
    if (debug_->p2Size < uint64_t{pair_.width} * pair_.height) return;
    std::memcpy(debug_->p2Left + at, p2_[PC_DIR_LEFT], pair_.width);
    std::memcpy(debug_->p2UpLeft + at, p2_[PC_DIR_UPLEFT], pair_.width);
    std::memcpy(debug_->p2Up + at, p2_[PC_DIR_UP], pair_.width);
    std::memcpy(debug_->p2UpRight + at, p2_[PC_DIR_UPRIGHT], pair_.width);
  }

  const Pair pair_;
  SgmDebugData* const debug_;
  const Layout layout_;
  uint8_t* const memory_;
  const PenaltyRow penalties_ = stereoKernels(cpu()).penalties;
  uint8_t* p2_[4];
};

// Walks along every row. setResults(job, at) tells a job where the results of the row whose first pixel is `at` go.
template <class SetResults>
void matchRows(const Pair& pair, SgmDebugData* debug, SgmRow walk, uint8_t* memory, SetResults setResults) {
  Matcher matcher(pair, debug, Layout(pair.width), memory);
  for (uint32_t y = 0; y < pair.height; ++y) {
    SgmRowJob job = matcher.prepareRow(y);
    setResults(job, size_t{y} * pair.width);
    walk(job);
  }
}

}  // namespace
}  // namespace nadir

size_t nadir_sgm_bytes(uint32_t width) { return nadir::bytesFor<uint8_t>(nadir::Layout(width).scratchBytes()); }

int32_t nadir_sgm_full(const uint32_t* censusFirst, const uint32_t* censusRef, const uint16_t* image, uint32_t width,
                       uint32_t height, const SgmParams* params, uint16_t* disparity, SgmDebugData* debug, void* memory,
                       size_t bytes) {
  if (width < 5 || params->numDisparities != nadir::disparities) return 0;
  uint8_t* const placed = nadir::asArray<uint8_t>(memory, bytes, nadir::Layout(width).scratchBytes());
  if (!placed) return 0;
  const nadir::SgmRow walk = nadir::stereoKernels(nadir::cpu()).walkDisparity;
  const nadir::Pair pair = {censusFirst, censusRef, image, width, height};
  nadir::matchRows(pair, debug, walk, placed, [=](nadir::SgmRowJob& job, size_t at) {
    job.peaks = debug ? debug->peakMap + at : nullptr;
    job.disparity = disparity + at;
    std::memset(job.disparity, 0, width * sizeof(uint16_t));
    job.uniquenessRatio = params->uniquenessRatio;
  });
  return 1;
}

void IP_SgmFull(const uint32_t* censusFirst, const uint32_t* censusRef, const uint16_t* image, uint32_t width,
                uint32_t height, const SgmParams* params, uint16_t* disparity, SgmDebugData* debug) {
  const size_t pixels = size_t{width} * height;
  if (pixels == 0) return;
  const size_t bytes = nadir_sgm_bytes(width);
  const nadir::Scratch<uint8_t> memory(bytes);
  if (!nadir_sgm_full(censusFirst, censusRef, image, width, height, params, disparity, debug, memory.get(), bytes))
    std::memset(disparity, 0, pixels * sizeof(uint16_t));
}

void IP_Sgm(const uint32_t* censusFirst, const uint32_t* censusRef, const uint16_t* image, uint32_t width,
            uint32_t height, uint8_t* distinctiveness, SgmDebugData* debug) {
  const size_t pixels = size_t{width} * height;
  if (pixels == 0) return;
  if (width < 5) {
    std::memset(distinctiveness, 255, pixels);
    return;
  }
  const nadir::Scratch<uint8_t> memory(nadir_sgm_bytes(width));
  if (!memory) return;
  const nadir::SgmRow walk = nadir::stereoKernels(nadir::cpu()).walkDistinctness;
  const nadir::Pair pair = {censusFirst, censusRef, image, width, height};
  nadir::matchRows(pair, debug, walk, memory.get(), [=](nadir::SgmRowJob& job, size_t at) {
    job.distinctness = distinctiveness + at;
    std::memset(job.distinctness, 255, width);
  });
}
