// The 64 numbers of one pixel, one for each disparity, in registers.
//
// The disparities are dealt out to the registers like cards: with four registers, the first holds disparities 0, 4, 8
// and so on, the second 1, 5, 9. What lies one disparity lower or higher is then another register as it is, but for the
// first and the last register, where a neighbour lies one lane away. So a step along a path moves lanes twice, not
// twice for each register.
#pragma once

#include "stereo/kernels.hpp"

namespace nadir {

template <class Simd>
struct PerDisparity {
  using U8 = typename Simd::U8;
  static constexpr size_t blocks = disparities / U8::lanes;

  U8 block[blocks];

  // The number of disparity d lies here.
  static constexpr size_t place(size_t d) { return d % blocks * U8::lanes + d / blocks; }

  template <class F>
  static PerDisparity each(F f) {
    PerDisparity out;
    for (size_t k = 0; k < blocks; ++k) out.block[k] = f(k);
    return out;
  }
  static PerDisparity all(uint8_t x) {
    return each([=](size_t) { return U8::all(x); });
  }
  static PerDisparity load(const uint8_t* p) {
    return each([=](size_t k) { return U8::load(p + k * U8::lanes); });
  }
  void store(uint8_t* p) const {
    for (size_t k = 0; k < blocks; ++k) block[k].store(p + k * U8::lanes);
  }

  // Each number's own disparity.
  static PerDisparity ownDisparities() {
    static constexpr struct Table {
      uint8_t v[disparities] = {};
      constexpr Table() {
        for (size_t d = 0; d < disparities; ++d) v[place(d)] = static_cast<uint8_t>(d);
      }
    } table;
    return load(table.v);
  }

  // dealt() deals out numbers that lie in order of disparity, inOrder() brings them back.
  PerDisparity dealt() const {
    if constexpr (blocks == 2) {
      const auto a = unzipped(block[0], block[1]);
      return {{a.first, a.second}};
    } else if constexpr (blocks == 4) {
      const auto a = unzipped(block[0], block[1]), b = unzipped(block[2], block[3]);
      const auto even = unzipped(a.first, b.first), odd = unzipped(a.second, b.second);
      return {{even.first, odd.first, even.second, odd.second}};
    } else {
      static_assert(blocks == 1);
      return *this;
    }
  }
  PerDisparity inOrder() const {
    if constexpr (blocks == 2) {
      const auto a = zipped(block[0], block[1]);
      return {{a.first, a.second}};
    } else if constexpr (blocks == 4) {
      const auto even = zipped(block[0], block[2]), odd = zipped(block[1], block[3]);
      const auto a = zipped(even.first, odd.first), b = zipped(even.second, odd.second);
      return {{a.first, a.second, b.first, b.second}};
    } else {
      static_assert(blocks == 1);
      return *this;
    }
  }

  friend PerDisparity operator+(const PerDisparity& a, const PerDisparity& b) {
    return each([&](size_t k) { return a.block[k] + b.block[k]; });
  }
  friend PerDisparity operator-(const PerDisparity& a, const U8& b) {
    return each([&](size_t k) { return a.block[k] - b; });
  }
  friend PerDisparity min(const PerDisparity& a, const U8& b) {
    return each([&](size_t k) { return min(a.block[k], b); });
  }
  friend PerDisparity operator&(const PerDisparity& a, const U8& b) {
    return each([&](size_t k) { return a.block[k] & b; });
  }
  PerDisparity dividedBy16() const {
    return each([&](size_t k) { return wordsDividedBy16(block[k]); });
  }
  friend PerDisparity operator|(const PerDisparity& a, const PerDisparity& b) {
    return each([&](size_t k) { return a.block[k] | b.block[k]; });
  }

  // The smallest number among those of one lane, in each lane; and of all, in every lane.
  U8 smallestByLane() const {
    U8 least = block[0];
    for (size_t k = 1; k < blocks; ++k) least = min(least, block[k]);
    return least;
  }
  U8 smallest() const { return smallestInAll(smallestByLane()); }
};

// Writes the numbers of n pixels in order of disparity.
template <class Simd>
void storeInOrder(const uint8_t* dealt, size_t n, uint8_t* dst) {
  for (size_t at = 0; at < n * disparities; at += disparities) {
    PerDisparity<Simd>::load(dealt + at).inOrder().store(dst + at);
  }
}

}  // namespace nadir
