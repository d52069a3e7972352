// Census, the passes of the matcher and what follows them, all on the right grid; the left one is its mirror image.
#include "ground/stations/match.hpp"

#include <nadir/stereo.h>

#include <cstring>

#include "ground/kernels/kernels.hpp"
#include "ground/stations/halves.hpp"
#include "ground/stations/opinions.hpp"
#include "ground/stations/rows_around.hpp"

namespace nadir::ground {

namespace {

// The matcher cannot work in these outermost columns and rows.
constexpr uint32_t borderLeft = 2, borderRight = 4, borderRow = 2;

// Both views of a point lie in a row, the right one further left. Mirrored and swapped, the left picture takes the
// right one's place as the reference. Pictures are halved before they are mirrored, so that an odd column is the same
// one in both views.
struct Taking {
  const NadirFrame& frame;
  const Shape& whole;  // of the frame's pictures
  const RoadKernels& kernels;
  bool mirrored;
  uint32_t times;  // how often they are halved
  Shape shape;     // then

  bool isMirroredInOneGo() const { return mirrored && times == 0; }

  PictureRow row() const {
    if (frame.bits == 8) return isMirroredInOneGo() ? kernels.mirror8 : kernels.take8;
    return isMirroredInOneGo() ? kernels.mirror16 : kernels.take16;
  }

  // `row` is room for one row.
  void picture(const void* data, size_t stride, uint16_t* to, uint16_t* room) const {
    const auto* from = static_cast<const uint8_t*>(data);
    for (uint32_t y = 0; y < whole.height; ++y) row()(from + y * stride, to + size_t{y} * whole.width, whole.width);
    for (uint32_t done = 0; done < times; ++done) halve(to, halvedShape(whole, done), room);
    if (mirrored && times > 0) mirrorRows(to, kernels.mirror16, shape, room);
  }

