// The cases of census, penalties, costs and path costs of one row.
#include "stereo/kernels.hpp"
#include "tests/kernels/harness.hpp"

namespace nadir::test {
namespace {

void checkCensus(Check& check, CensusRow scalar, CensusRow tested) {
  forEachInput(check, 0, widest, [&](size_t n, Fill fill, Guard side) {
    const Guarded<uint16_t> pixels(filled<uint16_t>(check.random, fill, 5 * (n + 4), 0, 65535), side);
    const uint16_t* rows[5];
    for (size_t y = 0; y < 5; ++y) rows[y] = pixels.data() + y * (n + 4);
    Output<uint32_t> want(n, side), got(n, side);
    scalar(rows, want.data(), n);
    tested(rows, got.data(), n);
    check.equal("code", want, got);
  });
}

void benchCensus(CensusRow census) {
  static const std::vector<uint16_t> pixels = lab::Random(7).values<uint16_t>(5 * 640, 4096);
  static std::vector<uint32_t> codes(636);
  const uint16_t* const rows[5] = {&pixels[0], &pixels[640], &pixels[1280], &pixels[1920], &pixels[2560]};
  for (int i = 0; i < 480; ++i) census(rows, codes.data(), codes.size());
}

// Small differences too: the largest ones all get the same penalty.
void checkPenalties(Check& check, PenaltyRow scalar, PenaltyRow tested) {
  forEachInput(check, 0, widest, [&](size_t n, Fill fill, Guard side) {
    for (uint16_t range : {uint16_t{400}, uint16_t{65535}}) {
      const Guarded<uint16_t> pixels(filled<uint16_t>(check.random, fill, n, 0, range), side);
      const Guarded<uint16_t> before(filled<uint16_t>(check.random, Fill::random, n, 0, range), side);
      Output<uint8_t> want(n, side), got(n, side);
      scalar(pixels.data(), before.data(), want.data(), n);
      tested(pixels.data(), before.data(), got.data(), n);
      check.equal("penalty", want, got);
    }
  });
}

void benchPenalties(PenaltyRow penalties) {
  static const std::vector<uint16_t> pixels = lab::Random(7).values<uint16_t>(1280, 4096);
  static std::vector<uint8_t> out(640);
  for (int i = 0; i < 4 * 480; ++i) penalties(&pixels[0], &pixels[640], out.data(), out.size());
}

// Codes that a census makes, valid and invalid ones, and some that it does not.
std::vector<uint32_t> codes(lab::Random& random, Fill fill, size_t n, bool strangeToo) {
  std::vector<uint32_t> out = filled<uint32_t>(random, fill, n, 0, 0xFFFFFF);
  for (uint32_t& code : out) {
    if (random.below(9) == 0) code = censusInvalid;
    if (strangeToo && random.below(40) == 0) code = random.below(2) ? censusInvalid ^ 1 : 0x01000000;
  }
  return out;
}

// Four stretches and a bit, so that some begin and end with others beside them.
void checkCosts(Check& check, CostRow scalar, CostRow tested) {
  forEachInput(check, 5, 4 * stretch + 14, [&](size_t width, Fill fill, Guard side) {
    const bool strangeToo = check.random.below(4) == 0;
    const Guarded<uint32_t> first(codes(check.random, fill, width, strangeToo), side);
    const Guarded<uint32_t> reference(codes(check.random, fill, width, strangeToo), side);
    Output<uint8_t> want(width * disparities, side), got(width * disparities, side);
    scalar(first.data(), reference.data(), width, want.data());
    tested(first.data(), reference.data(), width, got.data());
    check.equal("cost", want, got);
  });
}

void benchCosts(CostRow costs) {
  static const std::vector<uint32_t> first = lab::Random(7).values<uint32_t>(640, 1 << 24);
  static const std::vector<uint32_t> reference = lab::Random(8).values<uint32_t>(640, 1 << 24);
  static std::vector<uint8_t> out(640 * disparities);
  for (int i = 0; i < 20; ++i) costs(first.data(), reference.data(), 640, out.data());
}

// Runs one row of path costs over buffers of its own, in place or from one buffer to another, and compares.
void checkPathRow(Check& check, PathRow scalar, PathRow tested, size_t width, size_t n, Fill fill, Guard side,
                  bool inPlace) {
  const size_t slot = n + 16;
  const auto bytes = [&](size_t count) { return filled<uint8_t>(check.random, fill, count, 0, 255); };
  const Guarded<uint8_t> costs(bytes(width * n), side), p2(bytes(width), side), before(bytes(width * slot), side),
      beforeMin(bytes(width), side);
  const std::vector<uint8_t> sums = bytes(width * n);
  Output<uint8_t> wantSums(width * n, side), gotSums(width * n, side);
  Output<uint8_t> wantHere(width * slot, side), gotHere(width * slot, side);
  Output<uint8_t> wantMin(width, side), gotMin(width, side);
  const auto run = [&](PathRow path, Output<uint8_t>& sum, Output<uint8_t>& here, Output<uint8_t>& least) {
    sum.set(sums);
    here.set(before.values());
    least.set(beforeMin.values());
    path({width, n, 7, 248, costs.data(), p2.data(), sum.data(), inPlace ? here.data() : before.data(),
          inPlace ? least.data() : beforeMin.data(), here.data(), least.data(), slot, 1});
  };
  run(scalar, wantSums, wantHere, wantMin);
  run(tested, gotSums, gotHere, gotMin);
  check.equal("sum", wantSums, gotSums);
  check.equal("path cost", wantHere, gotHere);
  check.equal("minimum", wantMin, gotMin);
}

void checkPath(Check& check, PathRow scalar, PathRow tested) {
  for (size_t n : {64u, 128u, 192u}) {
    for (bool inPlace : {false, true}) {
      forEachInput(check, 0, 9, [&](size_t width, Fill fill, Guard side) {
        check.describe(described(width, fill, side) + ", disparities " + std::to_string(n) +
                       (inPlace ? ", in place" : ""));
        checkPathRow(check, scalar, tested, width, n, fill, side, inPlace);
      });
    }
  }
}

void benchPath(PathRow path) {
  constexpr size_t width = 640, n = 64, slot = n + 16;
  static const std::vector<uint8_t> costs = lab::Random(7).values<uint8_t>(width * n, 25), p2(width, 39);
  static std::vector<uint8_t> sums(width * n), here(width * slot, 20), least(width, 9);
  for (int i = 0; i < 20; ++i) {
    path({width, n, 7, 248, costs.data(), p2.data(), sums.data(), here.data(), least.data(), here.data(), least.data(),
          slot, 1});
  }
}

}  // namespace

void addStereoRowCases(Registry& r) {
  add<CensusRow>(
      r, "census", [](unsigned c) { return stereoKernels(c).census; }, checkCensus, benchCensus);
  add<PenaltyRow>(
      r, "penalties", [](unsigned c) { return stereoKernels(c).penalties; }, checkPenalties, benchPenalties);
  add<CostRow>(
      r, "costs", [](unsigned c) { return stereoKernels(c).costs; }, checkCosts, benchCosts);
  add<PathRow>(
      r, "path", [](unsigned c) { return stereoKernels(c).path; }, checkPath, benchPath);
}

}  // namespace nadir::test
