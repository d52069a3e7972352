// The road's rows as plain loops that the compiler turns into vectors of whatever it compiles for. Each instruction set
// includes this file once and names itself by a type of its own, so that the linker never takes one set's code for
// another's.
#pragma once

#include <cstring>

#include "core/pixels.hpp"
#include "ground/kernels/kernels.hpp"

namespace nadir::ground {

template <class Target>
struct RoadRows {
  // ---- pictures ----

  static uint16_t wordAt(const void* words, size_t i) {
    uint16_t word;
    std::memcpy(&word, static_cast<const uint8_t*>(words) + i * sizeof word, sizeof word);
    return word;
  }

  static uint16_t widened(uint8_t pixel) { return pixel == 0 ? uint16_t{1} : static_cast<uint16_t>(pixel * 16); }

  static void take16(const void* src, uint16_t* dst, size_t n) { std::memcpy(dst, src, n * sizeof *dst); }

  static void take8(const void* src, uint16_t* dst, size_t n) {
    const auto* pixels = static_cast<const uint8_t*>(src);
    forEachPixel(n, [=](size_t i) { dst[i] = widened(pixels[i]); });
  }

  static void mirror16(const void* src, uint16_t* dst, size_t n) {
    forEachPixel(n, [=](size_t i) { dst[i] = wordAt(src, n - 1 - i); });
  }

  static void mirror8(const void* src, uint16_t* dst, size_t n) {
    const auto* pixels = static_cast<const uint8_t*>(src);
    forEachPixel(n, [=](size_t i) { dst[i] = widened(pixels[n - 1 - i]); });
  }

  static void mirrorMask(const uint8_t* src, uint8_t* dst, size_t n) {
    forEachPixel(n, [=](size_t i) { dst[i] = src[n - 1 - i]; });
  }

  static void mirrorCodes(const uint32_t* src, uint32_t* dst, size_t n) {
    forEachPixel(n, [=](size_t i) { dst[i] = src[n - 1 - i]; });
  }

  static uint32_t roundedMean(uint32_t sum, uint32_t count) {
    const uint32_t more = sum + count / 2;
    return count == 3 ? more / 3 : more >> (count / 2);
  }

  static void halve(const uint16_t* top, const uint16_t* bottom, uint16_t* half, size_t n) {
    forEachPixel(n, [=](size_t i) {
      const uint32_t a = top[2 * i], b = top[2 * i + 1], c = bottom[2 * i], d = bottom[2 * i + 1];
      const uint32_t count = uint32_t{a != 0} + uint32_t{b != 0} + uint32_t{c != 0} + uint32_t{d != 0};
      half[i] = static_cast<uint16_t>(roundedMean(a + b + c + d, count));
    });
  }

  // ---- opinions ----

  static uint16_t difference(uint16_t a, uint16_t b) { return static_cast<uint16_t>(a > b ? a - b : b - a); }

  static void agree(const uint16_t* other, uint16_t* own, size_t n) {
    forEachPixel(n, [=](size_t i) {
      const uint16_t a = own[i], b = other[i];
      const uint16_t floor = static_cast<uint16_t>((a & b) + ((a ^ b) >> 1));
      const uint16_t even = static_cast<uint16_t>(floor + ((a ^ b) & floor & 1));
      const bool agreed = (a != 0) & (b != 0) & (difference(a, b) <= agreement);
      own[i] = agreed ? even : uint16_t{0};
    });
  }

  static bool areClose(uint16_t a, uint16_t b) { return (a != 0) & (b != 0) & (difference(a, b) <= closeness); }

  [[gnu::noinline]] static void addSupport(const uint16_t* agreed, const uint16_t* own, const uint16_t* other, size_t n,
                                           uint16_t* ofOwn, uint16_t* ofOther) {
    forEachPixel(n, [=](size_t i) {
      uint16_t forOwn = 0, forOther = 0;
      for (int k = 0; k < nearbySide; ++k) {
        const uint16_t near = agreed[i + static_cast<size_t>(k)];
        forOwn = static_cast<uint16_t>(forOwn + areClose(own[i], near));
        forOther = static_cast<uint16_t>(forOther + areClose(other[i], near));
      }
      ofOwn[i] = static_cast<uint16_t>(ofOwn[i] + forOwn);
      ofOther[i] = static_cast<uint16_t>(ofOther[i] + forOther);
    });
  }

