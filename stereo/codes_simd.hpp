// The costs of a stretch of census codes with their 64 candidates each.
//
// The candidates' codes are laid out so that those of a pixel are plain loads. The window holds the stretch's columns
// and the next 64, byte by byte or half byte by half byte in planes of their own. Within a plane the codes of every
// `blocks`-th column lie together, as the disparities do in Costs; with four blocks:
//
//     | 0 4 8 .. 60 | 64 68 .. 124 | 1 5 9 .. 61 | 65 69 .. 125 | 2 6 10 .. 62 | 66 70 .. 126 | 3 7 11 .. 63 | 67 71 .. 127 |
//
// Column 5 and its candidates, for example, begin at 5, 6, 7 and, in the first of these, at 8.
#pragma once

#include <type_traits>

#include "stereo/costs_simd.hpp"
#include "stereo/rows.hpp"

namespace nadir {

// The planes of a window.
template <class Simd, size_t planes>
class CodeWindow {
 public:
  using U8 = typename Simd::U8;
  static constexpr size_t blocks = Costs<Simd>::blocks, blockBytes = 2 * U8::lanes, planeBytes = blocks * blockBytes;

  // The next 64 columns become the stretch.
  void advance() {
    for (size_t at = 0; at < sizeof bytes_; at += blockBytes) U8::load(bytes_ + at + U8::lanes).store(bytes_ + at);
  }

  void storeNext(size_t plane, const Costs<Simd>& inOrder) {
    const Costs<Simd> dealt = inOrder.dealt();
    for (size_t k = 0; k < blocks; ++k) dealt.block[k].store(bytes_ + plane * planeBytes + k * blockBytes + U8::lanes);
  }

  // Block k of the candidates of column blocks * group + rest in the first plane.
  const uint8_t* at(size_t group, size_t rest, size_t k) const {
    return bytes_ + (rest + k) % blocks * blockBytes + (rest + k) / blocks + group;
  }

 private:
  alignas(64) uint8_t bytes_[planes * planeBytes] = {};
};

// The four bytes of 64 codes.
template <class Simd>
struct CodeBytes {
  Costs<Simd> low, mid, high, top;

  explicit CodeBytes(const uint32_t* codes) {
    for (size_t k = 0; k < Costs<Simd>::blocks; ++k) {
      const auto words = Simd::WordBytes::load(codes + k * Simd::U8::lanes);
      low.block[k] = words.low;
      mid.block[k] = words.mid;
      high.block[k] = words.high;
      top.block[k] = words.top;
    }
  }
};

// For processors that count the bits of bytes: three planes of bytes and one that holds the worst cost where a code is
// invalid.
template <class Simd>
class CountedCodes {
 public:
  using U8 = typename Simd::U8;

  void append(const CodeBytes<Simd>& codes) {
    window_.advance();
    window_.storeNext(0, codes.low);
    window_.storeNext(1, codes.mid);
    window_.storeNext(2, codes.high);
    window_.storeNext(3, min(codes.top, U8::all(worstCost)));
  }

  // The costs of one valid code in column blocks * group + rest of the stretch.
  Costs<Simd> costs(uint32_t reference, size_t group, size_t rest) const {
    constexpr size_t plane = Window::planeBytes;
    const U8 low = U8::all(static_cast<uint8_t>(reference)), mid = U8::all(static_cast<uint8_t>(reference >> 8)),
             high = U8::all(static_cast<uint8_t>(reference >> 16));
    return Costs<Simd>::each([&](size_t k) {
      const uint8_t* const p = window_.at(group, rest, k);
      const U8 different = bitCount(low ^ U8::load(p)) + bitCount(mid ^ U8::load(p + plane)) +
                           bitCount(high ^ U8::load(p + 2 * plane));
      return max(different, U8::load(p + 3 * plane));
    });
  }

