// The stations of trust in their order; each doubt decides what else is looked at.
#include "ground/trust/trust.hpp"

#include <cmath>

#include "ground/trust/drift.hpp"
#include "ground/trust/exposure.hpp"
#include "ground/trust/ground_search.hpp"
#include "ground/trust/warnings.hpp"

namespace nadir::ground {

namespace {

double share(double part, double whole) { return whole > 0 ? part / whole : 0; }

NadirTrust nothingKnown() {
  constexpr double n = NAN;
  return {sizeof(NadirTrust), 0, n, n, n, n, n, n, n, n, n, n, n, n, n, n, n, n, n, n, n, n, n, n, n};
}

// The reference is the measured view: mirrored, it is the left one.
void judgeExposure(const MatchedFrame& frame, NadirTrust& t) {
  const LookMemory& m = frame.look;
  const Exposure reference = exposureOf(m.reference, m.width, m.height), first = exposureOf(m.first, m.width, m.height);
  const Exposure &left = frame.isMirrored ? reference : first, &right = frame.isMirrored ? first : reference;
  t.dark_left = left.darkShare();
  t.dark_right = right.darkShare();
  t.clipped_left = left.clippedShare();
  t.clipped_right = right.clippedShare();
}

void tellShares(const MatchedShares& m, NadirTrust& t) {
  t.matched = share(m.matched, m.able);
  t.value = share(m.value, m.able);
  t.range_end = share(m.atEnd, m.pixels);
  t.cut_off = share(m.cutOff, m.pixels);
}

size_t blocksOf(const ViewDisparities& d, Block* blocks) {
  return d.given ? listBlocks(d.given, d.givenStride, d.width, d.height, blocks)
                 : listBlocks(d.stored, d.width, d.height, blocks);
}

void tellDrift(const Drift& drift, NadirTrust& t) {
  t.height_off_mm = drift.heightMm;
  t.tilt_off_deg = drift.tiltDeg;
  t.pan_off_deg = drift.panDeg;
  t.height_deviation_mm = drift.heightDeviationMm;
  t.tilt_deviation_deg = drift.tiltDeviationDeg;
  t.pan_deviation_deg = drift.panDeviationDeg;
}

void tellFound(const FoundGround& found, const MountView& mount, NadirTrust& t) {
  t.searched = 1;
  t.found_share = share(static_cast<double>(found.agreement.on), static_cast<double>(found.agreement.blocks));
  if (found.agreement.on == 0) return;
  const Mount there = mountOf(found.plane, *mount.context, mount.columnShift);
  t.found_height_mm = there.heightMm;
  t.found_tilt_deg = there.tiltDeg;
  t.found_pan_deg = there.panDeg;
}

struct Ground {
  Agreement expected;
  FoundGround found;
};

void judgeGround(const MountView& mount, const DisparityPlane& plane, const Block* blocks, size_t count, Ground& ground,
                 NadirTrust& t) {
  ground.expected = agreementOf(plane, blocks, count);
  t.on_ground = share(static_cast<double>(ground.expected.on), static_cast<double>(ground.expected.blocks));
  t.below_ground = share(static_cast<double>(ground.expected.below), static_cast<double>(ground.expected.blocks));
  const Drift drift = driftOf(plane, blocks, count, *mount.context, mount.columnShift);
  tellDrift(drift, t);
  if (!asksForSearch(drift, ground.expected)) return;
  ground.found = searchedGround(blocks, count);
  tellFound(ground.found, mount, t);
}

}  // namespace

TrustMemory trustMemory(Arena& arena, const Shape& shape) {
  TrustMemory m{};
  if (!shape.hasMap()) return m;
  m.blocks = arena.take<Block>(largestBlockCount(shape.width, shape.height));
  m.judges = arena.take<RayPoint>(nearPlaneJudges);
  return m;
}

size_t judge(const MatchedFrame* frame, const MountView* mount, const ViewDisparities& disparities, Block* blocks,
             NadirTrust& t, NadirWarning* warnings) {
  t = nothingKnown();
  Evidence evidence{&t};
  MatchedShares shares;
  SecondLook look;
  Ground ground{};
  DisparityPlane plane;
  if (mount) {
    plane = expectedGround(*mount->context, mount->columnShift);
    t.map_seen = mount->map.seen;
    t.least_top_mm = mount->map.leastTop;
    t.greatest_top_mm = mount->map.mostTop;
    evidence.map = &mount->map;
    const size_t count = blocksOf(disparities, blocks);
    judgeGround(*mount, plane, blocks, count, ground, t);
    evidence.possibleBlocks = largestBlockCount(disparities.width, disparities.height);
    evidence.expected = &ground.expected;
    if (t.searched && !areAlike(plane, ground.found.plane, disparities.width, disparities.height))
      evidence.best = &ground.found.agreement;
  }
  if (frame) {
    judgeExposure(*frame, t);
    const DisparityPlane matcherPlane = frame->isMirrored ? mirrored(plane, disparities.width) : plane;
    shares = matchedShares(frame->pictures, mount ? &matcherPlane : nullptr);
    tellShares(shares, t);
    evidence.matched = &shares;
    if (asksForSecondLook(shares) && lookRows(disparities.width, disparities.height) > 0) {
      look = secondLook(frame->look, frame->pictures.cleaned);
      evidence.look = &look;
    }
  }
  return listWarnings(evidence, warnings);
}

}  // namespace nadir::ground
