// The stereo matcher once more, as slowly and plainly as it can be said: one pixel, one disparity at a time.
// It shares nothing with the library but the meaning of the results.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <utility>
#include <vector>

namespace nadir::test::model {

using Bytes = std::vector<uint8_t>;
using Words = std::vector<uint16_t>;
using Codes = std::vector<uint32_t>;

constexpr uint32_t invalidCode = 0xFFAAA555u;
constexpr uint8_t noCost = 24;
constexpr uint32_t searchedDisparities = 64;
constexpr uint32_t smallPenalty = 7;

inline uint8_t low8(int64_t v) { return static_cast<uint8_t>(v & 255); }

inline uint32_t bitsIn(uint32_t v) {
  uint32_t n = 0;
  for (; v != 0; v >>= 1) n += v & 1;
  return n;
}

// ---- census ----

inline uint32_t censusCode(const Words& src, uint32_t width, uint32_t x, uint32_t y) {
  const uint16_t centre = src[y * width + x];
  if (centre == 0) return invalidCode;
  uint32_t code = 0;
  for (uint32_t ny = y - 2; ny <= y + 2; ++ny) {
    for (uint32_t nx = x - 2; nx <= x + 2; ++nx) {
      if (nx == x && ny == y) continue;
      code = code << 1 | (src[ny * width + nx] < centre ? 1u : 0u);
    }
  }
  return code;
}

// The codes of a picture; its frame keeps what `before` holds.
inline Codes census(const Words& src, uint32_t width, uint32_t height, Codes before) {
  for (uint32_t y = 2; y + 2 < height; ++y) {
    for (uint32_t x = 2; x + 2 < width; ++x) before[y * width + x] = censusCode(src, width, x, y);
  }
  return before;
}

// ---- matching costs ----

inline uint8_t plainCost(uint32_t a, uint32_t b) {
  if (a == invalidCode || b == invalidCode) return noCost;
  return low8(bitsIn(a ^ b));
}

// One lane of the vector variant: what is set in a top byte is set in each of the three low bytes.
inline uint8_t laneCost(uint32_t a, uint32_t b) {
  const uint32_t top = a >> 24 | b >> 24;
  uint32_t bits = 0;
  for (uint32_t byte = 0; byte < 3; ++byte) bits += bitsIn(((a ^ b) >> (8 * byte) & 255) | top);
  return low8(bits);
}

enum class Variant { scalar, vector };

// `first` and `ref` are the codes of one row.
inline Bytes costRow(const Codes& first, const Codes& ref, uint32_t height, uint32_t numDisparities, uint32_t row,
                     Variant variant) {
  const uint32_t width = static_cast<uint32_t>(ref.size());
  const uint32_t stride = variant == Variant::scalar ? numDisparities : searchedDisparities;
  Bytes costs(size_t{width} * stride, noCost);
  if (row < 2 || row + 2 >= height || width < 5) return costs;
  for (uint32_t x = 2; x + 2 < width; ++x) {
    const uint32_t count = std::min(numDisparities, width - 2 - x);
    const uint32_t inBlocks = variant == Variant::vector ? count / 16 * 16 : 0;
    for (uint32_t d = 0; d < count; ++d) {
      costs[x * stride + d] = d < inBlocks ? laneCost(first[x + d], ref[x]) : plainCost(first[x + d], ref[x]);
    }
  }
  return costs;
}

// ---- path costs ----

// The path costs of one pixel and the smallest of them.
struct Slot {
  Bytes costs;
  uint8_t smallest;
};

// One direction (0 left, 1 up-left, 2 up, 3 up-right), fed row by row from the top.
class Path {
 public:
  Path(uint32_t dir, uint32_t width, uint32_t numDisparities, int32_t p1)
      : dir_(dir), width_(width), d_(numDisparities), p1_(low8(p1)) {}

