// This sorts indices by 16-bit keys, byte by byte.
#include <nadir/numeric.h>

#include "core/memory.hpp"

namespace nadir {
namespace {

constexpr uint32_t mostKeys = 65536;
constexpr uint32_t buckets = 256;

// The order of bytes: `flip` is 0x80 for the upper byte of signed keys, where 0x80 to 0xFF come first.
uint32_t lowBucket(uint16_t key) { return key & 0xFFu; }
uint32_t highBucket(uint16_t key, uint32_t flip) { return (key >> 8) ^ flip; }

void accumulate(uint32_t* histogram) {
  for (uint32_t i = 1; i < buckets; ++i) histogram[i] += histogram[i - 1];
}

// Each bucket's total is one more than its last free place. Filling from the last key to the first keeps equal keys in
// order.
void sortIndices(const uint16_t* keys, uint16_t* indices, uint32_t count, uint32_t flip, uint16_t* byLow) {
  uint32_t low[buckets] = {}, high[buckets] = {};
  for (uint32_t i = 0; i < count; ++i) {
    ++low[lowBucket(keys[i])];
    ++high[highBucket(keys[i], flip)];
  }
  accumulate(low);
  accumulate(high);
  for (uint32_t i = count; i-- > 0;) byLow[--low[lowBucket(keys[i])]] = static_cast<uint16_t>(i);
  for (uint32_t i = count; i-- > 0;) indices[--high[highBucket(keys[byLow[i]], flip)]] = byLow[i];
}

}  // namespace
}  // namespace nadir

uint32_t IP_Utl_RadixIdxSort(const uint16_t* keys, uint16_t* indices, uint32_t count, uint32_t mode) {
  if (!keys || !indices || count > nadir::mostKeys || (mode != RADIX_UNSIGNED && mode != RADIX_SIGNED)) return 0;
  const nadir::Scratch<uint16_t> byLow(count);
  if (byLow) nadir::sortIndices(keys, indices, count, mode == RADIX_SIGNED ? 0x80 : 0, byLow.get());
  return 1;
}
