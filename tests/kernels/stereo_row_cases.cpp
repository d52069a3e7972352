// Census, penalties, costs and path costs of one row.
#include "stereo/kernels.hpp"
#include "tests/kernels/harness.hpp"

namespace nadir::test {
namespace {

constexpr size_t widest = 4 * 32 + 1;  // four of the widest vectors of words, and one more

std::string atWidth(size_t n, Fill fill) {
  return "width " + std::to_string(n) + ", fill " + std::to_string(static_cast<int>(fill));
}

void checkCensus(Check& check, CensusRow scalar, CensusRow tested) {
  for (size_t n = 0; n <= widest; ++n) {
    for (Fill fill : allFills) {
      for (Guard side : {Guard::behind, Guard::before}) {
        check.describe(atWidth(n, fill));
        const Guarded<uint16_t> pixels(filled<uint16_t>(check.random, fill, 5 * (n + 4), 0, 65535), side);
        const uint16_t* rows[5];
        for (size_t y = 0; y < 5; ++y) rows[y] = pixels.data() + y * (n + 4);
        Output<uint32_t> want(n, side, 0x5A), got(n, side, 0x5A);
        scalar(rows, want.data(), n);
        tested(rows, got.data(), n);
        check.equal("code", want, got);
      }
    }
  }
}

void benchCensus(CensusRow census) {
  static const std::vector<uint16_t> pixels = Random(7).values<uint16_t>(5 * 640, 4096);
  static std::vector<uint32_t> codes(636);
  const uint16_t* const rows[5] = {&pixels[0], &pixels[640], &pixels[1280], &pixels[1920], &pixels[2560]};
  for (int i = 0; i < 480; ++i) census(rows, codes.data(), codes.size());
}

void checkPenalties(Check& check, PenaltyRow scalar, PenaltyRow tested) {
  for (size_t n = 0; n <= widest; ++n) {
    for (Fill fill : allFills) {
      for (uint16_t range : {uint16_t{400}, uint16_t{65535}}) {
        check.describe(atWidth(n, fill));
        const Guarded<uint16_t> pixels(filled<uint16_t>(check.random, fill, n, 0, range));
        const Guarded<uint16_t> before(filled<uint16_t>(check.random, Fill::random, n, 0, range), Guard::before);
        Output<uint8_t> want(n, Guard::behind, 0x5A), got(n, Guard::behind, 0x5A);
        scalar(pixels.data(), before.data(), want.data(), n);
        tested(pixels.data(), before.data(), got.data(), n);
        check.equal("penalty", want, got);
      }
    }
  }
}

void benchPenalties(PenaltyRow penalties) {
  static const std::vector<uint16_t> pixels = Random(7).values<uint16_t>(1280, 4096);
  static std::vector<uint8_t> out(640);
  for (int i = 0; i < 4 * 480; ++i) penalties(&pixels[0], &pixels[640], out.data(), out.size());
}

// Codes that a census makes, valid and invalid ones, and some that it does not.
std::vector<uint32_t> codes(Random& random, Fill fill, size_t n, bool strangeToo) {
  std::vector<uint32_t> out = filled<uint32_t>(random, fill, n, 0, 0xFFFFFF);
  for (uint32_t& code : out) {
    if (random.below(9) == 0) code = censusInvalid;
    if (strangeToo && random.below(40) == 0) code = random.below(2) ? censusInvalid ^ 1 : 0x01000000;
  }
  return out;
}

void checkCosts(Check& check, CostRow scalar, CostRow tested) {
  for (size_t width = 5; width <= 270; width += width < 150 ? 1 : 13) {
    for (Fill fill : allFills) {
      for (Guard side : {Guard::behind, Guard::before}) {
        check.describe(atWidth(width, fill));
        const bool strangeToo = check.random.below(4) == 0;
        const Guarded<uint32_t> first(codes(check.random, fill, width, strangeToo), side);
        const Guarded<uint32_t> reference(codes(check.random, fill, width, strangeToo), side);
        Output<uint8_t> want(width * disparities, side, 0x5A), got(width * disparities, side, 0x5A);
        scalar(first.data(), reference.data(), width, want.data());
        tested(first.data(), reference.data(), width, got.data());
        check.equal("cost", want, got);
      }
    }
  }
}

void benchCosts(CostRow costs) {
  static const std::vector<uint32_t> first = Random(7).values<uint32_t>(640, 1 << 24);
  static const std::vector<uint32_t> reference = Random(8).values<uint32_t>(640, 1 << 24);
  static std::vector<uint8_t> out(640 * disparities);
  for (int i = 0; i < 20; ++i) costs(first.data(), reference.data(), 640, out.data());
}

// Runs one row of path costs over buffers of its own, in place or from one buffer to another, and compares.
void checkPathRow(Check& check, PathRow scalar, PathRow tested, size_t width, size_t n, Fill fill, bool inPlace) {
  check.describe(atWidth(width, fill) + ", disparities " + std::to_string(n) + (inPlace ? ", in place" : ""));
  const size_t slot = n + 16;
  const auto bytes = [&](size_t count) { return filled<uint8_t>(check.random, fill, count, 0, 255); };
  const Guarded<uint8_t> costs(bytes(width * n)), p2(bytes(width)), before(bytes(width * slot)),
      beforeMin(bytes(width));
  const std::vector<uint8_t> sums = bytes(width * n);
  Output<uint8_t> wantSums(width * n, Guard::behind, 1), gotSums(width * n, Guard::behind, 1);
  Output<uint8_t> wantHere(width * slot, Guard::behind, 2), gotHere(width * slot, Guard::behind, 2);
  Output<uint8_t> wantMin(width, Guard::before, 3), gotMin(width, Guard::before, 3);
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
  for (size_t width = 0; width <= 9; ++width) {
    for (size_t n : {64u, 128u, 192u}) {
      for (Fill fill : allFills) {
        checkPathRow(check, scalar, tested, width, n, fill, false);
        checkPathRow(check, scalar, tested, width, n, fill, true);
      }
    }
  }
}

void benchPath(PathRow path) {
  constexpr size_t width = 640, n = 64, slot = n + 16;
  static const std::vector<uint8_t> costs = Random(7).values<uint8_t>(width * n, 25), p2(width, 39);
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