  void nextRow(const Bytes& costs, const Bytes& p2, Bytes& sums) {
    std::vector<Slot> current;
    for (uint32_t x = 0; x < width_; ++x) {
      current.push_back(pixel(&costs[x * d_], p2[x], predecessor(x, current)));
      for (uint32_t d = 0; d < d_; ++d) sums[x * d_ + d] = low8(sums[x * d_ + d] + current[x].costs[d]);
    }
    above_ = std::move(current);
  }

  // The pixels of the row done last.
  const std::vector<Slot>& slots() const { return above_; }

 private:
  Slot start() const { return {Bytes(d_, low8(255 - p1_)), 0}; }

  Slot predecessor(uint32_t x, const std::vector<Slot>& current) const {
    if (dir_ == 0) return x == 0 ? start() : current[x - 1];
    if (above_.empty()) return start();
    if (dir_ == 1) return x == 0 ? start() : above_[x - 1];
    if (dir_ == 2) return above_[x];
    return x + 1 == width_ ? start() : above_[x + 1];
  }

  Slot pixel(const uint8_t* costs, uint8_t p2, const Slot& before) const {
    const auto costBefore = [&](int64_t d) {
      return d < 0 || d >= int64_t{d_} ? low8(255 - p1_) : before.costs[static_cast<size_t>(d)];
    };
    Slot slot{Bytes(d_), 255};
    for (int64_t d = 0; d < int64_t{d_}; ++d) {
      const uint8_t stay = costBefore(d);
      const uint8_t down = low8(costBefore(d - 1) + p1_);
      const uint8_t up = low8(costBefore(d + 1) + p1_);
      const uint8_t jump = low8(before.smallest + p2);
      const uint8_t best = std::min({stay, down, up, jump});
      const uint8_t cost = low8(costs[d] + best - before.smallest);
      slot.costs[static_cast<size_t>(d)] = cost;
      slot.smallest = std::min(slot.smallest, cost);
    }
    return slot;
  }