  [[gnu::noinline]] static void keepBetter(const uint16_t* agreed, const uint16_t* other, const uint16_t* ofOwn,
                                           const uint16_t* ofOther, size_t n, uint16_t least, uint16_t* own) {
    forEachPixel(n, [=](size_t i) {
      const bool isOwn = (ofOwn[i] > ofOther[i]) & (ofOwn[i] >= least);
      const bool isOther = (ofOther[i] > ofOwn[i]) & (ofOther[i] >= least);
      const uint16_t kept = isOther ? other[i] : uint16_t{0};
      const uint16_t better = isOwn ? own[i] : kept;
      own[i] = agreed[i] != 0 ? agreed[i] : better;
    });
  }

  static void support(const AgreedRows& agreed, const uint16_t* other, size_t n, uint16_t least, uint16_t* own) {
    constexpr size_t stretch = 256;
    for (size_t from = 0; from < n; from += stretch) {
      const size_t m = n - from < stretch ? n - from : stretch;
      uint16_t ofOwn[stretch] = {};
      uint16_t ofOther[stretch] = {};
      for (const uint16_t* row : agreed.row) addSupport(row + from, own + from, other + from, m, ofOwn, ofOther);
      keepBetter(agreed.row[nearby] + nearby + from, other + from, ofOwn, ofOther, m, least, own + from);
    }
  }

  static void close(const uint16_t* row, size_t n, uint16_t* more, uint16_t* count) {
    forEachPixel(n, [=](size_t i) {
      const uint16_t own = row[i + nearby];
      uint16_t sum = 0, found = 0;
      for (int k = 0; k < nearbySide; ++k) {
        const uint16_t near = row[i + static_cast<size_t>(k)];
        const bool isClose = areClose(own, near);
        sum = static_cast<uint16_t>(sum + (isClose ? near - own : 0));
        found = static_cast<uint16_t>(found + isClose);
      }
      more[i] = sum;
      count[i] = found;
    });
  }

  // Sums stay below 2^15: at most 49 neighbours differ by no more than twice the closeness.
  [[gnu::noinline]] static void addClose(const uint16_t* own, const uint16_t* near, const uint16_t* more,
                                         const uint16_t* count, size_t n, uint16_t* allMore, uint16_t* allCount) {
    forEachPixel(n, [=](size_t i) {
      const uint16_t kept = areClose(own[i], near[i]) ? 0xFFFF : 0;
      const auto apart = static_cast<uint16_t>(near[i] - own[i]);
      const auto added = static_cast<uint16_t>(more[i] + static_cast<uint32_t>(apart) * count[i]);
      allMore[i] = static_cast<uint16_t>(allMore[i] + (added & kept));
      allCount[i] = static_cast<uint16_t>(allCount[i] + (count[i] & kept));
    });
  }

  // Added to a small number and taken off again, 1.5 * 2^23 leaves no bits behind the point.
  static constexpr float noFraction = 12582912.0f;

  // A quotient of such small whole numbers is no nearer to a half than a float can tell, unless it is one.
  [[gnu::noinline]] static void meansOf(const uint16_t* own, const uint16_t* allMore, const uint16_t* allCount,
                                        size_t n, uint16_t least, uint16_t* mean) {
    forEachPixel(n, [=](size_t i) {
      const int32_t count = allCount[i];
      const float moved =
          static_cast<float>(static_cast<int16_t>(allMore[i])) / static_cast<float>(count | (count == 0));
      const int32_t rounded = own[i] + static_cast<int32_t>(moved + noFraction - noFraction);
      const bool isOnSurface = (own[i] != 0) & (count >= least);
      mean[i] = static_cast<uint16_t>(isOnSurface ? rounded : 0);
    });
  }

