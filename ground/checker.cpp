// Checkers look at pairs before anything is made of them.
#include <nadir/check.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "ground/check/picture_numbers.hpp"
#include "ground/check/row_alignment.hpp"
#include "ground/check/verdict.hpp"
#include "ground/kernels/kernels.hpp"
#include "ground/records/arena.hpp"
#include "ground/records/checks.hpp"
#include "ground/records/plane_view.hpp"
#include "ground/stations/halves.hpp"
#include "ground/trust/arc_tangent.hpp"

struct NadirChecker {
  nadir::ground::Shape whole, small;  // width and height alone
  uint32_t halvings;
  uint16_t *left, *right, *row;
  nadir::ground::NumberMemory numbers;
  nadir::ground::RowAlignmentMemory alignment;
  NadirRowOffset* offsets;
  float* sorted;
};

namespace nadir::ground {

namespace {

constexpr uint32_t leastSide = 64, largestSide = 65535, mostPixels = 1u << 25;

// Pictures are matched in halves: what the matcher finds in them is twice as near, and half a row tells well enough.
// They do not become smaller than what 16 rows are a small part of.
constexpr uint32_t halvedFrom = 256, widest = 512, leastHeight = 32;

uint32_t halvingsOf(const Shape& shape) {
  uint32_t times = 0;
  while ((shape.width >> times) > (times == 0 ? halvedFrom - 1 : widest) &&
         (shape.height >> (times + 1)) >= leastHeight)
    ++times;
  return times;
}

Judgement judged(uint32_t width, uint32_t height) {
  if (width < leastSide || width > largestSide) return {NADIR_BAD_CAMERA, "width_px"};
  const bool isHeight = height >= leastSide && height <= largestSide && uint64_t{width} * height <= mostPixels;
  return isHeight ? Judgement{} : Judgement{NADIR_BAD_CAMERA, "height_px"};
}

NadirChecker* checkerIn(Arena& arena, uint32_t width, uint32_t height) {
  NadirChecker* checker = arena.take<NadirChecker>();
  NadirChecker c{};
  c.whole.width = width;
  c.whole.height = height;
  c.halvings = halvingsOf(c.whole);
  c.small = halvedShape(c.whole, c.halvings);
  c.left = arena.take<uint16_t>(c.whole.pixels());
  c.right = arena.take<uint16_t>(c.whole.pixels());
  c.row = arena.take<uint16_t>(width);
  c.numbers = numberMemory(arena, width, height);
  c.alignment = rowAlignmentMemory(arena, c.small.width, c.small.height);
  const size_t blocks = largestErrorCount(c.small.width, c.small.height);
  c.offsets = arena.take<NadirRowOffset>(blocks);
  c.sorted = arena.take<float>(blocks);
  if (checker) *checker = c;
  return checker;
}

// ---- what comes in ----

bool isPicture(const NadirPlane& plane, uint32_t bits) {
  return plane.data && plane.width > 0 && plane.height > 0 &&
         holdsRows(plane.stride, uint64_t{plane.width} * bits / 8, plane.height);
}

NadirStatus judged(const NadirPair& pair) {
  if (!isWhole(&pair)) return NADIR_BAD_RECORD;
  if (pair.range != NADIR_RANGE_61 && pair.range != NADIR_RANGE_122 && pair.range != NADIR_RANGE_244)
    return NADIR_BAD_SETTING;
  const bool isBits = pair.bits == 8 || pair.bits == 16;
  return isBits && isPicture(pair.left, pair.bits) && isPicture(pair.right, pair.bits) ? NADIR_OK : NADIR_BAD_FRAME;
}

bool hasSize(const NadirPlane& plane, const Shape& shape) {
  return plane.width == shape.width && plane.height == shape.height;
}

void takePicture(const NadirPlane& plane, uint32_t bits, const Shape& shape, uint16_t* picture) {
  const PictureRow take = bits == 8 ? roadKernels().take8 : roadKernels().take16;
  const auto* from = static_cast<const uint8_t*>(plane.data);
  for (size_t y = 0; y < shape.height; ++y) take(from + y * plane.stride, picture + y * shape.width, shape.width);
}

void halve(const NadirChecker& c, uint16_t* picture) {
  for (uint32_t done = 0; done < c.halvings; ++done) halve(picture, halvedShape(c.whole, done), c.row);
}

// ---- what is found ----

void takeNumbers(const PictureNumbers& left, const PictureNumbers& right, NadirCheckup& found) {
  found.mean_left = left.mean, found.mean_right = right.mean;
  found.dark_left = left.dark, found.dark_right = right.dark;
  found.clipped_left = left.clipped, found.clipped_right = right.clipped;
  found.noise_left = left.noise, found.noise_right = right.noise;
  found.texture_left = left.texture, found.texture_right = right.texture;
  found.blur_left_px = left.blur, found.blur_right_px = right.blur;
  found.gain = gainBetween(left, right);
}

// The field in rows of the whole picture, and what of it lies where.
class Rows {
 public:
  Rows(const RowField& field, const Shape& small, double times)
      : field_(field),
        times_(times),
        aspect_(double(small.height) / small.width),
        halfWidth_(times * small.width / 2) {}

