// A path record keeps what a direction's next row of path costs needs of the last one.
#include <nadir/stereo.h>

#include <cstring>
#include <initializer_list>
#include <limits>
#include <utility>

#include "core/memory.hpp"
#include "simd/cpu.hpp"
#include "stereo/kernels.hpp"

namespace nadir {
namespace {

constexpr uint64_t padBytes = 16;  // behind each pixel's path costs

// How many pixels a direction remembers: its own row, one more for the pixels that have no predecessor at a slant, or
// just the last pixel.
uint64_t slots(uint32_t dir, uint32_t width) {
  switch (dir) {
    case PC_DIR_LEFT: return 1;
    case PC_DIR_UP: return width;
    default: return uint64_t{width} + 1;
  }
}

uint8_t* allocateBytes(uint64_t bytes) { return static_cast<uint8_t*>(allocate(bytes)); }

void allocateBuffers(PcBuffer& pc, uint64_t costBytes, uint64_t minBytes) {
  if (costBytes > std::numeric_limits<uint32_t>::max()) return;
  pc.costsA = allocateBytes(costBytes);
  pc.costsB = allocateBytes(costBytes);
  pc.minA = allocateBytes(minBytes);
  pc.minB = allocateBytes(minBytes);
}

// Swaps the previous and the current row of slots. The one written lies `written` slots into its buffer, the one read
// `read` slots.
void swapRows(PcBuffer* pc, uint32_t written, uint32_t read) {
  uint8_t* const costs = pc->curCosts - written * pc->costStride;
  uint8_t* const minima = pc->curMin - written;
  pc->curCosts = pc->prevCosts - read * pc->costStride + written * pc->costStride;
  pc->curMin = pc->prevMin - read + written;
  pc->prevCosts = costs + read * pc->costStride;
  pc->prevMin = minima + read;
}

void nextRow(PcBuffer* pc, const uint8_t* costRow, const uint8_t* p2Row, uint8_t* sumRow, PathRow path) {
  if (pc->dir == PC_DIR_LEFT) PC_ResetBuffer(pc);
  path({pc->width, pc->numDisparities, static_cast<uint8_t>(pc->p1), static_cast<uint8_t>(pc->fillValue), costRow,
        p2Row, sumRow, pc->prevCosts, pc->prevMin, pc->curCosts, pc->curMin, pc->costStride, pc->minStride});
  PC_SwapBuffer(pc);
}

}  // namespace
}  // namespace nadir

int32_t PC_Init(PcBuffer* pc, uint32_t dir, uint32_t width, uint32_t numDisparities, int32_t p1) {
  if (!pc) return 0;
  *pc = {};
  if (dir > PC_DIR_UPRIGHT) return 0;
  const uint64_t slotBytes = numDisparities + nadir::padBytes, count = nadir::slots(dir, width);
  nadir::allocateBuffers(*pc, count * slotBytes, count);
  if (!pc->costsA || !pc->costsB || !pc->minA || !pc->minB) {
    PC_Destroy(pc);
    return 0;
  }
  pc->width = width;
  pc->numDisparities = numDisparities;
  pc->costsSize = static_cast<uint32_t>(count * slotBytes);
  pc->costStride = dir == PC_DIR_LEFT ? 0 : static_cast<uint32_t>(slotBytes);
  pc->minSize = static_cast<uint32_t>(count);
  pc->minStride = dir == PC_DIR_LEFT ? 0 : 1;
  pc->dir = dir;
  pc->p1 = static_cast<uint32_t>(p1);
  pc->fillValue = ~pc->p1;
  return 1;
}

void PC_Destroy(PcBuffer* pc) {
  for (uint8_t** buffer : {&pc->costsA, &pc->costsB, &pc->minA, &pc->minB}) {
    std::free(std::exchange(*buffer, nullptr));
  }
}

void PC_ResetBuffer(PcBuffer* pc) {
  std::memset(pc->costsA, static_cast<uint8_t>(pc->fillValue), pc->costsSize);
  std::memset(pc->costsB, static_cast<uint8_t>(pc->fillValue), pc->costsSize);
  std::memset(pc->minA, 0, pc->minSize);
  std::memset(pc->minB, 0, pc->minSize);
  const bool upLeft = pc->dir == PC_DIR_UPLEFT, upRight = pc->dir == PC_DIR_UPRIGHT, slanted = upLeft || upRight;
  pc->prevCosts = (slanted ? pc->costsB : pc->costsA) + (upRight ? pc->costStride : 0);
  pc->curCosts = pc->costsA + (upLeft ? pc->costStride : 0);
  pc->prevMin = (slanted ? pc->minB : pc->minA) + (upRight ? 1 : 0);
  pc->curMin = pc->minA + (upLeft ? 1 : 0);
}

void PC_NextFrame(PcBuffer* pc) { PC_ResetBuffer(pc); }

void PC_SwapBuffer(PcBuffer* pc) {
  if (pc->dir == PC_DIR_UPLEFT) nadir::swapRows(pc, 1, 0);
  if (pc->dir == PC_DIR_UPRIGHT) nadir::swapRows(pc, 0, 1);
}

void PC_NextRow(PcBuffer* pc, const uint8_t* costRow, const uint8_t* p2Row, uint8_t* sumRow) {
  nadir::nextRow(pc, costRow, p2Row, sumRow, nadir::stereoScalar.path);
}

void PC_NextRow_neon(PcBuffer* pc, const uint8_t* costRow, const uint8_t* p2Row, uint8_t* sumRow) {
  nadir::nextRow(pc, costRow, p2Row, sumRow, nadir::pathKernel(nadir::cpu(), pc->numDisparities));
}