 private:
  using Window = CodeWindow<Simd, 4>;
  Window window_;
};

// For processors that look bytes up in a table of 16: six planes of half bytes. The tables count the bits that are
// equal, so that an index with its top bit set, for which the look-up gives 0, makes the cost of an invalid code.
template <class Simd>
class LookedUpCodes {
 public:
  using U8 = typename Simd::U8;

  void append(const CodeBytes<Simd>& codes) {
    window_.advance();
    const Costs<Simd> invalid = codes.top & U8::all(128);
    storeHalves(0, codes.low, invalid);
    storeHalves(2, codes.mid, invalid);
    storeHalves(4, codes.high, invalid);
  }

  Costs<Simd> costs(uint32_t reference, size_t group, size_t rest) const {
    U8 tables[6];
    const uint64_t offsets = uint64_t{reference} << 4;
    for (size_t h = 0; h < 6; ++h) tables[h] = U8::repeated16(equalBits() + (offsets >> (4 * h) & 0xF0));
    return Costs<Simd>::each([&](size_t k) {
      const uint8_t* const p = window_.at(group, rest, k);
      U8 cost = U8::all(worstCost);
      for (size_t h = 0; h < 6; ++h) cost = cost - lookedUp(tables[h], U8::load(p + h * Window::planeBytes));
      return cost;
    });
  }

 private:
  using Window = CodeWindow<Simd, 6>;

  void storeHalves(size_t plane, const Costs<Simd>& bytes, const Costs<Simd>& invalid) {
    const U8 half = U8::all(15);
    window_.storeNext(plane, (bytes & half) | invalid);
    window_.storeNext(plane + 1, (bytes.dividedBy16() & half) | invalid);
  }

  // For each half byte, 16 bytes: how many bits each other half byte has in common with it.
  static const uint8_t* equalBits() {
    alignas(16) static constexpr struct Table {
      uint8_t v[256] = {};
      constexpr Table() {
        for (unsigned i = 0; i < 256; ++i) {
          for (unsigned bit = 1; bit < 16; bit *= 2) v[i] = static_cast<uint8_t>(v[i] + !((i ^ i >> 4) & bit));
        }
      }
    } table;
    return table.v;
  }

  Window window_;
};

template <class Simd>
class StretchCosts {
 public:
  // Of the codes [0, n), whose stretches begin with `first`.
  StretchCosts(const uint32_t* first, size_t n) : next_(first), left_(n) { append(); }

  // Writes the costs of n reference codes, those of the next stretch; n is less than a stretch only at the end.
  void store(const uint32_t* reference, size_t n, uint8_t* costs) {
    append();
    constexpr size_t blocks = Costs<Simd>::blocks;
    size_t i = 0;
    for (; i + blocks <= n; i += blocks) {
#pragma GCC unroll 4
      for (size_t rest = 0; rest < blocks; ++rest) {
        of(reference[i + rest], i / blocks, rest).store(costs + (i + rest) * disparities);
      }
    }
    for (; i < n; ++i) of(reference[i], i / blocks, i % blocks).store(costs + i * disparities);
  }

 private:
  Costs<Simd> of(uint32_t reference, size_t group, size_t rest) const {
    return reference == censusInvalid ? Costs<Simd>::all(worstCost) : codes_.costs(reference, group, rest);
  }

  // Behind the last code come invalid ones.
  void append() {
    if (left_ >= stretch) {
      codes_.append(CodeBytes<Simd>(next_));
      next_ += stretch;
      left_ -= stretch;
      return;
    }
    uint32_t rest[stretch];
    for (size_t i = 0; i < stretch; ++i) rest[i] = i < left_ ? next_[i] : censusInvalid;
    left_ = 0;
    codes_.append(CodeBytes<Simd>(rest));
  }

  const uint32_t* next_;
  size_t left_;
  std::conditional_t<Simd::looksUp, LookedUpCodes<Simd>, CountedCodes<Simd>> codes_;
};

}  // namespace nadir
