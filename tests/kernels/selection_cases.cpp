// The cases of the search for the smallest cost, the check that it is distinct, and the place between two disparities.
#include "stereo/kernels.hpp"
#include "tests/kernels/harness.hpp"

namespace nadir::test {
namespace {

// Costs in a narrow range have many ties, costs in a wide one reach 255.
constexpr uint8_t ranges[] = {1, 12, 254, 255};

template <class F>
void forCosts(Check& check, F f) {
  forEachInput(check, 1, 256, [&](size_t count, Fill fill, Guard side) {
    for (uint8_t range : ranges) {
      check.describe(described(count, fill, side) + ", range " + std::to_string(range));
      const Guarded<uint8_t> costs(filled<uint8_t>(check.random, fill, count, static_cast<uint8_t>(255 - range), 255),
                                   side);
      f(costs.data(), count);
    }
  });
}

void checkFindMin(Check& check, FindMin scalar, FindMin tested) {
  forCosts(check, [&](const uint8_t* costs, size_t count) {
    Output<uint8_t> wantValue(1, Guard::behind, 0), gotValue(1, Guard::behind, 0);
    Output<uint32_t> wantIndex(1, Guard::behind, 0), gotIndex(1, Guard::behind, 0);
    scalar(costs, count, wantValue.data(), wantIndex.data());
    tested(costs, count, gotValue.data(), gotIndex.data());
    check.equal("value", wantValue, gotValue);
    check.equal("index", wantIndex, gotIndex);
  });
}

void checkPeak(Check& check, PeakCheck scalar, PeakCheck tested) {
  forCosts(check, [&](const uint8_t* original, size_t count) {
    std::vector<uint8_t> lowered(original, original + count);
    const uint8_t shift = static_cast<uint8_t>(check.random.below(256));
    for (uint8_t& c : lowered) c = static_cast<uint8_t>(c < shift ? 0 : c - shift);
    if (check.random.below(2)) lowered[check.random.below(static_cast<uint32_t>(count))] = 0;
    const Guarded<uint8_t> costs(lowered);
    for (uint32_t ratio : {0u, 20u, 128u, 1000u, 0xFFFFFFFFu}) {
      Output<uint32_t> want(1, Guard::behind, 0), got(1, Guard::behind, 0);
      *want.data() = scalar(costs.data(), count - 1, ratio);
      *got.data() = tested(costs.data(), count - 1, ratio);
      check.equal("winner", want, got);
    }
  });
}

void setWinner(Winners& winners, size_t i, lab::Random& random, unsigned below, unsigned above) {
  const unsigned cost = random.below(256u - (below > above ? below : above));
  winners.index[i] = static_cast<uint16_t>(2 + random.below(60));
  winners.cost[i] = static_cast<uint16_t>(cost);
  winners.below[i] = static_cast<uint16_t>(below + cost);
  winners.above[i] = static_cast<uint16_t>(above + cost);
}

void compareRefined(Check& check, Refine scalar, Refine tested, const Winners& winners, size_t n) {
  Output<uint16_t> want(n, Guard::behind), got(n, Guard::behind);
  scalar(winners, n, want.data());
  tested(winners, n, got.data());
  check.equal("disparity", want, got);
}

// Every pair of differences that the costs beside a winner can have to its own.
void checkRefine(Check& check, Refine scalar, Refine tested) {
  Winners winners = {};
  for (unsigned below = 0; below < 256; ++below) {
    for (unsigned above = 0; above < 256; ++above) {
      setWinner(winners, above % stretch, check.random, below, above);
      if (above % stretch + 1 < stretch) continue;
      check.describe(std::to_string(below) + " below, up to " + std::to_string(above) + " above");
      compareRefined(check, scalar, tested, winners, stretch);
    }
  }
  for (size_t n = 0; n < stretch; ++n) {
    check.describe(std::to_string(n) + " winners");
    compareRefined(check, scalar, tested, winners, n);
  }
}

const std::vector<uint8_t>& benchCosts() {
  static const std::vector<uint8_t> costs = lab::Random(7).values<uint8_t>(640 * 64, 253);
  return costs;
}

void benchFindMin(FindMin findMin) {
  uint8_t value;
  uint32_t index;
  for (size_t i = 0; i < benchCosts().size(); i += 64) findMin(&benchCosts()[i], 64, &value, &index);
}

void benchPeak(PeakCheck peakCheck) {
  volatile uint32_t winner;
  for (size_t i = 0; i < benchCosts().size(); i += 64) winner = peakCheck(&benchCosts()[i], 63, 20);
  static_cast<void>(winner);
}

void benchRefine(Refine refine) {
  static Winners winners = {};
  uint16_t disparity[stretch];
  for (size_t i = 0; i < stretch; ++i) {
    winners.index[i] = 30;
    winners.below[i] = static_cast<uint16_t>(i * 3);
    winners.above[i] = static_cast<uint16_t>(200 - i);
  }
  for (int i = 0; i < 1000; ++i) refine(winners, stretch, disparity);
}

}  // namespace

void addSelectionCases(Registry& r) {
  add<FindMin>(
      r, "find_min", [](unsigned c) { return stereoKernels(c).findMin; }, checkFindMin, benchFindMin);
  add<PeakCheck>(
      r, "peak_check", [](unsigned c) { return stereoKernels(c).peakCheck; }, checkPeak, benchPeak);
  add<Refine>(
      r, "refine", [](unsigned c) { return stereoKernels(c).refine; }, checkRefine, benchRefine);
}

}  // namespace nadir::test
