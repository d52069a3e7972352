// Smoothing, hole filling and averaging of one row as plain loops that the compiler turns into vectors of whatever it
// compiles for. Each instruction set includes this file once and names itself by a type of its own, so that the linker
// never takes one set's code for another's.
#pragma once

#include <cstring>

#include "core/pixels.hpp"
#include "imgproc/smooth_kernels.hpp"

namespace nadir {

template <class Target>
struct SmoothRows {
  static uint16_t weighted(uint16_t a, uint16_t b, uint16_t c, uint16_t d, uint16_t e) {
    return static_cast<uint16_t>(a + e + 4 * (b + c + d) + 2 * c);
  }

  static uint16_t upperByte(uint16_t pixel) { return static_cast<uint16_t>(pixel >> 8); }

  // The sum of whole pixels wraps at 16 bits; without the upper bytes' part it is that of the lower bytes, which fits.
  static void gaussAcross(const uint16_t* p, const GaussSums& sums, size_t n) {
    uint16_t *highs = sums.high, *lows = sums.low;
    forEachPixel(n, [=](size_t i) {
      const uint16_t whole = weighted(p[i], p[i + 1], p[i + 2], p[i + 3], p[i + 4]);
      const uint16_t high =
          weighted(upperByte(p[i]), upperByte(p[i + 1]), upperByte(p[i + 2]), upperByte(p[i + 3]), upperByte(p[i + 4]));
      highs[i] = high;
      lows[i] = static_cast<uint16_t>(whole - (high << 8));
    });
  }

  // The sum of the low bytes leaves room for the half that rounds.
  static uint16_t rounded256th(uint16_t high, uint16_t low) {
    const uint16_t lowAndHalf = static_cast<uint16_t>(low + 128);
    return static_cast<uint16_t>(high + upperByte(lowAndHalf));
  }

  static void gaussDown(const GaussRows& rows, uint16_t* first, uint16_t* second, size_t n) {
    const GaussSums a = rows.row[0], b = rows.row[1], c = rows.row[2];
    const GaussSums d = rows.row[3], e = rows.row[4], f = rows.row[5];
    forEachPixel(n, [=](size_t i) {
      const uint16_t firstHigh = weighted(a.high[i], b.high[i], c.high[i], d.high[i], e.high[i]);
      const uint16_t secondHigh = weighted(b.high[i], c.high[i], d.high[i], e.high[i], f.high[i]);
      const uint16_t firstLow = weighted(a.low[i], b.low[i], c.low[i], d.low[i], e.low[i]);
      const uint16_t secondLow = weighted(b.low[i], c.low[i], d.low[i], e.low[i], f.low[i]);
      first[i] = rounded256th(firstHigh, firstLow);
      second[i] = rounded256th(secondHigh, secondLow);
    });
  }

  // Loads two neighbours as one word: which of them lies in the upper half does not matter here.
  static uint32_t loadPair(const uint16_t* p) {
    uint32_t pair;
    std::memcpy(&pair, p, sizeof pair);
    return pair;
  }

  // The sum is divided by 1, 2, 3 or 4. Where nothing is known it is 0, and so is the result.
  static uint32_t rounded(uint32_t sum, uint32_t knownCount) {
    const uint32_t numerator = sum + (knownCount >> 1);
    const uint32_t byTwoOrOne = knownCount == 2 ? numerator >> 1 : numerator;
    const uint32_t byFourOrLess = knownCount == 4 ? numerator >> 2 : byTwoOrOne;
    return knownCount == 3 ? numerator / 3 : byFourOrLess;
  }

  static void pull(const uint16_t* above, const uint16_t* below, uint16_t* coarse, size_t n) {
    forEachPixel(n, [=](size_t i) {
      const uint32_t upper = loadPair(above + 2 * i), lower = loadPair(below + 2 * i);
      const uint32_t a = upper & 0xFFFF, b = upper >> 16, c = lower & 0xFFFF, d = lower >> 16;
      const uint32_t holes = uint32_t{a == 0} + uint32_t{b == 0} + uint32_t{c == 0} + uint32_t{d == 0};
      coarse[i] = static_cast<uint16_t>(rounded(a + b + c + d, 4 - holes));
    });
  }

  static void push(const uint16_t* coarse, const uint16_t* src, uint16_t* dst, size_t n) {
    forEachPixel(n, [=](size_t i) {
      const uint32_t pair = loadPair(src + 2 * i), fill = coarse[i];
      const uint32_t lower = pair & 0xFFFF ? 0 : fill, upper = pair >> 16 ? 0 : fill << 16;
      const uint32_t filled = pair | lower | upper;
      std::memcpy(dst + 2 * i, &filled, sizeof filled);
    });
  }

  static void halve(const uint16_t* src, size_t srcStep, uint16_t* coarse, size_t coarseStep) {
    const size_t srcPixels = 2 * (srcStep / sizeof *src), coarsePixels = coarseStep / sizeof *coarse;
    for (size_t y = 0; y < halvedHeight; ++y) {
      const uint16_t* const in = src + y * srcPixels;
      uint16_t* const out = coarse + y * coarsePixels;
      forEachPixel(halvedWidth, [=](size_t i) { out[i] = in[2 * i]; });
    }
  }

  // The division is one of doubles, which vectors have: both numbers and the truncated quotient are exact.
  static void mean(const int32_t* sums, const uint16_t* counts, int32_t limit, uint16_t* means, size_t n) {
    forEachPixel(n, [=](size_t i) {
      const int32_t count = counts[i];
      const int32_t quotient = static_cast<int32_t>(static_cast<double>(sums[i]) / (count + (count == 0)));
      means[i] = static_cast<uint16_t>(quotient & -(count > limit));
    });
  }

  static constexpr SmoothKernels table() {
    SmoothKernels kernels = {};
    kernels.gaussAcross = gaussAcross;
    kernels.gaussDown = gaussDown;
    kernels.pull = pull;
    kernels.push = push;
    kernels.halve = halve;
    kernels.mean = mean;
    return kernels;
  }
};

}  // namespace nadir
