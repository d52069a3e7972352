// Strips are matched from the census codes that are already there; a picture is moved by moving the pointer to it.
#include "ground/trust/second_look.hpp"

#include <nadir/stereo.h>

namespace nadir::ground {

namespace {

constexpr uint32_t most = 96;       // rows
constexpr uint32_t leastSide = 64;  // of a picture: the range is as wide, and a look at less would say nothing
constexpr SgmParams usual{64, lookUniqueness};

// A picture moved by so much gives what lies in the same column of both a disparity that the matcher finds.
constexpr int32_t unmovedAt = 8;

// A picture moved by so much brings disparities up to 109 pixels into the range.
constexpr int32_t nearer = 48;

// A moved pointer reads a little of the rows before and behind its own: these must be there.
constexpr uint32_t margin = 1;

// These columns of codes hold nothing that the census has written. What is without data there matches nothing.
void fillFrame(uint32_t* codes, uint32_t width, uint32_t height) {
  for (uint32_t y = 0; y < height; ++y) {
    uint32_t* row = codes + size_t{y} * width;
    const bool whole = y < 2 || y + 2 >= height;
    for (uint32_t x = 0; x < width; ++x)
      if (whole || x < 2 || x + 2 >= width) row[x] = CENSUS_INVALID;
  }
}

uint32_t emptyPixels(const uint16_t* row, uint32_t n) {
  uint32_t count = 0;
  for (uint32_t i = 0; i < n; ++i) count += row[i] == 0;
  return count;
}

// The first row of the strip with the fewest disparities.
uint32_t emptiest(const uint16_t* cleaned, uint32_t width, uint32_t height, uint32_t rows) {
  const auto emptyRow = [&](uint32_t y) { return emptyPixels(cleaned + size_t{y} * width, width); };
  uint32_t empty = 0;
  for (uint32_t y = margin; y < margin + rows; ++y) empty += emptyRow(y);
  uint32_t best = margin, mostEmpty = empty;
  for (uint32_t top = margin + 1; top + rows + margin <= height; ++top) {
    empty += emptyRow(top + rows - 1) - emptyRow(top - 1);
    if (empty > mostEmpty) mostEmpty = empty, best = top;
  }
  return best;
}

struct Strip {
  const LookMemory& m;
  const uint16_t* cleaned;
  uint32_t rows;
  size_t begin;  // its first pixel

  size_t pixels() const { return size_t{rows} * m.width; }

  // The first picture is moved to the right by so many pixels.
  void match(const uint32_t* first, int32_t moved, const uint32_t* reference, const uint16_t* picture) const {
    const size_t at = begin - static_cast<size_t>(moved);  // unsigned numbers wrap, so that negative moves add
    nadir_sgm_full(first + at, reference + begin, picture + begin, m.width, rows, &usual, m.strip, nullptr, m.walk,
                   m.walkBytes);
  }

  // What `counts` holds for, of a pixel's new and old disparity.
  template <class Counts>
  double share(Counts counts) const {
    size_t count = 0;
    for (size_t i = 0; i < pixels(); ++i) count += counts(m.strip[i], cleaned[begin + i]);
    return static_cast<double>(count) / static_cast<double>(pixels());
  }
};

bool wasEmpty(uint16_t, uint16_t before) { return before == 0; }

bool isKnown(uint16_t now, uint16_t) { return now != 0; }

bool isUnmoved(uint16_t now, uint16_t) { return now >= unmovedAt * 16 - 4 && now <= unmovedAt * 16 + 4; }

// The range ends at 61.5 pixels.
bool isNearerInHole(uint16_t now, uint16_t before) { return before == 0 && now > (62 - nearer) * 16; }

}  // namespace

uint32_t lookRows(uint32_t width, uint32_t height) {
  if (width < leastSide || height < leastSide) return 0;
  return height < most + 2 * margin ? height - 2 * margin : most;
}

SecondLook secondLook(const LookMemory& m, const uint16_t* cleaned) {
  fillFrame(m.firstCodes, m.width, m.height);
  fillFrame(m.referenceCodes, m.width, m.height);
  const uint32_t rows = lookRows(m.width, m.height);
  const Strip strip{m, cleaned, rows, size_t{emptiest(cleaned, m.width, m.height, rows)} * m.width};
  SecondLook look{};
  strip.match(m.firstCodes, 0, m.referenceCodes, m.reference);
  look.empty = strip.share(wasEmpty);
  look.asGiven = strip.share(isKnown);
  strip.match(m.referenceCodes, 0, m.firstCodes, m.first);
  look.exchanged = strip.share(isKnown);
  strip.match(m.firstCodes, unmovedAt, m.referenceCodes, m.reference);
  look.unmoved = strip.share(isUnmoved);
  if (m.isRangeLonger) return look;
  strip.match(m.firstCodes, -nearer, m.referenceCodes, m.reference);
  look.nearerInHole = strip.share(isNearerInHole);
  return look;
}

}  // namespace nadir::ground
