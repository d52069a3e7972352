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

// A frame under judgement: what was measured, as figures for the caller and as evidence for the warnings.
class Hearing {
 public:
  Hearing(const ViewDisparities& disparities, NadirTrust& trust) : disparities_(disparities), t_(trust) {
    t_ = nothingKnown();
    evidence_.trust = &t_;
  }

  void hearMount(const MountView& mount, Block* blocks) {
    plane_ = expectedGround(*mount.context, mount.columnShift);
    hasPlane_ = true;
    t_.map_seen = mount.map.seen;
    t_.least_top_mm = mount.map.leastTop;
    t_.greatest_top_mm = mount.map.mostTop;
    evidence_.map = &mount.map;
    evidence_.possibleBlocks = largestBlockCount(disparities_.width, disparities_.height);
    hearGround(mount, blocks, blocksOf(disparities_, blocks));
  }

  void hearPictures(const MatchedFrame& frame) {
    judgeExposure(frame, t_);
    const DisparityPlane plane = frame.isMirrored ? mirrored(plane_, disparities_.width) : plane_;
    shares_ = matchedShares(frame.pictures, hasPlane_ ? &plane : nullptr);
    tellShares(shares_, t_);
    evidence_.matched = &shares_;
    if (!asksForSecondLook(shares_) || lookRows(disparities_.width, disparities_.height) == 0) return;
    evidence_.isLax = frame.uniqueness < lookUniqueness;
    look_ = secondLook(frame.look, frame.pictures.cleaned);
    evidence_.look = &look_;
  }

  const Evidence& evidence() const { return evidence_; }

 private:
  void hearGround(const MountView& mount, const Block* blocks, size_t count) {
    expected_ = agreementOf(plane_, blocks, count);
    evidence_.expected = &expected_;
    t_.on_ground = share(static_cast<double>(expected_.on), static_cast<double>(expected_.blocks));
    t_.below_ground = share(static_cast<double>(expected_.below), static_cast<double>(expected_.blocks));
    const Drift drift = driftOf(plane_, blocks, count, *mount.context, mount.columnShift);
    tellDrift(drift, t_);
    if (!asksForSearch(drift, expected_)) return;
    found_ = searchedGround(blocks, count);
    tellFound(found_, mount, t_);
    if (!areAlike(plane_, found_.plane, disparities_.width, disparities_.height)) evidence_.best = &found_.agreement;
  }

  const ViewDisparities& disparities_;
  NadirTrust& t_;
  Evidence evidence_{};
  DisparityPlane plane_;  // the expected ground
  bool hasPlane_ = false;
  MatchedShares shares_;
  SecondLook look_{};
  Agreement expected_;
  FoundGround found_{};
};

}  // namespace

TrustMemory trustMemory(Arena& arena, const Shape& shape) {
  TrustMemory m{};
  if (!shape.hasMap()) return m;
  m.blocks = arena.take<Block>(largestBlockCount(shape.width, shape.height));
  m.judges = arena.take<RayPoint>(nearPlaneJudges);
  return m;
}

size_t judge(const MatchedFrame* frame, const MountView* mount, const ViewDisparities& disparities, Block* blocks,
             NadirTrust& trust, NadirWarning* warnings) {
  Hearing hearing(disparities, trust);
  if (mount) hearing.hearMount(*mount, blocks);
  if (frame) hearing.hearPictures(*frame);
  return listWarnings(hearing.evidence(), warnings);
}

}  // namespace nadir::ground
