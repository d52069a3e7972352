// Sets of columns of a row, a bit each: what is true of 64 pixels is asked at once.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>

#include "core/pixels.hpp"
#include "segment/limits.hpp"

namespace nadir {

// The lowest bits of eight bytes that are 0 or 1 each, gathered into one byte, that of the first byte lowest. The
// products of bit and factor meet in the top byte alone, each in a place of its own.
inline uint8_t gatherBits(const uint8_t* flags) {
#if __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
  constexpr uint64_t factor = 0x0102040810204080;
#else
  constexpr uint64_t factor = 0x8040201008040201;
#endif
  uint64_t bytes;
  std::memcpy(&bytes, flags, sizeof bytes);
  return static_cast<uint8_t>(bytes * factor >> 56);
}

class Columns {
 public:
  // The columns begin <= x < end for which f(x) holds; end <= largestPictureSide.
  template <class F>
  static Columns where(uint32_t begin, uint32_t end, F f) {
    uint8_t flags[largestPictureSide + 8] = {};
    if (begin < end) forEachPixel(end - begin, [&](size_t i) { flags[begin + i] = f(begin + i) ? 1 : 0; });
    Columns columns;
    for (uint32_t x = begin & ~7u; x < end; x += 8) columns.words_[x / 64] |= uint64_t{gatherBits(flags + x)} << x % 64;
    return columns;
  }

  friend Columns operator&(const Columns& a, const Columns& b) {
    return combine(a, b, [](uint64_t p, uint64_t q) { return p & q; });
  }
  friend Columns operator|(const Columns& a, const Columns& b) {
    return combine(a, b, [](uint64_t p, uint64_t q) { return p | q; });
  }
  friend Columns without(const Columns& a, const Columns& b) {
    return combine(a, b, [](uint64_t p, uint64_t q) { return p & ~q; });
  }

  // Whether any column begin <= x < end is in the set, begin < end.
  bool hasAny(uint32_t begin, uint32_t end) const {
    for (uint32_t w = begin / 64; w <= (end - 1) / 64; ++w) {
      if (within(w, begin, end)) return true;
    }
    return false;
  }

  // The columns whose left, or whose right neighbour is in the set.
  Columns rightNeighbours() const {
    Columns result;
    uint64_t carry = 0;
    for (size_t w = 0; w < wordCount; ++w) {
      result.words_[w] = words_[w] << 1 | carry;
      carry = words_[w] >> 63;
    }
    return result;
  }

  Columns leftNeighbours() const {
    Columns result;
    uint64_t carry = 0;
    for (size_t w = wordCount; w-- > 0;) {
      result.words_[w] = words_[w] >> 1 | carry;
      carry = words_[w] << 63;
    }
    return result;
  }

  // Calls f(x) for the columns of the set from left to right: for all of them, or for those begin <= x < end,
  // begin < end.
  template <class F>
  void forEach(F f) const {
    for (uint32_t w = 0; w < wordCount; ++w) forEachBit(words_[w], 64 * w, f);
  }
  template <class F>
  void forEach(uint32_t begin, uint32_t end, F f) const {
    for (uint32_t w = begin / 64; w <= (end - 1) / 64; ++w) forEachBit(within(w, begin, end), 64 * w, f);
  }

 private:
  static constexpr size_t wordCount = largestPictureSide / 64;

  // Word w without what lies outside begin <= x < end.
  uint64_t within(uint32_t w, uint32_t begin, uint32_t end) const {
    uint64_t word = words_[w];
    if (w == begin / 64) word &= ~uint64_t{0} << begin % 64;
    if (w == (end - 1) / 64) word &= ~uint64_t{0} >> (63 - (end - 1) % 64);
    return word;
  }

  template <class F>
  static void forEachBit(uint64_t word, uint32_t first, F f) {
    for (; word; word &= word - 1) f(first + static_cast<uint32_t>(__builtin_ctzll(word)));
  }

  template <class F>
  static Columns combine(const Columns& a, const Columns& b, F f) {
    Columns result;
    for (size_t w = 0; w < wordCount; ++w) result.words_[w] = f(a.words_[w], b.words_[w]);
    return result;
  }

  uint64_t words_[wordCount] = {};
};

// The columns begin <= x < end whose pixels are greater than the threshold, which may lie outside the pixels' range.
template <class T>
Columns greaterThan(int32_t threshold, const T* row, uint32_t begin, uint32_t end) {
  if (threshold > std::numeric_limits<T>::max()) return Columns();
  if (threshold < std::numeric_limits<T>::min()) return Columns::where(begin, end, [](size_t) { return true; });
  const T limit = static_cast<T>(threshold);
  return Columns::where(begin, end, [=](size_t x) { return row[x] > limit; });
}

}  // namespace nadir
