// Light is told by the histogram; noise, texture and blur by squares of pixels.
//
// The noise's deviation follows from the response to a mask that takes away edges: J. Immerkaer, "Fast noise variance
// estimation", Computer Vision and Image Understanding 64(2), 1996. Blur follows from the mean squares of the first and
// the second derivative. Where edges are blurred by a Gaussian of deviation s, a picture whose spectrum falls with the
// square of the frequency, as those of natural scenes do, has 2 * s * s times as much of the first as of the second (D.
// Field, "Relations between the statistics of natural images and the response properties of cortical cells", JOSA A
// 4(12), 1987).
#include "ground/check/picture_numbers.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "ground/trust/exposure.hpp"

namespace nadir::ground {

namespace {

// The variance of a square of pure noise scatters: in the smoothest tenth of the squares it is four fifths of the
// whole.
constexpr double smoothestSquares = 1.25;

// Squares without data tell nothing, and fewer than these nothing that is worth telling.
constexpr size_t leastSquares = 12;

size_t squareCount(uint32_t width, uint32_t height) { return size_t{width / squareSide} * (height / squareSide); }

// ---- squares ----

struct Sums {
  double noise = 0, gradient = 0, curvature = 0, intensity = 0, squared = 0;

  // p  a pixel, `down` to the one below it
  void add(const uint16_t* p, ptrdiff_t down) {
    const int32_t here = p[0], left = p[-1], right = p[1], above = p[-down], below = p[down];
    const int32_t corners = p[-down - 1] + p[-down + 1] + p[down - 1] + p[down + 1];
    const double mask = corners - 2 * (left + right + above + below) + 4 * here;
    const double acrossX = right - left, acrossY = below - above;
    const double curvedX = 2 * here - left - right, curvedY = 2 * here - above - below;
    noise += mask * mask;
    gradient += acrossX * acrossX + acrossY * acrossY;
    curvature += curvedX * curvedX + curvedY * curvedY;
    intensity += here;
    squared += double(here) * here;
  }