  static void mean(const NearRows& rows, size_t n, uint16_t least, uint16_t* mean) {
    constexpr size_t stretch = 256;
    for (size_t from = 0; from < n; from += stretch) {
      const size_t m = n - from < stretch ? n - from : stretch;
      const uint16_t* own = rows.disparity[nearby] + from;
      uint16_t allMore[stretch] = {};
      uint16_t allCount[stretch] = {};
      for (int k = 0; k < nearbySide; ++k)
        addClose(own, rows.disparity[k] + from, rows.more[k] + from, rows.count[k] + from, m, allMore, allCount);
      meansOf(own, allMore, allCount, m, least, mean + from);
    }
  }

  // ---- pictures compared again ----

  static constexpr size_t comparedStretch = 256;

  // A stretch's pixels of the first picture on both sides of the places that disparities name. The places are cut to
  // the row, so that they can be read before they are known to lie inside.
  [[gnu::noinline]] static void takeNamed(const uint16_t* first, const uint16_t* disparity, size_t from, size_t m,
                                          size_t last, uint16_t* before, uint16_t* behind) {
    for (size_t i = 0; i < m; ++i) {
      const size_t place = from + i + disparity[from + i] / 16u, at = place < last ? place : last;
      before[i] = first[at];
      behind[i] = first[at + 1];
    }
  }

  [[gnu::noinline]] static void compareStretch(const uint16_t* before, const uint16_t* behind,
                                               const uint16_t* reference, const uint16_t* disparity, size_t m,
                                               int32_t room, float* known, float* slope, float* difference) {
    forEachPixel(m, [=](size_t i) {
      const int32_t own = reference[i], left = reference[i - 1], right = reference[i + 1];
      const int32_t a = before[i], b = behind[i], d = disparity[i], place = static_cast<int32_t>(i) + (d >> 4);
      const bool isKnown = (d != 0) & (place <= room) & (a != 0) & (b != 0) & (own != 0) & (left != 0) & (right != 0);
      const int32_t kept = isKnown ? -1 : 0;
      known[i] = static_cast<float>(kept & 1);
      slope[i] = static_cast<float>((right - left) & kept);
      difference[i] = static_cast<float>(((a - own) * 16 + (b - a) * (d & 15)) & kept);
    });
  }

  static void compareInside(const uint16_t* first, const uint16_t* reference, const uint16_t* disparity, size_t n,
                            const ComparedRow& to) {
    for (size_t from = 1; from + 1 < n; from += comparedStretch) {
      const size_t m = n - 1 - from < comparedStretch ? n - 1 - from : comparedStretch;
      uint16_t before[comparedStretch], behind[comparedStretch];
      takeNamed(first, disparity, from, m, n - 2, before, behind);
      compareStretch(before, behind, reference + from, disparity + from, m, static_cast<int32_t>(n - 2 - from),
                     to.known + from, to.slope + from, to.difference + from);
    }
  }

  // The outermost pixels have a neighbour on one side alone.
  static void compare(const uint16_t* first, const uint16_t* reference, const uint16_t* disparity, size_t n,
                      const ComparedRow& to) {
    if (n > 0)
      to.known[0] = to.slope[0] = to.difference[0] = to.known[n - 1] = to.slope[n - 1] = to.difference[n - 1] = 0;
    compareInside(first, reference, disparity, n, to);
  }

  // Sums of columns, of a stretch and of what lies beside it.
  struct Columns {
    using Sums = float[comparedStretch + 2 * comparedBeside];
    Sums known, slope, difference, squares, products;
  };

  [[gnu::noinline]] static void sumColumns(const ComparedRows& rows, size_t from, size_t n, Columns& columns) {
    const auto at = [from](const float* const* row, int k) { return row[k] + from; };
    const float *known0 = at(rows.known, 0), *known1 = at(rows.known, 1), *known2 = at(rows.known, 2);
    const float *slope0 = at(rows.slope, 0), *slope1 = at(rows.slope, 1), *slope2 = at(rows.slope, 2);
    const float *more0 = at(rows.difference, 0), *more1 = at(rows.difference, 1), *more2 = at(rows.difference, 2);
    forEachPixel(n, [=, &columns](size_t i) {
      columns.known[i] = known0[i] + known1[i] + known2[i];
      columns.slope[i] = slope0[i] + slope1[i] + slope2[i];
      columns.difference[i] = more0[i] + more1[i] + more2[i];
      columns.squares[i] = slope0[i] * slope0[i] + slope1[i] * slope1[i] + slope2[i] * slope2[i];
      columns.products[i] = slope0[i] * more0[i] + slope1[i] * more1[i] + slope2[i] * more2[i];
    });
  }

