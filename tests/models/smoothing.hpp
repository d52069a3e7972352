// Smoothing and hole filling once more, pixel by pixel and as plainly as they can be said.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "tests/models/image_ops.hpp"

namespace nadir::test::model {

using Picture16 = Picture<uint16_t>;

// ---- Gauss: weights 1 4 6 4 1 in both directions, borders replicated, one rounding at the end ----

constexpr uint32_t binomial[] = {1, 4, 6, 4, 1};

inline uint32_t clamped(int64_t at, uint32_t count) {
  return static_cast<uint32_t>(std::clamp<int64_t>(at, 0, int64_t{count} - 1));
}

// The sum along a line of `count` values, v(i) being value i.
template <class Value>
uint32_t binomialSum(uint32_t at, uint32_t count, Value v) {
  uint32_t sum = 0;
  for (uint32_t tap = 0; tap < 5; ++tap) sum += binomial[tap] * v(clamped(int64_t{at} + tap - 2, count));
  return sum;
}

// The last two columns of the sums change places.
inline uint32_t gaussColumn(uint32_t x, uint32_t width) {
  if (x == width - 1) return width - 2;
  return x == width - 2 ? width - 1 : x;
}

inline uint32_t gaussRowSum(const Picture16& src, uint32_t x, uint32_t y) {
  return binomialSum(gaussColumn(x, src.width), src.width, [&](uint32_t i) { return uint32_t{src.at(i, y)}; });
}

inline Picture16 gauss(const Picture16& src) {
  Picture<uint32_t> sums{src.width, src.height, std::vector<uint32_t>(src.pixels.size())};
  Picture16 dst = src;
  for (uint32_t y = 0; y < src.height; ++y)
    for (uint32_t x = 0; x < src.width; ++x) sums.at(x, y) = gaussRowSum(src, x, y);
  for (uint32_t y = 0; y < src.height; ++y)
    for (uint32_t x = 0; x < src.width; ++x) {
      const uint32_t sum = binomialSum(y, src.height, [&](uint32_t i) { return sums.at(x, i); });
      dst.at(x, y) = static_cast<uint16_t>((sum + 128) >> 8);
    }
  return dst;
}

// ---- pull-push: holes are pixels of 0 ----

inline uint16_t meanOfData(const Picture16& fine, uint32_t x, uint32_t y) {
  uint32_t count = 0, sum = 0;
  for (uint32_t i = 0; i < 4; ++i) {
    const uint32_t v = fine.at(2 * x + i % 2, 2 * y + i / 2);
    sum += v;
    count += v != 0;
  }
  return static_cast<uint16_t>(count == 0 ? 0 : (sum + count / 2) / count);
}

inline Picture16 halved(const Picture16& fine) {
  Picture16 coarse{fine.width / 2, fine.height / 2, {}};
  for (uint32_t y = 0; y < coarse.height; ++y)
    for (uint32_t x = 0; x < coarse.width; ++x) coarse.pixels.push_back(meanOfData(fine, x, y));
  return coarse;
}

inline void fillHoles(Picture16& fine, const Picture16& coarse) {
  for (uint32_t y = 0; y < fine.height; ++y)
    for (uint32_t x = 0; x < fine.width; ++x) {
      if (fine.at(x, y) != 0) continue;
      const bool last = x == fine.width - 1;
      fine.at(x, y) = coarse.at(last ? coarse.width - 1 : x / 2, std::min(y / 2, coarse.height - 1));
    }
}

// The model holds for pictures of 2 x 2 pixels or more whose smaller side is below 4096.
inline Picture16 pullPush(const Picture16& src) {
  std::vector<Picture16> levels{src};
  do levels.push_back(halved(levels.back()));
  while (levels.back().width != 1 && levels.back().height != 1);
  for (size_t level = levels.size() - 1; level > 0; --level) fillHoles(levels[level - 1], levels[level]);
  return levels[0];
}

}  // namespace nadir::test::model