  uint32_t dir_, width_, d_;
  uint8_t p1_;
  std::vector<Slot> above_;
};

// ---- penalties ----

inline uint8_t p2Of(int32_t here, int32_t before) {
  return static_cast<uint8_t>(std::max(39 - (std::abs(here - before) >> 4), 17));
}

// The maps of the directions left, up-left, up, up-right.
inline std::array<Bytes, 4> p2Maps(const Words& image, uint32_t width, uint32_t height) {
  constexpr int64_t stepX[4] = {-1, -1, 0, 1};
  constexpr int64_t stepY[4] = {0, -1, -1, -1};
  std::array<Bytes, 4> maps;
  for (size_t dir = 0; dir < 4; ++dir) {
    for (int64_t y = 0; y < height; ++y) {
      for (int64_t x = 0; x < width; ++x) {
        const int64_t px = x + stepX[dir], py = y + stepY[dir];
        const bool inside = px >= 0 && px < width && py >= 0;
        const auto at = [&](int64_t ax, int64_t ay) { return image[static_cast<size_t>(ay * width + ax)]; };
        maps[dir].push_back(inside ? p2Of(at(x, y), at(px, py)) : uint8_t{39});
      }
    }
  }
  return maps;
}

// ---- selection ----

struct Minimum {
  uint8_t value;
  uint32_t index;
};

inline Minimum findMin(const uint8_t* costs, uint32_t count, Variant variant) {
  Minimum best{255, 255};
  for (uint32_t i = 0; i < count; ++i) {
    if (costs[i] < best.value) best = {costs[i], i};
  }
  const bool foundNone = best.value == 255 && count > 0;
  if (foundNone && variant == Variant::vector) best.index = 0;
  return best;
}

struct Candidate {
  uint32_t cost, index;
};

inline std::array<Candidate, 4> fourSmallest(const uint8_t* costs, uint32_t maxIndex) {
  std::vector<uint32_t> keys;
  for (uint32_t i = 0; i <= maxIndex; ++i) keys.push_back(costs[i] * 256u + (i & 255));
  for (uint32_t k = maxIndex + 1; k <= 3; ++k) keys.push_back(255u * 256 + k);
  std::sort(keys.begin(), keys.end());
  std::array<Candidate, 4> four;
  for (size_t i = 0; i < 4; ++i) four[i] = {keys[i] >> 8, keys[i] & 255};
  return four;
}

inline uint32_t threshold(uint32_t smallest, uint32_t ratio) {
  const uint32_t margin = static_cast<uint32_t>((uint64_t{ratio} * smallest >> 7) & 255);
  return smallest + std::max(margin, 6u);
}

inline int32_t peakCheck(const uint8_t* costs, uint32_t maxIndex, uint32_t ratio) {
  const auto four = fourSmallest(costs, maxIndex);
  const int64_t winner = four[0].index;
  for (size_t j = 1; j < 4; ++j) {
    const bool close = four[j].cost < threshold(four[0].cost, ratio);
    if (close && std::abs(int64_t{four[j].index} - winner) > 1) return 0;
  }
  if (winner == 1 || winner >= int64_t{maxIndex} - 1) return 0;
  return static_cast<int32_t>(winner);
}

// The disparity in 1/16 pixel of winner k.
inline uint16_t subPixel(const uint8_t* costs, uint32_t k) {
  const uint32_t a = static_cast<uint32_t>(costs[k - 1] - costs[k]);
  const uint32_t b = static_cast<uint32_t>(costs[k + 1] - costs[k]);
  uint32_t value = k * 16;
  if (a == 0 && b == 0) return static_cast<uint16_t>(value);
  if (a > b) {
    value += 8 - (a + 16 * b) / (2 * a);
  } else {
    value -= 8 - (b + 16 * a) / (2 * b);
  }
  return static_cast<uint16_t>(value);
}

// `sums` are all 64 sums of pixel x.
inline uint8_t distinctiveness(const uint8_t* sums, uint32_t width, uint32_t x) {
  Bytes costs(sums, sums + searchedDisparities);
  const uint32_t n = std::min(width - x, searchedDisparities);
  const Minimum first = findMin(costs.data(), n, Variant::vector);
  if (first.index == 255) return 0;
  costs[first.index == 0 ? first.index : first.index - 1] = 255;
  costs[first.index] = 255;
  costs[first.index == n - 1 ? first.index : first.index + 1] = 255;
  const Minimum second = findMin(costs.data(), n, Variant::vector);
  if (second.index == 255) return low8(255 - first.value);
  return low8(std::abs(first.value - second.value));
}

// ---- drivers ----

// Everything that matching a pair computes on its way.
struct Matching {
  std::array<Bytes, 4> p2;
  Bytes costs, sums;
};

inline Bytes rowOf(const Bytes& map, uint32_t width, uint32_t y) {
  const auto from = map.begin() + static_cast<std::ptrdiff_t>(size_t{y} * width);
  return Bytes(from, from + static_cast<std::ptrdiff_t>(width));
}

inline Codes rowOf(const Codes& map, uint32_t width, uint32_t y) {
  const auto from = map.begin() + static_cast<std::ptrdiff_t>(size_t{y} * width);
  return Codes(from, from + static_cast<std::ptrdiff_t>(width));
}

inline Matching match(const Codes& first, const Codes& ref, const Words& image, uint32_t width, uint32_t height) {
  Matching all;
  all.p2 = p2Maps(image, width, height);
  std::vector<Path> paths;
  for (uint32_t dir = 0; dir < 4; ++dir) paths.emplace_back(dir, width, searchedDisparities, smallPenalty);
  for (uint32_t y = 0; y < height; ++y) {
    const Bytes costs =
        costRow(rowOf(first, width, y), rowOf(ref, width, y), height, searchedDisparities, y, Variant::vector);
    Bytes sums(costs.size(), 0);
    for (size_t dir = 0; dir < 4; ++dir) paths[dir].nextRow(costs, rowOf(all.p2[dir], width, y), sums);
    all.costs.insert(all.costs.end(), costs.begin(), costs.end());
    all.sums.insert(all.sums.end(), sums.begin(), sums.end());
  }
  return all;
}

// The winning index of every pixel, 0 for none.
inline Bytes peaks(const Bytes& sums, uint32_t width, uint32_t height, uint32_t ratio) {
  Bytes map(size_t{width} * height, 0);
  for (uint32_t y = 0; y < height; ++y) {
    for (uint32_t x = 0; x + 4 < width; ++x) {
      const size_t at = size_t{y} * width + x;
      map[at] =
          low8(peakCheck(&sums[at * searchedDisparities], std::min(searchedDisparities - 1, width - 1 - x), ratio));
    }
  }
  return map;
}

inline Words disparities(const Bytes& sums, const Bytes& peakMap) {
  Words image(peakMap.size(), 0);
  for (size_t at = 0; at < image.size(); ++at) {
    if (peakMap[at] != 0) image[at] = subPixel(&sums[at * searchedDisparities], peakMap[at]);
  }
  return image;
}

inline Bytes distinctivenessMap(const Bytes& sums, uint32_t width, uint32_t height) {
  Bytes map(size_t{width} * height, 255);
  for (uint32_t y = 0; y < height; ++y) {
    for (uint32_t x = 0; x + 4 < width; ++x) {
      const size_t at = size_t{y} * width + x;
      map[at] = distinctiveness(&sums[at * searchedDisparities], width, x);
    }
  }
  return map;
}

// ---- clean-up of a disparity image: mask, median, fill or drop ----

inline Words maskOut(Words image, const Bytes& mask) {
  for (size_t i = 0; i < image.size(); ++i) {
    if (mask[i] != 0) image[i] = 0;
  }
  return image;
}

inline std::array<uint16_t, 9> window(const Words& image, uint32_t width, uint32_t x, uint32_t y) {
  std::array<uint16_t, 9> values;
  size_t i = 0;
  for (uint32_t ny = y - 1; ny <= y + 1; ++ny) {
    for (uint32_t nx = x - 1; nx <= x + 1; ++nx) values[i++] = image[ny * width + nx];
  }
  return values;
}

// Pixels are made in pairs from column 1, so an odd width leaves the last column but one at 0.
inline Words medianOrZero(const Words& image, uint32_t width, uint32_t height) {
  Words out(image.size(), 0);
  const uint32_t columns = width / 2 * 2;
  for (uint32_t y = 1; y + 1 < height; ++y) {
    for (uint32_t x = 1; x + 1 < columns; ++x) {
      auto values = window(image, width, x, y);
      std::sort(values.begin(), values.end());
      out[y * width + x] = values[4];
    }
  }
  return out;
}

inline uint16_t cleanPixel(const std::array<uint16_t, 9>& w) {
  uint32_t neighbours = 0;
  uint16_t last = 0;
  for (size_t i = 0; i < 9; ++i) {
    if (i == 4 || w[i] == 0) continue;
    ++neighbours;
    last = w[i];
  }
  if (w[4] == 0) return last;
  return neighbours < 4 ? uint16_t{0} : w[4];
}

inline Words clean(const Words& image, uint32_t width, uint32_t height) {
  Words out = image;
  for (uint32_t y = 1; y + 1 < height; ++y) {
    for (uint32_t x = 1; x + 1 < width; ++x) out[y * width + x] = cleanPixel(window(image, width, x, y));
  }
  return out;
}

inline Words postproc(const Words& disparity, const Bytes& mask, uint32_t width, uint32_t height) {
  return clean(medianOrZero(maskOut(disparity, mask), width, height), width, height);
}

}  // namespace nadir::test::model