  static float across(const float* sums) { return sums[0] + sums[1] + sums[2] + sums[3] + sums[4]; }

  static float bounded(float step) {
    const float atLeast = step > -furthestMove ? step : -furthestMove;
    return atLeast < furthestMove ? atLeast : furthestMove;
  }

  [[gnu::noinline]] static void moveStretch(const Columns& columns, size_t n, uint16_t* disparity) {
    forEachPixel(n, [=, &columns](size_t i) {
      const float count = across(columns.known + i), slope = across(columns.slope + i);
      const float covariance = count * across(columns.products + i) - slope * across(columns.difference + i);
      const float variance = count * across(columns.squares + i) - slope * slope + calmSlope * count * count;
      const bool told = count >= leastCompared;
      const float step = bounded(-2.0f * covariance / (told ? variance : 1.0f));
      const int32_t own = disparity[i], moved = own + static_cast<int32_t>(step + noFraction - noFraction);
      const int32_t kept = moved > 1 ? moved : 1;
      const bool moves = told & (own != 0);
      disparity[i] = static_cast<uint16_t>(moves ? kept : own);
    });
  }

  static void move(const ComparedRows& rows, size_t n, uint16_t* disparity) {
    for (size_t from = 0; from < n; from += comparedStretch) {
      const size_t m = n - from < comparedStretch ? n - from : comparedStretch;
      Columns columns;
      sumColumns(rows, from, m + 2 * comparedBeside, columns);
      moveStretch(columns, m, disparity + from);
    }
  }

  // ---- disparities ----

  static void pixelsOf(const uint16_t* stored, float shift, float* disparity, size_t n) {
    forEachPixel(n, [=](size_t i) {
      const float pixels = static_cast<float>(stored[i]) * (1.0f / 16) + shift;
      disparity[i] = stored[i] != 0 ? pixels : 0.0f;
    });
  }

  static void pixelsGiven(const float* given, float shift, float* disparity, size_t n) {
    forEachPixel(n, [=](size_t i) {
      const float pixels = given[i];
      disparity[i] = pixels == pixels ? pixels + shift : 0.0f;
    });
  }

  // ---- places on the map ----

  // This is one row of the rotation, in the order of sums that the library promises.
  static float dot(const float* m, float x, float y, float z) { return (m[1] * y + m[0] * x) + m[2] * z; }

  // Clamping comes first, so that floats are enough. A float h from 1 to 65535 has steps of 2^-8 at most, so h + 1/2 is
  // exact, but where it passes a power of two and loses half a step there. A whole number above it is then further off
  // than that, since the sum lies less than 1/2 above the power of two: it is not reached, and cutting gives
  // floor(h + 1/2) of the real number. What is no number counts as the lowest.
  static uint16_t storedHeight(float mm) {
    const float atLeast = mm > 1.0f ? mm : 1.0f;
    const float inRange = atLeast < 65535.0f ? atLeast : 65535.0f;
    return static_cast<uint16_t>(static_cast<int32_t>(inRange + 0.5f));
  }

  // Comparisons are joined by & and what is converted lies in range, so that nothing has to be branched around.
  static void place(const float* disparity, size_t n, float rayY, const Placing& placing, uint32_t* cells,
                    uint16_t* heights) {
    const Placing p = placing;
    const float width = static_cast<float>(p.mapWidth), height = static_cast<float>(p.mapHeight);
    forEachPixel(n, [=](size_t i) {
      const float d = disparity[i], depth = p.focalTimesBaseline / d;
      const float x = p.rayX[i] * depth - p.translation[0];
      const float y = rayY * depth - p.translation[1];
      const float z = depth - p.translation[2];
      const float column = (dot(p.rotation, x, y, z) - p.left) / p.cellX;
      const float row = (dot(p.rotation + 3, x, y, z) - p.top) / p.cellY;
      const bool inside = (d > leastDisparity) & (column >= 0.0f) & (row >= 0.0f) & (column < width) & (row < height);
      const auto wholeColumn = static_cast<uint32_t>(static_cast<int32_t>(inside ? column : 0.0f));
      const auto wholeRow = static_cast<uint32_t>(static_cast<int32_t>(inside ? row : 0.0f));
      cells[i] = inside ? wholeRow * p.mapWidth + wholeColumn : noCell;
      heights[i] = storedHeight(p.groundZ - dot(p.rotation + 6, x, y, z));
    });
  }