  double at(Place place) const { return times_ * field_.at(place); }

  // The mean over a part of the picture, whose sides go from -1 to 1.
  double mean(double left, double right, double top, double bottom) const {
    double sum = 0;
    forEachPlace([&](double across, double down) {
      sum += at({left + (right - left) * across, (top + (bottom - top) * down) * aspect_});
    });
    return sum / (steps * steps);
  }
  double perColumn() const { return times_ * field_.rows[1] / halfWidth_; }
  double perRow() const { return times_ * field_.rows[2] / halfWidth_; }

  // What a plane leaves over, root mean square.
  double bend() const {
    const double whole = mean(-1, 1, -1, 1);
    double sum = 0;
    forEachPlace([&](double across, double down) {
      const Place p{2 * across - 1, (2 * down - 1) * aspect_};
      const double off = at(p) - whole - times_ * (field_.rows[1] * p.across + field_.rows[2] * p.down);
      sum += off * off;
    });
    return std::sqrt(sum / (steps * steps));
  }

 private:
  static constexpr int steps = 12;

  template <class Use>
  static void forEachPlace(Use use) {
    for (int y = 0; y < steps; ++y)
      for (int x = 0; x < steps; ++x) use((x + 0.5) / steps, (y + 0.5) / steps);
  }

  const RowField& field_;
  double times_, aspect_, halfWidth_;
};

void takeRows(const Rows& rows, NadirCheckup& found) {
  constexpr double third = 1.0 / 3;
  found.row_offset_px = rows.mean(-1, 1, -1, 1);
  found.row_offset_left_px = rows.mean(-1, -third, -1, 1);
  found.row_offset_middle_px = rows.mean(-third, third, -1, 1);
  found.row_offset_right_px = rows.mean(third, 1, -1, 1);
  found.row_offset_top_px = rows.mean(-1, 1, -1, -third);
  found.row_offset_centre_px = rows.mean(-1, 1, -third, third);
  found.row_offset_bottom_px = rows.mean(-1, 1, third, 1);
  found.turn_deg = directionDeg(rows.perColumn(), 1);
  found.scale_percent = 100 * rows.perRow();
  found.bend_px = rows.bend();
}

void listOffsets(const NadirChecker& c, const RowAlignment& aligned, const Rows& rows, double times) {
  const PlaceOf place(c.small.width, c.small.height);
  for (size_t i = 0; i < aligned.errors; ++i) {
    const RowError& e = c.alignment.errors[i];
    const double x = e.place.across * place.half + place.x0, y = e.place.down * place.half + place.y0;
    c.offsets[i] = {float((x + 0.5) * times - 0.5), float((y + 0.5) * times - 0.5),
                    float(rows.at(e.place) + times * e.rows), float(times * e.disparity)};
  }
}

template <class Counts>
double shareOf(const NadirRowOffset* offsets, size_t count, Counts counts) {
  size_t number = 0;
  for (size_t i = 0; i < count; ++i) number += counts(double(offsets[i].disparity_px));
  return static_cast<double>(number) / static_cast<double>(count);
}

// The matcher's range ends half a pixel beyond its number.
bool isNearer(double disparity, double range) { return disparity > range + 0.5; }

uint32_t rangeFor(double largest) {
  for (uint32_t range = NADIR_RANGE_61; range <= NADIR_RANGE_244; range *= 2)
    if (!isNearer(largest, range)) return range;
  return 0;
}

void takeDisparities(const NadirChecker& c, size_t count, double times, uint32_t range, NadirCheckup& found) {
  for (size_t i = 0; i < count; ++i) c.sorted[i] = c.offsets[i].disparity_px;
  std::sort(c.sorted, c.sorted + count);
  found.least_disparity_px = double(c.sorted[count / 50]);
  found.largest_disparity_px = double(c.sorted[count - 1 - count / 50]);
  found.range = rangeFor(found.largest_disparity_px);
  // Disparities of small pictures wander by a fifth of a pixel, and those at infinity by a little more.
  found.unmoved = shareOf(c.offsets, count, [&](double d) { return std::fabs(d) <= 0.2 * times; });
  found.nearer = shareOf(c.offsets, count, [&](double d) { return isNearer(d, range); });
  found.behind = shareOf(c.offsets, count, [&](double d) { return d < -0.75 * times; });
}

Depths depthsOf(const NadirRowOffset* offsets, size_t count) {
  double d = 0, dd = 0, y = 0, yy = 0, dy = 0;
  for (size_t i = 0; i < count; ++i) {
    const double disparity = double(offsets[i].disparity_px), row = double(offsets[i].row);
    d += disparity, dd += disparity * disparity;
    y += row, yy += row * row, dy += row * disparity;
  }
  const auto n = static_cast<double>(count);
  const double variance = dd / n - d / n * (d / n), perRow = (dy - d * y / n) / (yy - y * y / n + 1);
  return {d / n, std::sqrt(aboveZero(variance)), perRow};
}

constexpr double unknown = NAN;

NadirCheckup nothingFound(uint32_t verdict) {
  NadirCheckup c{};
  c.size = sizeof c;
  c.verdict = verdict;
  c.mean_left = c.mean_right = c.dark_left = c.dark_right = c.clipped_left = c.clipped_right = c.gain = unknown;
  c.noise_left = c.noise_right = c.texture_left = c.texture_right = c.blur_left_px = c.blur_right_px = unknown;
  c.matched = c.matched_aligned = c.unmoved = c.turn_deg = c.scale_percent = c.bend_px = unknown;
  c.row_offset_px = c.row_offset_left_px = c.row_offset_middle_px = c.row_offset_right_px = unknown;
  c.row_offset_top_px = c.row_offset_centre_px = c.row_offset_bottom_px = unknown;
  c.least_disparity_px = c.largest_disparity_px = c.nearer = c.behind = unknown;
  return c;
}

// Without enough blocks nothing is said of rows and disparities.
Depths takeAlignment(const NadirChecker& c, const RowAlignment& aligned, uint32_t range, NadirCheckup& found) {
  found.matched = aligned.matched;
  found.matched_aligned = aligned.matchedAligned;
  found.halvings = c.halvings;
  if (aligned.errors < leastErrors) return {unknown, unknown, unknown};
  const double times = 1u << c.halvings;
  const Rows rows(aligned.field, c.small, times);
  takeRows(rows, found);
  listOffsets(c, aligned, rows, times);
  takeDisparities(c, aligned.errors, times, range, found);
  found.offsets = c.offsets;
  found.offset_count = aligned.errors;
  return depthsOf(c.offsets, aligned.errors);
}

NadirCheckup checkupOf(NadirChecker& c, const NadirPair& pair) {
  NadirCheckup found = nothingFound(NADIR_VERDICT_GOOD);
  takePicture(pair.left, pair.bits, c.whole, c.left);
  takePicture(pair.right, pair.bits, c.whole, c.right);
  const bool identical = std::memcmp(c.left, c.right, static_cast<size_t>(c.whole.pixels()) * sizeof *c.left) == 0;
  takeNumbers(pictureNumbers(c.numbers, c.left, c.whole.width, c.whole.height),
              pictureNumbers(c.numbers, c.right, c.whole.width, c.whole.height), found);
  halve(c, c.left);
  halve(c, c.right);
  const Depths depths = takeAlignment(c, rowAlignment(c.alignment, c.left, c.right), pair.range, found);
  found.verdict = verdictOf(found, depths, identical);
  return found;
}

struct VerdictWords {
  const char *name, *advice;
};

constexpr VerdictWords verdictWords[NADIR_VERDICTS] = {
    {"good", "Nothing is to be done."},
    {"size", "Give two pictures of one size, as the cameras took them."},
    {"same", "Give the right camera's picture as the second one: both show everything in the same place."},
    {"exposure", "Give both cameras the same exposure and gain, so that little is black or white."},
    {"textureless", "Look at something with texture, or lay some out: there is nothing to match."},
    {"blurred", "Focus both lenses, clean them, and shorten the exposure if the cameras move."},
    {"swapped", "Exchange the two pictures."},
    {"offset", "Rectify the pair, or move one picture by the row offset."},
    {"turned", "Rectify the pair, or turn one camera by the turn."},
    {"unrectified", "Rectify the pair by a calibration of these cameras."},
    {"range", "Ask for a longer range, or halve the pictures; with disparities below 0, do not cut or move them."}};

}  // namespace

}  // namespace nadir::ground

