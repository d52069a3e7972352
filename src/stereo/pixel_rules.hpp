// The per-pixel rules of the matcher, one number at a time: what every vector kernel must agree with, and what it uses
// for the pixels that do not fill a vector. Each instruction set has a copy of its own (`Simd` is its name), so that
// the linker never takes one set's code for another's.
#pragma once

#include "stereo/kernels.hpp"

namespace nadir {

template <class Simd>
struct PixelRules {
  static uint32_t censusCode(const uint16_t* const rows[5], size_t i) {
    const uint16_t centre = rows[2][i + 2];
    if (centre == 0) return censusInvalid;
    uint32_t code = 0;
    for (size_t y = 0; y < 5; ++y) {
      for (size_t x = 0; x < 5; ++x) {
        if (y != 2 || x != 2) code = code << 1 | (rows[y][i + x] < centre);
      }
    }
    return code;
  }

  static uint8_t penalty(uint16_t pixel, uint16_t predecessor) {
    const int difference = pixel < predecessor ? predecessor - pixel : pixel - predecessor;
    const int p2 = flatPenalty - (difference >> 4);
    return static_cast<uint8_t>(p2 < edgePenalty ? edgePenalty : p2);
  }

  static unsigned bits(uint32_t x) {
    x = x - ((x >> 1) & 0x55555555u);
    x = (x & 0x33333333u) + ((x >> 2) & 0x33333333u);
    x = (x + (x >> 4)) & 0x0F0F0F0Fu;
    x = x + (x >> 8);
    return (x + (x >> 16)) & 63;
  }

  // The Hamming distance of two codes.
  static uint8_t cost(uint32_t a, uint32_t b) {
    return a == censusInvalid || b == censusInvalid ? worstCost : static_cast<uint8_t>(bits(a ^ b));
  }

  // The same in the vectors' way, which agrees for the codes that a census makes: what is set in a top byte is set in
  // the other three.
  static uint8_t costByBytes(uint32_t a, uint32_t b) {
    const uint32_t top = (a | b) >> 24;
    return static_cast<uint8_t>(bits(((a ^ b) & 0xFFFFFFu) | top << 16 | top << 8 | top));
  }

  // The costs of one pixel at `count` disparities in the vectors' way: blocks of 16 by bytes, the rest exactly.
  static void costsOfAnyCodes(const uint32_t* first, uint32_t reference, size_t count, uint8_t* costs) {
    const size_t inBlocks = count / 16 * 16;
    for (size_t d = 0; d < inBlocks; ++d) costs[d] = costByBytes(first[d], reference);
    for (size_t d = inBlocks; d < count; ++d) costs[d] = cost(first[d], reference);
  }

  // One past the largest cost that counts as close to a winner of cost m0.
  static unsigned closeBelow(uint8_t m0, uint32_t uniquenessRatio) {
    const unsigned margin = (uniquenessRatio * m0 >> 7) & 255;
    return m0 + (margin < 6 ? 6 : margin);
  }

  // The largest cost that counts as close, as far as a byte holds one.
  static uint8_t lastClose(uint8_t m0, uint32_t uniquenessRatio) {
    const unsigned last = closeBelow(m0, uniquenessRatio) - 1;
    return static_cast<uint8_t>(last < 255 ? last : 255);
  }

  // The winner k in 1/16 pixel, moved by the equiangular fit through its own and its neighbours' costs: half a pixel
  // times (a - b) / max(a, b), rounded to nearest, halves towards k.
  static uint16_t refined(unsigned k, unsigned costBelow, unsigned cost, unsigned costAbove) {
    const unsigned a = costBelow - cost, b = costAbove - cost, value = k * 16;
    if (a == 0 && b == 0) return static_cast<uint16_t>(value);
    if (a > b) return static_cast<uint16_t>(value + (8 - (a + 16 * b) / (2 * a)));
    return static_cast<uint16_t>(value - (8 - (b + 16 * a) / (2 * b)));
  }
};

}  // namespace nadir