  // ---- the value at a rank ----

  struct Range {
    uint16_t least, most;
  };

  static Range rangeOf(const uint16_t* values, size_t count) {
    Range range = {*values, *values};
    for (size_t i = 0; i < count; ++i) {
      range.least = values[i] < range.least ? values[i] : range.least;
      range.most = values[i] > range.most ? values[i] : range.most;
    }
    return range;
  }

  // How many values are no larger. Counters have 16 bits like the values, so count must be less than 65536.
  static uint16_t countOfBlock(const uint16_t* values, size_t count, uint16_t limit) {
    uint16_t found = 0;
    for (size_t i = 0; i < count; ++i) found = static_cast<uint16_t>(found + (values[i] <= limit));
    return found;
  }

  static size_t countUpTo(const uint16_t* values, size_t count, uint16_t limit) {
    constexpr size_t block = 32768;
    size_t found = 0;
    for (; count > block; count -= block, values += block) found += countOfBlock(values, block, limit);
    return found + countOfBlock(values, count, limit);
  }

  // Halves the range until it holds one value. A branch on which half it is pays: the processor counts on while it
  // guesses, and a count takes as long as a wrong guess.
  template <class Count>
  static uint16_t narrowed(Range range, size_t rank, Count countUpToLimit) {
    uint32_t least = range.least, most = range.most;
    while (least < most) {
      const uint32_t middle = (least + most) / 2;
      if (countUpToLimit(static_cast<uint16_t>(middle)) > rank) {
        most = middle;
      } else {
        least = middle + 1;
      }
    }
    return static_cast<uint16_t>(least);
  }

  // This many values or less, as most cells have, are copied and filled up to whole vectors: none of them is left to be
  // looked at by itself, pass after pass.
  static constexpr size_t few = 512, lanes = 32;

  static void fillUp(uint16_t* behind, uint16_t value) {
    for (size_t i = 0; i < lanes; ++i) behind[i] = value;
  }

  // What fills up must not change the range, and is not counted after that: no limit is as large as the largest value.
  static uint16_t rankedOfFew(const uint16_t* values, size_t count, size_t rank) {
    uint16_t whole[few + lanes];
    std::memcpy(whole, values, count * sizeof *values);
    fillUp(whole + count, values[0]);
    const size_t wholeCount = (count + lanes - 1) & ~(lanes - 1);
    const Range range = rangeOf(whole, wholeCount);
    if (rank == 0) return range.least;
    if (rank == count - 1) return range.most;
    fillUp(whole + count, range.most);
    return narrowed(range, rank, [&](uint16_t limit) { return size_t{countOfBlock(whole, wholeCount, limit)}; });
  }

  static uint16_t ranked(const uint16_t* values, size_t count, size_t rank) {
    if (count <= few) return rankedOfFew(values, count, rank);
    const Range range = rangeOf(values, count);
    if (rank == 0) return range.least;
    if (rank == count - 1) return range.most;
    return narrowed(range, rank, [=](uint16_t limit) { return countUpTo(values, count, limit); });
  }

  // ---- pictures of lenses ----

  static constexpr size_t rectifiedStretch = 256;

  // The four pixels around each source, side by side as they lie in the picture: nothing else of it is touched.
  template <class T>
  struct Around {
    T top[2 * rectifiedStretch], bottom[2 * rectifiedStretch];
  };