  void mask(uint8_t* to, uint8_t* room) const {
    std::memset(to, 0, shape.pixels());
    if (!frame.mask) return;
    for (uint32_t y = 0; y < whole.height; ++y)
      std::memcpy(to + size_t{y} * whole.width, frame.mask + y * frame.mask_stride, whole.width);
    for (uint32_t done = 0; done < times; ++done) halve(to, halvedShape(whole, done));
    if (mirrored) mirrorRows(to, kernels.mirrorMask, shape, room);
  }
};

void takePictures(const Taking& taking, const PassMemory& m) {
  const NadirFrame& f = taking.frame;
  auto* room = static_cast<uint16_t*>(m.walk);
  const bool left = taking.mirrored;
  taking.picture(left ? f.right : f.left, left ? f.right_stride : f.left_stride, m.first, room);
  taking.picture(left ? f.left : f.right, left ? f.left_stride : f.right_stride, m.reference, room);
}

// What the user discards stays discarded: the clean-up may have filled it from a neighbour.
void clearMasked(const uint8_t* mask, uint64_t pixels, uint16_t* disparity) {
  for (uint64_t i = 0; i < pixels; ++i)
    if (mask[i] != 0) disparity[i] = 0;
}

// The mask is the measured view's, so the pass from the other side comes before it is taken. The pass that decides
// comes last and leaves its raw disparities behind.
void matchAllWays(const Taking& taking, const MatchMemory& m, const NadirSettings& settings) {
  const Shape& shape = taking.shape;
  if (m.otherSide) {
    std::memset(m.pass.mask, 0, shape.pixels());
    passFromOtherSide(m.pass, settings, shape, m.otherSide);
  }
  taking.mask(m.pass.mask, static_cast<uint8_t*>(m.pass.walk));
  if (m.turned) passUpsideDown(m.pass, settings, shape, m.turned);
  pass(m.pass, settings, shape, m.cleaned);
}

void judgeOpinions(const Taking& taking, const MatchMemory& m, const NadirSettings& settings) {
  if (m.agreed)
    keepSupported(m.turned, settings.support, taking.shape, m.agreed, m.cleaned);
  else if (m.turned)
    keepAgreed(m.turned, taking.shape, m.cleaned);
  if (m.otherSide) keepConfirmed(m.otherSide, taking.shape, m.cleaned);
}

// What coarser pictures have found is taken over here, and finds its way into finer ones.
void finish(const Taking& taking, const MatchMemory& m, const NadirSettings& settings) {
  if (taking.times < m.halvings)
    takeNearer(m.nearer[taking.times], taking.shape, taking.mirrored, m.cleaned, m.pass.raw);
  if (taking.frame.mask) clearMasked(m.pass.mask, taking.shape.pixels(), m.cleaned);
  if (!settings.refine) return;
  compare(m.compare, taking.shape, m.pass.first, m.pass.reference, m.cleaned);
  refine(m.refine, taking.shape, m.cleaned);
}

// Counts n pixels of a row that lie in the border or not. A row has at most 65535 pixels: counters as wide as pixels
// make whole vectors of the sums.
void count(const uint16_t* raw, const uint16_t* cleaned, const uint8_t* mask, uint32_t n, bool isBorder,
           NadirPixelCounts& counts) {
  uint16_t value = 0, filled = 0, masked = 0, removed = 0;
  for (uint32_t i = 0; i < n; ++i) {
    const uint16_t has = cleaned[i] != 0, had = raw[i] != 0, hidden = mask[i] != 0;
    value = static_cast<uint16_t>(value + has);
    filled = static_cast<uint16_t>(filled + (has & (had ^ 1)));
    masked = static_cast<uint16_t>(masked + (hidden & (has ^ 1)));
    removed = static_cast<uint16_t>(removed + (had & ((has | hidden) ^ 1)));
  }
  counts.value += value;
  counts.filled += filled;
  counts.masked += masked;
  counts.removed += removed;
  (isBorder ? counts.border : counts.ambiguous) += n - value - masked - removed;
}

NadirPixelCounts countsOf(const MatchMemory& m, const Shape& shape) {
  NadirPixelCounts counts{};
  counts.size = sizeof counts;
  for (uint32_t y = 0; y < shape.height; ++y) {
    const bool row = y < borderRow || y + borderRow >= shape.height;
    const auto stretch = [&](uint32_t from, uint32_t to, bool isBorder) {
      const size_t at = size_t{y} * shape.width + from;
      count(m.pass.raw + at, m.cleaned + at, m.pass.mask + at, to - from, row || isBorder, counts);
    };
    const uint32_t right = shape.width > borderLeft + borderRight ? shape.width - borderRight : borderLeft;
    stretch(0, borderLeft, true);
    stretch(borderLeft, right, false);
    stretch(right, shape.width, true);
  }
  return counts;
}

void giveDisparities(const uint16_t* cleaned, const Taking& taking, uint16_t* disparity) {
  const auto give = taking.mirrored ? taking.kernels.mirror16 : taking.kernels.take16;
  for (uint32_t y = 0; y < taking.shape.height; ++y)
    give(cleaned + size_t{y} * taking.shape.width, disparity + size_t{y} * taking.shape.width, taking.shape.width);
}

void matchCodes(const Taking& taking, const MatchMemory& m, const NadirSettings& settings, const Stages& stages) {
  const Shape& shape = taking.shape;
  stages.begin(taking.times ? "census of halves" : "census");
  IP_Census_5x5(m.pass.first, m.pass.firstCodes, shape.width, shape.height);
  IP_Census_5x5(m.pass.reference, m.pass.referenceCodes, shape.width, shape.height);
  stages.begin(taking.times ? "matching halves" : "matching");
  matchAllWays(taking, m, settings);
  stages.begin(taking.times ? "checking halves" : "checking");
  judgeOpinions(taking, m, settings);
  finish(taking, m, settings);
}

bool hasTurnedPass(const NadirSettings& s) { return s.check == NADIR_CHECK_FLIP || s.check == NADIR_CHECK_BOTH; }

bool hasPassFromOtherSide(const NadirSettings& s) {
  return s.check == NADIR_CHECK_SIDES || s.check == NADIR_CHECK_BOTH;
}

PassMemory passMemory(Arena& arena, const Shape& shape) {
  const uint64_t pixels = shape.pixels();
  PassMemory m;
  m.first = arena.take<uint16_t>(pixels);
  m.reference = arena.take<uint16_t>(pixels);
  m.firstCodes = arena.take<uint32_t>(pixels);
  m.referenceCodes = arena.take<uint32_t>(pixels);
  m.mask = arena.take<uint8_t>(pixels);
  m.raw = arena.take<uint16_t>(pixels);
  m.walk = arena.take<uint8_t>(m.walkBytes = nadir_sgm_bytes(shape.width));
  m.cleanUpBytes = nadir_sgm_postproc_bytes(static_cast<uint16_t>(shape.width), static_cast<uint16_t>(shape.height));
  m.cleanUp = arena.take<uint8_t>(m.cleanUpBytes);
  return m;
}

}  // namespace

MatchMemory matchMemory(Arena& arena, const Shape& shape, const NadirSettings& settings) {
  MatchMemory m{};
  m.pass = passMemory(arena, shape);
  m.cleaned = arena.take<uint16_t>(shape.pixels());
  if (hasTurnedPass(settings)) m.turned = arena.take<uint16_t>(shape.pixels());
  if (hasPassFromOtherSide(settings)) m.otherSide = arena.take<uint16_t>(shape.pixels());
  if (hasTurnedPass(settings) && settings.support > 0) m.agreed = rowsAroundMemory(arena, shape.width);
  if (settings.refine) m.compare = compareMemory(arena, shape);
  if (settings.refine) m.refine = refineMemory(arena, shape);
  m.halvings = halvings(settings.range, shape);
  for (uint32_t times = 1; times <= m.halvings; ++times)
    m.nearer[times - 1] = arena.take<uint16_t>(halvedShape(shape, times).pixels());
  return m;
}

void match(const NadirFrame& frame, const NadirSettings& settings, const Shape& shape, const MatchMemory& m,
           const Stages& stages, uint16_t* disparity, NadirPixelCounts& counts) {
  const bool mirrored = settings.grid == NADIR_GRID_LEFT;
  for (uint32_t times = m.halvings + 1; times-- > 0;) {
    const Taking taking{frame, shape, roadKernels(), mirrored, times, halvedShape(shape, times)};
    const char* taken = times > 0 ? "halving" : mirrored ? "mirroring" : "taking pictures";
    stages.begin(taken);
    takePictures(taking, m.pass);
    matchCodes(taking, m, settings, stages);
    stages.begin(taken);
    giveDisparities(m.cleaned, taking, times > 0 ? m.nearer[times - 1] : disparity);
  }
  counts = countsOf(m, shape);
}

}  // namespace nadir::ground
