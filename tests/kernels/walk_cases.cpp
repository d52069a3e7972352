// The matcher's walk along one row.
#include "stereo/code_row.hpp"
#include "stereo/kernels.hpp"
#include "tests/kernels/harness.hpp"

namespace nadir::test {
namespace {

// The inputs of one row and a copy of everything that a walk changes.
class Row {
 public:
  Row(Random& random, size_t width, bool anyCodes)
      : width_(width),
        first_(codes(random, width, anyCodes)),
        reference_(codes(random, width, anyCodes)),
        planes_(planeBytes(width - 4)),
        p2_(filled<uint8_t>(random, Fill::random, 4 * width, 17, 39)),
        pathCosts_(filled<uint8_t>(random, Fill::random, 3 * (width + 1) * disparities, 0, 63)),
        minima_(filled<uint8_t>(random, Fill::random, 3 * (width + 1), 0, 24)) {
    job_.width = width;
    job_.first = first_.data();
    job_.reference = reference_.data();
    job_.planes = splitCodes(first_.data() + 2, width - 4, planes_.data());
    job_.exact = !areCensusCodes(first_.data(), width) || !areCensusCodes(reference_.data(), width);
    job_.hasCosts = random.below(8) != 0;
    job_.uniquenessRatio = random.below(200);
    for (size_t dir = 0; dir < 4; ++dir) job_.p2[dir] = p2_.data() + dir * width;
  }

  // What a walk writes, in guarded memory.
  struct Results {
    Output<uint8_t> pathCosts, minima, costs, sums, peaks, distinctness;
    Output<uint16_t> disparity;
    explicit Results(const Row& row)
        : pathCosts(row.pathCosts_.size(), Guard::behind, 1),
          minima(row.minima_.size(), Guard::behind, 2),
          costs(row.width_ * disparities, Guard::behind, 3),
          sums(row.width_ * disparities, Guard::before, 4),
          peaks(row.width_, Guard::behind, 5),
          distinctness(row.width_, Guard::behind, 6),
          disparity(row.width_, Guard::behind, 7) {
      pathCosts.set(row.pathCosts_);
      minima.set(row.minima_);
      distinctness.set(std::vector<uint8_t>(row.width_, 255));
      disparity.set(std::vector<uint16_t>(row.width_, 0));
    }
  };

  void run(SgmRow walk, Results& results, bool withDebug) const {
    SgmRowJob job = job_;
    PathState* const states[3] = {&job.upLeft, &job.up, &job.upRight};
    for (size_t i = 0; i < 3; ++i) {
      *states[i] = {results.pathCosts.data() + i * (width_ + 1) * disparities,
                    results.minima.data() + i * (width_ + 1)};
    }
    job.costs = withDebug ? results.costs.data() : nullptr;
    job.sums = withDebug ? results.sums.data() : nullptr;
    job.peaks = withDebug ? results.peaks.data() : nullptr;
    job.distinctness = results.distinctness.data();
    job.disparity = results.disparity.data();
    walk(job);
  }

 private:
  static Guarded<uint32_t> codes(Random& random, size_t width, bool anyCodes) {
    std::vector<uint32_t> out = random.values<uint32_t>(width, 1 << 24);
    for (uint32_t& code : out) {
      if (random.below(10) == 0) code = censusInvalid;
      if (random.below(3) == 0) code = 0x00ABCDEF;  // matches, so that there are winners
      if (anyCodes && random.below(20) == 0) code = random.next();
    }
    return Guarded<uint32_t>(out);
  }

  size_t width_;
  Guarded<uint32_t> first_, reference_;
  std::vector<uint8_t> planes_;
  Guarded<uint8_t> p2_;
  std::vector<uint8_t> pathCosts_, minima_;
  SgmRowJob job_ = {};
};

void checkWalk(Check& check, SgmRow scalar, SgmRow tested) {
  for (size_t width = 5; width <= 140; ++width) {
    for (int variant = 0; variant < 4; ++variant) {
      const bool withDebug = variant & 1, anyCodes = variant & 2;
      check.describe("width " + std::to_string(width) + (withDebug ? ", debug" : "") + (anyCodes ? ", any codes" : ""));
      const Row row(check.random, width, anyCodes);
      Row::Results want(row), got(row);
      row.run(scalar, want, withDebug);
      row.run(tested, got, withDebug);
      check.equal("path cost", want.pathCosts, got.pathCosts);
      check.equal("minimum", want.minima, got.minima);
      check.equal("cost", want.costs, got.costs);
      check.equal("sum", want.sums, got.sums);
      check.equal("peak", want.peaks, got.peaks);
      check.equal("distinctness", want.distinctness, got.distinctness);
      check.equal("disparity", want.disparity, got.disparity);
    }
  }
}

void benchWalk(SgmRow walk) {
  static Random random(7);
  static const Row row(random, 640, false);
  static Row::Results results(row);
  for (int i = 0; i < 10; ++i) row.run(walk, results, false);
}

}  // namespace

void addWalkCases(Registry& r) {
  add<SgmRow>(
      r, "walk_disparity", [](unsigned c) { return stereoKernels(c).walkDisparity; }, checkWalk, benchWalk);
  add<SgmRow>(
      r, "walk_distinctness", [](unsigned c) { return stereoKernels(c).walkDistinctness; }, checkWalk, benchWalk);
}

}  // namespace nadir::test