  template <class T>
  static void fetch(const uint8_t* picture, size_t stride, const uint32_t* corner, size_t n, Around<T>& around) {
    for (size_t i = 0; i < n; ++i) {
      const uint8_t* source = picture + (corner[i] >> 16) * stride + (corner[i] & 0xFFFF) * sizeof(T);
      std::memcpy(around.top + 2 * i, source, 2 * sizeof(T));
      std::memcpy(around.bottom + 2 * i, source + stride, 2 * sizeof(T));
    }
  }

  // Black pixels are pixels: only what comes from nowhere becomes 0.
  static void blend(const Around<uint8_t>& around, const uint8_t* across, const uint8_t* down, size_t n, uint8_t* out) {
    const uint8_t *top = around.top, *bottom = around.bottom;
    forEachPixel(n, [=](size_t i) {
      const uint16_t right = across[i], left = static_cast<uint16_t>(sourceParts - right);
      const auto above = static_cast<uint16_t>(top[2 * i] * left + top[2 * i + 1] * right);
      const auto below = static_cast<uint16_t>(bottom[2 * i] * left + bottom[2 * i + 1] * right);
      const uint32_t sum = uint32_t{above} * (sourceParts - down[i]) + uint32_t{below} * down[i];
      const auto mean = static_cast<uint8_t>((sum + sourceParts * sourceParts / 2) / (sourceParts * sourceParts));
      const auto seen = static_cast<uint8_t>(mean + (mean == 0));
      out[i] = across[i] == beyondPicture ? uint8_t{0} : seen;
    });
  }

  static void blend(const Around<uint16_t>& around, const uint8_t* across, const uint8_t* down, size_t n,
                    uint16_t* out) {
    const uint16_t *top = around.top, *bottom = around.bottom;
    forEachPixel(n, [=](size_t i) {
      const uint32_t a = top[2 * i], b = top[2 * i + 1], c = bottom[2 * i], d = bottom[2 * i + 1];
      const uint32_t right = across[i], lower = down[i];
      const uint32_t above = a * sourceParts + (b - a) * right, below = c * sourceParts + (d - c) * right;
      const uint32_t sum = above * sourceParts + (below - above) * lower;
      const uint32_t mean = (sum + sourceParts * sourceParts / 2) / (sourceParts * sourceParts);
      const bool leftMissing = ((a == 0) & (lower != sourceParts)) | ((c == 0) & (lower != 0));
      const bool rightMissing = ((b == 0) & (lower != sourceParts)) | ((d == 0) & (lower != 0));
      const bool missing = (leftMissing & (right != sourceParts)) | (rightMissing & (right != 0));
      const bool known = !missing & (right != beyondPicture);
      out[i] = static_cast<uint16_t>(known ? mean : 0);
    });
  }

  template <class T>
  static void rectify(const void* picture, size_t stride, const Sources& sources, void* rectified, size_t n) {
    for (size_t from = 0; from < n; from += rectifiedStretch) {
      const size_t m = n - from < rectifiedStretch ? n - from : rectifiedStretch;
      Around<T> around;
      T out[rectifiedStretch];
      fetch(static_cast<const uint8_t*>(picture), stride, sources.corner + from, m, around);
      blend(around, sources.across + from, sources.down + from, m, out);
      std::memcpy(static_cast<uint8_t*>(rectified) + from * sizeof(T), out, m * sizeof(T));
    }
  }

  static constexpr RoadKernels table() {
    RoadKernels kernels = {};
    kernels.take16 = take16;
    kernels.take8 = take8;
    kernels.mirror16 = mirror16;
    kernels.mirror8 = mirror8;
    kernels.mirrorMask = mirrorMask;
    kernels.mirrorCodes = mirrorCodes;
    kernels.halve = halve;
    kernels.agree = agree;
    kernels.support = support;
    kernels.close = close;
    kernels.mean = mean;
    kernels.compare = compare;
    kernels.move = move;
    kernels.pixelsOf = pixelsOf;
    kernels.pixelsGiven = pixelsGiven;
    kernels.place = place;
    kernels.ranked = ranked;
    kernels.rectify16 = rectify<uint16_t>;
    kernels.rectify8 = rectify<uint8_t>;
    return kernels;
  }
};

}  // namespace nadir::ground
