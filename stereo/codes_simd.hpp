// A row of census codes, laid out so that the codes of a pixel's 64 candidates are plain loads, and their costs.
//
// The codes of every `blocks`-th column lie together, as the disparities do in Costs, byte by byte or half byte by half
// byte in planes of their own:
//
//     plane 0: columns 0 4 8 .. | columns 1 5 9 .. | columns 2 6 .. | columns 3 7 ..     plane 1: the same    ...
//
// Behind the last column come invalid codes.
#pragma once

#include <initializer_list>
#include <type_traits>

#include "stereo/costs_simd.hpp"
#include "stereo/rows.hpp"

namespace nadir {

// Where the codes lie.
template <class Simd>
struct CodeColumns {
  using U8 = typename Simd::U8;
  static constexpr size_t blocks = Costs<Simd>::blocks;

  uint8_t* memory;
  size_t blockBytes, planeBytes;

  CodeColumns(uint8_t* start, size_t codes)
      : memory(start), blockBytes(codeGroups(codes) * U8::lanes), planeBytes(blockBytes * blocks) {}

  // Lane 0 of block k of the codes from `column` on.
  uint8_t* at(size_t column, size_t k) const {
    return memory + (column + k) % blocks * blockBytes + (column + k) / blocks;
  }

  // Calls store(k-th bytes in order, where they belong) for all codes, by groups of 64.
  template <class Group>
  void split(const uint32_t* codes, size_t n, Group group) const {
    for (size_t i = 0; i < codeGroups(n) * disparities; i += disparities) {
      if (i + disparities <= n) {
        group(codes + i, i);
        continue;
      }
      uint32_t rest[disparities];
      for (size_t k = 0; k < disparities; ++k) rest[k] = i + k < n ? codes[i + k] : censusInvalid;
      group(rest, i);
    }
  }

  void store(const Costs<Simd>& bytes, size_t plane, size_t column) const {
    const Costs<Simd> dealt = bytes.dealt();
    for (size_t k = 0; k < blocks; ++k) dealt.block[k].store(at(column, k) + plane * planeBytes);
  }
};

// The four bytes of 64 codes.
template <class Simd>
struct CodeBytes {
  Costs<Simd> low, mid, high, top;

  static CodeBytes load(const uint32_t* codes) {
    CodeBytes out;
    for (size_t k = 0; k < Costs<Simd>::blocks; ++k) {
      const auto words = Simd::WordBytes::load(codes + k * Simd::U8::lanes);
      out.low.block[k] = words.low;
      out.mid.block[k] = words.mid;
      out.high.block[k] = words.high;
      out.top.block[k] = words.top;
    }
    return out;
  }
};

// For processors that count the bits of bytes: three planes of bytes and one that holds the worst cost where a code is
// invalid.
template <class Simd>
class CountedCodes {
 public:
  using U8 = typename Simd::U8;

  CountedCodes(const uint32_t* codes, size_t n, uint8_t* memory) : columns_(memory, n) {
    const CodeColumns<Simd> columns = columns_;
    columns.split(codes, n, [&](const uint32_t* group, size_t i) {
      const auto bytes = CodeBytes<Simd>::load(group);
      columns.store(bytes.low, 0, i);
      columns.store(bytes.mid, 1, i);
      columns.store(bytes.high, 2, i);
      columns.store(Costs<Simd>::each([&](size_t k) { return min(bytes.top.block[k], U8::all(worstCost)); }), 3, i);
    });
  }

  // The costs of one valid code with those of column i and the 63 behind it.
  Costs<Simd> costs(uint32_t reference, size_t i) const {
    const U8 low = U8::all(static_cast<uint8_t>(reference)), mid = U8::all(static_cast<uint8_t>(reference >> 8)),
             high = U8::all(static_cast<uint8_t>(reference >> 16));
    const size_t plane = columns_.planeBytes;
    return Costs<Simd>::each([&](size_t k) {
      const uint8_t* const p = columns_.at(i, k);
      const U8 different = bitCount(low ^ U8::load(p)) + bitCount(mid ^ U8::load(p + plane)) +
                           bitCount(high ^ U8::load(p + 2 * plane));
      return max(different, U8::load(p + 3 * plane));
    });
  }

 private:
  CodeColumns<Simd> columns_;
};

// For processors that look bytes up in a table of 16: six planes of half bytes. The tables count the bits that are
// equal, so that an index with its top bit set, for which the look-up gives 0, makes the cost of an invalid code.
template <class Simd>
class LookedUpCodes {
 public:
  using U8 = typename Simd::U8;

  LookedUpCodes(const uint32_t* codes, size_t n, uint8_t* memory) : columns_(memory, n) {
    const CodeColumns<Simd> columns = columns_;
    columns.split(codes, n, [&](const uint32_t* group, size_t i) {
      const auto bytes = CodeBytes<Simd>::load(group);
      size_t plane = 0;
      for (const Costs<Simd>* b : {&bytes.low, &bytes.mid, &bytes.high}) {
        columns.store(Costs<Simd>::each([&](size_t k) { return lowerHalf(b->block[k]) | invalid(bytes, k); }), plane++,
                      i);
        columns.store(Costs<Simd>::each([&](size_t k) { return upperNibbles(b->block[k]) | invalid(bytes, k); }),
                      plane++, i);
      }
    });
  }

  Costs<Simd> costs(uint32_t reference, size_t i) const {
    U8 tables[6];
    const uint64_t offsets = uint64_t{reference} << 4;
    for (size_t h = 0; h < 6; ++h) tables[h] = U8::repeated16(&equalBits().v[0][0] + (offsets >> (4 * h) & 0xF0));
    const size_t plane = columns_.planeBytes;
    return Costs<Simd>::each([&](size_t k) {
      const uint8_t* const p = columns_.at(i, k);
      U8 cost = U8::all(worstCost);
      for (size_t h = 0; h < 6; ++h) cost = cost - lookedUp(tables[h], U8::load(p + h * plane));
      return cost;
    });
  }

 private:
  static U8 lowerHalf(const U8& a) { return a & U8::all(15); }
  static U8 invalid(const CodeBytes<Simd>& bytes, size_t k) { return bytes.top.block[k] & U8::all(128); }

  struct Table {
    uint8_t v[16][16] = {};
    constexpr Table() {
      for (unsigned a = 0; a < 16; ++a) {
        for (unsigned b = 0; b < 16; ++b) {
          for (unsigned bit = 1; bit < 16; bit *= 2) v[a][b] = static_cast<uint8_t>(v[a][b] + ((a & bit) == (b & bit)));
        }
      }
    }
  };
  static const Table& equalBits() {
    alignas(16) static constexpr Table table;
    return table;
  }

  CodeColumns<Simd> columns_;
};

template <class Simd>
class Codes : public std::conditional_t<Simd::looksUp, LookedUpCodes<Simd>, CountedCodes<Simd>> {
 public:
  using std::conditional_t<Simd::looksUp, LookedUpCodes<Simd>, CountedCodes<Simd>>::conditional_t;

  // The costs of one code with those of column i and the 63 behind it.
  Costs<Simd> costsOf(uint32_t reference, size_t i) const {
    return reference == censusInvalid ? Costs<Simd>::all(worstCost) : this->costs(reference, i);
  }
};

}  // namespace nadir