  Square square(double count) const {
    const double mean = intensity / count;
    return {float(noise / 36 / count), float(gradient / 8 / count), float(curvature / 2 / count),
            float(squared / count - mean * mean)};
  }
};

bool hasData(const uint16_t* square, size_t width) {
  for (size_t y = 0; y < squareSide; ++y)
    for (size_t x = 0; x < squareSide; ++x)
      if (square[y * width + x] == 0) return false;
  return true;
}

Square squareAt(const uint16_t* square, size_t width) {
  Sums sums;
  for (size_t y = 1; y + 1 < squareSide; ++y)
    for (size_t x = 1; x + 1 < squareSide; ++x) sums.add(square + y * width + x, static_cast<ptrdiff_t>(width));
  return sums.square((squareSide - 2) * (squareSide - 2));
}

size_t listSquares(const uint16_t* picture, uint32_t width, uint32_t height, Square* squares) {
  size_t count = 0;
  for (size_t y = 0; y + squareSide <= height; y += squareSide)
    for (size_t x = 0; x + squareSide <= width; x += squareSide) {
      const uint16_t* square = picture + y * width + x;
      if (hasData(square, width)) squares[count++] = squareAt(square, width);
    }
  return count;
}

// The member that so many of the squares do not exceed.
double ranked(const NumberMemory& m, size_t count, float Square::*member, size_t rank) {
  for (size_t i = 0; i < count; ++i) m.sorted[i] = m.squares[i].*member;
  std::nth_element(m.sorted, m.sorted + rank, m.sorted + count);
  return double(m.sorted[rank]);
}

// The quarter of the squares with the steepest edges stands out of the noise most. Noise has half of its variance in
// the first derivative, and six times its variance in the second one.
double blurOf(const NumberMemory& m, size_t count, double noise) {
  const auto steep = static_cast<float>(ranked(m, count, &Square::gradient, count * 3 / 4));
  double gradient = 0, curvature = 0, taken = 0;
  for (size_t i = 0; i < count; ++i)
    if (m.squares[i].gradient >= steep) {
      gradient += double(m.squares[i].gradient) - noise / 2;
      curvature += double(m.squares[i].curvature) - 6 * noise;
      ++taken;
    }
  const bool isNoise = !(gradient > noise * taken);
  return isNoise || !(curvature > 0) ? NAN : std::sqrt(gradient / (2 * curvature));
}

void takeSquares(const NumberMemory& m, size_t count, PictureNumbers& numbers) {
  numbers.noise = numbers.texture = numbers.blur = NAN;
  if (count < leastSquares) return;
  const double noise = smoothestSquares * ranked(m, count, &Square::noise, count / 10);
  const double relief = ranked(m, count, &Square::relief, count / 2) - noise;
  numbers.noise = std::sqrt(noise);
  numbers.texture = std::sqrt(relief > 0 ? relief : 0);
  numbers.blur = blurOf(m, count, noise);
}

// ---- light ----

// Sensors end at 8, 10, 12, 14 or 16 bits, and 1/64 of that may be lost to compression and noise.
uint32_t clipLevelOf(uint32_t brightest) {
  for (uint32_t bits = 8; bits <= 16; bits += 2) {
    const uint32_t most = (1u << bits) - 1, level = most - most / 64;
    if (brightest >= level && brightest <= most) return level;
  }
  return levels;
}

double countFrom(const uint32_t* histogram, uint32_t from, uint32_t to) {
  double count = 0;
  for (uint32_t level = from; level < to; ++level) count += histogram[level];
  return count;
}

void takeQuantiles(const uint32_t* histogram, double withData, PictureNumbers& numbers) {
  double below = 0;
  uint32_t level = 0;
  for (uint32_t q = 0; q < quantileCount; ++q) {
    while (level + 1 < levels && below < withData * (q + 1) / (quantileCount + 1)) below += histogram[++level];
    numbers.quantiles[q] = level;
  }
}

void takeLight(const uint32_t* histogram, double pixels, PictureNumbers& numbers) {
  uint32_t brightest = levels - 1;
  while (brightest > 0 && histogram[brightest] == 0) --brightest;
  double sum = 0;
  for (uint32_t level = 1; level <= brightest; ++level) sum += double(level) * histogram[level];
  const double withData = pixels - histogram[0];
  numbers.mean = withData > 0 ? sum / withData : NAN;
  numbers.clipLevel = clipLevelOf(brightest);
  numbers.clipped = countFrom(histogram, numbers.clipLevel, levels) / pixels;
  numbers.dark = countFrom(histogram, 0, darkLevel + 1) / pixels;
  takeQuantiles(histogram, withData, numbers);
}

}  // namespace

NumberMemory numberMemory(Arena& arena, uint32_t width, uint32_t height) {
  const size_t squares = squareCount(width, height);
  NumberMemory m{};
  m.histogram = arena.take<uint32_t>(levels);
  m.squares = arena.take<Square>(squares);
  m.sorted = arena.take<float>(squares);
  return m;
}

PictureNumbers pictureNumbers(const NumberMemory& m, const uint16_t* picture, uint32_t width, uint32_t height) {
  PictureNumbers numbers{};
  const size_t pixels = size_t{width} * height;
  std::memset(m.histogram, 0, levels * sizeof *m.histogram);
  for (size_t i = 0; i < pixels; ++i) ++m.histogram[picture[i]];
  takeLight(m.histogram, static_cast<double>(pixels), numbers);
  takeSquares(m, listSquares(picture, width, height, m.squares), numbers);
  return numbers;
}

double gainBetween(const PictureNumbers& first, const PictureNumbers& second) {
  double gains[quantileCount];
  size_t count = 0;
  for (uint32_t q = 0; q < quantileCount; ++q) {
    const uint32_t one = first.quantiles[q], other = second.quantiles[q];
    if (one < first.clipLevel && other < second.clipLevel && one > 0) gains[count++] = double(other) / one;
  }
  if (count == 0) return 1;
  std::nth_element(gains, gains + count / 2, gains + count);
  return gains[count / 2];
}

}  // namespace nadir::ground
