// The cases of the matcher's walk along one row.
#include "stereo/kernels.hpp"
#include "tests/kernels/harness.hpp"

namespace nadir::test {
namespace {

// The inputs of a few rows, one after the other, and a copy of everything that a walk changes.
class Rows {
 public:
  static constexpr size_t count = 4;

  Rows(lab::Random& random, size_t width, bool anyCodes)
      : width_(width),
        first_(codes(random, width, anyCodes)),
        reference_(codes(random, width, anyCodes)),
        p2_(filled<uint8_t>(random, Fill::random, count * 4 * width, edgePenalty, flatPenalty)) {
    job_.width = width;
    job_.hasCosts = random.below(8) != 0;
    job_.uniquenessRatio = random.below(4) ? random.below(200) : random.next();
  }

  // A walk writes these, in guarded memory.
  struct Results {
    Output<uint8_t> costs, sums, peaks, distinctness;
    Output<uint16_t> disparity;
    explicit Results(const Rows& rows)
        : costs(count * rows.width_ * disparities, Guard::behind, 3),
          sums(count * rows.width_ * disparities, Guard::before, 4),
          peaks(count * rows.width_, Guard::behind, 5),
          distinctness(count * rows.width_, Guard::behind, 6),
          disparity(count * rows.width_, Guard::behind, 7) {
      distinctness.set(std::vector<uint8_t>(distinctness.size(), 255));
      disparity.set(std::vector<uint16_t>(disparity.size(), 0));
    }
  };

  void run(SgmRow walk, Results& results, bool withDebug) const {
    const size_t slots = (width_ + 1) * disparities;
    const Guarded<uint8_t> p2Memory(4 * width_);
    const std::vector<uint8_t> none(slots, noPredecessor);
    const Guarded<uint8_t> upLeft(none), upLeftToo(none, Guard::before), upRight(none);
    const Guarded<uint8_t> up(std::vector<uint8_t>(slots - disparities, noPredecessor));
    SgmRowJob job = job_;
    job.p2Memory = p2Memory.data();
    job.up = up.data();
    job.upRight = upRight.data();
    for (size_t row = 0; row < count; ++row) {
      job.upLeftBefore = (row % 2 ? upLeftToo : upLeft).data();
      job.upLeft = (row % 2 ? upLeft : upLeftToo).data() + disparities;
      runRow(walk, job, results, withDebug, row * width_);
    }
  }

 private:
  void runRow(SgmRow walk, SgmRowJob& job, Results& results, bool withDebug, size_t at) const {
    job.first = first_.data() + at;
    job.reference = reference_.data() + at;
    for (size_t dir = 0; dir < 4; ++dir) job.p2[dir] = p2_.data() + (dir * count) * width_ + at;
    job.costs = withDebug ? results.costs.data() + at * disparities : nullptr;
    job.sums = withDebug ? results.sums.data() + at * disparities : nullptr;
    job.peaks = withDebug ? results.peaks.data() + at : nullptr;
    job.distinctness = results.distinctness.data() + at;
    job.disparity = results.disparity.data() + at;
    walk(job);
  }

  static Guarded<uint32_t> codes(lab::Random& random, size_t width, bool anyCodes) {
    std::vector<uint32_t> out = random.values<uint32_t>(count * width, 1 << 24);
    for (uint32_t& code : out) {
      if (random.below(10) == 0) code = censusInvalid;
      if (random.below(3) == 0) code = 0x00ABCDEF;  // matches, so that there are winners
      if (anyCodes && random.below(20) == 0) code = random.next();
    }
    return Guarded<uint32_t>(out);
  }

  size_t width_;
  Guarded<uint32_t> first_, reference_;
  Guarded<uint8_t> p2_;
  SgmRowJob job_ = {};
};

void checkWalk(Check& check, SgmRow scalar, SgmRow tested) {
  for (size_t width = 5; width <= 140; ++width) {
    for (int variant = 0; variant < 4; ++variant) {
      const bool withDebug = variant & 1, anyCodes = variant & 2;
      check.describe("width " + std::to_string(width) + (withDebug ? ", debug" : "") + (anyCodes ? ", any codes" : ""));
      const Rows rows(check.random, width, anyCodes);
      Rows::Results want(rows), got(rows);
      rows.run(scalar, want, withDebug);
      rows.run(tested, got, withDebug);
      check.equal("cost", want.costs, got.costs);
      check.equal("sum", want.sums, got.sums);
      check.equal("peak", want.peaks, got.peaks);
      check.equal("distinctness", want.distinctness, got.distinctness);
      check.equal("disparity", want.disparity, got.disparity);
    }
  }
}

void benchWalk(SgmRow walk) {
  static lab::Random random(7);
  static const Rows rows(random, 640, false);
  static Rows::Results results(rows);
  for (int i = 0; i < 5; ++i) rows.run(walk, results, false);
}

}  // namespace

void addWalkCases(Registry& r) {
  add<SgmRow>(
      r, "walk_disparity", [](unsigned c) { return stereoKernels(c).walkDisparity; }, checkWalk, benchWalk);
  add<SgmRow>(
      r, "walk_distinctness", [](unsigned c) { return stereoKernels(c).walkDistinctness; }, checkWalk, benchWalk);
}

}  // namespace nadir::test