using namespace nadir::ground;

const char* nadir_verdict_name(uint32_t verdict) {
  return verdict < NADIR_VERDICTS ? verdictWords[verdict].name : nullptr;
}

const char* nadir_verdict_advice(uint32_t verdict) {
  return verdict < NADIR_VERDICTS ? verdictWords[verdict].advice : nullptr;
}

size_t nadir_checker_bytes(uint32_t width, uint32_t height) {
  if (judged(width, height).status) return 0;
  Arena counting(nullptr);
  checkerIn(counting, width, height);
  return counting.bytes();
}

NadirStatus nadir_checker_create(uint32_t width, uint32_t height, NadirChecker** checker, NadirFault* fault) {
  if (fault && !isWhole(fault)) return NADIR_BAD_RECORD;
  if (!checker) return NADIR_NULL_POINTER;
  const Judgement j = judged(width, height);
  if (fault) *fault = {sizeof *fault, 0, 0, 0, j.field};
  if (j.status) return j.status;
  void* block = std::malloc(nadir_checker_bytes(width, height));
  if (!block) return NADIR_NO_MEMORY;
  Arena arena(block);
  *checker = checkerIn(arena, width, height);
  return NADIR_OK;
}

void nadir_checker_destroy(NadirChecker* checker) { std::free(checker); }

NadirStatus nadir_checker_process(NadirChecker* checker, const NadirPair* pair, NadirCheckup* checkup) {
  if (!checker || !pair || !checkup) return NADIR_NULL_POINTER;
  if (!isWhole(checkup)) return NADIR_BAD_RECORD;
  if (const NadirStatus status = judged(*pair)) return status;
  const bool fits = hasSize(pair->left, checker->whole) && hasSize(pair->right, checker->whole);
  *checkup = fits ? checkupOf(*checker, *pair) : nothingFound(NADIR_VERDICT_SIZE);
  return NADIR_OK;
}
