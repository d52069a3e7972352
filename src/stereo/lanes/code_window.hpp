// The costs of a stretch of census codes with their 64 candidates each.
//
// The candidates' codes are laid out so that those of a pixel are plain loads. The window holds the stretch's columns
// and the next 64, byte by byte or half byte by half byte in planes of their own. Within a plane the codes of every
// `blocks`-th column lie together, as the disparities do in PerDisparity; with four blocks:
//
//     | 0 4 8 .. 60 | 64 68 .. 124 | 1 5 9 .. 61 | 65 69 .. 125 | 2 6 10 .. 62 | 66 70 .. 126 | 3 7 11 .. 63 | 67 71 ..
//     127 |
//
// Column 5 and its candidates, for example, begin at 5, 6, 7 and, in the first of these, at 8.
#pragma once

#include "stereo/lanes/per_disparity.hpp"

namespace nadir {

// The planes of a window.
template <class Simd, size_t planes>
class CodeWindow {
 public:
  using U8 = typename Simd::U8;
  static constexpr size_t blocks = PerDisparity<Simd>::blocks, blockBytes = 2 * U8::lanes,
                          planeBytes = blocks * blockBytes;

  // The next 64 columns become the stretch.
  void advance() {
    for (size_t at = 0; at < sizeof bytes_; at += blockBytes) U8::load(bytes_ + at + U8::lanes).store(bytes_ + at);
  }

  void storeNext(size_t plane, const PerDisparity<Simd>& inOrder) {
    const PerDisparity<Simd> dealt = inOrder.dealt();
    for (size_t k = 0; k < blocks; ++k) dealt.block[k].store(bytes_ + plane * planeBytes + k * blockBytes + U8::lanes);
  }

  // Block k of the candidates of column blocks * group in the first plane; that of the next column is block k + 1.
  const uint8_t* candidates(size_t group, size_t k) const {
    return bytes_ + k % blocks * blockBytes + k / blocks + group;
  }

 private:
  alignas(64) uint8_t bytes_[planes * planeBytes] = {};
};

// The four bytes of 64 codes.
template <class Simd>
struct CodeBytes {
  PerDisparity<Simd> low, mid, high, top;

  explicit CodeBytes(const uint32_t* codes) {
    for (size_t k = 0; k < PerDisparity<Simd>::blocks; ++k) {
      const auto words = Simd::WordBytes::load(codes + k * Simd::U8::lanes);
      low.block[k] = words.low;
      mid.block[k] = words.mid;
      high.block[k] = words.high;
      top.block[k] = words.top;
    }
  }

  // Whether a census makes such codes: all with a top byte of 0, or invalid.
  bool areOrdinary() const {
    const auto all = [](unsigned shift) { return Simd::U8::all(static_cast<uint8_t>(censusInvalid >> shift)); };
    typename Simd::U8 strange = Simd::U8::all(0);
    for (size_t k = 0; k < PerDisparity<Simd>::blocks; ++k) {
      const auto notInvalid =
          (top.block[k] ^ all(24)) | (high.block[k] ^ all(16)) | (mid.block[k] ^ all(8)) | (low.block[k] ^ all(0));
      strange = strange | min(top.block[k], notInvalid);
    }
    return allZero(strange);
  }
};

// Processors that count the bits of bytes take three planes of bytes and one that holds the worst cost where a code is
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

  // The costs of a group of codes, as many as there are blocks, that begin in column blocks * group.
  void storeGroup(const uint32_t* reference, size_t group, uint8_t* dst) const {
#pragma GCC unroll 2
    for (size_t i = 0; i < blocks; i += 2) storePair(reference + i, group, i, dst + i * disparities);
    for (size_t i = 0; i < blocks; ++i) {
      if (reference[i] == censusInvalid) PerDisparity<Simd>::all(worstCost).store(dst + i * disparities);
    }
  }

 private:
  using Window = CodeWindow<Simd, 4>;
  static constexpr size_t blocks = PerDisparity<Simd>::blocks;

  // Two pixels' candidates in one plane have most of their blocks in common.
  struct Candidates {
    U8 block[blocks + 1];
  };
  Candidates load(size_t group, size_t i, size_t plane) const {
    Candidates out;
    for (size_t k = 0; k <= blocks; ++k)
      out.block[k] = U8::load(window_.candidates(group, i + k) + plane * Window::planeBytes);
    return out;
  }

  // The costs of codes i and i + 1 of a group.
  void storePair(const uint32_t* reference, size_t group, size_t i, uint8_t* dst) const {
    const Candidates low = load(group, i, 0), mid = load(group, i, 1), high = load(group, i, 2),
                     invalid = load(group, i, 3);
    const auto costsOf = [&](const uint32_t* code, size_t first) {
      const uint8_t* const bytes =
          reinterpret_cast<const uint8_t*>(code);  // the lowest comes first on these processors
      const U8 a = U8::allOf(bytes), b = U8::allOf(bytes + 1), c = U8::allOf(bytes + 2);
      return PerDisparity<Simd>::each([&](size_t k) {
        const size_t at = first + k;
        return max(bitCount(a ^ low.block[at]) + bitCount(b ^ mid.block[at]) + bitCount(c ^ high.block[at]),
                   invalid.block[at]);
      });
    };
    const PerDisparity<Simd> first = costsOf(reference, 0), second = costsOf(reference + 1, 1);
    first.store(dst);
    second.store(dst + disparities);
  }

  Window window_;
};

// Processors that look bytes up in a table of 16 take six planes of half bytes. The tables count the bits that are
// equal, so that an index with its top bit set, for which the look-up gives 0, makes the cost of an invalid code.
template <class Simd>
class LookedUpCodes {
 public:
  using U8 = typename Simd::U8;

  void append(const CodeBytes<Simd>& codes) {
    window_.advance();
    const PerDisparity<Simd> invalid = codes.top & U8::all(128);
    storeHalves(0, codes.low, invalid);
    storeHalves(2, codes.mid, invalid);
    storeHalves(4, codes.high, invalid);
  }

  // The costs of a group of codes, as many as there are blocks, that begin in column blocks * group.
  void storeGroup(const uint32_t* reference, size_t group, uint8_t* dst) const {
#pragma GCC unroll 4
    for (size_t i = 0; i < PerDisparity<Simd>::blocks; ++i) {
      const bool valid = reference[i] != censusInvalid;
      (valid ? costsOf(reference[i], group, i) : PerDisparity<Simd>::all(worstCost)).store(dst + i * disparities);
    }
  }

 private:
  using Window = CodeWindow<Simd, 6>;

  PerDisparity<Simd> costsOf(uint32_t reference, size_t group, size_t i) const {
    U8 tables[6];
    const uint64_t offsets = uint64_t{reference} << 4;
    for (size_t h = 0; h < 6; ++h) tables[h] = U8::repeated16(equalBits() + (offsets >> (4 * h) & 0xF0));
    return PerDisparity<Simd>::each([&](size_t k) {
      const uint8_t* const p = window_.candidates(group, i + k);
      U8 cost = U8::all(worstCost);
      for (size_t h = 0; h < 6; ++h) cost = cost - lookedUp(tables[h], U8::load(p + h * Window::planeBytes));
      return cost;
    });
  }

  void storeHalves(size_t plane, const PerDisparity<Simd>& bytes, const PerDisparity<Simd>& invalid) {
    const U8 half = U8::all(15);
    window_.storeNext(plane, (bytes & half) | invalid);
    window_.storeNext(plane + 1, (bytes.dividedBy16() & half) | invalid);
  }

  // Each half byte has 16 bytes that tell how many bits every half byte has in common with it.
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

}  // namespace nadir
